// The block charts with many items on an 800 x 600 control (offscreen platform): drawing of the
// usage panel (heat map, settings read at every redraw) and of the tapestry, and the usage
// panel's saved state both ways.

#include <trv5charts/blockpanel.h>
#include <trv5charts/blockpanelsimple.h>
#include <trv5charts/hostsettings.h>

#include <benchmark/benchmark.h>

#include <QVariantMap>

#include <memory>
#include <random>
#include <vector>

namespace {

class BenchConfig final : public trv5::IConfig {
public:
    QVariantMap Settings() const override {
        return {{"Run.UsageChart.HeatMap.H", 210},
                {"Run.UsageChart.HeatMap.S.Factor", 90},
                {"Run.UsageChart.HeatMap.B", 85},
                {"Run.UsageChart.ShowGaps.Limit", 400},
                {"Run.UsageChart.AbsentColor.1", 0xE0E0E0},
                {"ClassificationTapestry.HighColor.R", 200},
                {"ClassificationTapestry.HighColor.G", 40},
                {"ClassificationTapestry.HighColor.B", 40},
                {"ClassificationTapestry.LowColor.R", 40},
                {"ClassificationTapestry.LowColor.G", 40},
                {"ClassificationTapestry.LowColor.B", 200},
                {"ClassificationTapestry.HighColor.Inverted.R", 40},
                {"ClassificationTapestry.HighColor.Inverted.G", 40},
                {"ClassificationTapestry.HighColor.Inverted.B", 200},
                {"ClassificationTapestry.LowColor.Inverted.R", 200},
                {"ClassificationTapestry.LowColor.Inverted.G", 40},
                {"ClassificationTapestry.LowColor.Inverted.B", 40},
                {"ClassificationTapestry.SingleColor.R", 30},
                {"ClassificationTapestry.SingleColor.G", 120},
                {"ClassificationTapestry.SingleColor.B", 60}};
    }
};

constexpr int kWidth = 800;
constexpr int kHeight = 600;

std::vector<std::int32_t> Counts(std::int64_t pCount) {
    std::mt19937 random(11);
    std::uniform_int_distribution<std::int32_t> count(0, 500);
    std::vector<std::int32_t> counts(static_cast<std::size_t>(pCount));
    for (auto& value : counts) {
        value = count(random);
    }
    return counts;
}

void BM_BlockPanelRedraw(benchmark::State& pState) {
    trv5::BlockPanel panel;
    panel.resize(kWidth, kHeight);
    panel.Init(std::make_shared<BenchConfig>(), 0);
    panel.SetUsage(Counts(pState.range(0)));
    for (auto _ : pState) {
        panel.Redraw();
    }
    pState.SetItemsProcessed(pState.iterations() * pState.range(0));
}
BENCHMARK(BM_BlockPanelRedraw)
    ->Arg(1'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

void BM_BlockPanelSimpleRedraw(benchmark::State& pState) {
    trv5::BlockPanelSimple tapestry;
    tapestry.resize(kWidth, kHeight);
    tapestry.Init(std::make_shared<BenchConfig>());
    std::mt19937 random(5);
    std::uniform_int_distribution<std::int32_t> outcome(-1, 1);
    std::vector<std::int32_t> classes(static_cast<std::size_t>(pState.range(0)));
    std::vector<std::int32_t> ids(classes.size());
    for (std::size_t i = 0; i < classes.size(); ++i) {
        classes[i] = outcome(random);
        ids[i] = static_cast<std::int32_t>(i + 1);
    }
    tapestry.SetData(classes, ids);
    for (auto _ : pState) {
        tapestry.Redraw();
    }
    pState.SetItemsProcessed(pState.iterations() * pState.range(0));
}
BENCHMARK(BM_BlockPanelSimpleRedraw)
    ->Arg(1'000)
    ->Arg(100'000)
    ->Arg(1'000'000)
    ->Unit(benchmark::kMillisecond);

void Fill(trv5::BlockPanel& pPanel, std::int64_t pCount) {
    const std::vector<std::int32_t> counts = Counts(pCount);
    std::vector<QString> names;
    names.reserve(counts.size());
    for (std::int64_t i = 0; i < pCount; ++i) {
        names.push_back(QStringLiteral("Variable %1").arg(i + 1));
    }
    pPanel.SetUsage(counts, names);
}

void BM_BlockPanelToString(benchmark::State& pState) {
    trv5::BlockPanel panel;
    Fill(panel, pState.range(0));
    std::int64_t bytes = 0;
    for (auto _ : pState) {
        const QString text = panel.ToString();
        bytes = text.size();
        benchmark::DoNotOptimize(text.constData());
    }
    pState.SetBytesProcessed(pState.iterations() * bytes);
}
BENCHMARK(BM_BlockPanelToString)->Arg(100'000)->Unit(benchmark::kMillisecond);

void BM_BlockPanelFromString(benchmark::State& pState) {
    trv5::BlockPanel source;
    Fill(source, pState.range(0));
    const QString text = source.ToString();
    trv5::BlockPanel panel;
    panel.resize(kWidth, kHeight);
    for (auto _ : pState) {
        panel.FromString(text);
        benchmark::DoNotOptimize(panel.Usage().data());
    }
    pState.SetBytesProcessed(pState.iterations() * text.size());
}
BENCHMARK(BM_BlockPanelFromString)->Arg(100'000)->Unit(benchmark::kMillisecond);

} // namespace
