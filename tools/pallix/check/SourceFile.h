#pragma once

#include "Finding.h"

#include <pugixml.hpp>

#include <cstddef>
#include <string>
#include <vector>

namespace pallix::check {

// The text of one file under check and the findings made on it. Positions are byte offsets
// into the text, turned into line and column when a finding is recorded.
class SourceFile {
public:
    explicit SourceFile(std::string path);

    const std::string& path() const { return m_path; }
    const std::string& text() const { return m_text; }
    // False when the file could not be read; a finding says why.
    bool readable() const { return m_readable; }

    void error(std::size_t offset, const std::string& message);
    void warning(std::size_t offset, const std::string& message);
    void report(std::size_t offset, Severity severity, const std::string& message);

    // Positions of XML nodes and attributes in the text.
    std::size_t offsetOf(const pugi::xml_node& node) const;
    std::size_t offsetOf(const pugi::xml_node& node, const char* attribute) const;

    const std::vector<Finding>& findings() const { return m_findings; }
    std::size_t count(Severity severity) const;

private:
    std::string m_path;
    std::string m_text;
    bool m_readable = false;
    std::vector<Finding> m_findings;
};

// Parses the text as XML with the library's options. On failure it records the parser's
// description at the position where the parser stopped and returns false.
bool parseXml(SourceFile& file, pugi::xml_document& document);

} // namespace pallix::check
