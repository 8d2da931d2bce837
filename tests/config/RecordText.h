#pragma once

#include "_PALLIX_RUNTIME_CONFIG.h"

#include <string>

namespace pallix::test {

// Every field of a configuration record as text, one line per scalar and per entry, doubles in
// hexadecimal so that equal texts mean bit-equal values. Used to compare records across
// processes.
std::string recordText(const _PALLIX_RUNTIME_CONFIG& record);

} // namespace pallix::test
