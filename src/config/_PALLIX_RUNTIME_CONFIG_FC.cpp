#include "_PALLIX_RUNTIME_CONFIG_FC.h"

// Root is left alone on purpose: the record is always filled field by field.
_PALLIX_RUNTIME_CONFIG_FC::_PALLIX_RUNTIME_CONFIG_FC() noexcept {}
