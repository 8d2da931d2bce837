#pragma once

#include "NString.h"
#include "NevorFunctionExport.h"

// The application's directories. The application sets them at start-up; until then they have
// the platform's defaults: the configuration directory under the user's application-support
// folder ("~/Library/Application Support/TolVane" on macOS, "$XDG_CONFIG_HOME/TolVane" or
// "~/.config/TolVane" elsewhere) and the resources directory beside the executable.
namespace NApplication {

NEVORFUNCTION_EXPORT NString DirectoryConfig();
NEVORFUNCTION_EXPORT NString DirectoryResources();
NEVORFUNCTION_EXPORT void setDirectoryConfig(const NString& directory);
NEVORFUNCTION_EXPORT void setDirectoryResources(const NString& directory);

} // namespace NApplication
