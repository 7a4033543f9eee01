#pragma once

#include "runsettings.h"

#include <cstdint>
#include <span>
#include <vector>

namespace trv5::gallery {

class Dataset;
class RandomSource;

// Marks records for validation (1) or training (0), class by class: of each class a shuffled
// share of pFraction goes to validation, at least one record and never all of them, so both
// parts hold both classes. Throws GalleryError when a class has fewer than two records.
std::vector<std::uint8_t> SplitRecords(std::span<const double> pTargets, double pFraction,
                                       RandomSource& pRandom);

// The features of a data set as z-scores computed with the means and sample deviations of the
// training records only, so that the validation records stay unseen. A feature without spread
// in the training records becomes 0 everywhere.
class StandardizedFeatures {
public:
    StandardizedFeatures() = default;
    StandardizedFeatures(const Dataset& pData, std::span<const std::uint8_t> pInValidation);

    std::int32_t RecordCount() const { return m_records; }
    std::int32_t FeatureCount() const { return m_features; }
    std::span<const double> Row(std::int32_t pRecord) const {
        const auto width = static_cast<std::size_t>(m_features);
        return std::span<const double>(m_values).subspan(static_cast<std::size_t>(pRecord) * width,
                                                         width);
    }
    std::span<const double> Means() const { return m_means; }
    std::span<const double> Deviations() const { return m_deviations; }

private:
    std::int32_t m_records = 0;
    std::int32_t m_features = 0;
    std::vector<double> m_values;
    std::vector<double> m_means;
    std::vector<double> m_deviations;
};

// The logistic model's probability of the positive class for one standardized row:
// 1 / (1 + exp(-(w0 + w1 z1 + ... + wn zn))). pWeights holds the bias first, then one weight
// per feature.
double LogisticOutput(std::span<const double> pWeights, std::span<const double> pRow);

// The fitness of a weight vector over the given records (indexes into pFeatures and pTargets).
// 0 for no records.
double EvaluateFitness(FitnessMeasure pMeasure, double pThreshold, std::span<const double> pWeights,
                       const StandardizedFeatures& pFeatures, std::span<const double> pTargets,
                       std::span<const std::int32_t> pRecords);

} // namespace trv5::gallery
