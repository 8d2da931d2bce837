#pragma once

#include "NString.h"

#include <pugixml.hpp>

#include <string>

namespace pallix {

// Every XML file of the library is read and written through these two functions, so that all
// of them share one encoding, one indentation and one crash-safe way of replacing a file.
class XmlFile {
public:
    // Loads the file with the parser's default options, reading it as UTF-8. Only a regular
    // file loads; anything else at the path fails at once, like a missing file.
    static pugi::xml_parse_result load(pugi::xml_document& document, const NString& path);

    // Serialises the document with a tab per level and indented formatting only, in UTF-8, and
    // replaces the file atomically. The document carries its own declaration node.
    static bool save(const pugi::xml_document& document, const NString& path);

    // Replaces the file atomically with text that XmlText serialised, as save() does with its
    // own; the text is handed to the file writer without a copy.
    static bool saveText(std::string text, const NString& path);

    // For the stores whose file must not outlive a failed save: saves like save(), and when
    // that fails removes the old file, so that no stale content is read back. The new content
    // is complete in its temporary before the old file is touched, so a crash at any moment
    // leaves the old file or the new one, never none. True when the new content was saved.
    static bool replaceOrRemove(const pugi::xml_document& document, const NString& path);

    // Adds the declaration node in front of everything else in the document. With
    // `standalone` set it also carries standalone="no".
    static void prependDeclaration(pugi::xml_document& document, const char* encoding,
                                   bool standalone);
};

} // namespace pallix
