#pragma once

#include <pugixml.hpp>

#include <cstdint>
#include <string>

// How the values of the files are converted, one function per conversion, used by the readers
// and writers of the library and by whatever tells a user what they will read.
namespace pallix::format {

// How a reader takes the text of one value: as text, with pugixml's as_bool or as_double, or
// with one of the integer conversions below. The formats' value tables name one per value.
enum class ValueKind { Text, Boolean, Number, Int32, Int64, UInt64, Port };

// Whether two names are the same text; usable in the readers' static assertions about the
// value tables.
constexpr bool sameName(const char* a, const char* b) {
    while (*a != '\0' && *a == *b) {
        ++a;
        ++b;
    }
    return *a == *b;
}

// ---- numbers as the readers take them
// The XML reader's own conversions (pugixml's as_int and friends): optional blanks and sign,
// decimal or 0x hexadecimal digits; a value beyond the type saturates at its limit.
int readInt32(const pugi::xml_attribute& attribute, int fallback);
unsigned long long readUInt64(const pugi::xml_attribute& attribute, unsigned long long fallback);
long long readInt64(const pugi::xml_attribute& attribute, long long fallback);
inline constexpr long long kInt32Min = INT32_MIN;
inline constexpr long long kInt32Max = INT32_MAX;

// The partner service port: 16 bits wide, so a larger number keeps only its low 16 bits (read as
// an unsigned 32-bit number first, which saturates).
std::uint16_t readPort(const pugi::xml_attribute& attribute);
inline constexpr unsigned kPortMax = 65535;

// ---- identifiers as text
// A chip table names chips with four and boards with two upper-case hexadecimal digits (at
// least; a wider number keeps all its digits), and a lookup compares that text exactly.
std::string chipText(unsigned chip);
std::string boardText(unsigned board);
// The board of the row that a chip falls back to when its own board has none.
inline constexpr unsigned kFallbackBoard = 0;

// Factory.json names a device by its id in sixteen upper-case hexadecimal digits; a name edited
// by hand is read back as strtoull(name, 16) reads it (blanks, sign and "0x" allowed, stops at
// the first other character, saturates).
std::string deviceIdText(unsigned long long id);
unsigned long long readDeviceId(const char* name);

// ---- bytes as text
// Factory values are bytes written as base64 (standard alphabet, with padding). Whether a text
// is such a value, that is, whether the store reads it back as the bytes it stands for.
bool isBase64(const std::string& text);

// ---- characters
// Whether a code point is a character that an XML 1.0 document may carry, written out or as a
// character reference.
constexpr bool isXmlCharacter(unsigned long long point) {
    return point == 0x9 || point == 0xA || point == 0xD || (point >= 0x20 && point <= 0xD7FF) ||
           (point >= 0xE000 && point <= 0xFFFD) || (point >= 0x10000 && point <= 0x10FFFF);
}
// The code point of the UTF-8 sequence at `at`, advancing past it; -1 for bytes that are not
// UTF-8 (overlong forms, surrogates and points past U+10FFFF included), leaving `at` on them.
long decodeUtf8(const std::string& text, std::size_t& at);
// Why a text cannot be carried by an XML 1.0 document (bytes that are not UTF-8, or a character
// that XML does not allow, such as a control character other than tab, line feed and carriage
// return), as a noun phrase ("a byte that is not UTF-8 (byte 3)"); empty when it can. The
// library's writer would write such a character as a reference that other XML parsers refuse.
std::string xmlTextProblem(const std::string& text);

} // namespace pallix::format
