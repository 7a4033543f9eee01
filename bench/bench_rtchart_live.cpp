// The run progress chart watched while a run goes on, beside plain QCustomPlot in the same
// process: both widgets are shown (on the offscreen platform when there is no display) at
// 1000 x 600, and a generation is one point per series, the chart's Refresh or the plot's replot,
// and the event loop painting what changed on screen.
//
// * BM_LiveFeed: 21 series of capacity 10,000 over a whole run, the two widgets taking turns
//   generation by generation; median and 99th percentile of a generation's processor time.
// * BM_LiveFeedSampled: 21 series of capacity 100,000, filled to 10, 50 or 100 % and then fed
//   for a sample of generations (the last of them filling the ring); also the first, full
//   redraw at that fill.
// * BM_FirstFullRedraw and BM_FullRedraw: 21 series of capacity 100,000 filled without drawing,
//   then the first full redraw (every value read), and full redraws after the range moved.
// * BM_LiveFeedPaced: 3 series of capacity 1,000,000 fed at 60 generations a second of wall
//   time at 10, 50 and 100 % full: whether every frame fits in 16 ms, and its processor time.
// * BM_QCustomPlotRefreshBulk: plain QCustomPlot's replot of the two bulk series of a million
//   points that BM_RTChartRefreshBulk draws.

#include <trv5charts/rtchart.h>

#include "platform/drawingsurface.h"
#include "rtchartbench.h"

#include <QApplication>
#include <QThread>

#include <benchmark/benchmark.h>
#include <qcustomplot.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <memory>
#include <random>
#include <vector>

