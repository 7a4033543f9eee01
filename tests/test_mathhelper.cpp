#include <trv5charts/mathhelper.h>

#include "numeric/numericlib.h"
#include "testsupport.h"

#include <QDate>
#include <QString>
#include <QVariant>

#include <array>
#include <bit>
#include <cmath>
#include <cstdint>
#include <limits>
#include <span>
#include <stdexcept>
#include <vector>

using namespace trv5;
using trv5::test::ScopedLocale;

namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();
constexpr std::int32_t kMax32 = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kMin32 = std::numeric_limits<std::int32_t>::min();

// NIST StRD linear regression data set "Norris" (calibration of ozone monitors).
constexpr std::array<double, 36> kNorrisX = {
    0.2, 337.4, 118.2, 884.6, 10.1,  226.5, 666.3, 996.3, 448.6, 777.0, 558.2, 0.4,
    0.6, 775.5, 666.9, 338.0, 447.5, 11.6,  556.0, 228.1, 995.8, 887.6, 120.2, 0.3,
    0.3, 556.8, 339.1, 887.2, 999.0, 779.0, 11.1,  118.3, 229.2, 669.1, 448.9, 0.5};
constexpr std::array<double, 36> kNorrisY = {
    0.1, 338.8, 118.1, 888.0, 9.2,   228.1, 668.5, 998.5, 449.1, 778.9, 559.2, 0.3,
    0.1, 778.1, 668.8, 339.3, 448.9, 10.8,  557.7, 228.3, 998.0, 888.8, 119.6, 0.3,
    0.6, 557.6, 339.3, 888.0, 998.5, 778.9, 10.2,  117.6, 228.9, 668.4, 449.2, 0.2};
constexpr double kNorrisSlope = 1.00211681802045;
constexpr double kNorrisIntercept = -0.262323073774029;

} // namespace

TEST(NumericLib, LinearRegressionMatchesCertifiedNorrisValues) {
    double slope = 0.0;
    double intercept = 0.0;
    numeric::LinearRegression(kNorrisX, kNorrisY, slope, intercept);
    EXPECT_NEAR(slope, kNorrisSlope, 1e-13);
    EXPECT_NEAR(intercept, kNorrisIntercept, 1e-12);

    // The same cloud moved far from the origin: uncentred sums of squares would lose the slope.
    std::vector<double> x(kNorrisX.begin(), kNorrisX.end());
    std::vector<double> y(kNorrisY.begin(), kNorrisY.end());
    for (std::size_t i = 0; i < x.size(); ++i) {
        x[i] += 1e8;
        y[i] += 1e8;
    }
    numeric::LinearRegression(x, y, slope, intercept);
    EXPECT_NEAR(slope, kNorrisSlope, 1e-9);
}

TEST(NumericLib, StandardDeviationKeepsPrecisionOnLargeOffsets) {
    // Deviations -6, -3, 3, 6 on top of 1e9: a one-pass sum of squares (about 4e18) has no
    // digits left for a variance of 30.
    const std::vector<double> offset{1e9 + 4, 1e9 + 7, 1e9 + 13, 1e9 + 16};
    EXPECT_NEAR(numeric::StandardDeviation(offset), std::sqrt(30.0), 1e-12);

    // NIST StRD univariate "NumAcc4", certified standard deviation 0.1. What is left is the
    // decimal-to-binary error of the data themselves.
    std::vector<double> numAcc4{10000000.2};
    for (int i = 0; i < 500; ++i) {
        numAcc4.insert(numAcc4.end(), {10000000.1, 10000000.3});
    }
    EXPECT_NEAR(numeric::StandardDeviation(numAcc4), 0.1, 2e-9);
}

TEST(NumericLib, MinMaxSkipsNaNAndBadInputThrows) {
    double minimum = 0.0;
    double maximum = 0.0;
    numeric::CalculateMinMax(std::vector<double>{kNaN, 5.0, -kInf, 1.0}, minimum, maximum);
    EXPECT_EQ(minimum, -kInf);
    EXPECT_EQ(maximum, 5.0); // a leading NaN must not stick
    numeric::CalculateMinMax(std::vector<double>{kNaN, kNaN}, minimum, maximum);
    EXPECT_TRUE(std::isnan(minimum) && std::isnan(maximum));

    const std::vector<double> one{1.0};
    const std::vector<double> two{1.0, 2.0};
    const std::vector<double> flat{4.0, 4.0};
    double slope = 7.0;
    EXPECT_THROW(numeric::LinearRegression(one, one, slope, slope), std::invalid_argument);
    EXPECT_THROW(numeric::LinearRegression(two, one, slope, slope), std::invalid_argument);
    EXPECT_THROW(numeric::LinearRegression(flat, two, slope, slope), std::invalid_argument);
    EXPECT_EQ(slope, 7.0); // outputs untouched on failure
    EXPECT_THROW(numeric::StandardDeviation(one), std::invalid_argument);
    EXPECT_THROW(numeric::CalculateMinMax({}, minimum, maximum), std::invalid_argument);
}

