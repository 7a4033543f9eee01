#include "evolutionstrategy.h"

#include "dataset.h"
#include "galleryerror.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace trv5::gallery {

namespace {

// Bounds the memory of a population: (parents + offspring + 1) x weights doubles.
constexpr double kMaxPopulationDoubles = 16.0 * 1024 * 1024;
constexpr double kMinStepSize = 1e-8;
constexpr double kMaxStepSize = 10.0;

// NaN fitness ranks last, which keeps the ordering a strict weak order.
double RankKey(double pFitness) {
    return std::isnan(pFitness) ? -std::numeric_limits<double>::infinity() : pFitness;
}

} // namespace

EvolutionStrategy::EvolutionStrategy(const Dataset& pData, const RunSettings& pSettings)
    : m_settings(pSettings), m_random(pSettings.Seed) {
    m_settings.Validate();
    const std::size_t width = static_cast<std::size_t>(pData.FeatureCount()) + 1;
    const double population = static_cast<double>(m_settings.ParentCount) +
                              static_cast<double>(m_settings.OffspringCount) + 1.0;
    if (population * static_cast<double>(width) > kMaxPopulationDoubles) {
        throw GalleryError(QStringLiteral("run settings"),
                           QStringLiteral("a population of %1 parents and %2 offspring is too "
                                          "large for %3 features")
                               .arg(m_settings.ParentCount)
                               .arg(m_settings.OffspringCount)
                               .arg(pData.FeatureCount()));
    }

    const std::span<const double> targets = pData.Targets();
    m_targets.assign(targets.begin(), targets.end());
    m_inValidation = SplitRecords(m_targets, m_settings.ValidationFraction, m_random);
    for (std::size_t i = 0; i < m_inValidation.size(); ++i) {
        (m_inValidation[i] != 0 ? m_validationRecords : m_trainingRecords)
            .push_back(static_cast<std::int32_t>(i));
    }
    m_features = StandardizedFeatures(pData, m_inValidation);

    // The first parents lie close to the empty model (every weight 0, output one half for every
    // record), so the progress chart shows the whole climb from a fitness of about 0.75.
    m_parents.resize(static_cast<std::size_t>(m_settings.ParentCount));
    for (Individual& parent : m_parents) {
        parent.Weights.resize(width);
        for (double& weight : parent.Weights) {
            weight = m_settings.InitialStepSize * m_random.Normal();
        }
        parent.StepSize = m_settings.InitialStepSize;
        parent.Fitness = TrainingFitness(parent.Weights);
    }
    m_best = *std::max_element(m_parents.begin(), m_parents.end(),
                               [](const Individual& pA, const Individual& pB) {
                                   return RankKey(pA.Fitness) < RankKey(pB.Fitness);
                               });
    m_offspring.resize(static_cast<std::size_t>(m_settings.OffspringCount));
    for (Individual& child : m_offspring) {
        child.Weights.resize(width);
    }
    m_order.resize(m_offspring.size());
}

double EvolutionStrategy::TrainingFitness(std::span<const double> pWeights) const {
    return EvaluateFitness(m_settings.Fitness, m_settings.Threshold, pWeights, m_features,
                           m_targets, m_trainingRecords);
}

std::vector<std::int32_t> EvolutionStrategy::PopulationUsage(double pShareOfLargest) const {
    // Weight 0 is the bias, which no variable owns.
    const std::size_t width = m_best.Weights.size();
    std::vector<std::int32_t> usage(width > 0 ? width - 1 : 0, 0);
    // The offspring are the last generation made; before the first generation, the parents drawn.
    const std::vector<Individual>& population = m_generation > 0 ? m_offspring : m_parents;
    for (const Individual& individual : population) {
        double largest = 0.0;
        for (std::size_t i = 1; i < individual.Weights.size(); ++i) {
            largest = std::max(largest, std::abs(individual.Weights[i]));
        }
        if (!(largest > 0.0)) {
            continue;
        }
        for (std::size_t i = 1; i < individual.Weights.size() && i < width; ++i) {
            if (std::abs(individual.Weights[i]) >= pShareOfLargest * largest) {
                ++usage[i - 1];
            }
        }
    }
    return usage;
}

GenerationStats EvolutionStrategy::Step() {
    const std::size_t width = m_best.Weights.size();
    const double learningRate = 1.0 / std::sqrt(static_cast<double>(width));
    double fitnessSum = 0.0;
    for (Individual& child : m_offspring) {
        const Individual& mother = m_parents[m_random.Below(m_parents.size())];
        const Individual& father = m_parents[m_random.Below(m_parents.size())];
        const double step = std::sqrt(mother.StepSize * father.StepSize) *
                            std::exp(learningRate * m_random.Normal());
        child.StepSize = std::clamp(step, kMinStepSize, kMaxStepSize);
        for (std::size_t i = 0; i < width; ++i) {
            child.Weights[i] =
                0.5 * (mother.Weights[i] + father.Weights[i]) + child.StepSize * m_random.Normal();
        }
        child.Fitness = TrainingFitness(child.Weights);
        fitnessSum += child.Fitness;
    }

    std::iota(m_order.begin(), m_order.end(), std::size_t{0});
    std::stable_sort(m_order.begin(), m_order.end(), [this](std::size_t pA, std::size_t pB) {
        return RankKey(m_offspring[pA].Fitness) > RankKey(m_offspring[pB].Fitness);
    });
    for (std::size_t k = 0; k < m_parents.size(); ++k) {
        m_parents[k] = m_offspring[m_order[k]];
    }
    if (RankKey(m_parents.front().Fitness) > RankKey(m_best.Fitness)) {
        m_best = m_parents.front();
    } else {
        m_parents.back() = m_best;
    }

    ++m_generation;
    GenerationStats stats;
    stats.Generation = m_generation;
    stats.Best = m_best.Fitness;
    stats.Average = fitnessSum / static_cast<double>(m_offspring.size());
    stats.Validation = EvaluateFitness(m_settings.Fitness, m_settings.Threshold, m_best.Weights,
                                       m_features, m_targets, m_validationRecords);
    return stats;
}

} // namespace trv5::gallery
