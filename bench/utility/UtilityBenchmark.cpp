// Costs of the text helpers (the coordinate conversions are timed in LocationBenchmark.cpp).
// Every benchmark times its work and, in the same run, a baseline of comparable plain work; the
// counters give nanoseconds per item and the ratio to that baseline, which says more across
// machines than the raw times do.

#include "NString.h"
#include "PRuntime.h"
#include "PRuntimeString.h"

#include <benchmark/benchmark.h>

#include <chrono>

namespace {

using Clock = std::chrono::steady_clock;

double nanoseconds(Clock::duration elapsed) {
    return std::chrono::duration<double, std::nano>(elapsed).count();
}

void report(benchmark::State& state, double perItem, double baselinePerItem, double items) {
    state.counters["ns_per_item"] = perItem;
    state.counters["baseline_ns_per_item"] = baselinePerItem;
    state.counters["ratio_to_baseline"] = baselinePerItem > 0.0 ? perItem / baselinePerItem : 0.0;
    state.SetItemsProcessed(static_cast<int64_t>(items));
}

// Times `work` against `baseline` over the same number of items.
template <typename Work, typename Baseline>
void compare(benchmark::State& state, int itemsPerRound, Work work, Baseline baseline) {
    Clock::duration elapsed{};
    for (auto _ : state) {
        const auto start = Clock::now();
        for (int i = 0; i < itemsPerRound; ++i) {
            work(i);
        }
        elapsed += Clock::now() - start;
    }
    const double items = static_cast<double>(state.iterations()) * itemsPerRound;
    const auto baselineStart = Clock::now();
    for (benchmark::IterationCount round = 0; round < state.iterations(); ++round) {
        for (int i = 0; i < itemsPerRound; ++i) {
            baseline(i);
        }
    }
    report(state, nanoseconds(elapsed) / items, nanoseconds(Clock::now() - baselineStart) / items,
           items);
}

constexpr int textCount = 10000;

// Sizes across every unit, against the toolkit's number formatting alone.
void BM_stringFromSize(benchmark::State& state) {
    PRuntimeString* strings = PRuntime::getInstance()->string();
    compare(
        state, textCount,
        [strings](int i) {
            const unsigned long long bytes = 1ULL << (i % 60);
            benchmark::DoNotOptimize(strings->stringFromSize(bytes + i, 2, true));
        },
        [](int i) {
            const unsigned long long bytes = 1ULL << (i % 60);
            benchmark::DoNotOptimize(QString::number(static_cast<double>(bytes + i), 'f', 2));
        });
}

const QString& sampleText() {
    static const QString text = QString::fromUtf8("固件 iPhone15,2 – 恢复模式 (DFU) ✓");
    return text;
}

// QString to NString, against the UTF-8 encoding it is built on.
void BM_convertToNString(benchmark::State& state) {
    PRuntimeString* strings = PRuntime::getInstance()->string();
    compare(
        state, textCount,
        [strings](int) { benchmark::DoNotOptimize(strings->convert(sampleText())); },
        [](int) { benchmark::DoNotOptimize(sampleText().toUtf8()); });
}

// NString to QString, against the UTF-8 decoding it is built on.
void BM_convertToQString(benchmark::State& state) {
    PRuntimeString* strings = PRuntime::getInstance()->string();
    static const NString text = strings->convert(sampleText());
    compare(
        state, textCount, [strings](int) { benchmark::DoNotOptimize(strings->convert(text)); },
        [](int) { benchmark::DoNotOptimize(QString::fromUtf8(text.data(), int(text.size()))); });
}

} // namespace

BENCHMARK(BM_stringFromSize)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_convertToNString)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_convertToQString)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
