#pragma once

#include "classification.h"
#include "evolutionstrategy.h"
#include "runsettings.h"

#include <QMetaType>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <span>
#include <vector>

namespace trv5::gallery {

class Dataset;

// Everything the charts show after a run, computed from the best model found. Per-record
// arrays are parallel and in data-set order (record identifiers 1..N).
class Results {
public:
    Results() = default;

    // The results of the model that pStrategy found best so far on pData, with the history of
    // the generations run.
    static Results Compute(const Dataset& pData, const RunSettings& pSettings,
                           const EvolutionStrategy& pStrategy,
                           std::vector<GenerationStats> pHistory, bool pStopped);

    const RunSettings& Settings() const { return m_settings; }
    // Generations completed; below Settings().Generations when the run was stopped.
    std::int32_t GenerationsRun() const { return static_cast<std::int32_t>(m_history.size()); }
    bool Stopped() const { return m_stopped; }
    // One entry per completed generation, for filling the progress chart in bulk.
    const std::vector<GenerationStats>& History() const { return m_history; }
    // The best model: bias, then one weight per standardized feature.
    std::span<const double> Weights() const { return m_weights; }
    double BestFitness() const { return m_bestFitness; }

    const QStringList& FeatureNames() const { return m_featureNames; }
    const QString& PositiveClass() const { return m_positiveClass; }
    const QString& NegativeClass() const { return m_negativeClass; }

    std::int32_t RecordCount() const { return static_cast<std::int32_t>(m_outputs.size()); }
    std::span<const std::int32_t> RecordIds() const { return m_recordIds; }
    // The model's probability of the positive class per record.
    std::span<const double> Outputs() const { return m_outputs; }
    // 1 positive, 0 negative.
    std::span<const double> Targets() const { return m_targets; }
    // 1 for validation records, 0 for training records.
    std::span<const std::uint8_t> InValidation() const { return m_inValidation; }

    double Threshold() const { return m_threshold; }
    // Moves the threshold and reclassifies every record. Throws GalleryError for NaN or an
    // infinity.
    void SetThreshold(double pThreshold);
    // OutcomeType code per record at the current threshold.
    std::span<const std::int32_t> OutcomeTypes() const { return m_outcomeTypes; }
    const ConfusionCounts& Confusion() const { return m_confusion; }
    const ConfusionCounts& TrainingConfusion() const { return m_trainingConfusion; }
    const ConfusionCounts& ValidationConfusion() const { return m_validationConfusion; }

    // Over all records; independent of the threshold.
    const RocCurve& Roc() const { return m_roc; }
    double AUC() const { return m_roc.AUC; }

    // Per feature, the share (percent, summing to 100) of the best model's absolute
    // standardized weights: how much the model leans on each variable.
    std::span<const double> VariableUsage() const { return m_variableUsage; }
    // Per feature, how many individuals of the last generation's population lean on it (an
    // absolute weight of at least a tenth of the individual's largest).
    std::span<const std::int32_t> PopulationUsage() const { return m_populationUsage; }

    // Least-squares line of the output on the target (output = slope x target + intercept).
    double RegressionSlope() const { return m_slope; }
    double RegressionIntercept() const { return m_intercept; }

private:
    void Classify();

    RunSettings m_settings;
    std::vector<GenerationStats> m_history;
    bool m_stopped = false;
    std::vector<double> m_weights;
    double m_bestFitness = 0.0;
    QStringList m_featureNames;
    QString m_positiveClass;
    QString m_negativeClass;
    std::vector<std::int32_t> m_recordIds;
    std::vector<double> m_outputs;
    std::vector<double> m_targets;
    std::vector<std::uint8_t> m_inValidation;
    double m_threshold = 0.5;
    std::vector<std::int32_t> m_outcomeTypes;
    ConfusionCounts m_confusion;
    ConfusionCounts m_trainingConfusion;
    ConfusionCounts m_validationConfusion;
    RocCurve m_roc;
    std::vector<double> m_variableUsage;
    std::vector<std::int32_t> m_populationUsage;
    double m_slope = 0.0;
    double m_intercept = 0.0;
};

} // namespace trv5::gallery

Q_DECLARE_METATYPE(trv5::gallery::Results)
