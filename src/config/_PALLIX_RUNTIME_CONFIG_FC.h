#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One favourite file of the configuration: the path in normalised form and the root flag that
// the caller gave with it. The constructor builds only the string; whoever fills the record
// sets the flag.
struct PALLIX_RUNTIME_EXPORT _PALLIX_RUNTIME_CONFIG_FC {
    _PALLIX_RUNTIME_CONFIG_FC() noexcept;

    NString Path;
    bool Root;
};
