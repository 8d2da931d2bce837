#pragma once

#include "FileKind.h"

#include <optional>
#include <string>
#include <vector>

namespace pallix::check {

// A file of a configuration directory as the library comes to it. A note is a finding that comes
// from the file's place among the others rather than from its text (a file that an import reads
// in its place, a file that the import passes over).
struct DirectoryFile {
    std::string path;
    std::optional<FileKind> kind;
    std::string note;
    bool noteOnly = false; // the library never reads it: only the note is said of it
};

// Every file of the configuration directory that the library reads, each with its kind, in the
// order in which the library comes to them.
std::vector<DirectoryFile> configDirectoryFiles(std::string directory);

} // namespace pallix::check
