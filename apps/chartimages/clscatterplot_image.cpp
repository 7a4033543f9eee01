// Classification scatter plot picture: a logistic-regression classifier's outputs for the 300
// held-out records of a diagnostic data set (about 37 % positive), cut off at 0.5, with the
// misclassified records drawn as stars.
#include "chartimages.h"

#include <trv5charts/clscatterplot.h>
#include <trv5charts/hostsettings.h>

#include <QCoreApplication>

#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

class ImageSettings final : public trv5::IConfig {
public:
    QVariantMap Settings() const override {
        return {{QStringLiteral("Run.CurveFitting.Margin"), QStringLiteral("0.03")}};
    }
};

const trv5::images::RegisterImage kCLScatter("clscatterplot.png", [] {
    // The classifier's linear score is normal within each class; the output is its logistic.
    std::mt19937 random(569);
    std::bernoulli_distribution positive(0.37);
    std::normal_distribution<double> positiveScore(2.4, 1.6);
    std::normal_distribution<double> negativeScore(-2.9, 1.5);
    constexpr double kThreshold = 0.5;
    std::vector<std::int32_t> types;
    std::vector<double> outputs;
    std::vector<std::int32_t> ids;
    for (int i = 0; i < 300; ++i) {
        const bool isPositive = positive(random);
        const double score = isPositive ? positiveScore(random) : negativeScore(random);
        const double output = std::round(1.0 / (1.0 + std::exp(-score)) * 10000.0) / 10000.0;
        const bool predicted = output >= kThreshold;
        types.push_back(isPositive ? (predicted ? 2 : 1) : (predicted ? 3 : 0));
        outputs.push_back(output);
        ids.push_back(270 + i);
    }

    trv5::Globals::StoreConfig(std::make_shared<ImageSettings>());
    trv5::CLScatterPlot chart;
    chart.setObjectName(QStringLiteral("chtCLScatter"));
    chart.resize(900, 500);
    chart.Init(QString());
    chart.SetFixedRandomSeed(20);
    chart.SetUseStarsCircles(true);
    chart.SetShowRecordIds(true);
    chart.SetRoundingThreshold(kThreshold);
    chart.UseManualMaxMin(0.0, 1.0);
    chart.SetData(static_cast<std::int32_t>(types.size()), types, outputs, ids);
    chart.show();
    QCoreApplication::processEvents();
    const QImage image = chart.grab().toImage();
    trv5::Globals::StoreConfig(nullptr);
    return image;
});

} // namespace
