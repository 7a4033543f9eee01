// The curve fitting chart with a run of 100,000 records (a classifier's output against a 0/1
// target): SetData1 followed by a render at 1000 x 700, and beside it the same two lines plotted
// with plain QCustomPlot at the same size, so the cost of the chart's own work shows against the
// engine's drawing. Also the text of Copy Data and the misclassification rings.

#include <trv5charts/curvefitting.h>

#include "hostedbench.h"
#include "platform/chartengine.h"

#include <benchmark/benchmark.h>
#include <qcustomplot.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace {

constexpr std::size_t kRecords = 100'000;
constexpr QSize kSize = trv5::bench::kEngineSize;

using Run = trv5::bench::RecordArrays;

// Scores of two overlapping classes squashed by a logistic function, as a fitted classifier's
// output looks; about 40 % of the records are positives.
const Run& Records() {
    static const Run run = [] {
        Run r;
        std::mt19937_64 random(42);
        std::uniform_real_distribution<double> unit(0.0, 1.0);
        std::normal_distribution<double> noise(0.0, 1.0);
        for (std::size_t i = 0; i < kRecords; ++i) {
            const bool positive = unit(random) < 0.4;
            const double score = (positive ? 1.4 : -1.4) + noise(random);
            r.target.push_back(positive ? 1.0 : 0.0);
            r.model.push_back(1.0 / (1.0 + std::exp(-1.7 * score)));
            r.ids.push_back(static_cast<std::int32_t>(i + 1));
        }
        return r;
    }();
    return run;
}

void BM_CurveFittingSetDataAndRender(benchmark::State& pState) {
    const Run& run = Records();
    trv5::CurveFitting chart;
    trv5::bench::PrepareChart(chart);
    for (auto _ : pState) {
        chart.SetData1(static_cast<std::int32_t>(kRecords), run.model, run.target, run.ids);
        const QImage image = chart.Engine().Render(kSize);
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_CurveFittingSetDataAndRender)->Unit(benchmark::kMillisecond);

// The same two lines, styled alike, on a bare QCustomPlot: data handed over, axes set, drawn.
void BM_PlainQCustomPlotTwoLines(benchmark::State& pState) {
    const Run& run = Records();
    QCustomPlot plot;
    plot.resize(kSize);
    QCPGraph* targetGraph = plot.addGraph();
    QCPGraph* modelGraph = plot.addGraph();
    targetGraph->setPen(QPen(QColor(0x1F, 0x5F, 0xA8), 1.0));
    modelGraph->setPen(QPen(QColor(0xE6, 0x9F, 0x00), 1.0));
    for (auto _ : pState) {
        // The host's arrays become QCustomPlot's, as the chart's setter takes them over.
        QVector<double> keys(static_cast<qsizetype>(kRecords));
        for (qsizetype i = 0; i < keys.size(); ++i) {
            keys[i] = static_cast<double>(i);
        }
        targetGraph->setData(keys, QVector<double>(run.target.begin(), run.target.end()), true);
        modelGraph->setData(keys, QVector<double>(run.model.begin(), run.model.end()), true);
        plot.xAxis->setRange(0.0, static_cast<double>(kRecords - 1));
        plot.yAxis->rescale();
        const QImage image = plot.toPixmap(kSize.width(), kSize.height()).toImage();
        benchmark::DoNotOptimize(image.constBits());
    }
}
BENCHMARK(BM_PlainQCustomPlotTwoLines)->Unit(benchmark::kMillisecond);

// The chart's setter on its own: min/max, tooltips, series, axis.
void BM_CurveFittingSetData(benchmark::State& pState) {
    const Run& run = Records();
    trv5::CurveFitting chart;
    trv5::bench::PrepareChart(chart);
    for (auto _ : pState) {
        chart.SetData1(static_cast<std::int32_t>(kRecords), run.model, run.target, run.ids);
    }
}
BENCHMARK(BM_CurveFittingSetData)->Unit(benchmark::kMillisecond);

void BM_CurveFittingDataText(benchmark::State& pState) {
    const Run& run = Records();
    trv5::CurveFitting chart;
    chart.Init(QString());
    chart.SetData1(static_cast<std::int32_t>(kRecords), run.model, run.target, run.ids);
    std::int64_t bytes = 0;
    for (auto _ : pState) {
        const QString text = chart.GetChartDataAsString();
        bytes += text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    pState.SetBytesProcessed(bytes);
}
BENCHMARK(BM_CurveFittingDataText)->Unit(benchmark::kMillisecond);

void BM_CurveFittingDrawMisclassifications(benchmark::State& pState) {
    const Run& run = Records();
    trv5::CurveFitting chart;
    chart.Init(QString());
    chart.SetData1(static_cast<std::int32_t>(kRecords), run.model, run.target, run.ids);
    chart.SetThreshold(0.5);
    for (auto _ : pState) {
        chart.DrawMisclassifications(trv5::CurveFitting::kMarkBoth);
    }
}
BENCHMARK(BM_CurveFittingDrawMisclassifications)->Unit(benchmark::kMillisecond);

} // namespace
