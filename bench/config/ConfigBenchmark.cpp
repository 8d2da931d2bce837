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

// Every iteration sets the pop-up time, alternating between two values of the same length, so
// that the file keeps its size.
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
    pallix::bench::saveAgainstDurableReplace(
        state, [&](long long round) { config->setPopupTimeADAPP(times[round & 1]); },
        pallix::bench::readFile(directory.file("configure.xml")), directory.path());
}
BENCHMARK(BM_ConfigSetter)->UseManualTime()->Unit(benchmark::kMillisecond);

} // namespace

BENCHMARK_MAIN();
