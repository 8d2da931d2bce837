#include "ValueRules.h"

#include "SourceFile.h"

#include <cerrno>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <strings.h>

namespace pallix::check {

namespace {

using format::ValueKind;

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    return first == std::string::npos
               ? std::string()
               : text.substr(first, text.find_last_not_of(" \t\r\n") + 1 - first);
}

// A whole number as pugixml's integer conversions take it (blanks, a sign, decimal digits or
// 0x and hexadecimal digits), before they saturate; nothing when the text holds anything else.
struct WholeNumber {
    bool negative;
    unsigned long long magnitude;
    bool overflow; // beyond 64 bits
};
std::optional<WholeNumber> wholeNumber(const std::string& raw) {
    const std::string text = trimmed(raw);
    const std::size_t sign = !text.empty() && (text[0] == '-' || text[0] == '+') ? 1 : 0;
    const bool hexadecimal = text.compare(sign, 2, "0x") == 0 || text.compare(sign, 2, "0X") == 0;
    const std::string digits = text.substr(sign + (hexadecimal ? 2 : 0));
    if (digits.empty() ||
        digits.find_first_not_of(hexadecimal ? "0123456789abcdefABCDEF" : "0123456789") !=
            std::string::npos) {
        return std::nullopt;
    }
    errno = 0;
    const unsigned long long magnitude =
        std::strtoull(digits.c_str(), nullptr, hexadecimal ? 16 : 10);
    return WholeNumber{sign == 1 && text[0] == '-', magnitude, errno == ERANGE};
}

// The number as the reader converts it.
std::string readAs(const pugi::xml_attribute& attribute, ValueKind kind, long long fallback) {
    switch (kind) {
    case ValueKind::Int32:
        return std::to_string(format::readInt32(attribute, static_cast<int>(fallback)));
    case ValueKind::Int64:
        return std::to_string(format::readInt64(attribute, fallback));
    case ValueKind::UInt64:
        return std::to_string(
            format::readUInt64(attribute, static_cast<unsigned long long>(fallback)));
    default:
        return std::to_string(format::readPort(attribute));
    }
}

void checkWholeNumber(SourceFile& file, const pugi::xml_attribute& attribute, ValueKind kind,
                      const std::string& written, std::string consequence, long long fallback) {
    const std::optional<WholeNumber> value = wholeNumber(attribute.value());
    const std::string read = readAs(attribute, kind, fallback);
    if (kind == ValueKind::Port) {
        // "-0" is read as 0, as pugixml's unsigned conversion reads it.
        if (!value || (value->negative && value->magnitude != 0) || value->overflow ||
            value->magnitude > format::kPortMax) {
            file.error(file.offsetOf(attribute),
                       std::string(attribute.name()) + " " + inQuotes(attribute.value()) +
                           " is not a port number from 0 to " + std::to_string(format::kPortMax) +
                           "; it is read as " + read);
        }
        return;
    }
    consequence.replace(consequence.find("{}"), 2, read);
    // The magnitudes of the largest and of the most negative number of the width.
    const unsigned long long most = kind == ValueKind::Int32   ? INT32_MAX
                                    : kind == ValueKind::Int64 ? INT64_MAX
                                                               : UINT64_MAX;
    const unsigned long long least = kind == ValueKind::UInt64 ? 0 : most + 1;
    if (!value) {
        file.error(file.offsetOf(attribute), written + " is not a whole number; " + consequence);
    } else if (value->overflow || value->magnitude > (value->negative ? least : most)) {
        const char* width = kind == ValueKind::Int32   ? "a 32-bit signed integer"
                            : kind == ValueKind::Int64 ? "a 64-bit signed integer"
                                                       : "a 64-bit unsigned integer";
        file.error(file.offsetOf(attribute),
                   written + " does not fit " + width + "; " + consequence);
    }
}

} // namespace

std::string inQuotes(const std::string& text) {
    return "\"" + text + "\"";
}

pugi::xml_node requireRoot(SourceFile& file, const char* name) {
    const pugi::xml_node root = file.document().child(name);
    if (!root) {
        const pugi::xml_node actual = file.document().document_element();
        file.error(file.offsetOf(actual), "the root element is " + inQuotes(actual.name()) +
                                              ", not " + inQuotes(name) +
                                              "; nothing in the file is read");
    }
    return root;
}

const char* const kTextIsAnEmptyEntry = "is read as an entry with every field empty";
const char* const kTextIsNotRead = "is not read";

std::vector<pugi::xml_node> entries(SourceFile& file, const pugi::xml_node& list,
                                    const char* textConsequence) {
    std::vector<pugi::xml_node> elements;
    for (pugi::xml_node entry = list.first_child(); entry; entry = entry.next_sibling()) {
        if (entry.type() == pugi::node_element) {
            elements.push_back(entry);
        } else if (textConsequence != nullptr) {
            file.warning(file.offsetOf(entry),
                         "text inside " + inQuotes(list.name()) + " " + textConsequence);
        }
    }
    return elements;
}

void checkValue(SourceFile& file, const pugi::xml_node& node, const char* name, ValueKind kind,
                const std::string& consequence, long long fallback) {
    const pugi::xml_attribute attribute = node.attribute(name);
    const std::string text = attribute.value();
    const std::string written = std::string(node.name()) + " " + name + "=" + inQuotes(text);
    if (!attribute || kind == ValueKind::Text) {
        return;
    }
    if (kind == ValueKind::Boolean) {
        // A boolean written otherwise is read by its first character only, blanks included:
        // " true" is read as false.
        for (const char* known : {"true", "false", "yes", "no", "1", "0"}) {
            if (strcasecmp(text.c_str(), known) == 0) {
                return;
            }
        }
        file.warning(file.offsetOf(attribute), written + " is not a boolean word; it is read as " +
                                                   (attribute.as_bool() ? "true" : "false"));
    } else if (kind == ValueKind::Number) {
        char* end = nullptr;
        const std::string number = trimmed(text);
        const double value = std::strtod(number.c_str(), &end);
        if (number.empty() || *end != '\0' || !std::isfinite(value)) {
            file.error(file.offsetOf(attribute), written + " is not a number; it is read as " +
                                                     std::to_string(attribute.as_double()));
        }
    } else {
        checkWholeNumber(file, attribute, kind, written, consequence, fallback);
    }
}

void warnAboutRepeatedElements(SourceFile& file, const pugi::xml_node& parent,
                               const std::vector<const char*>& names, const char* valueAttribute) {
    for (const char* name : names) {
        const pugi::xml_node first = parent.child(name);
        const std::string read =
            valueAttribute != nullptr
                ? "the first one, whose " + std::string(valueAttribute) + " is " +
                      inQuotes(first.attribute(valueAttribute).value()) + ", so this one is ignored"
                : "the first one, so nothing in this one is read";
        for (pugi::xml_node again = first.next_sibling(name); again;
             again = again.next_sibling(name)) {
            file.warning(file.offsetOf(again), inQuotes(name) + " appears again in " +
                                                   inQuotes(parent.name()) +
                                                   ": the library reads only " + read);
        }
    }
}

bool isHexDigits(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789abcdefABCDEF") == std::string::npos;
}

} // namespace pallix::check
