#pragma once

#include "check/FileKind.h"

#include <CLI/CLI.hpp>

#include <string>

// What the subcommands that look things up in a file the user names (cloud, cpid, crash,
// restore-error, mapping) have in common.
namespace pallix::tool {

// How messages call a kind of file: "a cloud document", "a chip table", ...
std::string describeKind(check::FileKind kind);

// The library reads a missing, broken or foreign file as an empty one and answers every lookup
// with nothing, so the tool makes sure first that `path` is a readable regular file whose
// content is of the `expected` kind. Otherwise it fails with status 2, naming the file, the
// kind it is when that can be told, or else what is wrong and the 'pallix check' that says more.
void requireFileKind(const std::string& path, check::FileKind expected);

} // namespace pallix::tool
