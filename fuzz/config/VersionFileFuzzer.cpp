// Feeds arbitrary bytes to start-up as the resources' version file. Without a configuration
// file the last version stays at its start-up value "5.0.0", so start-up must report a new
// installation, and an update exactly when the file named another running version.

#include "FuzzConfigSupport.h"

#include "NFileSystem.h"
#include "PRuntimeConfig.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    // The default data root lives under the home directory; keep it inside the scratch one.
    static const bool homeSet = ::setenv("HOME", pallix::fuzz::configDirectory().c_str(), 1) == 0;
    (void)homeSet;
    pallix::fuzz::writeInput("UpdateCfg.xml", data, size);
    NFileSystem::file::remove(NString(pallix::fuzz::configDirectory() + "/configure.xml"));
    pallix::fuzz::resetRecord();
    PRuntimeConfig config;
    config.initialize();
    if (!config.newInstall() || config.newUpdate() != (config.version() != "5.0.0")) {
        __builtin_trap();
    }
    return 0;
}
