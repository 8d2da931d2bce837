#pragma once

#include "PallixRuntimeExport.h"

// The library's load-time initialiser and unload-time finaliser. Both are empty on purpose:
// loading the library creates no root and unloading it destroys none. The only load-time work
// is the construction of the configuration record, which runs before the initialiser.
PALLIX_RUNTIME_EXPORT void _Pallix_Runtime_Dynamic_Library_Init();
PALLIX_RUNTIME_EXPORT void _Pallix_Runtime_Dynamic_Library_Fini();
