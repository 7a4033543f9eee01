#include "numeric/numericlib.h"

#include <cmath>
#include <cstddef>
#include <limits>
#include <stdexcept>

namespace trv5::numeric {

namespace {

// Mean with one correction pass: the residual sum of the first estimate recovers most of the
// rounding error of a plain sum, which matters when the values share a large offset.
double AccurateMean(std::span<const double> pX) {
    const auto n = static_cast<double>(pX.size());
    double sum = 0.0;
    for (const double value : pX) {
        sum += value;
    }
    const double estimate = sum / n;
    double residual = 0.0;
    for (const double value : pX) {
        residual += value - estimate;
    }
    return estimate + residual / n;
}

} // namespace

void LinearRegression(std::span<const double> pX, std::span<const double> pY, double& pSlope,
                      double& pIntercept) {
    if (pX.size() != pY.size()) {
        throw std::invalid_argument("LinearRegression: x and y differ in length");
    }
    if (pX.size() < 2) {
        throw std::invalid_argument("LinearRegression: at least two points are needed");
    }
    const double meanX = AccurateMean(pX);
    const double meanY = AccurateMean(pY);

    // Centred sums: the products stay of the order of the spread rather than of the values,
    // so data far from the origin keep their precision.
    double sxx = 0.0;
    double sxy = 0.0;
    for (std::size_t i = 0; i < pX.size(); ++i) {
        const double dx = pX[i] - meanX;
        sxx += dx * dx;
        sxy += dx * (pY[i] - meanY);
    }
    if (sxx == 0.0) {
        throw std::invalid_argument("LinearRegression: all x values are equal");
    }
    const double slope = sxy / sxx;
    pSlope = slope;
    pIntercept = meanY - slope * meanX;
}

double StandardDeviation(std::span<const double> pX) {
    if (pX.size() < 2) {
        throw std::invalid_argument("StandardDeviation: at least two values are needed");
    }
    const double mean = AccurateMean(pX);
    double sumSquares = 0.0;
    double sumDeviations = 0.0;
    for (const double value : pX) {
        const double deviation = value - mean;
        sumSquares += deviation * deviation;
        sumDeviations += deviation;
    }
    // The deviations would sum to zero in exact arithmetic; subtracting what is left of them
    // removes the first-order effect of the mean's own rounding error.
    const auto n = static_cast<double>(pX.size());
    const double variance = (sumSquares - sumDeviations * sumDeviations / n) / (n - 1.0);
    return std::sqrt(variance < 0.0 ? 0.0 : variance);
}

void CalculateMinMax(std::span<const double> pX, double& pMinimum, double& pMaximum) {
    if (pX.empty()) {
        throw std::invalid_argument("CalculateMinMax: the array is empty");
    }
    double minimum = std::numeric_limits<double>::quiet_NaN();
    double maximum = minimum;
    for (const double value : pX) {
        if (std::isnan(value)) {
            continue;
        }
        if (std::isnan(minimum) || value < minimum) {
            minimum = value;
        }
        if (std::isnan(maximum) || value > maximum) {
            maximum = value;
        }
    }
    pMinimum = minimum;
    pMaximum = maximum;
}

} // namespace trv5::numeric
