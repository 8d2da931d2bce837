#pragma once

#include "NString.h"

namespace pallix::config {

// The files the configuration reads and writes, looked up on every call because the
// application may move its directories at start-up.
NString currentFilePath(); // the configuration file, rewritten by every save
NString legacyFilePath();  // the file of earlier releases, imported once and removed
NString versionFilePath(); // the running version, in the resources directory (read only)

} // namespace pallix::config
