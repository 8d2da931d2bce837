#include "Checkers.h"

#include "SourceFile.h"

namespace pallix::check {

void checkFile(SourceFile& file, FileKind kind) {
    switch (kind) {
    case FileKind::Cloud:
        return checkCloud(file);
    case FileKind::Cpid:
        return checkCpid(file);
    case FileKind::Crash:
        return checkCrash(file);
    case FileKind::RestoreError:
        return checkRestoreError(file);
    case FileKind::Mapping:
        return checkMapping(file);
    case FileKind::Config:
        return checkConfig(file);
    case FileKind::LegacyConfig:
        return checkLegacyConfig(file);
    case FileKind::Notify:
        return checkNotify(file);
    case FileKind::Portbind:
        return checkPortbind(file);
    case FileKind::Factory:
        return checkFactory(file);
    case FileKind::Ipsw:
        return checkIpsw(file);
    case FileKind::Version:
        return checkVersion(file);
    }
}

} // namespace pallix::check
