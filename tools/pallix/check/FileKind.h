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
};

// "cloud", "cpid", ... as the --kind option names them.
const std::vector<std::string>& fileKindNames();
std::string nameOf(FileKind kind);
std::optional<FileKind> fileKindFromName(const std::string& name);

// Tells the kind from the content: JSON is factory information; XML by its root element (and,
// for the shared root "Nevor", by its children). Records a finding and returns nothing when
// the kind cannot be told.
std::optional<FileKind> detectFileKind(SourceFile& file);

} // namespace pallix::check
