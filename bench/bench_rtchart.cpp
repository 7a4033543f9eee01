// Saved state, text export and the drip feed of the run progress chart at full size: 21 series
// of 100,000 values for the text paths, 21 series for 1,000,000 generations for the feed; and
// drawing: two bulk series of 1,000,000 points, and a drip-feed run redrawn every generation.

#include <trv5charts/rtchart.h>

#include "platform/drawingsurface.h"
#include "rtchart/seriesdrawing.h"
#include "rtchartbench.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

using trv5::bench::ThreadMilliseconds;
using trv5::bench::Walk;

constexpr int kSeries = 21;
constexpr int kValues = 100'000;

// Values as a run produces them: full-precision fractions and a few large magnitudes.
std::vector<double> RunValues(unsigned pSeed) {
    std::mt19937_64 random(pSeed);
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    std::vector<double> values(kValues);
    for (std::size_t i = 0; i < values.size(); ++i) {
        values[i] = i % 10 == 0 ? unit(random) * 1e6 : unit(random);
    }
    return values;
}

void FillChart(trv5::RTChart& pChart) {
    auto axis = std::make_shared<trv5::Axis>();
    axis->Init(0, 1, false);
    pChart.SetMainYAxis(axis);
    for (int s = 0; s < kSeries; ++s) {
        const auto index = pChart.AddSeries(nullptr, false, QStringLiteral("Series %1").arg(s));
        pChart.GetSeries(index)->Init(kValues, 0, 1, trv5::Bulk, false);
        pChart.SetSeriesData(index, RunValues(static_cast<unsigned>(s)));
    }
    pChart.SetLastGenerationForCopy(kValues);
}

// Times one text-producing operation on the full chart and reports bytes per second.
template <class Produce> void MeasureText(benchmark::State& pState, Produce&& pProduce) {
    trv5::RTChart chart;
    FillChart(chart);
    std::size_t bytes = 0;
    for (auto _ : pState) {
        const QString text = pProduce(chart);
        bytes = static_cast<std::size_t>(text.size());
        benchmark::DoNotOptimize(text.constData());
    }
    pState.SetBytesProcessed(static_cast<std::int64_t>(pState.iterations() * bytes));
    pState.counters["chars"] = static_cast<double>(bytes);
}

void BM_RTChartToString(benchmark::State& pState) {
    MeasureText(pState, [](trv5::RTChart& pChart) { return pChart.ToString(); });
}
BENCHMARK(BM_RTChartToString)->Unit(benchmark::kMillisecond);

// Into a fresh chart, with the closing redraw at the chart's first size (640 x 480); argument 1
// sizes the chart to nothing first, so that the difference is the closing redraw.
void BM_RTChartFromString(benchmark::State& pState) {
    trv5::RTChart source;
    FillChart(source);
    const QString text = source.ToString();
    for (auto _ : pState) {
        trv5::RTChart chart;
        if (pState.range(0) == 1) {
            chart.resize(0, 0);
        }
        chart.FromString(text);
        if (chart.SeriesCount() != kSeries) {
            pState.SkipWithError("state did not load");
        }
    }
    pState.SetBytesProcessed(static_cast<std::int64_t>(pState.iterations()) * text.size());
}
BENCHMARK(BM_RTChartFromString)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_RTChartDataAsString(benchmark::State& pState) {
    MeasureText(pState, [](trv5::RTChart& pChart) { return pChart.GetChartDataAsString(); });
}
BENCHMARK(BM_RTChartDataAsString)->Unit(benchmark::kMillisecond);

void BM_RTChartAddPoint(benchmark::State& pState) {
    const int generations = static_cast<int>(pState.range(0));
    trv5::RTChart chart;
    for (int s = 0; s < kSeries; ++s) {
        chart.GetSeries(chart.AddSeries())->Init(generations, 0, 1, trv5::DripFeed, false);
    }
    double value = 0.0;
    for (auto _ : pState) {
        for (int g = 0; g < generations; ++g) {
            value += 1e-6;
            for (int s = 0; s < kSeries; ++s) {
                chart.AddPoint(s, value);
            }
        }
        pState.PauseTiming();
        for (int s = 0; s < kSeries; ++s) {
            chart.GetSeries(s)->Init(generations, 0, 1, trv5::DripFeed, false);
        }
        pState.ResumeTiming();
    }
    pState.SetItemsProcessed(pState.iterations() * generations * kSeries);
}
BENCHMARK(BM_RTChartAddPoint)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

// Redraws the chart into its plot's raster and waits for the picture to be finished.
void RefreshNow(trv5::RTChart& pChart, const trv5::platform::DrawingSurface& pPic) {
    pChart.Refresh();
    benchmark::DoNotOptimize(pPic.Raster().constBits());
}

