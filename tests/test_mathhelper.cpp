#include <trv5charts/mathhelper.h>

#include "numeric/numericlib.h"
#include "testsupport.h"

#include <QDate>
#include <QVariant>

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <stdexcept>
#include <vector>

using namespace trv5;
using namespace trv5::MathHelper;

// NIST StRD linear regression data set "Norris".
// clang-format off
constexpr std::array<double, 36> kNorrisX = {0.2, 337.4, 118.2, 884.6, 10.1, 226.5, 666.3, 996.3,
    448.6, 777.0, 558.2, 0.4, 0.6, 775.5, 666.9, 338.0, 447.5, 11.6, 556.0, 228.1, 995.8, 887.6,
    120.2, 0.3, 0.3, 556.8, 339.1, 887.2, 999.0, 779.0, 11.1, 118.3, 229.2, 669.1, 448.9, 0.5};
constexpr std::array<double, 36> kNorrisY = {0.1, 338.8, 118.1, 888.0, 9.2, 228.1, 668.5, 998.5,
    449.1, 778.9, 559.2, 0.3, 0.1, 778.1, 668.8, 339.3, 448.9, 10.8, 557.7, 228.3, 998.0, 888.8,
    119.6, 0.3, 0.6, 557.6, 339.3, 888.0, 998.5, 778.9, 10.2, 117.6, 228.9, 668.4, 449.2, 0.2};
// clang-format on

TEST(NumericLib, KeepsPrecisionSkipsNaNAndRejectsBadInput) {
    double slope = 0.0, intercept = 0.0;
    numeric::LinearRegression(kNorrisX, kNorrisY, slope, intercept);
    EXPECT_NEAR(slope, 1.00211681802045, 1e-13);
    EXPECT_NEAR(intercept, -0.262323073774029, 1e-12);
    // The same cloud far from the origin: uncentred sums of squares would lose the slope.
    auto shifted = kNorrisX;
    for (double& x : shifted) {
        x += 1e8;
    }
    numeric::LinearRegression(shifted, kNorrisY, slope, intercept);
    EXPECT_NEAR(slope, 1.00211681802045, 1e-9);

    // A one-pass sum of squares (about 4e18) has no digits left for a variance of 30.
    const std::vector<double> offset{1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16};
    EXPECT_NEAR(numeric::StandardDeviation(offset), std::sqrt(30.0), 1e-12);

    double minimum = 0.0, maximum = 0.0;
    numeric::CalculateMinMax(std::vector<double>{NAN, 5.0, -INFINITY, 1.0}, minimum, maximum);
    EXPECT_TRUE(minimum == -INFINITY && maximum == 5.0); // a leading NaN must not stick

    const std::vector<double> one{1.0}, flat{4.0, 4.0};
    slope = 7.0;
    EXPECT_THROW(numeric::LinearRegression(one, one, slope, slope), std::invalid_argument);
    EXPECT_THROW(numeric::LinearRegression(flat, kNorrisY, slope, slope), std::invalid_argument);
    EXPECT_THROW(numeric::LinearRegression(flat, flat, slope, slope), std::invalid_argument);
    EXPECT_EQ(slope, 7.0); // outputs untouched on failure
    EXPECT_THROW(numeric::StandardDeviation(one), std::invalid_argument);
    EXPECT_THROW(numeric::CalculateMinMax({}, minimum, maximum), std::invalid_argument);
}

TEST(MathHelper, WrappersHonourTheCount) {
    const std::vector<double> x{1.0, 2.0, 3.0, 99.0}, y{5.0, 7.0, 9.0, 0.0};
    double slope = 0.0, intercept = 0.0;
    ComputeLinearRegression(3, x, y, slope, intercept); // the 4th point is ignored
    EXPECT_TRUE(slope == 2.0 && intercept == 3.0);
    EXPECT_DOUBLE_EQ(ComputeStandardDeviation(2, x), std::sqrt(0.5));
    for (const std::int32_t count : {-1, 1, 5, INT32_MAX}) {
        slope = intercept = 7.0;
        ComputeLinearRegression(count, x, y, slope, intercept);
        EXPECT_TRUE(slope == 0.0 && intercept == 0.0) << count;
        EXPECT_EQ(ComputeStandardDeviation(count, x), -9999.0) << count;
    }

    EXPECT_EQ(ComputeMinMax(x, 2).Maximum, 2.0);
    EXPECT_EQ(ComputeMinMax(x, -1).Maximum, 99.0);
    for (const std::int32_t count : {0, 5, -2}) {
        EXPECT_CHART_ERROR(ComputeMinMax(x, count), ChartError::IndexOutOfRange);
    }
    EXPECT_CHART_ERROR(ComputeMinMax({}, -1), ChartError::IndexOutOfRange);
}

