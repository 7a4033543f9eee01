// The curve fitting chart of a classifier scored on the 150 held-out records of a run: its output
// (a probability) against the 0/1 target, the cut-off at 0.5, and the records it gets wrong ringed.
#include "chartimages.h"

#include <trv5charts/capture.h>
#include <trv5charts/curvefitting.h>
#include <trv5charts/hostsettings.h>

#include <cmath>
#include <cstdint>
#include <memory>
#include <numbers>
#include <vector>

namespace {

struct Run {
    std::vector<double> model;
    std::vector<double> target;
    std::vector<std::int32_t> ids;
};

// The host keeps a small margin around the fixed vertical range, so that the 0 and 1 levels of
// the target do not run along the frame of the plot.
class HostSettings final : public trv5::IConfig {
public:
    QVariantMap Settings() const override {
        return {{QStringLiteral("Run.CurveFitting.Margin"), QStringLiteral("0.08")}};
    }
};

// A run over 1000 records whose last 150 (records 851 to 1000) are held out for testing; the
// data file lists the negative records of that partition before its positive ones. The model's
// score separates the classes fairly well, and a logistic link turns it into a probability.
constexpr std::int32_t kFirstTestRecord = 850;
constexpr std::int32_t kRecords = 1000;
constexpr std::int32_t kFirstPositive = 940;

Run Records() {
    trv5::images::FixedRandom scores(59);
    Run run;
    for (std::int32_t i = 0; i < kRecords; ++i) {
        const bool positive = i < kFirstTestRecord ? scores.Uniform() < 0.4 : i >= kFirstPositive;
        const double score = scores.Normal(positive ? 1.5 : -1.5, 1.1);
        run.target.push_back(positive ? 1.0 : 0.0);
        run.model.push_back(1.0 / (1.0 + std::exp(-1.6 * score)));
        run.ids.push_back(i + 1);
    }
    return run;
}

const trv5::images::RegisterImage curveFitting("curvefitting.png", [] {
    const Run run = Records();
    trv5::Globals::StoreConfig(std::make_shared<HostSettings>());
    trv5::CurveFitting chart;
    chart.resize(900, 500);
    chart.Init(QString());
    chart.SetUseBinomialFixedYAxis(true);
    chart.SetSeriesName(1, QStringLiteral("Classifier output"));
    chart.SetData2(kFirstTestRecord, kRecords - 1, run.model, run.target, run.ids);
    chart.SetThreshold(0.5);
    chart.ShowThreshold();
    chart.DrawMisclassifications(trv5::CurveFitting::kMarkModel);
    chart.ShowLegend();
    QImage image = trv5::CaptureControl(&chart);
    trv5::Globals::StoreConfig(nullptr);
    return image;
});

} // namespace
