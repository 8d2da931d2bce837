// Feeds arbitrary bytes to the importer of the legacy configuration file, then checks that the
// imported record is written back stably in the current format.

#include "FuzzConfigSupport.h"

#include "PRuntimeConfig.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pallix::fuzz::writeInput("Config.xml", data, size);
    pallix::fuzz::resetRecord();
    _globalFrameworkConfig.newInstall = true;
    PRuntimeConfig config;
    config.load_old();
    // A legacy file means an earlier installation, readable or not.
    if (_globalFrameworkConfig.newInstall) {
        __builtin_trap();
    }
    pallix::fuzz::checkWriterIsStable();
    return 0;
}
