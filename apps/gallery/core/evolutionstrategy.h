#pragma once

#include "logisticmodel.h"
#include "randomsource.h"
#include "runsettings.h"

#include <cstdint>
#include <span>
#include <vector>

namespace trv5::gallery {

class Dataset;

// The figures of one generation, as the run progress chart shows them.
struct GenerationStats {
    // 1-based.
    std::int32_t Generation = 0;
    // Training fitness of the best individual so far (never falls: the best is kept).
    double Best = 0.0;
    // Mean training fitness of the generation's offspring.
    double Average = 0.0;
    // Fitness of the best individual on the validation records.
    double Validation = 0.0;
};

// A (mu, lambda) evolution strategy with one kept elite over the weights of a logistic
// regression (bias and one weight per standardized feature).
//
// Each offspring takes the mean of two random parents' weights and the geometric mean of their
// step sizes, mutates its step size log-normally (learning rate 1 / sqrt(weights)) and then
// every weight by a normal draw of that size. The best lambda offspring become the parents; if
// the best individual found so far is better than all of them it replaces the worst parent.
// Construction splits the records, standardizes the features and draws the first parents, so
// everything depends on the settings' seed alone.
class EvolutionStrategy {
public:
    // Throws GalleryError for settings out of range, a data set without two records of each
    // class, or a population too large for the data set's width.
    EvolutionStrategy(const Dataset& pData, const RunSettings& pSettings);

    // Runs one generation.
    GenerationStats Step();

    std::int32_t Generation() const { return m_generation; }
    std::span<const double> BestWeights() const { return m_best.Weights; }
    double BestFitness() const { return m_best.Fitness; }
    const StandardizedFeatures& Features() const { return m_features; }
    // 1 for validation records, 0 for training records.
    std::span<const std::uint8_t> InValidation() const { return m_inValidation; }
    // Per feature, how many individuals of the last generation's population (its offspring, or
    // the first parents before any generation) lean on it: its absolute weight is at least
    // pShareOfLargest of that individual's largest absolute feature weight.
    std::vector<std::int32_t> PopulationUsage(double pShareOfLargest) const;

private:
    struct Individual {
        std::vector<double> Weights;
        double StepSize = 0.0;
        double Fitness = 0.0;
    };

    double TrainingFitness(std::span<const double> pWeights) const;

    RunSettings m_settings;
    RandomSource m_random;
    std::vector<double> m_targets;
    std::vector<std::uint8_t> m_inValidation;
    std::vector<std::int32_t> m_trainingRecords;
    std::vector<std::int32_t> m_validationRecords;
    StandardizedFeatures m_features;
    std::vector<Individual> m_parents;
    std::vector<Individual> m_offspring;
    std::vector<std::size_t> m_order;
    Individual m_best;
    std::int32_t m_generation = 0;
};

} // namespace trv5::gallery
