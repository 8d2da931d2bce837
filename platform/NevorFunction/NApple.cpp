#include "NApple.h"

#include "ApplicationDirectories.h"
#include "NSystem.h"

namespace {

nevor::function::DirectorySetting& backupDirectory() {
    static nevor::function::DirectorySetting setting;
    return setting;
}

NString defaultBackupDirectory() {
#if defined(__APPLE__)
    return NSystem::userHome() + "/Library/Application Support/MobileSync/Backup";
#else
    return nevor::function::environmentDirectory("XDG_DATA_HOME", "/.local/share") +
           "/MobileSync/Backup";
#endif
}

} // namespace

namespace NApple {

NString BackupDirectory() {
    return backupDirectory().get(defaultBackupDirectory);
}

void setBackupDirectory(const NString& directory) {
    backupDirectory().set(directory);
}

} // namespace NApple
