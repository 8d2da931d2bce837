#pragma once

#include "NString.h"
#include "NevorCoreExport.h"

namespace NShell {

// Runs the command line through the system shell (/bin/sh -c) and waits for it. Returns the
// command's exit status, or -1 when it could not be run or ended by a signal.
NEVORCORE_EXPORT int system(const NString& command);

} // namespace NShell
