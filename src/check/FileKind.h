#pragma once

#include <optional>
#include <string>
#include <vector>

namespace pallix::check {

class SourceFile;

// The kinds of file that the library reads.
enum class FileKind {
    Cloud,
    Cpid,
    Crash,
    RestoreError,
    Mapping,
    Config,
    LegacyConfig,
    Notify,
    Portbind,
    Factory,
    Ipsw,
    Version,
    OldNotify,
};

// "cloud", "cpid", ... as the --kind option names them.
const std::vector<std::string>& fileKindNames();
std::string nameOf(FileKind kind);
// How messages call the kind: "a cloud document", "a chip table", ...
std::string describe(FileKind kind);
std::optional<FileKind> fileKindFromName(const std::string& name);

// The kind of a whole file: factory information when it looks like JSON, otherwise the kind
// that its XML root (and, for a root that several kinds share, the root's children) tells.
// Nothing when the file does not parse or its kind cannot be told; a finding says why.
std::optional<FileKind> detectFileKind(SourceFile& file);

} // namespace pallix::check
