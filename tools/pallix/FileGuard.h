#pragma once

#include "FileKind.h"
#include "SourceFile.h"

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

namespace pallix::tool {

// The library reads a file it cannot use as if it were empty, and its next save replaces it;
// what it reads otherwise than written (an error of "pallix check": a value read as empty, an
// entry dropped) it writes back as read. Before a change, the tool makes sure that the file is
// either absent or one the library reads as the expected kind and as written; otherwise it fails
// (status 2) naming the file (or the first error) and "pallix check", and nothing is written.
// With `force` it goes on, with a warning: the user asked for it. Something other than a
// regular file is never replaced, forced or not.
void guardFile(const std::string& path, check::FileKind kind, bool force);

// "PATH:LINE:COLUMN: MESSAGE" of the first error that "pallix check" finds in the file as
// `kind` (what the library reads otherwise than written, or not at all), with how many more;
// "PATH: PROBLEM" when it cannot be read; empty when there is no error.
std::string firstError(const std::string& path, check::FileKind kind);
// The same of a file already read, which is left checked.
std::string firstError(check::SourceFile& file, check::FileKind kind);

// Before the library imports an older file or directory `old` of the configuration directory
// `directory`, which it deletes afterwards: fails (status 2) naming the first of `losses` (each
// "PATH: why") unless `force`, which warns instead.
void guardImportLosses(const std::vector<std::string>& losses, const std::string& old,
                       const std::string& directory, bool force);

// Before a listing: a file that exists but that the library cannot read as `kind` would list
// as empty. Fails (status 2) naming the file, saying so and pointing to "pallix check".
void guardReading(const std::string& path, check::FileKind kind);

// Why the library would not read the file as `kind` (not a regular file, unreadable, malformed,
// another kind); empty when it would, and when there is no file. For a command that only reads
// and warns.
std::string fileProblem(const std::string& path, check::FileKind kind);

// Before the library imports an older file (or directory) `old` into `path`: it deletes `old`
// whether or not the import could be written, so a `path` that cannot be replaced (not a
// regular file, in a directory that cannot be written) fails (status 2) before anything starts.
void guardImport(const std::string& path, const std::string& old);

void addForceFlag(CLI::App& command, bool& force);

// The library reads a missing, broken or foreign file as an empty one and answers every lookup
// with nothing, so the subcommands that look things up in a file the user names (cloud, cpid,
// crash, restore-error, mapping) make sure first that `path` is a file of the `expected` kind.
// Otherwise they fail with status 2, naming the file, the kind it is when that can be told, or
// else what is wrong and the 'pallix check' that says more.
void requireFileKind(const std::string& path, check::FileKind expected);

} // namespace pallix::tool
