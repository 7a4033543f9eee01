// Throughput of the number-text routines against the C library on the same values: writing
// (WriteDouble against snprintf "%.15G") and reading (ParseDouble against strtod).
//
// Two value sets of 1,000,000 doubles: "full" values carry all 17 significant digits, as computed
// results do; "short" values have at most six decimals, as measured or rounded data do.

#include "foundation/numbertext.h"

#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

namespace {

namespace nt = trv5::numbertext;

constexpr std::size_t kCount = 1'000'000;

const std::vector<double>& Values(std::int64_t pSet) {
    static const auto sets = [] {
        std::mt19937_64 random(42);
        std::uniform_real_distribution<double> logMagnitude(-6, 9);
        std::uniform_int_distribution<int> decimals(0, 6);
        std::vector<std::vector<double>> result(2);
        for (std::size_t i = 0; i < kCount; ++i) {
            const double sign = random() % 2 ? 1.0 : -1.0;
            const double full = sign * std::pow(10.0, logMagnitude(random));
            const double scale = std::pow(10.0, decimals(random));
            result[0].push_back(full);
            result[1].push_back(std::round(full * scale) / scale);
        }
        return result;
    }();
    return sets[static_cast<std::size_t>(pSet)];
}

// The texts of a value set, each followed by a NUL so that strtod can read them in place.
struct Texts {
    std::string buffer;
    std::vector<std::size_t> starts;
    std::int64_t textBytes = 0;
};

const Texts& TextsOf(std::int64_t pSet, char pDecimalPoint) {
    static Texts cache[2][2];
    Texts& texts = cache[pSet][pDecimalPoint == ','];
    if (texts.starts.empty()) {
        char text[nt::kMaxDoubleText];
        for (double value : Values(pSet)) {
            const char* end = nt::WriteDouble(text, value, pDecimalPoint);
            texts.starts.push_back(texts.buffer.size());
            texts.buffer.append(text, static_cast<std::size_t>(end - text));
            texts.buffer.push_back('\0');
            texts.textBytes += end - text;
        }
    }
    return texts;
}

void BM_WriteDouble(benchmark::State& pState, std::int64_t pSet) {
    const auto& values = Values(pSet);
    std::vector<char> out(values.size() * nt::kMaxDoubleText);
    std::int64_t bytes = 0;
    for (auto _ : pState) {
        char* p = out.data();
        for (double value : values) {
            p = nt::WriteDouble(p, value, '.');
        }
        benchmark::DoNotOptimize(p);
        bytes += p - out.data();
    }
    pState.SetBytesProcessed(bytes);
    pState.SetItemsProcessed(pState.iterations() * static_cast<std::int64_t>(values.size()));
}

void BM_SnprintfG15(benchmark::State& pState, std::int64_t pSet) {
    const auto& values = Values(pSet);
    std::vector<char> out(values.size() * nt::kMaxDoubleText);
    std::int64_t bytes = 0;
    for (auto _ : pState) {
        char* p = out.data();
        for (double value : values) {
            p += std::snprintf(p, nt::kMaxDoubleText, "%.15G", value);
        }
        benchmark::DoNotOptimize(p);
        bytes += p - out.data();
    }
    pState.SetBytesProcessed(bytes);
    pState.SetItemsProcessed(pState.iterations() * static_cast<std::int64_t>(values.size()));
}

void ParseBenchmark(benchmark::State& pState, std::int64_t pSet, char pDecimalPoint,
                    char pGroupSeparator) {
    const Texts& texts = TextsOf(pSet, pDecimalPoint);
    for (auto _ : pState) {
        double sum = 0;
        for (std::size_t i = 0; i < texts.starts.size(); ++i) {
            const char* first = texts.buffer.data() + texts.starts[i];
            const std::size_t length =
                (i + 1 < texts.starts.size() ? texts.starts[i + 1] : texts.buffer.size()) -
                texts.starts[i] - 1;
            double value = 0;
            nt::ParseDouble({first, length}, pDecimalPoint, pGroupSeparator, value);
            sum += value;
        }
        benchmark::DoNotOptimize(sum);
    }
    pState.SetBytesProcessed(pState.iterations() * texts.textBytes);
    pState.SetItemsProcessed(pState.iterations() * static_cast<std::int64_t>(texts.starts.size()));
}

void BM_ParseDouble(benchmark::State& pState, std::int64_t pSet) {
    ParseBenchmark(pState, pSet, '.', ',');
}

// Decimal comma and grouping on: every text takes the general path.
void BM_ParseDoubleDecimalComma(benchmark::State& pState, std::int64_t pSet) {
    ParseBenchmark(pState, pSet, ',', '.');
}

void BM_Strtod(benchmark::State& pState, std::int64_t pSet) {
    const Texts& texts = TextsOf(pSet, '.');
    for (auto _ : pState) {
        double sum = 0;
        for (std::size_t start : texts.starts) {
            sum += std::strtod(texts.buffer.data() + start, nullptr);
        }
        benchmark::DoNotOptimize(sum);
    }
    pState.SetBytesProcessed(pState.iterations() * texts.textBytes);
    pState.SetItemsProcessed(pState.iterations() * static_cast<std::int64_t>(texts.starts.size()));
}

constexpr std::int64_t kFull = 0;
constexpr std::int64_t kShort = 1;

} // namespace

BENCHMARK_CAPTURE(BM_WriteDouble, full, kFull)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_WriteDouble, short, kShort)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SnprintfG15, full, kFull)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_SnprintfG15, short, kShort)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ParseDouble, full, kFull)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ParseDouble, short, kShort)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ParseDoubleDecimalComma, full, kFull)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ParseDoubleDecimalComma, short, kShort)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Strtod, full, kFull)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Strtod, short, kShort)->Unit(benchmark::kMillisecond);
