#pragma once

#include "FileKind.h"

#include <pugixml.hpp>

#include <optional>
#include <string>

namespace pallix::check {

class SourceFile;

// Checks the file as `kind`, or as the kind that its content shows when none is given, and
// records every finding on it. The file is only read. Returns an empty text, or why the file
// could not be checked at all because its kind cannot be told.
std::string checkFile(SourceFile& file, std::optional<FileKind> kind);

// What the library's XML reader makes of the text whatever the kind: references that XML does
// not allow, repeated attributes (XmlChecks.cpp).
void checkXmlSyntax(SourceFile& file, const pugi::xml_document& document);

// One checker per kind (each in the source file of its subsystem), given the parsed document.
void checkCloud(SourceFile& file, const pugi::xml_document& document);
void checkCpid(SourceFile& file, const pugi::xml_document& document);
void checkCrash(SourceFile& file, const pugi::xml_document& document);
void checkRestoreError(SourceFile& file, const pugi::xml_document& document);
void checkMapping(SourceFile& file, const pugi::xml_document& document);
void checkConfig(SourceFile& file, const pugi::xml_document& document);
void checkLegacyConfig(SourceFile& file, const pugi::xml_document& document);
void checkNotify(SourceFile& file, const pugi::xml_document& document);
void checkOldNotify(SourceFile& file, const pugi::xml_document& document);
void checkPortbind(SourceFile& file, const pugi::xml_document& document);
void checkIpsw(SourceFile& file, const pugi::xml_document& document);
void checkVersion(SourceFile& file, const pugi::xml_document& document);
// Factory information is JSON: its checker reads the text itself.
void checkFactory(SourceFile& file);

} // namespace pallix::check
