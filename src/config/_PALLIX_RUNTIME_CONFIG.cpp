#include "_PALLIX_RUNTIME_CONFIG.h"

// Scalars are not touched: the global record is zero-initialised before construction and
// initialize() sets the start-up values.
_PALLIX_RUNTIME_CONFIG::_PALLIX_RUNTIME_CONFIG() noexcept {}

// Priority 101 (the first one available to programs) so that the record exists before any
// other static initialiser of the library, or of a program linked to it, could reach it.
_PALLIX_RUNTIME_CONFIG _globalFrameworkConfig __attribute__((init_priority(101)));
