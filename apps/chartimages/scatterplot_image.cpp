// Scatter plot picture: model output against target for the 300 validation records of a
// regression run, with the regression line and its equation.
#include "chartimages.h"

#include <trv5charts/hostsettings.h>
#include <trv5charts/scatterplot.h>

#include <QCoreApplication>

#include <algorithm>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

// The host's settings: a 5 % margin around the data.
class ImageSettings final : public trv5::IConfig {
public:
    QVariantMap Settings() const override {
        return {{QStringLiteral("Run.CurveFitting.Margin"), QStringLiteral("0.05")}};
    }
};

// Concrete compressive strength (MPa) of 300 validation mixes and what an evolved model
// predicts for them: close in the middle, a little optimistic for weak mixes and more scattered
// for strong ones, as such models are.
const trv5::images::RegisterImage kScatter("scatterplot.png", [] {
    std::mt19937 random(1988);
    std::gamma_distribution<double> strength(5.5, 6.5);
    std::normal_distribution<double> noise(0.0, 1.0);
    std::vector<double> model;
    std::vector<double> target;
    std::vector<std::int32_t> ids;
    for (int i = 0; i < 300; ++i) {
        const double actual = std::clamp(strength(random) + 2.0, 3.0, 82.0);
        const double predicted = 3.1 + 0.91 * actual + noise(random) * (2.0 + 0.09 * actual);
        model.push_back(std::round(std::max(predicted, 1.0) * 100.0) / 100.0);
        target.push_back(std::round(actual * 100.0) / 100.0);
        ids.push_back(701 + i);
    }

    trv5::Globals::StoreConfig(std::make_shared<ImageSettings>());
    trv5::ScatterPlot chart;
    chart.setObjectName(QStringLiteral("chtScatter"));
    chart.resize(800, 560);
    chart.Init(QString());
    chart.SetShowRecordIds(true);
    chart.SetData(static_cast<std::int32_t>(model.size()), model, target, ids);
    chart.show();
    QCoreApplication::processEvents();
    const QImage image = chart.grab().toImage();
    trv5::Globals::StoreConfig(nullptr);
    return image;
});

} // namespace
