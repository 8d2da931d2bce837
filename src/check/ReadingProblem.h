#pragma once

#include "FileKind.h"

#include <cstddef>
#include <optional>
#include <string>

namespace pallix::check {

// What keeps the library from reading a file as a kind. The library itself says nothing: it
// reads a missing, broken or foreign file as an empty one.
struct ReadingProblem {
    enum class Cause {
        Missing,    // "no such file"
        NotRegular, // a directory, a pipe, a device: never read, never replaced
        Unreadable, // cannot be opened or read
        Malformed,  // not well-formed, or of a kind that the content does not tell
        OtherKind,  // "is a chip table, not a cloud document"
    };
    Cause cause;
    std::string message;
    // Where the text shows the problem (Malformed), counted from 1; 0 when it has no place.
    std::size_t line = 0;
    std::size_t column = 0;
};

// Why the library would not read the file at `path` as `kind`; nothing when it would. The file
// is looked at before it is opened and opened without blocking, so that a pipe never stalls
// the caller.
std::optional<ReadingProblem> readingProblem(const std::string& path, FileKind kind);

} // namespace pallix::check
