#pragma once

#include <span>

// Regression, deviation and extremes over plain arrays of doubles. Deliberately free of Qt so
// that it can be checked on its own against certified reference data. Every function throws
// std::invalid_argument for input it cannot give a meaningful answer for; NaN and infinite
// elements are not errors and simply propagate (except in CalculateMinMax, which skips NaN).
namespace trv5::numeric {

// Least-squares fit y = pSlope * x + pIntercept. Needs at least two points, equally long
// arrays and some spread in x. The outputs are only written on success.
void LinearRegression(std::span<const double> pX, std::span<const double> pY, double& pSlope,
                      double& pIntercept);

// Sample standard deviation (divisor n - 1); needs at least two values.
double StandardDeviation(std::span<const double> pX);

// Smallest and largest element, skipping NaN; both are NaN when every element is NaN.
// Throws for an empty array. The outputs are only written on success.
void CalculateMinMax(std::span<const double> pX, double& pMinimum, double& pMaximum);

} // namespace trv5::numeric