// Two bulk series of 1,000,000 points on a 1000 x 600 chart, drawn whole after the axis range
// moved (the columns' extremes are kept from the drawing before). Argument 1 draws every segment
// instead of the pixel columns, for comparison; argument 2 hands the data over again before each
// redraw (SetSeriesData twice, then Refresh), so that every column is found afresh.
void BM_RTChartRefreshBulk(benchmark::State& pState) {
    constexpr std::size_t kPoints = 1'000'000;
    trv5::rtchart::SetPolylineMode(pState.range(0) == 1
                                       ? trv5::rtchart::PolylineMode::EverySegment
                                       : trv5::rtchart::PolylineMode::PixelColumns);
    trv5::RTChart chart;
    chart.resize(1000, 600);
    auto axis = std::make_shared<trv5::Axis>();
    axis->Init(-0.05, 1.05, false);
    chart.SetMainYAxis(axis);
    const std::vector<double> walks[] = {Walk(kPoints, 7), Walk(kPoints, 8)};
    for (int s = 0; s < 2; ++s) {
        const auto index = chart.AddSeries(nullptr, false, QStringLiteral("Series %1").arg(s));
        chart.GetSeries(index)->Init(static_cast<std::int32_t>(kPoints), 0, 1, trv5::Bulk, false);
        chart.GetSeries(index)->SetColour(s == 0 ? 0x0000C0 : 0xC00000);
        chart.SetSeriesData(index, walks[s]);
    }
    const auto& pic = *chart.findChild<trv5::platform::DrawingSurface*>(QStringLiteral("pic"));
    RefreshNow(chart, pic);
    // An unchanged chart is not drawn again; a range that moves by a hair is drawn whole.
    bool nudged = false;
    for (auto _ : pState) {
        nudged = !nudged;
        axis->Init(-0.05, nudged ? 1.05 + 1e-9 : 1.05, false);
        if (pState.range(0) == 2) {
            chart.SetSeriesData(0, walks[0]);
            chart.SetSeriesData(1, walks[1]);
        }
        RefreshNow(chart, pic);
    }
    trv5::rtchart::SetPolylineMode(trv5::rtchart::PolylineMode::PixelColumns);
    pState.SetItemsProcessed(pState.iterations() * static_cast<std::int64_t>(2 * kPoints));
}
BENCHMARK(BM_RTChartRefreshBulk)->Arg(0)->Arg(1)->Arg(2)->Unit(benchmark::kMillisecond);

// A live run: 21 drip-feed series of 10,000 generations, each generation one AddPoint per series
// and a Refresh. Reports the median and the 99th percentile of one generation, by the wall clock
// and by processor time.
void BM_RTChartDripFeedRefresh(benchmark::State& pState) {
    constexpr int kGenerations = 10'000;
    std::vector<double> perGeneration;
    std::vector<double> cpuPerGeneration;
    perGeneration.reserve(kGenerations);
    cpuPerGeneration.reserve(kGenerations);
    for (auto _ : pState) {
        pState.PauseTiming();
        trv5::RTChart chart;
        chart.resize(1000, 600);
        chart.SetShowXAxis(true);
        auto axis = std::make_shared<trv5::Axis>();
        axis->Init(0, 1, false);
        chart.SetMainYAxis(axis);
        for (int s = 0; s < kSeries; ++s) {
            const auto index = chart.AddSeries(nullptr, false, QStringLiteral("S%1").arg(s));
            chart.GetSeries(index)->Init(kGenerations, 0, 1, trv5::DripFeed, false);
            chart.GetSeries(index)->SetColour(0x101010 * (s % 12) + 0x40);
        }
        const auto& pic = *chart.findChild<trv5::platform::DrawingSurface*>(QStringLiteral("pic"));
        std::mt19937 random(11);
        std::uniform_real_distribution<double> noise(-0.02, 0.02);
        perGeneration.clear();
        cpuPerGeneration.clear();
        pState.ResumeTiming();
        for (int g = 0; g < kGenerations; ++g) {
            const auto start = std::chrono::steady_clock::now();
            const double cpuStart = ThreadMilliseconds();
            const double base = 1.0 - std::exp(-g / 2500.0);
            for (int s = 0; s < kSeries; ++s) {
                chart.AddPoint(s, std::clamp(base * (0.5 + s / 42.0) + noise(random), 0.0, 1.0));
            }
            RefreshNow(chart, pic);
            perGeneration.push_back(
                std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
                    .count());
            cpuPerGeneration.push_back(ThreadMilliseconds() - cpuStart);
        }
    }
    const auto at = [](std::vector<double>& pTimes, double pFraction) {
        std::sort(pTimes.begin(), pTimes.end());
        return pTimes[static_cast<std::size_t>(pFraction * static_cast<double>(pTimes.size() - 1))];
    };
    pState.counters["median_ms"] = at(perGeneration, 0.5);
    pState.counters["p99_ms"] = at(perGeneration, 0.99);
    pState.counters["cpu_median_ms"] = at(cpuPerGeneration, 0.5);
    pState.counters["cpu_p99_ms"] = at(cpuPerGeneration, 0.99);
    pState.SetItemsProcessed(pState.iterations() * kGenerations);
}
BENCHMARK(BM_RTChartDripFeedRefresh)->Iterations(1)->Unit(benchmark::kMillisecond);

} // namespace
