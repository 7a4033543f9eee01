// The bar chart with many columns: drawing, saved state both ways and the copied values.
//
// 1,000,000 full-precision values between 0 and 100 on a 600 x 200 chart (offscreen platform).

#include <trv5charts/barchart.h>

#include <benchmark/benchmark.h>

#include <random>
#include <vector>

namespace {

const std::vector<double>& Values(std::size_t pCount) {
    static std::vector<double> values;
    if (values.size() != pCount) {
        std::mt19937_64 random(7);
        std::uniform_real_distribution<double> value(0.0, 100.0);
        values.clear();
        for (std::size_t i = 0; i < pCount; ++i) {
            values.push_back(value(random));
        }
    }
    return values;
}

void Fill(trv5::BarChart& pChart, std::int64_t pColumns) {
    pChart.resize(600, 200);
    pChart.Init(static_cast<std::int32_t>(pColumns), 100.0F, trv5::ctMultiVerticalBars,
                trv5::BarChart::kDoubleValues, 0.0F);
    pChart.SetDoubleData(Values(static_cast<std::size_t>(pColumns)));
}

void BM_BarChartRedraw(benchmark::State& pState) {
    trv5::BarChart chart;
    Fill(chart, pState.range(0));
    for (auto _ : pState) {
        chart.Redraw();
    }
    pState.SetItemsProcessed(pState.iterations() * pState.range(0));
}
BENCHMARK(BM_BarChartRedraw)->Arg(20)->Arg(1'000)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void BM_BarChartToString(benchmark::State& pState) {
    trv5::BarChart chart;
    Fill(chart, pState.range(0));
    std::size_t bytes = 0;
    for (auto _ : pState) {
        const QString text = chart.ToString();
        bytes = static_cast<std::size_t>(text.size());
        benchmark::DoNotOptimize(text.constData());
    }
    pState.SetBytesProcessed(pState.iterations() * static_cast<std::int64_t>(bytes));
}
BENCHMARK(BM_BarChartToString)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void BM_BarChartFromString(benchmark::State& pState) {
    trv5::BarChart source;
    Fill(source, pState.range(0));
    const QString text = source.ToString();
    for (auto _ : pState) {
        trv5::BarChart chart;
        chart.resize(600, 200);
        chart.FromString(text);
        benchmark::DoNotOptimize(chart.DoubleData().data());
    }
    pState.SetBytesProcessed(pState.iterations() * text.size());
}
BENCHMARK(BM_BarChartFromString)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

void BM_BarChartCopyData(benchmark::State& pState) {
    trv5::BarChart chart;
    Fill(chart, pState.range(0));
    for (auto _ : pState) {
        chart.CopyChartData();
    }
    pState.SetItemsProcessed(pState.iterations() * pState.range(0));
}
BENCHMARK(BM_BarChartCopyData)->Arg(1'000'000)->Unit(benchmark::kMillisecond);

} // namespace
