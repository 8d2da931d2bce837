#include "ValueRules.h"

#include "SourceFile.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace pallix::check {

namespace {

std::string trimmed(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) {
        return std::string();
    }
    const auto last = text.find_last_not_of(" \t\r\n");
    return text.substr(first, last - first + 1);
}

std::string lower(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

const char* widthName(IntegerWidth width) {
    switch (width) {
    case IntegerWidth::Int32:
        return "a 32-bit signed integer";
    case IntegerWidth::Int64:
        return "a 64-bit signed integer";
    case IntegerWidth::UInt64:
        return "a 64-bit unsigned integer";
    }
    return "an integer";
}

// How a finding shows a value: the element, the attribute and its text as written.
std::string written(const pugi::xml_node& node, const char* attribute, const std::string& text) {
    return std::string(node.name()) + " " + attribute + "=" + inQuotes(text);
}

} // namespace

std::optional<IntegerText> parseInteger(const std::string& raw) {
    const std::string text = trimmed(raw);
    IntegerText value;
    std::size_t i = 0;
    if (i < text.size() && (text[i] == '-' || text[i] == '+')) {
        value.negative = text[i] == '-';
        ++i;
    }
    unsigned base = 10;
    if (i + 1 < text.size() && text[i] == '0' && (text[i + 1] == 'x' || text[i + 1] == 'X')) {
        base = 16;
        i += 2;
    }
    if (i >= text.size()) {
        return std::nullopt;
    }
    for (; i < text.size(); ++i) {
        const auto c = static_cast<unsigned char>(text[i]);
        unsigned digit = 0;
        if (std::isdigit(c)) {
            digit = c - '0';
        } else if (base == 16 && std::isxdigit(c)) {
            digit = static_cast<unsigned>(std::tolower(c) - 'a' + 10);
        } else {
            return std::nullopt;
        }
        if (value.magnitude > (ULLONG_MAX - digit) / base) {
            value.overflow = true;
        } else {
            value.magnitude = value.magnitude * base + digit;
        }
    }
    return value;
}

bool fitsInt32(const IntegerText& value) {
    if (value.overflow) {
        return false;
    }
    return value.negative ? value.magnitude <= 2147483648ULL : value.magnitude <= 2147483647ULL;
}

bool fitsInt64(const IntegerText& value) {
    if (value.overflow) {
        return false;
    }
    return value.negative ? value.magnitude <= 9223372036854775808ULL
                          : value.magnitude <= 9223372036854775807ULL;
}

bool fitsUInt64(const IntegerText& value) {
    return !value.overflow && (!value.negative || value.magnitude == 0);
}

bool isHexDigits(const std::string& text, bool upperOnly) {
    return !text.empty() && std::all_of(text.begin(), text.end(), [upperOnly](unsigned char c) {
        return std::isdigit(c) || (c >= 'A' && c <= 'F') || (!upperOnly && c >= 'a' && c <= 'f');
    });
}

bool isDecimalNumber(const std::string& raw) {
    const std::string text = trimmed(raw);
    if (text.empty()) {
        return false;
    }
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    return end == text.c_str() + text.size() && std::isfinite(value);
}

bool checkIntegerAttribute(SourceFile& file, const pugi::xml_node& node, const char* name,
                           IntegerWidth width, const std::string& consequence) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) {
        return true;
    }
    const std::string text = attribute.value();
    const std::optional<IntegerText> value = parseInteger(text);
    const std::size_t at = file.offsetOf(node, name);
    if (!value) {
        file.error(at, written(node, name, text) + " is not a whole number; " + consequence);
        return false;
    }
    const bool fits = width == IntegerWidth::Int32   ? fitsInt32(*value)
                      : width == IntegerWidth::Int64 ? fitsInt64(*value)
                                                     : fitsUInt64(*value);
    if (!fits) {
        file.error(at, written(node, name, text) + " does not fit " + widthName(width) + "; " +
                           consequence);
        return false;
    }
    return true;
}

void checkBooleanAttribute(SourceFile& file, const pugi::xml_node& node, const char* name) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (!attribute) {
        return;
    }
    const std::string text = lower(trimmed(attribute.value()));
    if (text == "true" || text == "false" || text == "yes" || text == "no" || text == "1" ||
        text == "0") {
        return;
    }
    const bool readAs = attribute.as_bool();
    file.warning(file.offsetOf(node, name), written(node, name, attribute.value()) +
                                                " is not a boolean word; it is read as " +
                                                (readAs ? "true" : "false"));
}

void checkNumberAttribute(SourceFile& file, const pugi::xml_node& node, const char* name) {
    const pugi::xml_attribute attribute = node.attribute(name);
    if (attribute && !isDecimalNumber(attribute.value())) {
        file.error(file.offsetOf(node, name), written(node, name, attribute.value()) +
                                                  " is not a number; it is read as " +
                                                  std::to_string(attribute.as_double()));
    }
}

pugi::xml_node requireRoot(SourceFile& file, const pugi::xml_document& document, const char* name) {
    const pugi::xml_node root = document.child(name);
    if (!root) {
        const pugi::xml_node actual = document.document_element();
        file.error(actual ? file.offsetOf(actual) : 0,
                   actual ? "the root element is " + inQuotes(actual.name()) + ", not " +
                                inQuotes(name) + "; nothing in the file is read"
                          : "there is no root element " + inQuotes(name) +
                                "; nothing in the file is read");
    }
    return root;
}

pugi::xml_node requireChild(SourceFile& file, const pugi::xml_node& parent, const char* name) {
    const pugi::xml_node child = parent.child(name);
    if (!child) {
        file.error(file.offsetOf(parent),
                   inQuotes(parent.name()) + " has no element " + inQuotes(name));
    }
    return child;
}

const char* const kTextIsAnEmptyEntry = "is read as an entry with every field empty";
const char* const kTextIsNotRead = "is not read";

void warnAboutTextEntries(SourceFile& file, const pugi::xml_node& list,
                          const std::string& consequence) {
    for (pugi::xml_node entry = list.first_child(); entry; entry = entry.next_sibling()) {
        if (entry.type() != pugi::node_element) {
            file.warning(file.offsetOf(entry),
                         "text inside " + inQuotes(list.name()) + " " + consequence);
        }
    }
}

void warnAboutRepeatedElements(SourceFile& file, const pugi::xml_node& parent,
                               std::initializer_list<const char*> names, const char* attribute) {
    for (const char* name : names) {
        const pugi::xml_node first = parent.child(name);
        if (!first) {
            continue;
        }
        const std::string read = attribute != nullptr
                                     ? "the first one, whose " + std::string(attribute) + " is " +
                                           inQuotes(first.attribute(attribute).value()) +
                                           ", so this one is ignored"
                                     : "the first one, so nothing in this one is read";
        for (pugi::xml_node again = first.next_sibling(name); again;
             again = again.next_sibling(name)) {
            file.warning(file.offsetOf(again), inQuotes(name) + " appears again in " +
                                                   inQuotes(parent.name()) +
                                                   ": the library reads only " + read);
        }
    }
}

std::string inQuotes(const std::string& text) {
    return "\"" + text + "\"";
}

} // namespace pallix::check