TEST(MathHelper, RegressionAndDeviationWrappersNeverThrow) {
    const std::vector<double> x{1.0, 2.0, 3.0, 99.0};
    const std::vector<double> y{5.0, 7.0, 9.0, 0.0};
    const std::vector<double> flat{2.0, 2.0, 2.0};
    double slope = 0.0;
    double intercept = 0.0;
    MathHelper::ComputeLinearRegression(3, x, y, slope, intercept); // the 4th point is ignored
    EXPECT_DOUBLE_EQ(slope, 2.0);
    EXPECT_DOUBLE_EQ(intercept, 3.0);
    EXPECT_DOUBLE_EQ(MathHelper::ComputeStandardDeviation(2, x), std::sqrt(0.5));

    const struct {
        std::int32_t count;
        std::span<const double> x, y;
    } failing[] = {
        {-1, x, y},   {1, x, y},  {5, x, y}, {kMax32, x, y}, {3, x, std::span(y).first(2)},
        {3, flat, y}, {0, {}, {}}};
    for (const auto& c : failing) {
        slope = intercept = 7.0;
        MathHelper::ComputeLinearRegression(c.count, c.x, c.y, slope, intercept);
        EXPECT_TRUE(slope == 0.0 && intercept == 0.0) << c.count;
    }
    for (const std::int32_t count : {-1, 0, 1, 5, kMin32}) {
        EXPECT_EQ(MathHelper::ComputeStandardDeviation(count, x), -9999.0) << count;
    }
    EXPECT_EQ(MathHelper::ComputeStandardDeviation(0, {}), -9999.0);
}

TEST(MathHelper, ComputeMinMaxHonoursCountAndRejectsBadOnes) {
    const std::vector<double> x{4.0, -1.0, 9.0};
    const auto whole = MathHelper::ComputeMinMax(x, -1);
    EXPECT_TRUE(whole.Minimum == -1.0 && whole.Maximum == 9.0);
    const auto head = MathHelper::ComputeMinMax(x, 1);
    EXPECT_TRUE(head.Minimum == 4.0 && head.Maximum == 4.0);

    EXPECT_CHART_ERROR(MathHelper::ComputeMinMax({}, -1), ChartError::IndexOutOfRange);
    for (const std::int32_t count : {0, 4, -2, kMax32}) {
        EXPECT_CHART_ERROR(MathHelper::ComputeMinMax(x, count), ChartError::IndexOutOfRange);
    }
}

TEST(MathHelper, ArrayScansReadTheCountDifferently) {
    const std::vector<double> x{4.0, 8.0, 2.0, 9.0};
    const struct {
        std::int32_t count, countAfter;
        double result;
    } maxCases[] = {{2, 2, 8.0}, {3, 3, 8.0}, {-1, 4, 9.0}, {5, 4, 9.0}, {kMax32, 4, 9.0}},
      // ArrayMin reads the count as the last index, so 2 takes in the third element.
        minCases[] = {{1, 1, 4.0}, {2, 2, 2.0}, {-1, 3, 2.0}, {4, 3, 2.0}, {kMin32, 3, 2.0}};
    for (const auto& c : maxCases) {
        std::int32_t count = c.count;
        EXPECT_EQ(MathHelper::ArrayMax(x, count), c.result) << c.count;
        EXPECT_EQ(count, c.countAfter) << c.count;
    }
    for (const auto& c : minCases) {
        std::int32_t count = c.count;
        EXPECT_EQ(MathHelper::ArrayMin(x, count), c.result) << c.count;
        EXPECT_EQ(count, c.countAfter) << c.count;
    }

    // Nothing scanned gives the start values, bit for bit.
    std::int32_t count = 0;
    EXPECT_EQ(std::bit_cast<std::uint64_t>(MathHelper::ArrayMax(x, count)), 0xFFEFFFFFFFFFFFE2U);
    count = 3;
    EXPECT_EQ(MathHelper::ArrayMax({}, count), -1.79769313486231E+308);
    EXPECT_EQ(count, 0);
    EXPECT_EQ(std::bit_cast<std::uint64_t>(MathHelper::ArrayMin({}, count)), 0x7FEFFFFFFFFFFFE2U);
    EXPECT_EQ(count, -1);
}

TEST(MathHelper, VariantScansConvertEveryElement) {
    const ScopedLocale german(trv5::test::German());
    const std::vector<QVariant> values{QVariant(3), QVariant(QStringLiteral("2,5")), QVariant(-4.5),
                                       QVariant(10.25f)};
    EXPECT_EQ(MathHelper::VariantArrayMax(values), 10.25);
    EXPECT_EQ(MathHelper::VariantArrayMin(values), -4.5);

    for (const QVariant& bad : {QVariant(QStringLiteral("abc")), QVariant(QDate(2020, 1, 1))}) {
        const std::vector<QVariant> withBad{QVariant(1.0), bad};
        EXPECT_CHART_ERROR(MathHelper::VariantArrayMax(withBad), ChartError::TypeMismatch);
        EXPECT_CHART_ERROR(MathHelper::VariantArrayMin(withBad), ChartError::TypeMismatch);
    }
}

