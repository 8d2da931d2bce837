// The cost of a configuration setter, which saves the whole configuration file, against the
// floor of any save of the same file: a durable atomic replace of the same bytes
// (DurableReplace.h), measured in turns in every iteration of the same run
// (SaveAgainstBaseline.h).
//
// The ratio depends on what an fsync costs on the file system under the temporary directory: the
// cheaper the fsync, the larger the library's own share of a save shows. The files live in the
// system's temporary directory, on the file system a user's configuration directory is on.

#include "DurableReplace.h"
#include "NApplication.h"
#include "PRuntime.h"
#include "PRuntimeConfig.h"
#include "SaveAgainstBaseline.h"
#include "ScratchDirectory.h"

#include <benchmark/benchmark.h>

#include <functional>
#include <string>

namespace {

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

// Times `set(config, round)`, a setter that alternates between two values so that every call
// changes the file. Before the timing, both values are set once, to learn the file's two
// contents, and the configuration is filled once a run.
void setterAgainstBaseline(benchmark::State& state,
                           const std::function<void(PRuntimeConfig&, long long)>& set) {
    pallix::bench::ScratchDirectory directory("config");
    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimeConfig* config = PRuntime::getInstance()->config();
    if (config == nullptr) {
        state.SkipWithError("no configuration");
        return;
    }
    static const bool filled = (fill(*config), true);
    benchmark::DoNotOptimize(filled);
    std::string bytes[2];
    for (int side : {0, 1}) {
        set(*config, side);
        bytes[side] = pallix::bench::readFile(directory.file("configure.xml"));
    }
    pallix::bench::saveAgainstDurableReplace(
        state, [&](long long round) { set(*config, round); }, bytes, directory.path());
}

// A preference: one value of the file's first elements.
void BM_ConfigSetPreference(benchmark::State& state) {
    setterAgainstBaseline(state, [](PRuntimeConfig& config, long long round) {
        config.setPopupTimeADAPP((round & 1) != 0 ? 1700000001000ULL : 1700000002000ULL);
    });
}
BENCHMARK(BM_ConfigSetPreference)->UseManualTime()->Unit(benchmark::kMillisecond);

// A setting flag: one entry of the "Status" map.
void BM_ConfigSetSettingStatus(benchmark::State& state) {
    setterAgainstBaseline(state, [](PRuntimeConfig& config, long long round) {
        config.setSettingStatus("Setting7", (round & 1) != 0);
    });
}
BENCHMARK(BM_ConfigSetSettingStatus)->UseManualTime()->Unit(benchmark::kMillisecond);

// A place added to and removed from the virtual locations: the list whose every coordinate is
// written again.
void BM_ConfigVirtualLocation(benchmark::State& state) {
    setterAgainstBaseline(state, [](PRuntimeConfig& config, long long round) {
        if ((round & 1) != 0) {
            config.virtualLocationAppend(121.4737, 31.2304, "Added & removed");
        } else {
            config.virtualLocationRemove(121.4737, 31.2304);
        }
    });
}
BENCHMARK(BM_ConfigVirtualLocation)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
