#pragma once

#include "Finding.h"

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace pallix::check {

// Where one attribute of a start tag stands in the text, as written (pugixml keeps no
// positions of attributes, and keeps every attribute of a repeated name).
struct AttributeSpan {
    std::string name;
    std::size_t nameOffset = 0;
    std::size_t valueBegin = 0; // first byte after the opening quote
    std::size_t valueEnd = 0;   // the closing quote
};

// The text of one file under check and the findings made on it. Positions are byte offsets
// into the text, turned into line and column when a finding is recorded.
class SourceFile {
public:
    // Reads the file at `path`; only a regular file is read, so that a FIFO never blocks the
    // check. When it cannot be read, problem() says why.
    explicit SourceFile(std::string path);
    // A text that has no file of its own (standard input), shown under `name`.
    SourceFile(std::string name, std::string text);

    const std::string& path() const { return m_path; }
    const std::string& text() const { return m_text; }
    // False when the file could not be read; problem() says why and nothing is checked.
    bool readable() const { return m_problem.empty(); }
    const std::string& problem() const { return m_problem; }
    // False once the text turned out not to be well-formed XML or JSON: nothing past the
    // syntax could be checked.
    bool wellFormed() const { return m_wellFormed; }

    void error(std::size_t offset, const std::string& message);
    void warning(std::size_t offset, const std::string& message);
    void report(std::size_t offset, Severity severity, const std::string& message);
    // Records why the text does not parse, and that nothing more can be said of it.
    void malformed(std::size_t offset, const std::string& message);

    // Positions of XML nodes and attributes in the text.
    std::size_t offsetOf(const pugi::xml_node& node) const;
    // The first attribute of that name, or the element when it has none.
    std::size_t offsetOf(const pugi::xml_node& node, const char* attribute) const;
    // Every attribute of the element's start tag in the order written, repeated names included.
    std::vector<AttributeSpan> attributesOf(const pugi::xml_node& node) const;

    // Ordered by position (line, then column); findings at one position keep the order in
    // which they were made.
    const std::vector<Finding>& findings() const;
    std::size_t count(Severity severity) const;

private:
    std::string m_path;
    std::string m_text;
    std::string m_problem;
    bool m_wellFormed = true;
    std::vector<std::size_t> m_lineStarts;
    // Sorted when asked for, not as each finding comes: a large table can have one on every
    // row, and many come out of order.
    mutable std::vector<Finding> m_findings;
    mutable bool m_sorted = true;
};

// Parses the text as XML with the library's options. On failure it records the parser's
// description at the position where the parser stopped and returns false.
bool parseXml(SourceFile& file, pugi::xml_document& document);

} // namespace pallix::check
