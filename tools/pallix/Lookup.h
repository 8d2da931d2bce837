#pragma once

#include "FileKind.h"

#include <string>

namespace pallix::tool {

// The library reads a missing, broken or foreign file as an empty one and answers every lookup
// with nothing, so the subcommands that look things up in a file the user names (cloud, cpid,
// crash, restore-error, mapping) make sure first that `path` is a file of the `expected` kind.
// Otherwise they fail with status 2, naming the file, the kind it is when that can be told, or
// else what is wrong and the 'pallix check' that says more.
void requireFileKind(const std::string& path, check::FileKind expected);

} // namespace pallix::tool
