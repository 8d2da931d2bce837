// What every XML file shares: the library reads them all with pugixml's default options, which
// take more than XML 1.0 allows. A file that the library reads one way and other XML tools
// refuse (or read another way) is worth a finding even where the library is content.

#include "Checkers.h"
#include "SourceFile.h"
#include "ValueRules.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <set>
#include <string>

namespace pallix::check {

namespace {

const char* const kOthersReject = "; other XML parsers reject the file";

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
    const char lower = static_cast<char>(c | 0x20);
    return hexadecimal && lower >= 'a' && lower <= 'f' ? lower - 'a' + 10 : -1;
}

struct Scanner {
    SourceFile& file;
    // Entities that the document type declares: other parsers expand them, pugixml does not
    // read the document type at all.
    std::set<std::string> declared;

    // A reference stands in `place`: an attribute, whose value the library reads as `read`, or
    // the text of an element (`read` null), which no reader of the library looks at.
    void characterReference(std::size_t at, const std::string& written, bool hexadecimal,
                            const std::string& place, const char* read) {
        // pugixml sums the digits in 32 bits and lets them wrap; the true value decides what
        // XML allows.
        unsigned wrapped = 0;
        unsigned long long value = 0;
        for (std::size_t i = hexadecimal ? 3 : 2; i + 1 < written.size(); ++i) {
            const int digit = digitValue(written[i], hexadecimal);
            wrapped = wrapped * (hexadecimal ? 16u : 10u) + static_cast<unsigned>(digit);
            value = value > 0x10FFFF ? value : value * (hexadecimal ? 16 : 10) + digit;
        }
        if (format::isXmlCharacter(value)) {
            return;
        }
        const std::string prefix =
            "character reference " + inQuotes(written) + " is not allowed in XML 1.0";
        if (wrapped == 0) {
            // pugixml writes the NUL into the value, and the value ends there.
            file.error(at, prefix + ", and the library's reader ends " + place + " at it" +
                               (read != nullptr ? ": " + place + " is read as " + inQuotes(read)
                                                : std::string()) +
                               kOthersReject);
            return;
        }
        char point[16];
        std::snprintf(point, sizeof point, "U+%04X", wrapped);
        const std::string readAs = (wrapped >= 0xD800 && wrapped <= 0xDFFF) || wrapped > 0x10FFFF
                                       ? "bytes that are not UTF-8"
                                   : wrapped == 0xFFFE || wrapped == 0xFFFF
                                       ? std::string(point) + " (not a character)"
                                       : std::string(point);
        file.warning(at, prefix + ": the library's reader takes it as " + readAs + " in " + place +
                             kOthersReject);
    }

    void entityReference(std::size_t at, const std::string& written, const std::string& place) {
        const std::string name = written.substr(1, written.size() - 2);
        if (name == "amp" || name == "lt" || name == "gt" || name == "quot" || name == "apos") {
            return;
        }
        if (declared.count(name) != 0) {
            file.error(at, "entity " + inQuotes(written) +
                               " is declared in the document type, which the library's reader "
                               "ignores: it keeps the text " +
                               inQuotes(written) + " in " + place +
                               " where other XML parsers put the declared text");
        } else {
            file.error(at, "entity reference " + inQuotes(written) +
                               " is none of the five that XML defines (&amp; &lt; &gt; &quot; "
                               "&apos;): the library's reader keeps the text " +
                               inQuotes(written) + " in " + place + kOthersReject);
        }
    }

    // Every '&' in the raw text [begin, end) of one value, as pugixml's escape decoding meets it.
    void scan(std::size_t begin, std::size_t end, const std::string& place, const char* read) {
        const std::string& text = file.text();
        for (std::size_t at = text.find('&', begin); at < end; at = text.find('&', at + 1)) {
            const bool numeric = at + 1 < end && text[at + 1] == '#';
            // Only a lower-case x introduces hexadecimal digits, in XML as in pugixml.
            const bool hexadecimal = numeric && at + 2 < end && text[at + 2] == 'x';
            const std::size_t first = at + 1 + (numeric ? 1 : 0) + (hexadecimal ? 1 : 0);
            std::size_t stop = first;
            while (stop < end &&
                   (numeric ? digitValue(text[stop], hexadecimal) >= 0 : isNameByte(text[stop]))) {
                ++stop;
            }
            if (stop == first || stop >= end || text[stop] != ';') {
                file.warning(at, "\"&\" starts no reference: the library's reader keeps it as "
                                 "written in " +
                                     place +
                                     ", other XML parsers reject the file; write it as \"&amp;\"");
            } else if (numeric) {
                characterReference(at, text.substr(at, stop + 1 - at), hexadecimal, place, read);
            } else {
                entityReference(at, text.substr(at, stop + 1 - at), place);
            }
        }
    }

    // Every element and text of the document, in the order of the file. A loop rather than
    // recursion: pugixml parses elements nested far deeper than a call stack holds.
    void checkTree(const pugi::xml_node& document) {
        for (pugi::xml_node node = document.first_child(); node;) {
            if (node.type() == pugi::node_pcdata) {
                const std::size_t begin = file.offsetOf(node);
                scan(begin, std::min(file.text().find('<', begin), file.text().size()),
                     "the text of " + inQuotes(node.parent().name()), nullptr);
            } else if (node.type() == pugi::node_element) {
                checkAttributes(node);
                if (node.first_child()) {
                    node = node.first_child();
                    continue;
                }
            }
            while (node != document && !node.next_sibling()) {
                node = node.parent();
            }
            node = node == document ? pugi::xml_node() : node.next_sibling();
        }
    }

    // pugixml keeps every attribute as written, repeated names included, and reads the first.
    void checkAttributes(const pugi::xml_node& element) {
        std::set<std::string> names;
        for (const pugi::xml_attribute& attribute : element.attributes()) {
            const std::size_t begin = file.offsetOf(attribute.value());
            // The value ends at its closing quote, the one that opened it.
            scan(begin, file.text().find(file.text()[begin - 1], begin), attribute.name(),
                 attribute.value());
            if (!names.insert(attribute.name()).second) {
                file.error(file.offsetOf(attribute),
                           "attribute " + inQuotes(attribute.name()) + " is written again on " +
                               inQuotes(element.name()) +
                               ": the library's reader takes the first, " +
                               inQuotes(element.attribute(attribute.name()).value()) +
                               ", and never this one" + kOthersReject);
            }
        }
    }
};

std::set<std::string> declaredEntities(const std::string& text) {
    std::set<std::string> names;
    const std::string marker = "<!ENTITY";
    for (std::size_t at = text.find(marker); at != std::string::npos;
         at = text.find(marker, at + 1)) {
        std::size_t begin = text.find_first_not_of(" \t\r\n", at + marker.size());
        std::size_t end = begin;
        while (end < text.size() && isNameByte(text[end])) {
            ++end;
        }
        if (begin != std::string::npos && end > begin) {
            names.insert(text.substr(begin, end - begin));
        }
    }
    return names;
}

} // namespace

void checkXmlSyntax(SourceFile& file) {
    Scanner{file, declaredEntities(file.text())}.checkTree(file.document());
}

} // namespace pallix::check
