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
std::optional<FileKind> fileKindFromName(const std::string& name);
// The root element that the kind's reader looks for (null for factory information, JSON).
const char* rootOf(FileKind kind);

// JSON (an object or an array at the top) is factory information; anything else is XML.
bool looksLikeJson(const std::string& text);

// The kind of a parsed XML file, told by its root element and, for a root that several kinds
// share, by the root's children. Nothing when it cannot be told: `ambiguity` says why, or a
// finding that no reader takes the root.
std::optional<FileKind> detectXmlKind(SourceFile& file, std::string& ambiguity);

// The kind of a whole file: factory information when it looks like JSON, otherwise the kind its
// XML tells. Nothing when the file does not parse or its kind cannot be told; a finding says why.
std::optional<FileKind> detectFileKind(SourceFile& file);

} // namespace pallix::check
