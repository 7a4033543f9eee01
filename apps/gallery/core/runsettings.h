#pragma once

#include <QString>

#include <cstdint>

namespace trv5::gallery {

// What a run maximizes on the training records.
enum FitnessMeasure : std::int32_t {
    // 1 minus the Brier score: 1 - mean((p - t)^2), from 0 (every record confidently wrong) to 1.
    fmOneMinusBrier = 0,
    // The share of records classified correctly at the run's threshold.
    fmAccuracy = 1,
};

// The settings of one modelling run: an evolution strategy over the weights of a logistic
// regression on standardized features. A run is determined by its settings and its data set.
struct RunSettings {
    // Seeds the split into training and validation records and the evolution.
    std::uint64_t Seed = 1;
    std::int32_t Generations = 250;
    // mu: parents kept from each generation.
    std::int32_t ParentCount = 10;
    // lambda: offspring made in each generation; at least ParentCount.
    std::int32_t OffspringCount = 40;
    // Starting mutation step (standard deviation) on the standardized weights; the first
    // parents are drawn with this spread around the all-zero model.
    double InitialStepSize = 0.02;
    // Share of each class held out for validation, 0.05 to 0.9.
    double ValidationFraction = 0.3;
    // Outputs at or above the threshold are classified positive; 0 to 1.
    double Threshold = 0.5;
    FitnessMeasure Fitness = fmOneMinusBrier;
    // Least time each generation takes, so that a run can be watched on the progress chart;
    // 0 runs as fast as the machine allows. 0 to 1000.
    std::int32_t PaceMilliseconds = 12;

    // Throws GalleryError (source "run settings") naming the first value out of range.
    void Validate() const;

    bool operator==(const RunSettings&) const = default;
};

// "one-minus-brier", "accuracy"; the names used in project files.
QString FitnessMeasureName(FitnessMeasure pMeasure);
// False for an unknown name.
bool FitnessMeasureFromName(const QString& pName, FitnessMeasure& pMeasure);

} // namespace trv5::gallery
