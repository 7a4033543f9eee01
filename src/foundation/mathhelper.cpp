#include <trv5charts/mathhelper.h>

#include <trv5charts/charterror.h>
#include <trv5charts/localizationlib.h>
#include <trv5charts/variantconvert.h>

#include "numeric/numericlib.h"

#include <bit>
#include <cmath>
#include <cstddef>
#include <exception>
#include <limits>
#include <mutex>
#include <random>
#include <utility>

namespace trv5::MathHelper {

namespace {

// The scans start just inside the double range, not at its ends. An empty scan returns its
// start value and callers recognise "nothing scanned" by comparing with it, so these exact bit
// patterns are part of the contract.
constexpr double kMaxScanStart = std::bit_cast<double>(0xFFEFFFFFFFFFFFE2ULL);
constexpr double kMinScanStart = std::bit_cast<double>(0x7FEFFFFFFFFFFFE2ULL);

bool CountFits(std::int32_t pCount, std::span<const double> pX) {
    return pCount >= 0 && static_cast<std::size_t>(pCount) <= pX.size();
}

// A count that has to be written back must itself fit the caller's 32-bit variable.
std::int32_t ToCount(std::size_t pValue) {
    if (pValue > static_cast<std::size_t>(std::numeric_limits<std::int32_t>::max())) {
        throw ChartError(ChartError::Overflow);
    }
    return static_cast<std::int32_t>(pValue);
}

std::vector<double> ToDoubles(std::span<const QVariant> pValues) {
    std::vector<double> values;
    values.reserve(pValues.size());
    for (const QVariant& value : pValues) {
        values.push_back(VariantConvert::ToDouble(value));
    }
    return values;
}

struct Standardized {
    std::vector<double> values;
    double mean;
    double deviation;
};

Standardized StandardizeValues(std::span<const double> pX) {
    Standardized result{std::vector<double>(pX.begin(), pX.end()), Mean(pX), 0.0};
    result.deviation = SampleStdDev(pX, result.mean);
    if (result.deviation != 0.0) {
        for (double& value : result.values) {
            value = (value - result.mean) / result.deviation;
        }
    }
    return result;
}

struct RandomSource {
    std::mutex mutex;
    std::mt19937_64 engine{std::mt19937_64::default_seed};
};

RandomSource& Random() {
    static RandomSource source;
    return source;
}

} // namespace

void ComputeLinearRegression(std::int32_t pCount, std::span<const double> pX,
                             std::span<const double> pY, double& pSlope, double& pIntercept) {
    double slope = 0.0;
    double intercept = 0.0;
    if (CountFits(pCount, pX) && CountFits(pCount, pY)) {
        const auto n = static_cast<std::size_t>(pCount);
        try {
            numeric::LinearRegression(pX.first(n), pY.first(n), slope, intercept);
        } catch (const std::exception&) {
            // A line that cannot be fitted is drawn flat at zero rather than failing the chart.
            slope = 0.0;
            intercept = 0.0;
        }
    }
    pSlope = slope;
    pIntercept = intercept;
}

double ComputeStandardDeviation(std::int32_t pCount, std::span<const double> pX) {
    constexpr double kUnavailable = -9999.0;
    if (!CountFits(pCount, pX)) {
        return kUnavailable;
    }
    try {
        return numeric::StandardDeviation(pX.first(static_cast<std::size_t>(pCount)));
    } catch (const std::exception&) {
        return kUnavailable;
    }
}

MinMaxValues ComputeMinMax(std::span<const double> pX, std::int32_t pCount) {
    if (pX.empty() || (pCount != -1 && (pCount < 1 || !CountFits(pCount, pX)))) {
        throw ChartError(ChartError::IndexOutOfRange);
    }
    const std::size_t n = pCount == -1 ? pX.size() : static_cast<std::size_t>(pCount);
    MinMaxValues result{};
    numeric::CalculateMinMax(pX.first(n), result.Minimum, result.Maximum);
    return result;
}

double ArrayMax(std::span<const double> pX, std::int32_t& pCount) {
    if (!CountFits(pCount, pX)) {
        pCount = ToCount(pX.size());
    }
    double maximum = kMaxScanStart;
    for (const double value : pX.first(static_cast<std::size_t>(pCount))) {
        if (value > maximum) {
            maximum = value;
        }
    }
    return maximum;
}

double ArrayMin(std::span<const double> pX, std::int32_t& pCount) {
    // Here the count is the last index to examine; -1 (an empty array) examines nothing.
    if (pCount < 0 || static_cast<std::size_t>(pCount) >= pX.size()) {
        pCount = pX.empty() ? -1 : ToCount(pX.size() - 1);
    }
    const std::size_t examined = pCount < 0 ? 0 : static_cast<std::size_t>(pCount) + 1;
    double minimum = kMinScanStart;
    for (const double value : pX.first(examined)) {
        if (value < minimum) {
            minimum = value;
        }
    }
    return minimum;
}

double VariantArrayMax(std::span<const QVariant> pValues) {
    const std::vector<double> values = ToDoubles(pValues);
    std::int32_t count = -1;
    return ArrayMax(values, count);
}

double VariantArrayMin(std::span<const QVariant> pValues) {
    const std::vector<double> values = ToDoubles(pValues);
    std::int32_t count = -1;
    return ArrayMin(values, count);
}

double Mean(std::span<const double> pX) {
    if (pX.empty()) {
        throw ChartError(ChartError::Overflow); // 0 / 0
    }
    double sum = 0.0;
    for (const double value : pX) {
        sum += value;
    }
    return sum / static_cast<double>(pX.size());
}

double SampleVariance(std::span<const double> pX, double pMean) {
    double sum = 0.0;
    for (const double value : pX) {
        const double deviation = value - pMean;
        sum += deviation * deviation;
    }
    const double divisor = static_cast<double>(pX.size()) - 1.0;
    if (divisor == 0.0) {
        // 0 / 0 (and NaN / 0) is an invalid operation, anything else over 0 a division by zero.
        throw ChartError(sum == 0.0 || std::isnan(sum) ? ChartError::Overflow
                                                       : ChartError::DivisionByZero);
    }
    return sum / divisor;
}

double SampleStdDev(std::span<const double> pX, double pMean) {
    return std::sqrt(SampleVariance(pX, pMean));
}

std::vector<double> Standardize(std::span<const double> pX) {
    return StandardizeValues(pX).values;
}

std::vector<double> StandardizeWithValue(std::span<const double> pX, double& pValue) {
    Standardized result = StandardizeValues(pX);
    if (result.deviation != 0.0) {
        pValue = (pValue - result.mean) / result.deviation;
    }
    return std::move(result.values);
}

double RandomBetween(double pLow, double pHigh) {
    RandomSource& source = Random();
    std::uint64_t bits = 0;
    {
        const std::lock_guard lock(source.mutex);
        bits = source.engine();
    }
    // The top 53 bits scaled by 2^-53: every double in [0, 1) on that grid, and never 1.
    const double unit = static_cast<double>(bits >> 11) * 0x1.0p-53;
    return (pHigh - pLow) * unit + pLow;
}

void SetRandomSeed(std::uint64_t pSeed) {
    RandomSource& source = Random();
    const std::lock_guard lock(source.mutex);
    source.engine.seed(pSeed);
}

bool IsWholeNumber(QStringView pText) {
    try {
        const double value = LocalizationLib::UserTextToDouble(pText);
        return value - static_cast<double>(LocalizationLib::ToInt32(value)) == 0.0;
    } catch (const std::exception&) {
        return false;
    }
}

// The whole-number test runs on the value's seven-digit text, not on the value itself: that
// is what absorbs float noise such as 2.0000001.
float CeilingUnlessWhole(float pValue) {
    if (IsWholeNumber(LocalizationLib::SingleToUserText(pValue))) {
        return static_cast<float>(LocalizationLib::ToInt16(static_cast<double>(pValue)));
    }
    return -std::floor(-pValue);
}

float FloorUnlessWhole(float pValue) {
    if (IsWholeNumber(LocalizationLib::SingleToUserText(pValue))) {
        return static_cast<float>(LocalizationLib::ToInt16(static_cast<double>(pValue)));
    }
    return std::floor(pValue);
}

bool IsAboveOrWithin(double pA, double pB, double pTolerance) {
    return std::fabs(pA - pB) < pTolerance || pA > pB;
}

} // namespace trv5::MathHelper
