#pragma once

#include "FileKind.h"
#include "SourceFile.h"

#include <pugixml.hpp>

#include <optional>
#include <string>
#include <vector>

namespace pallix::check {

// Checks the file as `kind`, or as the kind that its content shows, and records every finding
// on it; the file is only read. Returns why the file could not be checked at all (its kind
// cannot be told), or nothing.
std::string checkFile(SourceFile& file, std::optional<FileKind> kind);

// One file's bytes, shown as `name`, checked as `kind`: its findings in the order of their
// positions, as a check of many files (a whole release) asks of each.
std::vector<Finding> checkBytes(const std::string& name, const std::string& bytes, FileKind kind);

// What the library's XML reader makes of any file: references that XML does not allow,
// repeated attributes, markup that other XML parsers refuse, bytes that are not UTF-8. `root`
// names the root element that the file's reader looks up, null when no reader takes the file.
void checkXmlSyntax(SourceFile& file, const char* root);

// One checker per kind, given the root element that the kind's reader looks for.
void checkCloud(SourceFile& file, const pugi::xml_node& root);
void checkCpid(SourceFile& file, const pugi::xml_node& root);
void checkCrash(SourceFile& file, const pugi::xml_node& root);
void checkRestoreError(SourceFile& file, const pugi::xml_node& root);
void checkMapping(SourceFile& file, const pugi::xml_node& root);
void checkConfig(SourceFile& file, const pugi::xml_node& root);
void checkLegacyConfig(SourceFile& file, const pugi::xml_node& root);
void checkVersion(SourceFile& file, const pugi::xml_node& root);
void checkNotify(SourceFile& file, const pugi::xml_node& root);
void checkOldNotify(SourceFile& file, const pugi::xml_node& root);
void checkPortbind(SourceFile& file, const pugi::xml_node& root);
void checkIpsw(SourceFile& file, const pugi::xml_node& root);
// Factory information is JSON: its checker reads the text itself.
void checkFactory(SourceFile& file);

} // namespace pallix::check
