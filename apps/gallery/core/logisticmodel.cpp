#include "logisticmodel.h"

#include "dataset.h"
#include "galleryerror.h"
#include "randomsource.h"

#include <trv5charts/mathhelper.h>

#include <algorithm>
#include <cmath>

namespace trv5::gallery {

std::vector<std::uint8_t> SplitRecords(std::span<const double> pTargets, double pFraction,
                                       RandomSource& pRandom) {
    std::vector<std::uint8_t> inValidation(pTargets.size(), 0);
    for (const bool positive : {false, true}) {
        std::vector<std::size_t> members;
        for (std::size_t i = 0; i < pTargets.size(); ++i) {
            if ((pTargets[i] > 0.5) == positive) {
                members.push_back(i);
            }
        }
        if (members.size() < 2) {
            throw GalleryError(
                QStringLiteral("data set"),
                QStringLiteral("the %1 class has %2 records; a training and a "
                               "validation part need at least two of each class")
                    .arg(positive ? QStringLiteral("positive") : QStringLiteral("negative"))
                    .arg(members.size()));
        }
        pRandom.Shuffle(members);
        const double wanted = std::round(pFraction * static_cast<double>(members.size()));
        const auto held = std::clamp(static_cast<std::size_t>(std::max(wanted, 1.0)),
                                     std::size_t{1}, members.size() - 1);
        for (std::size_t k = 0; k < held; ++k) {
            inValidation[members[k]] = 1;
        }
    }
    return inValidation;
}

StandardizedFeatures::StandardizedFeatures(const Dataset& pData,
                                           std::span<const std::uint8_t> pInValidation)
    : m_records(pData.RecordCount()), m_features(pData.FeatureCount()) {
    const auto records = static_cast<std::size_t>(m_records);
    const auto width = static_cast<std::size_t>(m_features);
    const std::span<const double> raw = pData.AllFeatures();
    m_values.assign(raw.begin(), raw.end());
    m_means.assign(width, 0.0);
    m_deviations.assign(width, 0.0);

    std::vector<double> column;
    column.reserve(records);
    for (std::size_t f = 0; f < width; ++f) {
        column.clear();
        for (std::size_t r = 0; r < records; ++r) {
            if (r >= pInValidation.size() || pInValidation[r] == 0) {
                column.push_back(raw[r * width + f]);
            }
        }
        if (column.size() < 2) {
            continue;
        }
        const double mean = MathHelper::Mean(column);
        const double deviation = MathHelper::SampleStdDev(column, mean);
        m_means[f] = mean;
        m_deviations[f] = deviation;
        for (std::size_t r = 0; r < records; ++r) {
            double& value = m_values[r * width + f];
            value = deviation > 0.0 && std::isfinite(deviation) ? (value - mean) / deviation : 0.0;
        }
    }
}

double LogisticOutput(std::span<const double> pWeights, std::span<const double> pRow) {
    if (pWeights.empty()) {
        return 0.5;
    }
    double logit = pWeights[0];
    const std::size_t count = std::min(pWeights.size() - 1, pRow.size());
    for (std::size_t i = 0; i < count; ++i) {
        logit += pWeights[i + 1] * pRow[i];
    }
    // Written so that exp never overflows for either sign.
    if (logit >= 0.0) {
        return 1.0 / (1.0 + std::exp(-logit));
    }
    const double e = std::exp(logit);
    return e / (1.0 + e);
}

double EvaluateFitness(FitnessMeasure pMeasure, double pThreshold, std::span<const double> pWeights,
                       const StandardizedFeatures& pFeatures, std::span<const double> pTargets,
                       std::span<const std::int32_t> pRecords) {
    if (pRecords.empty()) {
        return 0.0;
    }
    double sum = 0.0;
    for (const std::int32_t record : pRecords) {
        const double output = LogisticOutput(pWeights, pFeatures.Row(record));
        const double target = pTargets[static_cast<std::size_t>(record)];
        if (pMeasure == fmAccuracy) {
            sum += ((output >= pThreshold) == (target > 0.5)) ? 1.0 : 0.0;
        } else {
            const double error = output - target;
            sum += error * error;
        }
    }
    const double mean = sum / static_cast<double>(pRecords.size());
    return pMeasure == fmAccuracy ? mean : 1.0 - mean;
}

} // namespace trv5::gallery
