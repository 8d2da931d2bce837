#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One place of the virtual-location history or of the favourite locations: two coordinates,
// kept exactly as given, and the name the caller gave the place. The constructor builds only
// the string; copying copies all three fields.
struct PALLIX_RUNTIME_EXPORT _PALLIX_RUNTIME_CONFIG_VL {
    _PALLIX_RUNTIME_CONFIG_VL() noexcept;

    double X;
    double Y;
    NString Location;
};
