#pragma once

#include <cstddef>
#include <string>

namespace pallix::check {

enum class Severity { Warning, Error };

// One problem found in a file, at a position counted from 1 (line and column in bytes).
struct Finding {
    std::size_t line = 1;
    std::size_t column = 1;
    Severity severity = Severity::Error;
    std::string message;
};

} // namespace pallix::check
