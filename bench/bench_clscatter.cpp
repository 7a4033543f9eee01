// The classification scatter plot on the chart engine with 100,000 records: SetData (four type
// series with their tooltips, the cut-off line, the ranges) followed by a render at 1000 x 700,
// beside the same points drawn with plain QCustomPlot (four graphs without lines and with disc
// scatter styles, replotted into a pixmap of the same size) in the same run. Then the text export
// of both layouts and the stacked distribution chart with the same records.

#include <trv5charts/clscatterplot.h>
#include <trv5charts/stackeddistributionchart.h>

#include "hostedbench.h"
#include "platform/chartengine.h"

#include <benchmark/benchmark.h>
#include <qcustomplot.h>

#include <algorithm>
#include <array>
#include <random>
#include <vector>

namespace {

constexpr int kRecords = 100'000;
using trv5::bench::PrepareChart;
constexpr QSize kSize = trv5::bench::kEngineSize;
constexpr double kThreshold = 0.5;

// A classifier's outputs: positives (40 %) mostly above the cut-off, negatives mostly below it,
// with the overlap that makes the false positives and negatives.
struct Run {
    std::vector<std::int32_t> types;
    std::vector<double> model;
    std::vector<double> target;
    std::vector<std::int32_t> ids;
};

const Run& Records() {
    static const Run run = [] {
        Run made;
        std::mt19937_64 random(2024);
        std::bernoulli_distribution positive(0.4);
        std::gamma_distribution<double> high(6.0, 1.0);
        std::gamma_distribution<double> low(2.5, 1.0);
        for (int i = 0; i < kRecords; ++i) {
            const bool isPositive = positive(random);
            // A beta-like score from two gamma draws: positives lean to 1, negatives to 0.
            const double a = (isPositive ? high : low)(random);
            const double b = (isPositive ? low : high)(random);
            const double score = a / (a + b);
            const bool predicted = score >= kThreshold;
            made.types.push_back(isPositive ? (predicted ? 2 : 1) : (predicted ? 3 : 0));
            made.model.push_back(score);
            made.target.push_back(isPositive ? 1.0 : 0.0);
            made.ids.push_back(i + 1);
        }
        return made;
    }();
    return run;
}

void BM_CLScatterSetDataAndRender(benchmark::State& pState) {
    const Run& run = Records();
    trv5::CLScatterPlot chart;
    PrepareChart(chart);
    for (auto _ : pState) {
        chart.SetRoundingThreshold(kThreshold);
        chart.SetData(kRecords, run.types, run.model, run.ids);
        const QImage image = chart.Engine().Render(kSize);
        benchmark::DoNotOptimize(image.constBits());
    }
    pState.SetItemsProcessed(pState.iterations() * kRecords);
}
BENCHMARK(BM_CLScatterSetDataAndRender)->Unit(benchmark::kMillisecond);

void BM_QCustomPlotCLScatterSetDataAndRender(benchmark::State& pState) {
    const Run& run = Records();
    // The same dummy variable as the chart draws.
    trv5::CLScatterPlot chart;
    chart.Init(QString());
    chart.CreateRandomValues(kRecords);
    const std::vector<double> jitter = chart.RandomValues();

    QCustomPlot plot;
    plot.resize(kSize);
    const std::array<QColor, 4> colours{QColor(0x00, 0x9E, 0x73), QColor(0xE6, 0x9F, 0x00),
                                        QColor(0x1F, 0x5F, 0xA8), QColor(0xD5, 0x5E, 0x00)};
    std::array<QCPGraph*, 4> graphs{};
    for (std::size_t type = 0; type < 4; ++type) {
        graphs[type] = plot.addGraph();
        graphs[type]->setLineStyle(QCPGraph::lsNone);
        graphs[type]->setScatterStyle(
            QCPScatterStyle(QCPScatterStyle::ssDisc, colours[type], colours[type], 5));
    }
    const auto [xMin, xMax] = std::minmax_element(run.model.begin(), run.model.end());
    for (auto _ : pState) {
        std::array<QVector<double>, 4> keys;
        std::array<QVector<double>, 4> values;
        for (std::size_t i = 0; i < run.types.size(); ++i) {
            const auto type = static_cast<std::size_t>(run.types[i]);
            keys[type].push_back(run.model[i]);
            values[type].push_back(jitter[i]);
        }
        for (std::size_t type = 0; type < 4; ++type) {
            graphs[type]->setData(keys[type], values[type]);
        }
        plot.xAxis->setRange(*xMin, *xMax);
        plot.yAxis->setRange(0.0, 1.1);
        const QPixmap pixmap = plot.toPixmap(kSize.width(), kSize.height());
        benchmark::DoNotOptimize(pixmap.cacheKey());
    }
    pState.SetItemsProcessed(pState.iterations() * kRecords);
}
BENCHMARK(BM_QCustomPlotCLScatterSetDataAndRender)->Unit(benchmark::kMillisecond);

// The two halves of the first figure on their own.
void BM_CLScatterSetData(benchmark::State& pState) {
    const Run& run = Records();
    trv5::CLScatterPlot chart;
    PrepareChart(chart);
    for (auto _ : pState) {
        chart.SetRoundingThreshold(kThreshold);
        chart.SetData(kRecords, run.types, run.model, run.ids);
    }
    pState.SetItemsProcessed(pState.iterations() * kRecords);
}
BENCHMARK(BM_CLScatterSetData)->Unit(benchmark::kMillisecond);

void BM_CLScatterRender(benchmark::State& pState) {
    const Run& run = Records();
    trv5::CLScatterPlot chart;
    PrepareChart(chart);
    chart.SetUseStarsCircles(pState.range(0) != 0);
    chart.SetData(kRecords, run.types, run.model, run.ids);
    for (auto _ : pState) {
        const QImage image = chart.Engine().Render(kSize);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_CLScatterRender)
    ->ArgName("starsCircles")
    ->Arg(0)
    ->Arg(1)
    ->Unit(benchmark::kMillisecond);

void BM_CLScatterDataAsString(benchmark::State& pState) {
    const Run& run = Records();
    trv5::CLScatterPlot chart;
    PrepareChart(chart);
    chart.SetData(kRecords, run.types, run.model, run.ids);
    std::size_t chars = 0;
    for (auto _ : pState) {
        const QString text = chart.GetChartDataAsStringLS();
        chars = static_cast<std::size_t>(text.size());
        benchmark::DoNotOptimize(text.constData());
    }
    pState.SetBytesProcessed(static_cast<std::int64_t>(pState.iterations() * chars));
}
BENCHMARK(BM_CLScatterDataAsString)->Unit(benchmark::kMillisecond);

void BM_StackedSetDataAndRender(benchmark::State& pState) {
    const Run& run = Records();
    trv5::StackedDistributionChart chart;
    PrepareChart(chart);
    chart.CreateRandomValues(kRecords);
    for (auto _ : pState) {
        chart.SetData(kRecords, run.model, run.target, run.ids);
        const QImage image = chart.Engine().Render(kSize);
        benchmark::DoNotOptimize(image.constBits());
    }
    pState.SetItemsProcessed(pState.iterations() * kRecords);
}
BENCHMARK(BM_StackedSetDataAndRender)->Unit(benchmark::kMillisecond);

void BM_StackedDataAsString(benchmark::State& pState) {
    const Run& run = Records();
    trv5::StackedDistributionChart chart;
    PrepareChart(chart);
    chart.CreateRandomValues(kRecords);
    chart.SetData(kRecords, run.model, run.target, run.ids);
    std::size_t chars = 0;
    for (auto _ : pState) {
        const QString text = chart.GetChartDataAsString();
        chars = static_cast<std::size_t>(text.size());
        benchmark::DoNotOptimize(text.constData());
    }
    pState.SetBytesProcessed(static_cast<std::int64_t>(pState.iterations() * chars));
}
BENCHMARK(BM_StackedDataAsString)->Unit(benchmark::kMillisecond);

} // namespace
