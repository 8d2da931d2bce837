#pragma once

#include "NString.h"
#include "NevorFunctionExport.h"

// Locations of the device maker's desktop software.
namespace NApple {

// The folder in which the platform keeps device backups: on macOS
// "~/Library/Application Support/MobileSync/Backup"; elsewhere
// "$XDG_DATA_HOME/MobileSync/Backup" or "~/.local/share/MobileSync/Backup". The application
// may set another.
NEVORFUNCTION_EXPORT NString BackupDirectory();
NEVORFUNCTION_EXPORT void setBackupDirectory(const NString& directory);

} // namespace NApple
