// The run progress chart during an evolutionary search: best and average fitness per generation
// on the main axis, the population's diversity on the secondary axis, and the target fitness as
// the reference line.
#include "chartimages.h"

#include <trv5charts/colorconverter.h>
#include <trv5charts/rtchart.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>

namespace {

using trv5::ColorConverter;

constexpr int kGenerations = 200;

QImage RenderRunProgress() {
    trv5::RTChart chart;
    chart.resize(800, 450);
    chart.SetShowXAxis(true);

    auto fitness = std::make_shared<trv5::Axis>();
    fitness->Init(0.4, 1.0, false);
    fitness->SetName(QStringLiteral("Fitness"));
    auto diversity = std::make_shared<trv5::Axis>();
    diversity->Init(0.0, 50.0, true);
    diversity->SetName(QStringLiteral("Diversity"));
    chart.SetMainYAxis(fitness);
    chart.SetSecondaryYAxis(diversity);

    const struct {
        const char* name;
        std::int32_t colour;
        bool secondary;
    } lines[] = {
        {"Best fitness", ColorConverter::RGBToLong(31, 119, 180), false},
        {"Average fitness", ColorConverter::RGBToLong(255, 127, 14), false},
        {"Diversity", ColorConverter::RGBToLong(44, 160, 44), true},
    };
    for (const auto& line : lines) {
        const auto index = chart.AddSeries(nullptr, line.secondary, QString::fromLatin1(line.name));
        const auto series = chart.GetSeries(index);
        series->Init(kGenerations, 0, 1, trv5::DripFeed, line.secondary);
        series->SetColour(line.colour);
    }
    chart.AddHorizontalLine(0.92, QStringLiteral("Target fitness 0.92"),
                            QStringLiteral("Show &Target"));

    // A search whose best fitness climbs in steps with diminishing returns, whose average
    // trails it with noise, and whose diversity decays as the population converges.
    std::mt19937 random(20240611);
    std::normal_distribution<double> noise(0.0, 1.0);
    double best = 0.5;
    for (int g = 1; g <= kGenerations; ++g) {
        const double progress = 1.0 - std::exp(-g / 55.0);
        const double candidate = 0.52 + 0.43 * progress + 0.012 * noise(random);
        best = std::max(best, candidate);
        const double average = best - 0.07 - 0.06 * std::exp(-g / 70.0) + 0.012 * noise(random);
        const double spread = std::max(1.0, 42.0 * std::exp(-g / 80.0) + 1.8 * noise(random));
        chart.AddPoint(0, best);
        chart.AddPoint(1, average);
        chart.AddPoint(2, spread);
    }
    chart.SetLastGenerationForCopy(kGenerations);
    chart.Refresh();
    return chart.grab().toImage();
}

const trv5::images::RegisterImage registration(QStringLiteral("rtchart.png"), RenderRunProgress);

} // namespace
