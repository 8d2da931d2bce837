#pragma once

#include <pugixml.hpp>

#include <initializer_list>
#include <optional>
#include <string>

namespace pallix::check {

class SourceFile;

// A whole integer as the library's XML reader takes it: optional blanks and sign, decimal
// digits or 0x and hexadecimal digits. Nothing when the text holds anything else.
struct IntegerText {
    bool negative = false;
    unsigned long long magnitude = 0;
    bool overflow = false; // more than 64 bits of magnitude
};
std::optional<IntegerText> parseInteger(const std::string& text);

bool fitsInt32(const IntegerText& value);
bool fitsInt64(const IntegerText& value);
bool fitsUInt64(const IntegerText& value);

bool isHexDigits(const std::string& text, bool upperOnly);
bool isDecimalNumber(const std::string& text);

// Attribute checks that record a finding at the attribute and tell whether the value is good.
// A missing attribute is left to the caller (the readers give defaults).
enum class IntegerWidth { Int32, Int64, UInt64 };
bool checkIntegerAttribute(SourceFile& file, const pugi::xml_node& node, const char* name,
                           IntegerWidth width, const std::string& consequence);
// A boolean written other than true/false/yes/no/1/0 is read by its first letter only.
void checkBooleanAttribute(SourceFile& file, const pugi::xml_node& node, const char* name);
void checkNumberAttribute(SourceFile& file, const pugi::xml_node& node, const char* name);

// The first child element of the document with this name, or a finding on the wrong root.
pugi::xml_node requireRoot(SourceFile& file, const pugi::xml_document& document, const char* name);
// The child element, or a finding (error) that it is missing.
pugi::xml_node requireChild(SourceFile& file, const pugi::xml_node& parent, const char* name);

// Text among the entries of a list: some readers take every child node as an entry, text
// included, others only elements. `consequence` says what the reader of this list does with
// it ("is not read", "is read as an entry with every field empty").
void warnAboutTextEntries(SourceFile& file, const pugi::xml_node& list,
                          const std::string& consequence);

// What the consequence is for the readers that take every child node.
extern const char* const kTextIsAnEmptyEntry;
// ... and for those that take only elements.
extern const char* const kTextIsNotRead;

// The library looks each of these elements up as the first child of that name: a later one is
// never read. `attribute` names the value that a scalar element carries (null for a list).
void warnAboutRepeatedElements(SourceFile& file, const pugi::xml_node& parent,
                               std::initializer_list<const char*> names, const char* attribute);

// Quoted for messages: "text".
std::string inQuotes(const std::string& text);

} // namespace pallix::check
