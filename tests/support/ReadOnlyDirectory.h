#pragma once

#include <functional>
#include <string>

namespace pallix::test {

// Runs `body` in a child process for which `directory` is read-only, and returns the child's
// exit status: 0 when `body` returned true, 1 when it returned false, 2 when the directory
// could not be made read-only for it, -1 when the child did not exit normally.
//
// The directory is made mode 0555 (and its parent searchable). Because the suite may run as
// root, whom file modes do not stop, a root child first gives up its privileges for those of
// "nobody". The directory's mode is restored before returning.
int runWithReadOnlyDirectory(const std::string& directory, const std::function<bool()>& body);

} // namespace pallix::test
