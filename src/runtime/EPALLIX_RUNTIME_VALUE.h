#pragma once

#include <cstdint>

// Keys of the runtime value store. The host application defines the members, completing this
// declaration with the same underlying type:
//     enum EPALLIX_RUNTIME_VALUE : std::int32_t { ... };
// The library only stores and compares the values as integers and accepts any of them.
enum EPALLIX_RUNTIME_VALUE : std::int32_t;
