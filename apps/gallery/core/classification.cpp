#include "classification.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace trv5::gallery {

namespace {

bool IsPositive(double pTarget) {
    return pTarget > 0.5;
}

// NaN sorts (and ties) with minus infinity, which keeps the ordering a strict weak order.
double RankKey(double pOutput) {
    return std::isnan(pOutput) ? -std::numeric_limits<double>::infinity() : pOutput;
}

void Count(ConfusionCounts& pCounts, std::int32_t pType) {
    switch (pType) {
    case otTrueNegative:
        ++pCounts.TrueNegatives;
        break;
    case otFalseNegative:
        ++pCounts.FalseNegatives;
        break;
    case otTruePositive:
        ++pCounts.TruePositives;
        break;
    case otFalsePositive:
        ++pCounts.FalsePositives;
        break;
    default:
        break;
    }
}

} // namespace

double ConfusionCounts::Accuracy() const {
    const std::int32_t total = Total();
    return total == 0
               ? 0.0
               : static_cast<double>(TrueNegatives + TruePositives) / static_cast<double>(total);
}

std::vector<std::int32_t> ClassifyOutcomes(std::span<const double> pOutputs,
                                           std::span<const double> pTargets, double pThreshold) {
    const std::size_t count = std::min(pOutputs.size(), pTargets.size());
    std::vector<std::int32_t> types(count);
    for (std::size_t i = 0; i < count; ++i) {
        const bool predicted = pOutputs[i] >= pThreshold;
        if (IsPositive(pTargets[i])) {
            types[i] = predicted ? otTruePositive : otFalseNegative;
        } else {
            types[i] = predicted ? otFalsePositive : otTrueNegative;
        }
    }
    return types;
}

ConfusionCounts CountOutcomes(std::span<const std::int32_t> pTypes) {
    ConfusionCounts counts;
    for (const std::int32_t type : pTypes) {
        Count(counts, type);
    }
    return counts;
}

ConfusionCounts CountOutcomes(std::span<const std::int32_t> pTypes,
                              std::span<const std::uint8_t> pMask, std::uint8_t pSelect) {
    ConfusionCounts counts;
    const std::size_t count = std::min(pTypes.size(), pMask.size());
    for (std::size_t i = 0; i < count; ++i) {
        if (pMask[i] == pSelect) {
            Count(counts, pTypes[i]);
        }
    }
    return counts;
}

RocCurve ComputeRoc(std::span<const double> pOutputs, std::span<const double> pTargets) {
    const std::size_t count = std::min(pOutputs.size(), pTargets.size());
    std::size_t positives = 0;
    for (std::size_t i = 0; i < count; ++i) {
        positives += IsPositive(pTargets[i]) ? 1 : 0;
    }
    const std::size_t negatives = count - positives;

    RocCurve curve;
    if (positives == 0 || negatives == 0) {
        curve.FPRates = {0.0, 1.0};
        curve.TPRates = {0.0, 1.0};
        curve.AUC = -1.0;
        return curve;
    }

    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::sort(order.begin(), order.end(), [&](std::size_t pA, std::size_t pB) {
        return RankKey(pOutputs[pA]) > RankKey(pOutputs[pB]);
    });

    const auto totalPositives = static_cast<double>(positives);
    const auto totalNegatives = static_cast<double>(negatives);
    curve.FPRates.push_back(0.0);
    curve.TPRates.push_back(0.0);
    // The area is summed in counts (exact in doubles up to 2^53) and scaled once at the end.
    double area = 0.0;
    std::size_t truePositives = 0;
    std::size_t falsePositives = 0;
    for (std::size_t i = 0; i < count;) {
        const double key = RankKey(pOutputs[order[i]]);
        const std::size_t tpBefore = truePositives;
        const std::size_t fpBefore = falsePositives;
        for (; i < count && RankKey(pOutputs[order[i]]) == key; ++i) {
            if (IsPositive(pTargets[order[i]])) {
                ++truePositives;
            } else {
                ++falsePositives;
            }
        }
        area += static_cast<double>(falsePositives - fpBefore) *
                static_cast<double>(truePositives + tpBefore) / 2.0;
        curve.FPRates.push_back(static_cast<double>(falsePositives) / totalNegatives);
        curve.TPRates.push_back(static_cast<double>(truePositives) / totalPositives);
    }
    curve.AUC = area / (totalNegatives * totalPositives);
    return curve;
}

} // namespace trv5::gallery
