#pragma once

#include <string>

namespace pallix::bench {

// The floor of every save: the durable steps of an atomic replace and nothing else. The bytes
// go to a new temporary beside the target, are flushed with fsync, the temporary is renamed
// over the target and the directory is flushed so that the rename itself survives a crash.
// These are exactly the steps the framework's writer takes to make a save durable; what the
// writer adds around them (following links, keeping the mode and owner, locking and cleaning
// up temporaries) is the library's cost and is left out here.
//
// Returns false when a step fails, so that a benchmark can stop rather than time nothing.
bool durableReplace(const std::string& target, const std::string& bytes);

// The bytes of a file, or an empty string when it cannot be read.
std::string readFile(const std::string& path);

} // namespace pallix::bench
