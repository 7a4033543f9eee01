#include "results.h"

#include "dataset.h"
#include "galleryerror.h"

#include <trv5charts/mathhelper.h>

#include <cmath>

namespace trv5::gallery {

Results Results::Compute(const Dataset& pData, const RunSettings& pSettings,
                         const EvolutionStrategy& pStrategy, std::vector<GenerationStats> pHistory,
                         bool pStopped) {
    Results results;
    results.m_settings = pSettings;
    results.m_history = std::move(pHistory);
    results.m_stopped = pStopped;
    const std::span<const double> weights = pStrategy.BestWeights();
    results.m_weights.assign(weights.begin(), weights.end());
    results.m_bestFitness = pStrategy.BestFitness();
    results.m_featureNames = pData.FeatureNames();
    results.m_positiveClass = pData.PositiveClass();
    results.m_negativeClass = pData.NegativeClass();

    const std::span<const std::int32_t> ids = pData.RecordIds();
    results.m_recordIds.assign(ids.begin(), ids.end());
    const std::span<const double> targets = pData.Targets();
    results.m_targets.assign(targets.begin(), targets.end());
    const std::span<const std::uint8_t> split = pStrategy.InValidation();
    results.m_inValidation.assign(split.begin(), split.end());

    const StandardizedFeatures& features = pStrategy.Features();
    results.m_outputs.reserve(static_cast<std::size_t>(features.RecordCount()));
    for (std::int32_t r = 0; r < features.RecordCount(); ++r) {
        results.m_outputs.push_back(LogisticOutput(results.m_weights, features.Row(r)));
    }

    results.m_threshold = pSettings.Threshold;
    results.Classify();
    results.m_roc = ComputeRoc(results.m_outputs, results.m_targets);

    double total = 0.0;
    for (std::size_t i = 1; i < results.m_weights.size(); ++i) {
        total += std::abs(results.m_weights[i]);
    }
    results.m_variableUsage.reserve(results.m_weights.size());
    for (std::size_t i = 1; i < results.m_weights.size(); ++i) {
        const double share = std::abs(results.m_weights[i]) / total * 100.0;
        results.m_variableUsage.push_back(total > 0.0 && std::isfinite(share) ? share : 0.0);
    }

    constexpr double kLeaningShare = 0.1;
    results.m_populationUsage = pStrategy.PopulationUsage(kLeaningShare);

    MathHelper::ComputeLinearRegression(results.RecordCount(), results.m_targets, results.m_outputs,
                                        results.m_slope, results.m_intercept);
    return results;
}

void Results::SetThreshold(double pThreshold) {
    if (!std::isfinite(pThreshold)) {
        throw GalleryError(QStringLiteral("threshold"), QStringLiteral("must be a finite number"));
    }
    m_threshold = pThreshold;
    Classify();
}

void Results::Classify() {
    m_outcomeTypes = ClassifyOutcomes(m_outputs, m_targets, m_threshold);
    m_confusion = CountOutcomes(m_outcomeTypes);
    m_trainingConfusion = CountOutcomes(m_outcomeTypes, m_inValidation, 0);
    m_validationConfusion = CountOutcomes(m_outcomeTypes, m_inValidation, 1);
}

} // namespace trv5::gallery
