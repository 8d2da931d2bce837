// The cost of a configuration setter, which saves the whole configuration file, against the
// floor of any save of the same file: a durable atomic replace of the same bytes
// (DurableReplace.h), both measured alternately in every iteration of the same run.
//
// The ratio depends on what an fsync costs on the file system under the temporary directory: the
// cheaper the fsync, the larger the library's own share of a save shows. The files live in the
// system's temporary directory, on the file system a user's configuration directory is on.

#include "DurableReplace.h"
#include "NApplication.h"
#include "PRuntime.h"
#include "PRuntimeConfig.h"
#include "ScratchDirectory.h"

#include <benchmark/benchmark.h>

#include <chrono>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

double seconds(Clock::duration elapsed) {
    return std::chrono::duration<double>(elapsed).count();
}

// A configuration as a long-used installation has it: every setting set, and lists of some
// length in every container.
void fill(PRuntimeConfig& config) {
    config.setLastSkin("Midnight");
    config.setSameTimeDownloadNumber(5);
    config.setDownloadMaxSpeed(2048);
    for (int i = 0; i < 30; ++i) {
        config.setSettingStatus(NString("Setting" + std::to_string(i)), i % 2 == 0);
    }
    for (int i = 0; i < 10; ++i) {
        config.setToolsHot(NString("Tool" + std::to_string(i)), i % 3 == 0);
        config.setConfigDirectory(
            NString("Place" + std::to_string(i)),
            NString("/Users/someone/Documents/Pallix/Place " + std::to_string(i)));
        config.customBackupAppend(NString("/Volumes/Backup " + std::to_string(i)));
    }
    for (int i = 0; i < 20; ++i) {
        config.fileCollectAppend(NString("/Users/someone/Music/Ringtone " + std::to_string(i)),
                                 i % 2 == 0);
        config.virtualLocationAppend(
            116.39 + i * 0.001, 39.9 + i * 0.002,
            NString("Place & street \xe5\x8c\x97\xe4\xba\xac " + std::to_string(i)));
        config.locationCollectAppend(121.47 + i * 0.003, 31.23 + i * 0.004,
                                     NString("Favourite " + std::to_string(i)));
    }
    config.setAutoImportRingtone(true);
}

// Every iteration sets the pop-up time, alternating between two values of the same length, so
// that the file keeps its size. The baseline replaces another file of the directory with the
// bytes of the configuration file.
void BM_ConfigSetter(benchmark::State& state) {
    pallix::bench::ScratchDirectory directory("config");
    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimeConfig* config = PRuntime::getInstance()->config();
    if (config == nullptr) {
        state.SkipWithError("no configuration");
        return;
    }
    fill(*config);
    const unsigned long long times[2] = {1700000001000ULL, 1700000002000ULL};
    config->setPopupTimeADAPP(times[1]);
    const std::string bytes = pallix::bench::readFile(directory.file("configure.xml"));
    const std::string baselineFile = directory.file("baseline.xml");

    double setterTotal = 0;
    double baselineTotal = 0;
    long long round = 0;
    for (auto _ : state) {
        // The order alternates so that neither side always runs on the other's writeback.
        const bool baselineFirst = (round & 1) != 0;
        Clock::duration baseline{};
        if (baselineFirst) {
            const auto start = Clock::now();
            const bool replaced = pallix::bench::durableReplace(baselineFile, bytes);
            baseline = Clock::now() - start;
            if (!replaced) {
                state.SkipWithError("the baseline could not replace its file");
                break;
            }
        }
        const auto start = Clock::now();
        config->setPopupTimeADAPP(times[round & 1]);
        const Clock::duration setter = Clock::now() - start;
        if (!baselineFirst) {
            const auto baselineStart = Clock::now();
            const bool replaced = pallix::bench::durableReplace(baselineFile, bytes);
            baseline = Clock::now() - baselineStart;
            if (!replaced) {
                state.SkipWithError("the baseline could not replace its file");
                break;
            }
        }
        setterTotal += seconds(setter);
        baselineTotal += seconds(baseline);
        state.SetIterationTime(seconds(setter));
        ++round;
    }
    if (round > 0 && baselineTotal > 0) {
        state.counters["ratio_to_durable_replace"] = setterTotal / baselineTotal;
        state.counters["setter_ms"] = 1000.0 * setterTotal / static_cast<double>(round);
        state.counters["durable_replace_ms"] = 1000.0 * baselineTotal / static_cast<double>(round);
    }
    state.counters["file_bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(BM_ConfigSetter)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
