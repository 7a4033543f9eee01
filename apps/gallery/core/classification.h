#pragma once

#include <cstdint>
#include <span>
#include <vector>

// Measures of a two-class model's outputs against the targets. Targets are 1 (positive) and 0
// (negative); any target above 0.5 counts as positive. A NaN output ranks below every number
// and is never classified positive.
namespace trv5::gallery {

// The outcome of one record at a threshold. The values are what the classification charts
// expect as type codes.
enum OutcomeType : std::int32_t {
    otTrueNegative = 0,
    otFalseNegative = 1,
    otTruePositive = 2,
    otFalsePositive = 3,
};

struct ConfusionCounts {
    std::int32_t TrueNegatives = 0;
    std::int32_t FalseNegatives = 0;
    std::int32_t TruePositives = 0;
    std::int32_t FalsePositives = 0;

    std::int32_t Total() const {
        return TrueNegatives + FalseNegatives + TruePositives + FalsePositives;
    }
    // Share classified correctly; 0 when there is nothing to count.
    double Accuracy() const;
    bool operator==(const ConfusionCounts&) const = default;
};

// A receiver operating characteristic curve: parallel arrays of false- and true-positive rates
// from (0, 0) to (1, 1), one point per distinct output value (records with equal outputs move
// the curve together, in one diagonal step), and the trapezoidal area under it. Without
// positives or without negatives the rates are undefined: the curve is the diagonal alone and
// AUC is -1.
struct RocCurve {
    std::vector<double> FPRates;
    std::vector<double> TPRates;
    double AUC = -1.0;
};

// Positive when the output is at or above the threshold. Uses the shorter of the two arrays.
std::vector<std::int32_t> ClassifyOutcomes(std::span<const double> pOutputs,
                                           std::span<const double> pTargets, double pThreshold);

// Counts the outcome types; with a mask, only the records whose mask value equals pSelect.
// Codes outside 0..3 are not counted.
ConfusionCounts CountOutcomes(std::span<const std::int32_t> pTypes);
ConfusionCounts CountOutcomes(std::span<const std::int32_t> pTypes,
                              std::span<const std::uint8_t> pMask, std::uint8_t pSelect);

// Uses the shorter of the two arrays.
RocCurve ComputeRoc(std::span<const double> pOutputs, std::span<const double> pTargets);

} // namespace trv5::gallery
