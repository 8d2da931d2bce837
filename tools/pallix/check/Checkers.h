#pragma once

#include "FileKind.h"

namespace pallix::check {

class SourceFile;

// Checks the file as the given kind and records every finding on it. The file is only read.
void checkFile(SourceFile& file, FileKind kind);

// One checker per kind (each in the source file of its subsystem).
void checkCloud(SourceFile& file);
void checkCpid(SourceFile& file);
void checkCrash(SourceFile& file);
void checkRestoreError(SourceFile& file);
void checkMapping(SourceFile& file);
void checkConfig(SourceFile& file);
void checkLegacyConfig(SourceFile& file);
void checkNotify(SourceFile& file);
void checkPortbind(SourceFile& file);
void checkIpsw(SourceFile& file);
void checkFactory(SourceFile& file);
void checkVersion(SourceFile& file);

} // namespace pallix::check
