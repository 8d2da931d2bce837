#pragma once

#include <pugixml.hpp>

#include <optional>
#include <string>
#include <vector>

namespace pallix::check {

enum class Severity { Warning, Error };

// One problem found in a file, at a position counted from 1 (line and column in bytes).
struct Finding {
    std::size_t line = 1;
    std::size_t column = 1;
    Severity severity = Severity::Error;
    std::string message;
};

// The bytes of one file under check, its XML document once parsed, and the findings made on it.
class SourceFile {
public:
    // Reads only a regular file, so that a FIFO never blocks the check; problem() says why not.
    explicit SourceFile(std::string path);
    // Bytes without a file of their own (standard input, a file of a release), shown as `name`.
    SourceFile(std::string name, std::string text);

    const std::string& path() const { return m_path; }
    const std::string& text() const { return m_text; }
    bool readable() const { return m_problem.empty(); }
    const std::string& problem() const { return m_problem; }
    // False once the text turned out not to be well-formed: nothing past the syntax was checked.
    bool wellFormed() const { return m_wellFormed; }

    // Parses the text once, as the library's reader does; when it does not parse, records the
    // parser's words where it stopped and returns false.
    bool parseXml();
    const pugi::xml_document& document() const { return m_document; }

    // Findings are made at byte offsets and kept in the order of their positions, those at one
    // position in the order in which they were made.
    void report(std::size_t offset, Severity severity, const std::string& message);
    void error(std::size_t at, const std::string& message) { report(at, Severity::Error, message); }
    void warning(std::size_t at, const std::string& message) {
        report(at, Severity::Warning, message);
    }
    // Records why the text does not parse: nothing more can be said of it.
    void malformed(std::size_t offset, const std::string& message);
    const std::vector<Finding>& findings() const { return m_findings; }

    // Where the document has things: an element at its '<', text at its first word, an
    // attribute at its name, a name or value that the parser returned at its first byte.
    std::size_t offsetOf(const pugi::xml_node& node) const;
    std::size_t offsetOf(const pugi::xml_attribute& attribute) const;
    std::size_t offsetOf(const char* parsed) const;
    // The element's first attribute of that name, or the element when it has none.
    std::size_t offsetOf(const pugi::xml_node& node, const char* attribute) const;

private:
    std::string m_path;
    std::string m_text;
    std::string m_problem;
    bool m_wellFormed = true;
    // pugixml keeps no positions of attributes, but parsed in place its names and values point
    // into this copy of the text.
    std::string m_buffer;
    pugi::xml_document m_document;
    std::optional<bool> m_parsed;
    std::vector<std::size_t> m_lineStarts;
    std::vector<Finding> m_findings;
};

} // namespace pallix::check
