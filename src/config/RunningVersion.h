#pragma once

#include "NString.h"

namespace pallix::config {

// Reads the running application's version from the resources directory's version file
// (root/Control/Version, attribute VALUE) into `version`. A missing file, one that does not
// parse, or one without root/Control leaves `version` as it was; a missing Version element or
// attribute yields an empty version. Returns whether `version` was assigned.
bool readRunningVersion(NString& version);

} // namespace pallix::config
