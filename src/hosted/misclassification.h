#pragma once

#include <cstdint>
#include <span>
#include <vector>

// Which records a cut-off misclassifies: a model value at or above the threshold predicts class
// 1, anything below it class 0, and a record is misclassified when its target is not the level
// of the predicted class.
namespace trv5::misclassification {

// Differences this small are rounding noise of the model's arithmetic, not a side of the
// threshold: such a value counts as lying on it, and so as class 1.
inline constexpr double kThresholdTolerance = 1e-14;

bool IsClassOne(double pValue, double pThreshold);

// The indexes (ascending) of the records among the first min(sizes) whose target differs from
// pClassOne or pClassZero as their model value predicts. Records with a model or target value
// that is not finite have no prediction to compare and are never listed.
std::vector<std::int32_t> Misclassified(std::span<const double> pModel,
                                        std::span<const double> pTarget, double pThreshold,
                                        double pClassOne, double pClassZero);

} // namespace trv5::misclassification
