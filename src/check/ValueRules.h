#pragma once

#include "Conversions.h"

#include <pugixml.hpp>

#include <string>
#include <vector>

namespace pallix::check {

class SourceFile;

// Quoted for messages: "text".
std::string inQuotes(const std::string& text);

// The document's root element of that name, or an error that the file has another: the readers
// look for their own root and read nothing without it.
pugi::xml_node requireRoot(SourceFile& file, const char* name);

// The elements among the children of a list, in order. Text among them is a warning when
// `textConsequence` says what the list's reader does with it: some take every child node as an
// entry, others only elements.
std::vector<pugi::xml_node> entries(SourceFile& file, const pugi::xml_node& list,
                                    const char* textConsequence);
extern const char* const kTextIsAnEmptyEntry;
extern const char* const kTextIsNotRead;

// Checks an attribute's text as the reader takes a value of `kind`; a missing attribute is left
// to the reader's default. For a number, `consequence` says what comes of a text that does not
// convert, "{}" standing for the number it is read as (`fallback` when there is none).
void checkValue(SourceFile& file, const pugi::xml_node& node, const char* attribute,
                format::ValueKind kind, const std::string& consequence = "it is read as {}",
                long long fallback = 0);

// The readers look each of these elements up as the first child of its name: a later one is
// never read. `valueAttribute` names the value that a scalar element carries (null for a list).
void warnAboutRepeatedElements(SourceFile& file, const pugi::xml_node& parent,
                               const std::vector<const char*>& names, const char* valueAttribute);

// Hexadecimal digits, either case.
bool isHexDigits(const std::string& text);

} // namespace pallix::check
