#pragma once

#include <cstdint>

// Restore engines. The host application defines the members, completing this declaration with
// the same underlying type; the library stores the value as an integer, 0 at start-up.
enum EPALLIX_RUNTIME_RESTORE_CORE : std::int32_t;
