// Costs of the coordinate conversions. Each conversion is timed over a million points and, in
// the same iteration, so is its baseline: the bare calls of sin, cos, atan2 and sqrt that the
// published formulas name for the same points. The counters give nanoseconds per conversion and
// the ratio to that baseline, which says more across machines than the raw times do. The two
// inverses of WGS84_TO_GCJ02, the single-step one and the exact one, are also timed against
// that forward conversion (BM_..._to_forward).
//
// location_round_trip (LocationRoundTrip.cpp) measures how far each inverse lands from the
// starting point, in metres.
//
// bench/utility/compare-coordtransform.sh times a peer (coordtransform on node) on the same
// points; it prints nanoseconds per conversion to set beside ns_per_item here.

#include "PRuntime.h"
#include "PRuntimeLocation.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <cmath>
#include <ctime>
#include <vector>

namespace {

// Processor time of the calling thread. The machine is shared: time the thread spends waiting
// for a processor would otherwise land on whichever side of a ratio happened to be running.
struct ThreadClock {
    using duration = std::chrono::nanoseconds;
    using rep = duration::rep;
    using period = duration::period;
    using time_point = std::chrono::time_point<ThreadClock>;
    static constexpr bool is_steady = true;

    static time_point now() noexcept {
        timespec reading{};
        clock_gettime(CLOCK_THREAD_CPUTIME_ID, &reading);
        return time_point(std::chrono::seconds(reading.tv_sec) +
                          std::chrono::nanoseconds(reading.tv_nsec));
    }
};

using Clock = ThreadClock;

constexpr int pointCount = 1000000;

struct Point {
    double longitude;
    double latitude;
};

// A million points spread over the region where the shifts apply, so that every conversion
// does its full work. coordtransform.mjs generates the same points by the same rule.
const std::vector<Point>& points() {
    static const std::vector<Point> all = [] {
        std::vector<Point> result;
        result.reserve(pointCount);
        for (int i = 0; i < pointCount; ++i) {
            result.push_back({74.0 + (i % 1000) * 0.0605, 4.0 + (i / 1000) * 0.0495});
        }
        return result;
    }();
    return all;
}

double nanoseconds(Clock::duration elapsed) {
    return std::chrono::duration<double, std::nano>(elapsed).count();
}

// The constants of the formulas, written out: the library keeps its own copies internal.
constexpr double pi = 3.141592653589793;
constexpr double xPi = 52.35987755982988;
constexpr double ee = 0.006693421622965943;

// Hides a value from the optimiser without costing an instruction. The baselines pass every
// argument through it so that each call is made as written: otherwise the compiler merges the
// repeated sines and pairs a sine with the cosine of the same angle, the very sharing whose gain
// these benchmarks measure.
inline double opaque(double value) {
#if defined(__GNUC__) && (defined(__x86_64__) || defined(__i386__))
    asm volatile("" : "+x"(value));
#elif defined(__GNUC__) && defined(__aarch64__)
    asm volatile("" : "+w"(value));
#else
    benchmark::DoNotOptimize(value);
#endif
    return value;
}

double sin(double angle) {
    return std::sin(opaque(angle));
}
double cos(double angle) {
    return std::cos(opaque(angle));
}
double root(double value) {
    return std::sqrt(opaque(value));
}

// The baselines make, for one point, every call of sin, cos, atan2 and sqrt that the published
// formulas name, as often as the formulas write it and on the very arguments the formulas give
// it (with the products and quotients that form those arguments), and consume every result.
// They leave out the rest of the arithmetic, so a conversion that makes the same calls cannot
// cost less than its baseline; only calls it does not make can bring it below 1.

// WGS-84 to GCJ-02, and the one-step inverse, which evaluates the same offset: both polynomials
// take the root of |x| and the sines of 6x*pi and 2x*pi, and the latitude's sine and cosine are
// two calls.
double gcjFormulaCalls(const Point& p) {
    const double x = p.longitude - 105.0;
    const double y = p.latitude - 35.0;
    double sum = root(std::fabs(x)) + sin(6.0 * x * pi) + sin(2.0 * x * pi) + sin(y * pi) +
                 sin(y * pi / 3.0) + sin(y * pi / 12.0) + sin(y * pi / 30.0);
    sum += root(std::fabs(x)) + sin(6.0 * x * pi) + sin(2.0 * x * pi) + sin(x * pi) +
           sin(x * pi / 3.0) + sin(x * pi / 12.0) + sin(x * pi / 30.0);
    const double radLat = p.latitude / 180.0 * pi;
    const double sinLat = sin(radLat);
    sum += sinLat + root(1.0 - ee * sinLat * sinLat) + cos(radLat);
    return sum;
}

// The polar shift of BD-09, either way: a root, a sine, an arctangent and a cosine, then the
// cosine and the sine of the shifted angle.
double gcjToBaiduCalls(const Point& p) {
    const double x = p.longitude;
    const double y = p.latitude;
    const double z = root(x * x + y * y) + 0.00002 * sin(y * xPi);
    const double theta = std::atan2(y, x) + 0.000003 * cos(x * xPi);
    return z + theta + cos(theta) + sin(theta);
}

double baiduToGcjCalls(const Point& p) {
    const double x = p.longitude - 0.0065;
    const double y = p.latitude - 0.006;
    const double z = root(x * x + y * y) - 0.00002 * sin(y * xPi);
    const double theta = std::atan2(y, x) - 0.000003 * cos(x * xPi);
    return z + theta + cos(theta) + sin(theta);
}

using Baseline = double (*)(const Point&);
using Conversion = void (PRuntimeLocation::*)(double*, double*) const;

// One pass of a conversion over every point, through the root's component as the application
// calls it: a virtual call per point.
Clock::duration convertOnce(const PRuntimeLocation* location, Conversion conversion) {
    double sink = 0.0;
    const auto start = Clock::now();
    for (const Point& p : points()) {
        double longitude = p.longitude;
        double latitude = p.latitude;
        (location->*conversion)(&longitude, &latitude);
        sink += longitude + latitude;
    }
    const auto elapsed = Clock::now() - start;
    benchmark::DoNotOptimize(sink);
    return elapsed;
}

// The baseline is a template argument so that its calls are inlined into the loop, as the
// conversion's own arithmetic is inlined into the conversion.
template <Baseline calls> Clock::duration callOnce() {
    double sink = 0.0;
    const auto start = Clock::now();
    for (const Point& p : points()) {
        sink += calls(p);
    }
    const auto elapsed = Clock::now() - start;
    benchmark::DoNotOptimize(sink);
    return elapsed;
}

void report(benchmark::State& state, Clock::duration work, Clock::duration baseline) {
    const double items = static_cast<double>(state.iterations()) * pointCount;
    const double perItem = nanoseconds(work) / items;
    const double baselinePerItem = nanoseconds(baseline) / items;
    state.counters["ns_per_item"] = perItem;
    state.counters["baseline_ns_per_item"] = baselinePerItem;
    state.counters["ratio_to_baseline"] = baselinePerItem > 0.0 ? perItem / baselinePerItem : 0.0;
    state.SetItemsProcessed(static_cast<int64_t>(items));
}

// The conversion and its baseline alternate within each iteration, so that a change in the
// machine's load falls on both.
template <Baseline calls> void convertPoints(benchmark::State& state, Conversion conversion) {
    const PRuntimeLocation* location = PRuntime::getInstance()->location();
    Clock::duration work{};
    Clock::duration baseline{};
    for (auto _ : state) {
        work += convertOnce(location, conversion);
        baseline += callOnce<calls>();
    }
    report(state, work, baseline);
}

void BM_WGS84_TO_GCJ02(benchmark::State& state) {
    convertPoints<gcjFormulaCalls>(state, &PRuntimeLocation::WGS84_TO_GCJ02);
}
void BM_GCJ02_TO_WGS84(benchmark::State& state) {
    convertPoints<gcjFormulaCalls>(state, &PRuntimeLocation::GCJ02_TO_WGS84);
}
void BM_GCJ02_TO_BD09(benchmark::State& state) {
    convertPoints<gcjToBaiduCalls>(state, &PRuntimeLocation::GCJ02_TO_BD09);
}
void BM_BD09_TO_GCJ02(benchmark::State& state) {
    convertPoints<baiduToGcjCalls>(state, &PRuntimeLocation::BD09_TO_GCJ02);
}

// The two inverses against the forward conversion, each on the same points taken as GCJ-02 (all
// inside the region), alternating within each iteration.
void inverseToForward(benchmark::State& state, Conversion inverse) {
    const PRuntimeLocation* location = PRuntime::getInstance()->location();
    Clock::duration work{};
    Clock::duration forward{};
    for (auto _ : state) {
        work += convertOnce(location, inverse);
        forward += convertOnce(location, &PRuntimeLocation::WGS84_TO_GCJ02);
    }
    report(state, work, forward);
}

void BM_GCJ02_TO_WGS84_to_forward(benchmark::State& state) {
    inverseToForward(state, &PRuntimeLocation::GCJ02_TO_WGS84);
}
void BM_GCJ02_TO_WGS84_EXACT_to_forward(benchmark::State& state) {
    inverseToForward(state, &PRuntimeLocation::GCJ02_TO_WGS84_EXACT);
}

} // namespace

BENCHMARK(BM_WGS84_TO_GCJ02)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GCJ02_TO_WGS84)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GCJ02_TO_BD09)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_BD09_TO_GCJ02)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GCJ02_TO_WGS84_to_forward)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_GCJ02_TO_WGS84_EXACT_to_forward)->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
