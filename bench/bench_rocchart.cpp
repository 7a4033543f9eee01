// The ROC chart with a curve of 1,000,000 points (a scored data set of a million records): the
// redraw of the plot, the hand-over of the rates, and the text of Copy Chart Data.

#include <trv5charts/rocchart.h>

#include "platform/drawingsurface.h"
#include "roc/rocdatatext.h"

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

constexpr std::size_t kPoints = 1'000'000;

struct Rates {
    std::vector<double> fp;
    std::vector<double> tp;
};

// The curve of a classifier over a million records, one point per record: every record steps
// the curve up (a positive) or right (a negative), positives more often near the start.
Rates MillionPointCurve() {
    std::mt19937_64 random(42);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<bool> positive(kPoints);
    double positives = 0.0;
    for (std::size_t i = 0; i < kPoints; ++i) {
        const double share = 0.85 - 0.7 * static_cast<double>(i) / kPoints;
        positive[i] = unit(random) < share;
        positives += positive[i] ? 1.0 : 0.0;
    }
    const double negatives = static_cast<double>(kPoints) - positives;
    Rates rates;
    rates.fp.reserve(kPoints);
    rates.tp.reserve(kPoints);
    double tp = 0.0;
    double fp = 0.0;
    for (std::size_t i = 0; i < kPoints; ++i) {
        (positive[i] ? tp : fp) += 1.0;
        rates.fp.push_back(fp / negatives);
        rates.tp.push_back(tp / positives);
    }
    return rates;
}

const Rates& Curve() {
    static const Rates rates = MillionPointCurve();
    return rates;
}

void BM_ROCChartRefresh(benchmark::State& pState) {
    trv5::ROCChart chart;
    chart.resize(800, 600);
    const auto& pic = *chart.findChild<trv5::platform::DrawingSurface*>(QStringLiteral("pic"));
    for (auto _ : pState) {
        chart.SetDataSource(Curve().fp, Curve().tp);
        chart.Refresh();
        benchmark::DoNotOptimize(pic.Raster().constBits());
    }
    pState.SetItemsProcessed(pState.iterations() * static_cast<std::int64_t>(kPoints));
}
BENCHMARK(BM_ROCChartRefresh)->Unit(benchmark::kMillisecond);

void BM_ROCChartSetDataSource(benchmark::State& pState) {
    trv5::ROCChart chart;
    for (auto _ : pState) {
        chart.SetDataSource(Curve().fp, Curve().tp);
    }
    pState.SetBytesProcessed(pState.iterations() *
                             static_cast<std::int64_t>(2 * kPoints * sizeof(double)));
}
BENCHMARK(BM_ROCChartSetDataSource)->Unit(benchmark::kMillisecond);

void BM_ROCChartDataText(benchmark::State& pState) {
    std::int64_t bytes = 0;
    for (auto _ : pState) {
        const QString text = trv5::roc::ChartDataText(Curve().fp, Curve().tp);
        bytes += text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    pState.SetBytesProcessed(bytes);
}
BENCHMARK(BM_ROCChartDataText)->Unit(benchmark::kMillisecond);

} // namespace
