#include "ConfigLocations.h"

#include "FileNames.h"
#include "NApplication.h"

namespace pallix::config {

namespace format = pallix::format;

NString currentFilePath() {
    return NApplication::DirectoryConfig() + "/" + NString(format::kConfigurationFile);
}

NString legacyFilePath() {
    return NApplication::DirectoryConfig() + "/" + NString(format::kLegacyConfigurationFile);
}

NString versionFilePath() {
    return NApplication::DirectoryResources() + "/" + NString(format::kVersionFile);
}

} // namespace pallix::config
