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
#include <strings.h>

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
            const std::size_t end = file.text().find(file.text()[begin - 1], begin);
            scan(begin, end, attribute.name(), attribute.value());
            if (const std::size_t less = file.text().find('<', begin); less < end) {
                file.error(less, "\"<\" inside the value of " + inQuotes(attribute.name()) +
                                     ": the library's reader keeps it and reads " +
                                     attribute.name() + " as " + inQuotes(attribute.value()) +
                                     kOthersReject);
            }
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

// Where whatever follows `found` ends, or the end of the text when it was not found.
std::size_t past(const std::string& text, std::size_t found, std::size_t length) {
    return found == std::string::npos ? text.size() : found + length;
}

std::size_t afterByteOrderMark(const std::string& text) {
    return text.compare(0, 3, "\xEF\xBB\xBF") == 0 ? 3 : 0;
}

// The markup that pugixml skips without keeping anything of it, read from the text itself:
// comments, and text outside the root element. A loop over the text, as deep as it nests.
class Markup {
public:
    explicit Markup(SourceFile& file) : m_file(file), m_text(file.text()) {}

    void check() {
        const std::size_t size = m_text.size();
        std::size_t depth = 0;
        for (std::size_t at = afterByteOrderMark(m_text); at < size;) {
            if (m_text[at] != '<') {
                const std::size_t next = std::min(m_text.find('<', at), size);
                const std::size_t word = m_text.find_first_not_of(" \t\r\n", at);
                if (depth == 0 && word < next) {
                    outsideTheRoot(word);
                }
                at = next;
            } else if (m_text.compare(at, 4, "<!--") == 0) {
                at = comment(at);
            } else if (m_text.compare(at, 9, "<![CDATA[") == 0) {
                if (depth == 0) {
                    outsideTheRoot(at);
                }
                at = past(m_text, m_text.find("]]>", at + 9), 3);
            } else if (m_text.compare(at, 2, "<?") == 0) {
                at = past(m_text, m_text.find("?>", at + 2), 2);
            } else if (m_text.compare(at, 2, "<!") == 0) {
                at = documentType(at);
            } else if (m_text.compare(at, 2, "</") == 0) {
                depth -= depth > 0 ? 1 : 0;
                at = past(m_text, m_text.find('>', at), 1);
            } else {
                const std::size_t end = endOfTag(at);
                depth += end < size && m_text[end - 1] != '/' ? 1 : 0;
                m_rootSeen = true;
                at = end + 1;
            }
        }
    }

private:
    // pugixml drops text outside the root element: it never reaches a reader.
    void outsideTheRoot(std::size_t at) {
        bool& reported = m_rootSeen ? m_textAfter : m_textBefore;
        if (!reported) {
            reported = true;
            m_file.error(at, std::string("text ") + (m_rootSeen ? "after" : "before") +
                                 " the root element: the library's reader ignores it" +
                                 kOthersReject);
        }
    }

    // A comment ends at the first "-->", in pugixml as in XML; XML allows no "--" before it.
    std::size_t comment(std::size_t at) {
        const std::size_t content = at + 4;
        const std::size_t end = m_text.find("-->", content);
        if (end == std::string::npos) {
            return m_text.size();
        }
        const std::size_t dashes = m_text.find("--", content);
        if (dashes + 1 < end) {
            m_file.error(dashes, "\"--\" inside a comment, which XML does not allow: the "
                                 "library's reader skips the comment up to the first \"-->\"" +
                                     std::string(kOthersReject));
        } else if (end > content && m_text[end - 1] == '-') {
            m_file.error(end - 1, "a comment ending in \"--->\", which XML does not allow: the "
                                  "library's reader skips the comment" +
                                      std::string(kOthersReject));
        }
        return end + 3;
    }

    // The document type, its internal subset, quoted texts and comments included.
    std::size_t documentType(std::size_t at) {
        std::size_t brackets = 0;
        for (std::size_t i = at + 2; i < m_text.size();) {
            const char c = m_text[i];
            if (m_text.compare(i, 4, "<!--") == 0) {
                i = comment(i);
            } else if (c == '"' || c == '\'') {
                i = past(m_text, m_text.find(c, i + 1), 1);
            } else if (c == '>' && brackets == 0) {
                return i + 1;
            } else {
                brackets += c == '[' ? 1 : 0;
                brackets -= c == ']' && brackets > 0 ? 1 : 0;
                ++i;
            }
        }
        return m_text.size();
    }

