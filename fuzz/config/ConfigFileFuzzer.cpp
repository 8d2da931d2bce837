// Feeds arbitrary bytes to the reader of the current configuration file, then checks that what
// it read is written back stably.

#include "FuzzConfigSupport.h"

#include "PRuntimeConfig.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pallix::fuzz::writeInput("configure.xml", data, size);
    pallix::fuzz::resetRecord();
    PRuntimeConfig config;
    config.load_new();
    // The file exists, whatever it holds.
    if (_globalFrameworkConfig.newInstall) {
        __builtin_trap();
    }
    pallix::fuzz::checkWriterIsStable();
    return 0;
}
