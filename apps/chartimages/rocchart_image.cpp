// The ROC chart of a logistic-regression model scored on a held-out set: 45 positive and 55
// negative records whose scores overlap the way a fair classifier's do.
#include "chartimages.h"

#include <trv5charts/capture.h>
#include <trv5charts/rocchart.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <utility>
#include <vector>

namespace {

struct Curve {
    std::vector<double> fpRates;
    std::vector<double> tpRates;
    double auc = 0.0;
};

// Walks the records from the highest score down; every record moves the curve up (a positive)
// or right (a negative). The area is the sum of the trapezoids.
Curve ComputeCurve() {
    trv5::images::FixedRandom scores(7);
    std::vector<std::pair<double, bool>> records;
    for (int i = 0; i < 45; ++i) {
        records.emplace_back(scores.Normal(1.15, 1.0), true);
    }
    for (int i = 0; i < 55; ++i) {
        records.emplace_back(scores.Normal(0.0, 1.0), false);
    }
    std::sort(records.begin(), records.end(),
              [](const auto& a, const auto& b) { return a.first > b.first; });
    Curve curve;
    curve.fpRates.push_back(0.0);
    curve.tpRates.push_back(0.0);
    double positives = 0.0;
    double negatives = 0.0;
    for (const auto& record : records) {
        (record.second ? positives : negatives) += 1.0;
        const double fp = negatives / 55.0;
        const double tp = positives / 45.0;
        curve.auc += (fp - curve.fpRates.back()) * (tp + curve.tpRates.back()) / 2.0;
        curve.fpRates.push_back(fp);
        curve.tpRates.push_back(tp);
    }
    return curve;
}

const trv5::images::RegisterImage rocChart("rocchart.png", [] {
    const Curve curve = ComputeCurve();
    trv5::ROCChart chart;
    chart.resize(600, 450);
    chart.SetBackColor(0xFFFFFF);
    chart.SetInverted(true);
    chart.SetDataSource(curve.fpRates, curve.tpRates);
    chart.SetAUC(curve.auc);
    chart.Refresh();
    return trv5::CaptureControl(&chart);
});

} // namespace
