// Stacked distribution picture: the targets of 300 held-out records of a regression run (house
// prices in thousands) in the lower band and the model's predictions for them in the upper band,
// so that the model's narrower, slightly shifted distribution shows against the real one.
#include "chartimages.h"

#include <trv5charts/stackeddistributionchart.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace {

const trv5::images::RegisterImage kStacked("stackeddistribution.png", [] {
    std::mt19937 random(1978);
    std::lognormal_distribution<double> price(5.35, 0.38);
    std::normal_distribution<double> noise(0.0, 1.0);
    std::vector<double> model;
    std::vector<double> target;
    std::vector<std::int32_t> ids;
    for (int i = 0; i < 300; ++i) {
        const double actual = std::clamp(price(random), 60.0, 650.0);
        // Regression towards the mean: cheap houses overestimated, dear ones underestimated.
        const double predicted = 0.78 * actual + 48.0 + noise(random) * (12.0 + 0.06 * actual);
        target.push_back(std::round(actual * 10.0) / 10.0);
        model.push_back(std::round(std::max(predicted, 40.0) * 10.0) / 10.0);
        ids.push_back(1201 + i);
    }

    trv5::StackedDistributionChart chart;
    chart.setObjectName(QStringLiteral("chtStacked"));
    chart.resize(900, 500);
    chart.Init(QString());
    chart.SetFixedRandomSeed(3);
    chart.CreateRandomValues(static_cast<std::int32_t>(target.size()));
    chart.SetData(static_cast<std::int32_t>(target.size()), model, target, ids);
    chart.show();
    QCoreApplication::processEvents();
    return chart.grab().toImage();
});

} // namespace
