// What every XML file shares: the library reads them all with pugixml's default options, which
// take more than XML 1.0 allows. A file that the library reads one way and other XML tools
// refuse (or read another way) is worth a finding even where the library is content.

#include "Checkers.h"
#include "SourceFile.h"
#include "ValueRules.h"

#include <cstdio>
#include <cstring>
#include <set>
#include <string>
#include <vector>

namespace pallix::check {

namespace {

bool isNameByte(char c) {
    const auto byte = static_cast<unsigned char>(c);
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
           (byte >= '0' && byte <= '9') || byte == '_' || byte == ':' || byte == '-' ||
           byte == '.' || byte >= 0x80;
}

int digitValue(char c, bool hexadecimal) {
    if (c >= '0' && c <= '9') {
        return c - '0';
    }
    if (hexadecimal && c >= 'a' && c <= 'f') {
        return c - 'a' + 10;
    }
    if (hexadecimal && c >= 'A' && c <= 'F') {
        return c - 'A' + 10;
    }
    return -1;
}

std::string codePoint(unsigned value) {
    char text[16];
    std::snprintf(text, sizeof text, "U+%04X", value);
    return text;
}

// Entities that a document type declares: other parsers expand them, pugixml does not read the
// document type at all.
std::set<std::string> declaredEntities(const std::string& text) {
    std::set<std::string> names;
    const std::string marker = "<!ENTITY";
    for (std::size_t at = text.find(marker); at != std::string::npos;
         at = text.find(marker, at + 1)) {
        std::size_t begin = at + marker.size();
        while (begin < text.size() && std::strchr(" \t\r\n", text[begin]) != nullptr) {
            ++begin;
        }
        std::size_t end = begin;
        while (end < text.size() && isNameByte(text[end])) {
            ++end;
        }
        if (end > begin) {
            names.insert(text.substr(begin, end - begin));
        }
    }
    return names;
}

// Where a reference stands, for the message: an attribute (whose value the library reads) or
// the text of an element (which no reader of the library looks at).
struct Place {
    std::string name;      // "KEY" or "the text of \"ROW\""
    const char* readValue; // the attribute's value as read; null for text
};

class ReferenceScanner {
public:
    explicit ReferenceScanner(SourceFile& file)
        : m_file(file), m_declared(declaredEntities(file.text())) {}

    // Every '&' in the raw text [begin, end) of one value, as pugixml's escape decoding meets it.
    void scan(std::size_t begin, std::size_t end, const Place& place) {
        const std::string& text = m_file.text();
        for (std::size_t at = text.find('&', begin); at < end; at = text.find('&', at + 1)) {
            if (at + 1 < end && text[at + 1] == '#') {
                characterReference(at, end, place);
            } else {
                entityReference(at, end, place);
            }
        }
    }

private:
    void characterReference(std::size_t at, std::size_t end, const Place& place) {
        const std::string& text = m_file.text();
        std::size_t position = at + 2;
        // Only a lower-case x introduces hexadecimal digits, in XML as in pugixml.
        const bool hexadecimal = position < end && text[position] == 'x';
        position += hexadecimal ? 1 : 0;
        const std::size_t digits = position;
        // pugixml sums the digits in 32 bits and lets them wrap; the true value decides what
        // XML allows.
        unsigned wrapped = 0;
        unsigned long long value = 0;
        for (int digit = 0;
             position < end && (digit = digitValue(text[position], hexadecimal)) >= 0; ++position) {
            wrapped = wrapped * (hexadecimal ? 16u : 10u) + static_cast<unsigned>(digit);
            value = value > 0x10FFFFULL ? value : value * (hexadecimal ? 16 : 10) + digit;
        }
        if (position == digits || position >= end || text[position] != ';') {
            bareAmpersand(at, place);
            return;
        }
        const std::string written = text.substr(at, position + 1 - at);
        const bool allowed =
            value == 0x9 || value == 0xA || value == 0xD || (value >= 0x20 && value <= 0xD7FF) ||
            (value >= 0xE000 && value <= 0xFFFD) || (value >= 0x10000 && value <= 0x10FFFF);
        if (allowed) {
            return;
        }
        const std::string prefix =
            "character reference " + inQuotes(written) + " is not allowed in XML 1.0";
        const std::string others = "; other XML parsers reject the file";
        if (wrapped == 0) {
            // pugixml writes the NUL into the value, and the value ends there.
            m_file.error(at, prefix + ", and the library's reader ends " + place.name + " at it" +
                                 (place.readValue != nullptr ? ": " + place.name + " is read as " +
                                                                   inQuotes(place.readValue)
                                                             : std::string()) +
                                 others);
            return;
        }
        std::string readAs;
        if ((wrapped >= 0xD800 && wrapped <= 0xDFFF) || wrapped > 0x10FFFF) {
            readAs = "bytes that are not UTF-8";
        } else if (wrapped == 0xFFFE || wrapped == 0xFFFF) {
            readAs = codePoint(wrapped) + " (not a character)";
        } else {
            readAs = codePoint(wrapped);
        }
        m_file.warning(at, prefix + ": the library's reader takes it as " + readAs + " in " +
                               place.name + others);
    }

