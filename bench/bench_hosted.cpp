// The scatter plot on the chart engine with 100,000 records: SetData followed by a render at
// 1000 x 700, beside the same points drawn with plain QCustomPlot (a graph without line and with
// a disc scatter style, replotted into a pixmap of the same size) in the same run.

#include <trv5charts/scatterplot.h>

#include "hostedbench.h"
#include "platform/chartengine.h"

#include <benchmark/benchmark.h>
#include <qcustomplot.h>

#include <algorithm>
#include <numeric>
#include <random>
#include <vector>

namespace {

constexpr int kRecords = 100'000;
using trv5::bench::PrepareChart;
constexpr QSize kSize = trv5::bench::kEngineSize;

using Run = trv5::bench::RecordArrays;

// A model run: targets spread over a skewed range and model outputs that follow them with noise.
const Run& Records() {
    static const Run run = [] {
        Run made;
        std::mt19937_64 random(2024);
        std::gamma_distribution<double> targets(2.0, 15.0);
        std::normal_distribution<double> noise(0.0, 4.0);
        for (int i = 0; i < kRecords; ++i) {
            const double target = targets(random);
            made.target.push_back(target);
            made.model.push_back(0.92 * target + 2.5 + noise(random));
            made.ids.push_back(i + 1);
        }
        return made;
    }();
    return run;
}

void BM_ScatterPlotSetDataAndRender(benchmark::State& pState) {
    const Run& run = Records();
    trv5::ScatterPlot chart;
    PrepareChart(chart);
    for (auto _ : pState) {
        chart.SetData(kRecords, run.model, run.target, run.ids);
        const QImage image = chart.Engine().Render(kSize);
        benchmark::DoNotOptimize(image.constBits());
    }
    pState.SetItemsProcessed(pState.iterations() * kRecords);
}
BENCHMARK(BM_ScatterPlotSetDataAndRender)->Unit(benchmark::kMillisecond);

void BM_QCustomPlotScatterSetDataAndRender(benchmark::State& pState) {
    const Run& run = Records();
    QCustomPlot plot;
    plot.resize(kSize);
    QCPGraph* graph = plot.addGraph();
    graph->setLineStyle(QCPGraph::lsNone);
    graph->setScatterStyle(QCPScatterStyle(QCPScatterStyle::ssDisc, QColor(0x1F, 0x5F, 0xA8),
                                           QColor(0x1F, 0x5F, 0xA8), 5));
    const auto [xMin, xMax] = std::minmax_element(run.model.begin(), run.model.end());
    const double yMin = std::min(*xMin, *std::min_element(run.target.begin(), run.target.end()));
    const double yMax = std::max(*xMax, *std::max_element(run.target.begin(), run.target.end()));
    for (auto _ : pState) {
        graph->setData(QVector<double>(run.model.begin(), run.model.end()),
                       QVector<double>(run.target.begin(), run.target.end()));
        plot.xAxis->setRange(*xMin, *xMax);
        plot.yAxis->setRange(yMin, yMax);
        const QPixmap pixmap = plot.toPixmap(kSize.width(), kSize.height());
        benchmark::DoNotOptimize(pixmap.cacheKey());
    }
    pState.SetItemsProcessed(pState.iterations() * kRecords);
}
BENCHMARK(BM_QCustomPlotScatterSetDataAndRender)->Unit(benchmark::kMillisecond);

// The two halves of the first figure on their own.
void BM_ScatterPlotSetData(benchmark::State& pState) {
    const Run& run = Records();
    trv5::ScatterPlot chart;
    PrepareChart(chart);
    for (auto _ : pState) {
        chart.SetData(kRecords, run.model, run.target, run.ids);
    }
    pState.SetItemsProcessed(pState.iterations() * kRecords);
}
BENCHMARK(BM_ScatterPlotSetData)->Unit(benchmark::kMillisecond);

void BM_ScatterPlotRender(benchmark::State& pState) {
    const Run& run = Records();
    trv5::ScatterPlot chart;
    PrepareChart(chart);
    chart.SetData(kRecords, run.model, run.target, run.ids);
    if (pState.range(0) != 0) {
        chart.ShowLabels();
    }
    for (auto _ : pState) {
        const QImage image = chart.Engine().Render(kSize);
        benchmark::DoNotOptimize(image.constBits());
    }
    pState.counters["labels"] = chart.Engine().LabelsDrawn();
}
BENCHMARK(BM_ScatterPlotRender)->ArgName("labels")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_ScatterPlotTooltipLookup(benchmark::State& pState) {
    const Run& run = Records();
    trv5::ScatterPlot chart;
    PrepareChart(chart);
    chart.SetData(kRecords, run.model, run.target, run.ids);
    chart.Engine().Render();
    const QPointF centre(kSize.width() / 2.0, kSize.height() / 2.0);
    for (auto _ : pState) {
        benchmark::DoNotOptimize(chart.Engine().TooltipAt(centre));
    }
}
BENCHMARK(BM_ScatterPlotTooltipLookup)->Unit(benchmark::kMicrosecond);

void BM_ScatterPlotDataAsString(benchmark::State& pState) {
    const Run& run = Records();
    trv5::ScatterPlot chart;
    PrepareChart(chart);
    chart.SetData(kRecords, run.model, run.target, run.ids);
    std::size_t chars = 0;
    for (auto _ : pState) {
        const QString text = chart.GetChartDataAsString();
        chars = static_cast<std::size_t>(text.size());
        benchmark::DoNotOptimize(text.constData());
    }
    pState.SetBytesProcessed(static_cast<std::int64_t>(pState.iterations() * chars));
}
BENCHMARK(BM_ScatterPlotDataAsString)->Unit(benchmark::kMillisecond);

} // namespace
