#pragma once

#include <pugixml.hpp>

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

// JSON (an object or an array at the top) is factory information; anything else is XML.
bool looksLikeJson(const std::string& text);

// What telling the kind of an XML file by its content found.
struct Detection {
    std::optional<FileKind> kind;
    // Set when the root is one that no reader of the library takes: nothing in the file is
    // read, whatever it is used as (a finding has been made).
    bool unknownRoot = false;
    // Set when the root is shared by several kinds and its children do not tell them apart.
    std::string ambiguity;
};

// Tells the kind of a parsed XML file by its root element (and, for the shared roots, by the
// root's children).
Detection detectXmlKind(SourceFile& file, const pugi::xml_document& document);

// The kind of a whole file from its text: factory information when it looks like JSON,
// otherwise the kind its XML tells. Nothing when the file does not parse or its kind cannot be
// told; a finding says why.
std::optional<FileKind> detectFileKind(SourceFile& file);

} // namespace pallix::check
