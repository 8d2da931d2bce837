#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// Gives the named working directory of the configuration a default: an entry with a non-empty
// path is kept, a missing or empty one becomes `defaultPath`. Does not save the configuration.
PALLIX_RUNTIME_EXPORT void
NevorFrameworkConfigDirectoryDefault(const NString& name, const NString& defaultPath) noexcept;