    void entityReference(std::size_t at, std::size_t end, const Place& place) {
        const std::string& text = m_file.text();
        std::size_t position = at + 1;
        while (position < end && isNameByte(text[position])) {
            ++position;
        }
        if (position == at + 1 || position >= end || text[position] != ';') {
            bareAmpersand(at, place);
            return;
        }
        const std::string name = text.substr(at + 1, position - at - 1);
        if (name == "amp" || name == "lt" || name == "gt" || name == "quot" || name == "apos") {
            return;
        }
        const std::string written = "&" + name + ";";
        if (m_declared.count(name) != 0) {
            m_file.error(at, "entity " + inQuotes(written) +
                                 " is declared in the document type, which the library's reader "
                                 "ignores: it keeps the text " +
                                 inQuotes(written) + " in " + place.name +
                                 " where other XML parsers put the declared text");
            return;
        }
        m_file.error(at, "entity reference " + inQuotes(written) +
                             " is none of the five that XML defines (&amp; &lt; &gt; &quot; "
                             "&apos;): the library's reader keeps the text " +
                             inQuotes(written) + " in " + place.name +
                             "; other XML parsers reject the file");
    }

    void bareAmpersand(std::size_t at, const Place& place) {
        m_file.warning(at, "\"&\" starts no reference: the library's reader keeps it as written "
                           "in " +
                               place.name +
                               ", other XML parsers reject the file; write it as \"&amp;\"");
    }

    SourceFile& m_file;
    std::set<std::string> m_declared;
};

void checkElement(SourceFile& file, ReferenceScanner& scanner, const pugi::xml_node& element) {
    const std::vector<AttributeSpan> spans = file.attributesOf(element);
    // pugixml keeps every attribute as written, repeated names included, in the same order.
    std::vector<pugi::xml_attribute> attributes;
    for (pugi::xml_attribute attribute = element.first_attribute(); attribute;
         attribute = attribute.next_attribute()) {
        attributes.push_back(attribute);
    }
    std::set<std::string> names;
    for (std::size_t i = 0; i < spans.size() && i < attributes.size(); ++i) {
        const AttributeSpan& span = spans[i];
        scanner.scan(span.valueBegin, span.valueEnd, Place{span.name, attributes[i].value()});
        if (!names.insert(span.name).second) {
            file.error(span.nameOffset,
                       "attribute " + inQuotes(span.name) + " is written again on " +
                           inQuotes(element.name()) + ": the library's reader takes the first, " +
                           inQuotes(element.attribute(span.name.c_str()).value()) +
                           ", and never this one; other XML parsers reject the file");
        }
    }
}

void checkNode(SourceFile& file, ReferenceScanner& scanner, const pugi::xml_node& node) {
    for (pugi::xml_node child = node.first_child(); child; child = child.next_sibling()) {
        if (child.type() == pugi::node_element) {
            checkElement(file, scanner, child);
            checkNode(file, scanner, child);
        } else if (child.type() == pugi::node_pcdata) {
            const std::size_t begin = file.offsetOf(child);
            const std::size_t end = file.text().find('<', begin);
            scanner.scan(begin, end == std::string::npos ? file.text().size() : end,
                         Place{"the text of " + inQuotes(node.name()), nullptr});
        }
    }
}

} // namespace

void checkXmlSyntax(SourceFile& file, const pugi::xml_document& document) {
    ReferenceScanner scanner(file);
    checkNode(file, scanner, document);
}

} // namespace pallix::check
