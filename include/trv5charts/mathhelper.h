#pragma once

#include <QStringView>
#include <QVariant>

#include <cstdint>
#include <span>
#include <vector>

// Numeric procedures over 0-based arrays of doubles used by the charts: extremes, mean, sample
// deviation, z-scores, tolerant ceiling and floor, a tolerance comparison and random values.
// Unless a procedure says otherwise, errors reach the caller as trv5::ChartError.
namespace trv5::MathHelper {

struct MinMaxValues {
    double Minimum;
    double Maximum;
};

// Least-squares line through the first pCount points. Never throws: a count outside the
// arrays, fewer than two points or no spread in x give a slope and intercept of 0.
void ComputeLinearRegression(std::int32_t pCount, std::span<const double> pX,
                             std::span<const double> pY, double& pSlope, double& pIntercept);

// Sample standard deviation of the first pCount values, or -9999 when it cannot be computed.
double ComputeStandardDeviation(std::int32_t pCount, std::span<const double> pX);

// Extremes of the first pCount values (NaN skipped); pCount -1 means the whole array. An empty
// array or a count outside 1..size throws ChartError 9.
MinMaxValues ComputeMinMax(std::span<const double> pX, std::int32_t pCount);

// Largest of the first pCount elements (strictly greater wins). A count below 0 or beyond the
// array is replaced by the array size, and the replacement is written back to pCount. With
// nothing scanned the result is -1.79769313486231E+308.
double ArrayMax(std::span<const double> pX, std::int32_t& pCount);

// Smallest of the elements 0..pCount inclusive: here pCount is the last index, so with the
// same count this examines one element more than ArrayMax. A count below 0 or beyond the last
// index is replaced by the last index (-1 when empty) and written back. With nothing scanned
// the result is 1.79769313486231E+308.
double ArrayMin(std::span<const double> pX, std::int32_t& pCount);

// Extremes of a whole variant array, each element converted as VariantConvert::ToDouble does
// (ChartError 13 for an element that is no number).
double VariantArrayMax(std::span<const QVariant> pValues);
double VariantArrayMin(std::span<const QVariant> pValues);

// Arithmetic mean; an empty array throws ChartError 6.
double Mean(std::span<const double> pX);

// Sum of squared deviations from pMean over n - 1. A single element divides by zero: ChartError
// 6 when the sum is 0 (0 / 0), ChartError 11 otherwise. An empty array gives 0 / -1, a zero.
double SampleVariance(std::span<const double> pX, double pMean);
double SampleStdDev(std::span<const double> pX, double pMean);

// z-scores (x - mean) / sample deviation. When the deviation is 0 the values are returned
// unchanged (and pValue is left alone); otherwise pValue is standardised the same way.
std::vector<double> Standardize(std::span<const double> pX);
std::vector<double> StandardizeWithValue(std::span<const double> pX, double& pValue);

// pLow + (pHigh - pLow) * r with r uniform in [0, 1), drawn from the one library-wide
// generator. It starts from a fixed seed, so every run of a process sees the same sequence
// unless someone reseeds it; SetRandomSeed is for hosts and tests that want their own.
double RandomBetween(double pLow, double pHigh);
void SetRandomSeed(std::uint64_t pSeed);

// True when the user-locale text is a number that rounds (half to even) to a 32-bit integer
// equal to itself; false for anything else, including numbers beyond the 32-bit range.
bool IsWholeNumber(QStringView pText);

// Ceiling and floor that treat a value whose seven-digit text is whole (2.0000001 prints as
// "2") as that whole number, so tiny representation errors do not push an axis limit one step
// further. A whole value outside the 16-bit range throws ChartError 6.
float CeilingUnlessWhole(float pValue);
float FloorUnlessWhole(float pValue);

// True when pA is within pTolerance of pB (strictly) or above it.
bool IsAboveOrWithin(double pA, double pB, double pTolerance);

} // namespace trv5::MathHelper