    // The '>' that ends the tag at `at`, past quoted attribute values.
    std::size_t endOfTag(std::size_t at) const {
        std::size_t i = at + 1;
        while (i < m_text.size() && m_text[i] != '>') {
            const char c = m_text[i];
            i = c == '"' || c == '\'' ? past(m_text, m_text.find(c, i + 1), 1) : i + 1;
        }
        return i;
    }

    SourceFile& m_file;
    const std::string& m_text;
    bool m_rootSeen = false;
    bool m_textBefore = false;
    bool m_textAfter = false;
};

// The readers look up their root with document.child(NAME): the first top-level element of
// that name, wherever it stands. XML allows a single one.
void checkTopLevelElements(SourceFile& file, const char* root) {
    const pugi::xml_node first = file.document().document_element();
    std::set<std::string> names{first.name()};
    for (pugi::xml_node element = first.next_sibling(); element; element = element.next_sibling()) {
        if (element.type() != pugi::node_element) {
            continue;
        }
        const std::string name = element.name();
        const bool firstOfName = names.insert(name).second;
        std::string read;
        if (root == nullptr) {
            read = "a reader of the library whose root is " + inQuotes(name) +
                   (firstOfName ? " reads it from this element" : " reads only the first of them");
        } else if (name != root) {
            read = "the library's reader looks up only its root " + inQuotes(root) +
                   " and reads nothing from this one";
        } else if (firstOfName) {
            read = "the library's reader looks up its root " + inQuotes(root) +
                   " by name and reads it from this element, not from " + inQuotes(first.name());
        } else {
            read = "the library's reader takes only the first top-level " + inQuotes(root) +
                   " and reads nothing from this one";
        }
        file.error(file.offsetOf(element), "another top-level element " + inQuotes(name) +
                                               " after " + inQuotes(first.name()) + ": " + read +
                                               kOthersReject);
    }
}

// pugixml is told that every file is UTF-8: it neither reads the declaration's encoding nor
// checks the bytes, and keeps those that are not UTF-8 as they are.
void checkEncoding(SourceFile& file) {
    const std::string& text = file.text();
    const std::size_t start = afterByteOrderMark(text);
    std::string declared;
    if (text.compare(start, 5, "<?xml") == 0 && start + 5 < text.size() &&
        std::strchr(" \t\r\n", text[start + 5]) != nullptr) {
        const std::size_t end = std::min(text.find("?>", start), text.size());
        const std::size_t name = text.find("encoding", start);
        std::size_t at = name < end ? text.find_first_not_of(" \t\r\n", name + 8) : end;
        at = at < end && text[at] == '=' ? text.find_first_not_of(" \t\r\n", at + 1) : end;
        const std::size_t close =
            at < end && (text[at] == '"' || text[at] == '\'') ? text.find(text[at], at + 1) : end;
        if (close < end) {
            declared = text.substr(at + 1, close - at - 1);
            if (strcasecmp(declared.c_str(), "UTF-8") == 0 ||
                strcasecmp(declared.c_str(), "UTF8") == 0) {
                declared.clear();
            } else {
                file.error(at + 1, "the XML declaration names the encoding " + inQuotes(declared) +
                                       ": the library reads the file as UTF-8 whatever the "
                                       "declaration says, where other XML parsers read it as " +
                                       inQuotes(declared));
            }
        }
    }
    for (std::size_t at = start; at < text.size();) {
        if (format::decodeUtf8(text, at) < 0) {
            char byte[8];
            std::snprintf(byte, sizeof byte, "0x%02X", static_cast<unsigned char>(text[at]));
            file.error(at,
                       std::string("byte ") + byte +
                           " is not UTF-8 (the first such byte in the file): the library "
                           "reads the file as UTF-8 and keeps the byte unchanged in the "
                           "text it reads" +
                           (declared.empty() ? std::string(kOthersReject)
                                             : ", where other XML parsers read it in the declared "
                                               "encoding " +
                                                   inQuotes(declared)));
            return;
        }
    }
}

} // namespace

void checkXmlSyntax(SourceFile& file, const char* root) {
    Scanner{file, declaredEntities(file.text())}.checkTree(file.document());
    checkTopLevelElements(file, root);
    Markup(file).check();
    checkEncoding(file);
}

} // namespace pallix::check
