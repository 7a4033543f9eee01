#include <trv5charts/numberformat.h>

#include "testsupport.h"

using namespace trv5;
using trv5::test::German;
using trv5::test::ScopedLocale;

TEST(NumberFormat, ShortSwitchesToScientificBeyondEightCharacters) {
    EXPECT_EQ(NumberFormat::Short(0.5), "0.5");
    EXPECT_EQ(NumberFormat::Short(-0.25), "-0.3");
    EXPECT_EQ(NumberFormat::Short(123456.7), "123456.7");
    EXPECT_EQ(NumberFormat::Short(1234567.8), "1.23E+06");
    EXPECT_EQ(NumberFormat::Short(-123456.7), "-1.23E+05");
}

TEST(NumberFormat, WithDigitsTrimsZerosAndNeverShowsAFalseZero) {
    EXPECT_EQ(NumberFormat::WithDigits(0.75, 6), "0.75");
    EXPECT_EQ(NumberFormat::WithDigits(0.25, 6), "0.25");
    EXPECT_EQ(NumberFormat::WithDigits(1.0, 6), "1");
    EXPECT_EQ(NumberFormat::WithDigits(0.0, 6), "0");
    EXPECT_EQ(NumberFormat::WithDigits(10.0, 6), "10");
    EXPECT_EQ(NumberFormat::WithDigits(100.0, 0), "100");
    EXPECT_EQ(NumberFormat::WithDigits(0.1234567891, 8), "0.12345679");
    // Too small for the decimals asked: scientific, whose exponent digits are not trimmed.
    EXPECT_EQ(NumberFormat::WithDigits(1e-9, 6), "1.00E-09");
    EXPECT_EQ(NumberFormat::WithDigits(1e-10, 8), "1.00E-10");
    // The zero test covers eight decimals; with more the text stays as formatted.
    EXPECT_EQ(NumberFormat::WithDigits(1e-12, 10), "0");
    EXPECT_EQ(NumberFormat::WithDigits(-1e-9, 6), "-1.00E-09");
    EXPECT_CHART_ERROR(NumberFormat::WithDigits(0.5, -1), 5);
}

TEST(NumberFormat, FollowsTheUsersDecimalPoint) {
    const ScopedLocale german(German());
    EXPECT_EQ(NumberFormat::WithDigits(0.75, 6), "0,75");
    EXPECT_EQ(NumberFormat::WithDigits(2.0, 6), "2");
    EXPECT_EQ(NumberFormat::Short(1.25), "1,3");
    EXPECT_EQ(NumberFormat::RegressionEquation(1.5, -2.5, 0.5), "y = 1,5x + (-2,5)\r\nRS = 0,5");
}

TEST(NumberFormat, RegressionEquationForms) {
    EXPECT_EQ(NumberFormat::RegressionEquation(1.5, -2.5, 0.9), "y = 1.5x + (-2.5)\r\nRS = 0.9");
    EXPECT_EQ(NumberFormat::RegressionEquation(1.5, 2, 0.9), "y = 1.5x + 2\r\nRS = 0.9");
    EXPECT_EQ(NumberFormat::RegressionEquation(1.5, 0, 1), "y = 1.5x + 0\r\nRS = 1");
    EXPECT_EQ(NumberFormat::RegressionEquation(-9999, 2, -9999),
              "y = UNDEFINED + (UNDEFINED)\r\nRS = UNDEFINED");
    EXPECT_EQ(NumberFormat::RegressionEquation(1, -9999, 0.25),
              "y = UNDEFINED + (UNDEFINED)\r\nRS = 0.25");
    EXPECT_EQ(NumberFormat::RegressionEquation(std::nan(""), 1, 0.25),
              "y = UNDEFINED + (UNDEFINED)\r\nRS = 0.25");
}
