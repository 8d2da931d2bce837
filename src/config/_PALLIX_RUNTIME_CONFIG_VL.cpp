#include "_PALLIX_RUNTIME_CONFIG_VL.h"

// The coordinates are left alone on purpose: the record is always filled field by field.
_PALLIX_RUNTIME_CONFIG_VL::_PALLIX_RUNTIME_CONFIG_VL() noexcept {}