namespace {

using trv5::bench::ThreadMilliseconds;
using trv5::bench::Walk;

constexpr QSize kSize(1000, 600);

double WallMilliseconds() {
    return std::chrono::duration<double, std::milli>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

double Percentile(std::vector<double> pTimes, double pFraction) {
    if (pTimes.empty()) {
        return 0.0;
    }
    std::sort(pTimes.begin(), pTimes.end());
    return pTimes[static_cast<std::size_t>(pFraction * static_cast<double>(pTimes.size() - 1))];
}

std::int32_t SeriesColour(int pSeries) {
    return 0x101010 * (pSeries % 12) + 0x40 + 0x2000 * (pSeries % 3);
}

QColor ToQColor(std::int32_t pColour) {
    return QColor(pColour & 0xFF, (pColour >> 8) & 0xFF, (pColour >> 16) & 0xFF);
}

// The value series s takes in generation g: a rising fitness curve with noise.
class Feed {
public:
    explicit Feed(int pSeries) : m_series(pSeries) {}
    double Value(std::int64_t pGeneration, int pSeries) {
        const double base = 1.0 - std::exp(-static_cast<double>(pGeneration) / 2500.0);
        return std::clamp(base * (0.5 + pSeries / (2.0 * m_series)) + m_noise(m_random), 0.0, 1.0);
    }

private:
    int m_series;
    std::mt19937 m_random{11};
    std::uniform_real_distribution<double> m_noise{-0.02, 0.02};
};

// Lets the event loop paint whatever the last step marked for repainting.
void PaintPending() {
    QCoreApplication::processEvents();
}

// The chart as a host sets it up for a run: main axis 0 to 1, generation numbers shown, drip-feed
// series of the given capacity, shown on screen.
struct LiveChart {
    LiveChart(int pSeries, std::int32_t pCapacity) {
        chart.resize(kSize);
        chart.SetShowXAxis(true);
        auto axis = std::make_shared<trv5::Axis>();
        axis->Init(0, 1, false);
        chart.SetMainYAxis(axis);
        for (int s = 0; s < pSeries; ++s) {
            const auto index = chart.AddSeries(nullptr, false, QStringLiteral("S%1").arg(s));
            chart.GetSeries(index)->Init(pCapacity, 0, 1, trv5::DripFeed, false);
            chart.GetSeries(index)->SetColour(SeriesColour(s));
        }
        chart.show();
        chart.Refresh();
        PaintPending();
    }
    // One generation's points, and its number, as a host numbers the horizontal axis by
    // generation.
    void Feed(std::span<const double> pValues) {
        for (std::size_t s = 0; s < pValues.size(); ++s) {
            chart.AddPoint(static_cast<std::int32_t>(s), pValues[s]);
        }
        chart.SetLastGenerationForCopy(++generation);
    }
    void Frame() {
        chart.Refresh();
        PaintPending();
    }
    trv5::RTChart chart;
    std::int32_t generation = 0;
};

// The same on plain QCustomPlot: one graph per series, the point number across.
struct LivePlot {
    LivePlot(int pSeries, std::int32_t pCapacity) {
        plot.resize(kSize);
        for (int s = 0; s < pSeries; ++s) {
            plot.addGraph()->setPen(QPen(ToQColor(SeriesColour(s))));
        }
        plot.xAxis->setRange(0, pCapacity - 1);
        plot.yAxis->setRange(0, 1);
        plot.show();
        plot.replot();
        PaintPending();
    }
    void Feed(double pKey, std::span<const double> pValues) {
        for (std::size_t s = 0; s < pValues.size(); ++s) {
            plot.graph(static_cast<int>(s))->addData(pKey, pValues[s]);
        }
    }
    void Frame() {
        plot.replot();
        PaintPending();
    }
    QCustomPlot plot;
};

struct Sample {
    std::vector<double> chart;
    std::vector<double> plot;
    void Report(benchmark::State& pState) const {
        const double chartMedian = Percentile(chart, 0.5);
        const double plotMedian = Percentile(plot, 0.5);
        const double chartP99 = Percentile(chart, 0.99);
        const double plotP99 = Percentile(plot, 0.99);
        pState.counters["chart_median_ms"] = chartMedian;
        pState.counters["chart_p99_ms"] = chartP99;
        pState.counters["qcp_median_ms"] = plotMedian;
        pState.counters["qcp_p99_ms"] = plotP99;
        pState.counters["ratio_median"] = plotMedian > 0 ? chartMedian / plotMedian : 0;
        pState.counters["ratio_p99"] = plotP99 > 0 ? chartP99 / plotP99 : 0;
    }
};

// Arguments: series, capacity. A whole run, the two widgets taking turns each generation (the
// one going first alternates).
void BM_LiveFeed(benchmark::State& pState) {
    const int series = static_cast<int>(pState.range(0));
    const auto capacity = static_cast<std::int32_t>(pState.range(1));
    Sample sample;
    for (auto _ : pState) {
        LiveChart chart(series, capacity);
        LivePlot plot(series, capacity);
        Feed feed(series);
        std::vector<double> values(static_cast<std::size_t>(series));
        sample.chart.clear();
        sample.plot.clear();
        for (std::int32_t g = 0; g < capacity; ++g) {
            for (int s = 0; s < series; ++s) {
                values[static_cast<std::size_t>(s)] = feed.Value(g, s);
            }
            const auto chartStep = [&] {
                const double start = ThreadMilliseconds();
                chart.Feed(values);
                chart.Frame();
                sample.chart.push_back(ThreadMilliseconds() - start);
            };
            const auto plotStep = [&] {
                const double start = ThreadMilliseconds();
                plot.Feed(g, values);
                plot.Frame();
                sample.plot.push_back(ThreadMilliseconds() - start);
            };
            if (g % 2 == 0) {
                chartStep();
                plotStep();
            } else {
                plotStep();
                chartStep();
            }
        }
    }
    sample.Report(pState);
}
BENCHMARK(BM_LiveFeed)->Args({21, 10'000})->Iterations(1)->Unit(benchmark::kSecond);

// Fills both widgets to pFill points per series without drawing.
void FillTo(LiveChart& pChart, LivePlot& pPlot, Feed& pFeed, int pSeries, std::int64_t pFill) {
    std::vector<double> values(static_cast<std::size_t>(pSeries));
    std::vector<QVector<double>> keys(static_cast<std::size_t>(pSeries));
    std::vector<QVector<double>> plotValues(static_cast<std::size_t>(pSeries));
    for (std::int64_t g = 0; g < pFill; ++g) {
        for (int s = 0; s < pSeries; ++s) {
            values[static_cast<std::size_t>(s)] = pFeed.Value(g, s);
            keys[static_cast<std::size_t>(s)].push_back(static_cast<double>(g));
            plotValues[static_cast<std::size_t>(s)].push_back(values[static_cast<std::size_t>(s)]);
        }
        pChart.Feed(values);
    }
    for (int s = 0; s < pSeries; ++s) {
        pPlot.plot.graph(s)->addData(keys[static_cast<std::size_t>(s)],
                                     plotValues[static_cast<std::size_t>(s)], true);
    }
}

// Arguments: series, capacity, percent full, sampled generations. Both widgets are filled to
// the given share less the sample, redrawn in full once (reported as full_*), then fed the
// sample generation by generation.
void BM_LiveFeedSampled(benchmark::State& pState) {
    const int series = static_cast<int>(pState.range(0));
    const auto capacity = static_cast<std::int32_t>(pState.range(1));
    const std::int64_t percent = pState.range(2);
    const std::int64_t sampled = pState.range(3);
    const std::int64_t fill = std::max<std::int64_t>(0, capacity * percent / 100 - sampled);
    Sample sample;
    double fullChart = 0.0;
    double fullPlot = 0.0;
    for (auto _ : pState) {
        LiveChart chart(series, capacity);
        LivePlot plot(series, capacity);
        Feed feed(series);
        FillTo(chart, plot, feed, series, fill);
        double start = ThreadMilliseconds();
        chart.Frame();
        fullChart = ThreadMilliseconds() - start;
        start = ThreadMilliseconds();
        plot.Frame();
        fullPlot = ThreadMilliseconds() - start;

        std::vector<double> values(static_cast<std::size_t>(series));
        sample.chart.clear();
        sample.plot.clear();
        for (std::int64_t g = fill; g < fill + sampled; ++g) {
            for (int s = 0; s < series; ++s) {
                values[static_cast<std::size_t>(s)] = feed.Value(g, s);
            }
            start = ThreadMilliseconds();
            chart.Feed(values);
            chart.Frame();
            sample.chart.push_back(ThreadMilliseconds() - start);
            start = ThreadMilliseconds();
            plot.Feed(static_cast<double>(g), values);
            plot.Frame();
            sample.plot.push_back(ThreadMilliseconds() - start);
        }
    }
    sample.Report(pState);
    pState.counters["full_chart_ms"] = fullChart;
    pState.counters["full_qcp_ms"] = fullPlot;
    pState.counters["full_ratio"] = fullPlot > 0 ? fullChart / fullPlot : 0;
}
BENCHMARK(BM_LiveFeedSampled)
    ->ArgNames({"series", "capacity", "percent", "sampled"})
    ->Args({21, 100'000, 10, 100})
    ->Args({21, 100'000, 50, 100})
    ->Args({21, 100'000, 100, 100})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

// Arguments: series, capacity. Both widgets filled to capacity without drawing, then drawn once,
// the one going first alternating between iterations: the first full redraw reads every value.
void BM_FirstFullRedraw(benchmark::State& pState) {
    const int series = static_cast<int>(pState.range(0));
    const auto capacity = static_cast<std::int32_t>(pState.range(1));
    Sample sample;
    bool chartFirst = false;
    for (auto _ : pState) {
        LiveChart chart(series, capacity);
        LivePlot plot(series, capacity);
        Feed feed(series);
        FillTo(chart, plot, feed, series, capacity);
        chartFirst = !chartFirst;
        for (int turn = 0; turn < 2; ++turn) {
            const double start = ThreadMilliseconds();
            if ((turn == 0) == chartFirst) {
                chart.Frame();
                sample.chart.push_back(ThreadMilliseconds() - start);
            } else {
                plot.Frame();
                sample.plot.push_back(ThreadMilliseconds() - start);
            }
        }
    }
    sample.Report(pState);
}
BENCHMARK(BM_FirstFullRedraw)
    ->ArgNames({"series", "capacity"})
    ->Args({21, 100'000})
    ->Iterations(12)
    ->Unit(benchmark::kMillisecond);

// Arguments: series, capacity. Both widgets full, then drawn whole again and again, taking turns:
// the chart because its axis range moves by a hair each time (an unchanged chart is not drawn
// again), the plot because it replots.
void BM_FullRedraw(benchmark::State& pState) {
    const int series = static_cast<int>(pState.range(0));
    const auto capacity = static_cast<std::int32_t>(pState.range(1));
    LiveChart chart(series, capacity);
    LivePlot plot(series, capacity);
    Feed feed(series);
    FillTo(chart, plot, feed, series, capacity);
    const std::shared_ptr<trv5::Axis> axis = chart.chart.MainYAxis();
    Sample sample;
    bool nudged = false;
    for (auto _ : pState) {
        nudged = !nudged;
        double start = ThreadMilliseconds();
        axis->Init(0, nudged ? 1 + 1e-9 : 1, false);
        chart.Frame();
        sample.chart.push_back(ThreadMilliseconds() - start);
        start = ThreadMilliseconds();
        plot.Frame();
        sample.plot.push_back(ThreadMilliseconds() - start);
    }
    sample.Report(pState);
}
BENCHMARK(BM_FullRedraw)
    ->ArgNames({"series", "capacity"})
    ->Args({21, 100'000})
    ->Iterations(30)
    ->Unit(benchmark::kMillisecond);

// One widget fed at 60 generations a second of wall time for pFrames frames; returns the
// processor and wall time of each frame.
template <class Widget>
void Paced(Widget& pWidget, Feed& pFeed, int pSeries, std::int64_t pFirst, int pFrames,
           std::vector<double>& pCpu, std::vector<double>& pWall) {
    constexpr double kPeriod = 1000.0 / 60.0;
    std::vector<double> values(static_cast<std::size_t>(pSeries));
    double next = WallMilliseconds();
    for (int f = 0; f < pFrames; ++f) {
        const double now = WallMilliseconds();
        if (now < next) {
            QThread::usleep(static_cast<unsigned long>((next - now) * 1000.0));
        }
        next += kPeriod;
        const std::int64_t g = pFirst + f;
        for (int s = 0; s < pSeries; ++s) {
            values[static_cast<std::size_t>(s)] = pFeed.Value(g, s);
        }
        const double cpu = ThreadMilliseconds();
        const double wall = WallMilliseconds();
        if constexpr (std::is_same_v<Widget, LiveChart>) {
            pWidget.Feed(values);
        } else {
            pWidget.Feed(static_cast<double>(g), values);
        }
        pWidget.Frame();
        pCpu.push_back(ThreadMilliseconds() - cpu);
        pWall.push_back(WallMilliseconds() - wall);
    }
}

// Arguments: series, capacity, percent full, frames.
void BM_LiveFeedPaced(benchmark::State& pState) {
    const int series = static_cast<int>(pState.range(0));
    const auto capacity = static_cast<std::int32_t>(pState.range(1));
    const std::int64_t percent = pState.range(2);
    const int frames = static_cast<int>(pState.range(3));
    const std::int64_t fill = std::max<std::int64_t>(0, capacity * percent / 100 - frames);
    std::vector<double> chartCpu;
    std::vector<double> chartWall;
    std::vector<double> plotCpu;
    std::vector<double> plotWall;
    double fullChart = 0.0;
    for (auto _ : pState) {
        LiveChart chart(series, capacity);
        LivePlot plot(series, capacity);
        Feed feed(series);
        FillTo(chart, plot, feed, series, fill);
        const double start = ThreadMilliseconds();
        chart.Frame();
        fullChart = ThreadMilliseconds() - start;
        plot.Frame();
        Feed chartFeed = feed;
        Paced(chart, chartFeed, series, fill, frames, chartCpu, chartWall);
        Paced(plot, feed, series, fill, frames, plotCpu, plotWall);
    }
    const auto over = [](const std::vector<double>& pTimes, double pLimit) {
        return static_cast<double>(
            std::count_if(pTimes.begin(), pTimes.end(), [&](double t) { return t >= pLimit; }));
    };
    pState.counters["chart_cpu_median_ms"] = Percentile(chartCpu, 0.5);
    pState.counters["chart_cpu_max_ms"] = Percentile(chartCpu, 1.0);
    pState.counters["chart_frames_over_4ms_cpu"] = over(chartCpu, 4.0);
    pState.counters["chart_frames_over_16ms_wall"] = over(chartWall, 16.0);
    pState.counters["chart_full_redraw_ms"] = fullChart;
    pState.counters["qcp_cpu_median_ms"] = Percentile(plotCpu, 0.5);
    pState.counters["qcp_cpu_max_ms"] = Percentile(plotCpu, 1.0);
    pState.counters["qcp_frames_over_16ms_wall"] = over(plotWall, 16.0);
}
BENCHMARK(BM_LiveFeedPaced)
    ->ArgNames({"series", "capacity", "percent", "frames"})
    ->Args({3, 1'000'000, 10, 120})
    ->Args({3, 1'000'000, 50, 120})
    ->Args({3, 1'000'000, 100, 120})
    ->Iterations(1)
    ->Unit(benchmark::kSecond);

void BM_QCustomPlotRefreshBulk(benchmark::State& pState) {
    constexpr std::size_t kPoints = 1'000'000;
    QCustomPlot plot;
    plot.resize(kSize);
    QVector<double> keys(static_cast<qsizetype>(kPoints));
    for (std::size_t i = 0; i < kPoints; ++i) {
        keys[static_cast<qsizetype>(i)] = static_cast<double>(i);
    }
    for (int s = 0; s < 2; ++s) {
        const std::vector<double> walk = Walk(kPoints, static_cast<unsigned>(s) + 7);
        QCPGraph* graph = plot.addGraph();
        graph->setPen(QPen(s == 0 ? QColor(0xC0, 0, 0) : QColor(0, 0, 0xC0)));
        graph->setData(keys, QVector<double>(walk.begin(), walk.end()), true);
    }
    plot.xAxis->setRange(0, kPoints - 1);
    plot.yAxis->setRange(-0.05, 1.05);
    for (auto _ : pState) {
        const QPixmap pixmap = plot.toPixmap(kSize.width(), kSize.height());
        benchmark::DoNotOptimize(pixmap.cacheKey());
    }
    pState.SetItemsProcessed(pState.iterations() * static_cast<std::int64_t>(2 * kPoints));
}
BENCHMARK(BM_QCustomPlotRefreshBulk)->Unit(benchmark::kMillisecond);

} // namespace
