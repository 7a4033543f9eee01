#include "hosted/misclassification.h"

#include <algorithm>
#include <cmath>

namespace trv5::misclassification {

bool IsClassOne(double pValue, double pThreshold) {
    if (std::abs(pValue - pThreshold) < kThresholdTolerance) {
        return true;
    }
    return pValue > pThreshold;
}

std::vector<std::int32_t> Misclassified(std::span<const double> pModel,
                                        std::span<const double> pTarget, double pThreshold,
                                        double pClassOne, double pClassZero) {
    const std::size_t count = std::min(pModel.size(), pTarget.size());
    std::vector<std::int32_t> indexes;
    for (std::size_t i = 0; i < count; ++i) {
        const double model = pModel[i];
        const double target = pTarget[i];
        if (!std::isfinite(model) || !std::isfinite(target)) {
            continue;
        }
        const double predicted = IsClassOne(model, pThreshold) ? pClassOne : pClassZero;
        if (target != predicted) {
            indexes.push_back(static_cast<std::int32_t>(i));
        }
    }
    return indexes;
}

} // namespace trv5::misclassification