TEST(MathHelper, ArrayScans) {
    const std::vector<double> x{4.0, 8.0, 2.0, 9.0};
    // ArrayMin reads the count as the last index, so 2 takes in the third element.
    // clang-format off
    const struct { bool max; std::int32_t count, countAfter; double result; } cases[] = {
        {true, 2, 2, 8.0}, {true, 3, 3, 8.0}, {true, -1, 4, 9.0}, {true, 5, 4, 9.0},
        {true, INT32_MAX, 4, 9.0}, {false, 1, 1, 4.0}, {false, 2, 2, 2.0}, {false, -1, 3, 2.0},
        {false, 4, 3, 2.0}, {false, INT32_MIN, 3, 2.0}};
    // clang-format on
    for (const auto& c : cases) {
        std::int32_t count = c.count;
        EXPECT_EQ(c.max ? ArrayMax(x, count) : ArrayMin(x, count), c.result) << c.max << c.count;
        EXPECT_EQ(count, c.countAfter) << c.max << c.count;
    }

    // Nothing scanned gives the start values, bit for bit.
    std::int32_t count = 3;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ArrayMax({}, count)), 0xFFEFFFFFFFFFFFE2U);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(ArrayMin({}, count)), 0x7FEFFFFFFFFFFFE2U);
    EXPECT_EQ(count, -1);

    // Variant elements go through the user-locale conversion.
    const test::ScopedLocale german(test::German());
    const std::vector<QVariant> values{3, QStringLiteral("2,5"), -4.5, 10.25f};
    EXPECT_EQ(VariantArrayMax(values), 10.25);
    EXPECT_EQ(VariantArrayMin(values), -4.5);
    const std::vector<QVariant> withBad{1.0, QDate(2020, 1, 1)};
    EXPECT_CHART_ERROR(VariantArrayMax(withBad), ChartError::TypeMismatch);
    EXPECT_CHART_ERROR(VariantArrayMin(withBad), ChartError::TypeMismatch);
}

TEST(MathHelper, MeanVarianceAndStandardize) {
    const std::vector<double> x{2.0, 4.0, 9.0};
    EXPECT_DOUBLE_EQ(Mean(x), 5.0);
    EXPECT_DOUBLE_EQ(SampleVariance(x, 0.0), 50.5); // the given mean is used
    EXPECT_DOUBLE_EQ(SampleStdDev(x, 5.0), std::sqrt(13.0));

    double value = 5.0;
    EXPECT_EQ(StandardizeWithValue(std::vector<double>{1.0, 2.0, 3.0}, value),
              (std::vector<double>{-1.0, 0.0, 1.0}));
    EXPECT_EQ(value, 3.0);
    // No spread: values and value unchanged.
    EXPECT_EQ(StandardizeWithValue(std::vector{4.0, 4.0}, value), (std::vector{4.0, 4.0}));
    EXPECT_EQ(value, 3.0);

    // 0 / 0 is an overflow, anything else over 0 a division by zero.
    EXPECT_CHART_ERROR(Mean({}), ChartError::Overflow);
    EXPECT_CHART_ERROR(SampleVariance(std::vector{5.0}, 5.0), ChartError::Overflow);
    EXPECT_CHART_ERROR(SampleVariance(std::vector{5.0}, 3.0), ChartError::DivisionByZero);
}

TEST(MathHelper, RandomBetweenIsReproducibleAfterSeeding) {
    std::vector<double> runs[2];
    for (auto& run : runs) {
        SetRandomSeed(2024);
        std::generate_n(std::back_inserter(run), 200, [] { return RandomBetween(-3, 2); });
    }
    EXPECT_EQ(runs[0], runs[1]);
    EXPECT_NE(runs[0].front(), runs[0].back());
    const auto [low, high] = std::ranges::minmax(runs[0]);
    EXPECT_TRUE(low >= -3.0 && high < 2.0) << low << " " << high;
}

TEST(MathHelper, WholeNumberTestsUseTheUserLocaleText) {
    const test::ScopedLocale german(test::German());
    for (const char* text : {"4", " 12 ", "1e3", "2147483647", "2,0"}) {
        EXPECT_TRUE(IsWholeNumber(QString::fromLatin1(text))) << text;
    }
    for (const char* text : {"2,5", "-0,5", "abc", "", "3000000000", "NaN"}) {
        EXPECT_FALSE(IsWholeNumber(QString::fromLatin1(text))) << text;
    }

    // clang-format off
    const struct { float value, ceiling, floor; } cases[] = {
        {2.5f, 3.0f, 2.0f}, {-2.5f, -2.0f, -3.0f}, {7.0f, 7.0f, 7.0f}, {2.0000001f, 2.0f, 2.0f},
        {32767.5f, 32768.0f, 32767.0f}, {-32768.0f, -32768.0f, -32768.0f}};
    // clang-format on
    for (const auto& c : cases) {
        EXPECT_EQ(CeilingUnlessWhole(c.value), c.ceiling) << c.value;
        EXPECT_EQ(FloorUnlessWhole(c.value), c.floor) << c.value;
    }
    // Whole values go through a 16-bit conversion; 1234567.9 prints as "1234568".
    for (const float whole : {40000.0f, -32769.0f, 1234567.9f}) {
        EXPECT_CHART_ERROR(CeilingUnlessWhole(whole), ChartError::Overflow);
        EXPECT_CHART_ERROR(FloorUnlessWhole(whole), ChartError::Overflow);
    }
}

TEST(MathHelper, IsAboveOrWithin) {
    EXPECT_TRUE(IsAboveOrWithin(1.0, 1.05, 0.1) && IsAboveOrWithin(3.0, 2.0, 0.1));
    EXPECT_FALSE(IsAboveOrWithin(1.0, 2.0, 0.1) || IsAboveOrWithin(2.0, 2.0, 0.0)); // strict
}