TEST(MathHelper, MeanVarianceAndStandardize) {
    const std::vector<double> x{2.0, 4.0, 9.0};
    EXPECT_DOUBLE_EQ(MathHelper::Mean(x), 5.0);
    EXPECT_DOUBLE_EQ(MathHelper::SampleVariance(x, 0.0), 50.5); // the given mean is used
    EXPECT_DOUBLE_EQ(MathHelper::SampleStdDev(x, 5.0), std::sqrt(13.0));

    double value = 5.0;
    EXPECT_EQ(MathHelper::StandardizeWithValue(std::vector<double>{1.0, 2.0, 3.0}, value),
              (std::vector<double>{-1.0, 0.0, 1.0}));
    EXPECT_EQ(value, 3.0);
    EXPECT_EQ(MathHelper::StandardizeWithValue(std::vector<double>{4.0, 4.0, 4.0}, value),
              (std::vector<double>{4.0, 4.0, 4.0})); // no spread: unchanged, value too
    EXPECT_EQ(value, 3.0);

    // Division errors: 0 / 0 is an overflow, anything else over 0 a division by zero.
    const std::vector<double> single{5.0};
    EXPECT_CHART_ERROR(MathHelper::Mean({}), ChartError::Overflow);
    EXPECT_CHART_ERROR(MathHelper::SampleVariance(single, 5.0), ChartError::Overflow);
    EXPECT_CHART_ERROR(MathHelper::SampleVariance(single, 3.0), ChartError::DivisionByZero);
    EXPECT_CHART_ERROR(MathHelper::Standardize(single), ChartError::Overflow);
}

TEST(MathHelper, RandomBetweenIsReproducibleAfterSeeding) {
    MathHelper::SetRandomSeed(2024);
    std::vector<double> first;
    for (int i = 0; i < 200; ++i) {
        first.push_back(MathHelper::RandomBetween(-3.0, 2.0));
    }
    MathHelper::SetRandomSeed(2024);
    for (const double expected : first) {
        const double value = MathHelper::RandomBetween(-3.0, 2.0);
        EXPECT_EQ(value, expected);
        EXPECT_TRUE(value >= -3.0 && value < 2.0) << value;
    }
    EXPECT_NE(first.front(), first.back());
}

TEST(MathHelper, WholeNumberTestsUseTheUserLocaleText) {
    for (const char* text : {"4", " 12 ", "1e3", "2147483647"}) {
        EXPECT_TRUE(MathHelper::IsWholeNumber(QString::fromLatin1(text))) << text;
    }
    for (const char* text : {"2.5", "-0.5", "abc", "", "3000000000", "NaN"}) {
        EXPECT_FALSE(MathHelper::IsWholeNumber(QString::fromLatin1(text))) << text;
    }

    const struct {
        float value, ceiling, floor;
    } cases[] = {{2.5f, 3.0f, 2.0f},
                 {-2.5f, -2.0f, -3.0f},
                 {7.0f, 7.0f, 7.0f},
                 {2.0000001f, 2.0f, 2.0f}, // prints as "2"
                 {32767.5f, 32768.0f, 32767.0f},
                 {-32768.0f, -32768.0f, -32768.0f}};
    for (const QLocale& locale : {trv5::test::BritishEnglish(), trv5::test::German()}) {
        const ScopedLocale scoped(locale);
        for (const auto& c : cases) {
            EXPECT_EQ(MathHelper::CeilingUnlessWhole(c.value), c.ceiling) << c.value;
            EXPECT_EQ(MathHelper::FloorUnlessWhole(c.value), c.floor) << c.value;
        }
        // Whole values go through a 16-bit conversion; 1234567.9 prints as "1234568".
        for (const float whole : {40000.0f, -32769.0f, 1234567.9f}) {
            EXPECT_CHART_ERROR(MathHelper::CeilingUnlessWhole(whole), ChartError::Overflow);
            EXPECT_CHART_ERROR(MathHelper::FloorUnlessWhole(whole), ChartError::Overflow);
        }
    }
    const ScopedLocale german(trv5::test::German());
    EXPECT_TRUE(MathHelper::IsWholeNumber(u"2,0"));
    EXPECT_FALSE(MathHelper::IsWholeNumber(u"2,5"));
}

TEST(MathHelper, IsAboveOrWithin) {
    EXPECT_TRUE(MathHelper::IsAboveOrWithin(1.0, 1.05, 0.1));
    EXPECT_FALSE(MathHelper::IsAboveOrWithin(1.0, 2.0, 0.1));
    EXPECT_TRUE(MathHelper::IsAboveOrWithin(3.0, 2.0, 0.1));
    EXPECT_FALSE(MathHelper::IsAboveOrWithin(2.0, 2.0, 0.0)); // within is strict
}
