// Saved state, text export and the drip feed of the run progress chart at full size: 21 series
// of 100,000 values for the text paths, 21 series for 1,000,000 generations for the feed.

#include <trv5charts/rtchart.h>

#include <QApplication>

#include <benchmark/benchmark.h>

#include <memory>
#include <random>
#include <vector>

namespace {

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

void BM_RTChartFromString(benchmark::State& pState) {
    trv5::RTChart source;
    FillChart(source);
    const QString text = source.ToString();
    for (auto _ : pState) {
        trv5::RTChart chart;
        chart.FromString(text);
        if (chart.SeriesCount() != kSeries) {
            pState.SkipWithError("state did not load");
        }
    }
    pState.SetBytesProcessed(static_cast<std::int64_t>(pState.iterations()) * text.size());
}
BENCHMARK(BM_RTChartFromString)->Unit(benchmark::kMillisecond);

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

} // namespace

int main(int argc, char** argv) {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 1;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
