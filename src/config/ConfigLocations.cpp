#include "ConfigLocations.h"

#include "NApplication.h"

namespace pallix::config {

NString currentFilePath() {
    return NApplication::DirectoryConfig() + "/configure.xml";
}

NString legacyFilePath() {
    return NApplication::DirectoryConfig() + "/Config.xml";
}

NString versionFilePath() {
    return NApplication::DirectoryResources() + "/UpdateCfg.xml";
}

} // namespace pallix::config
