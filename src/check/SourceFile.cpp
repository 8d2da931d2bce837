#include "SourceFile.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>
#include <utility>

namespace pallix::check {

SourceFile::SourceFile(std::string path) : m_path(std::move(path)) {
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::file_type type = fs::status(m_path, error).type();
    if (!error && type == fs::file_type::regular) {
        std::ifstream input(m_path, std::ios::binary);
        m_text.assign(std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>());
        if (!input.is_open() || input.bad()) {
            error.assign(errno, std::generic_category());
        }
    }
    m_problem = error                              ? error.message()
                : type == fs::file_type::directory ? "it is a directory"
                : type != fs::file_type::regular   ? "it is not a regular file"
                                                   : "";
    m_problem = m_problem.empty() ? m_problem : "cannot read the file: " + m_problem;
}

SourceFile::SourceFile(std::string name, std::string text)
    : m_path(std::move(name)), m_text(std::move(text)) {}

bool SourceFile::parseXml() {
    if (!m_parsed) {
        // Ended by a NUL, as pugixml ends its own copy when it does not parse in place.
        m_buffer = m_text + '\0';
        const pugi::xml_parse_result result = m_document.load_buffer_inplace(
            m_buffer.data(), m_buffer.size(), pugi::parse_default, pugi::encoding_utf8);
        m_parsed = static_cast<bool>(result);
        if (!result) {
            malformed(static_cast<std::size_t>(result.offset),
                      std::string("not well-formed XML: ") + result.description() +
                          "; the library reads nothing from this file");
        }
    }
    return *m_parsed;
}

void SourceFile::malformed(std::size_t offset, const std::string& message) {
    m_wellFormed = false;
    error(offset, message);
}

void SourceFile::report(std::size_t offset, Severity severity, const std::string& message) {
    if (m_lineStarts.empty()) {
        // Lines end as XML ends them: "\r\n", a lone '\r' or '\n', each one line break.
        m_lineStarts.push_back(0);
        for (auto i = m_text.find_first_of("\r\n"); i != std::string::npos;
             i = m_text.find_first_of("\r\n", i + 1)) {
            if (m_text[i] == '\r' && i + 1 < m_text.size() && m_text[i + 1] == '\n') {
                ++i;
            }
            m_lineStarts.push_back(i + 1);
        }
    }
    const std::size_t at = std::min(offset, m_text.size());
    const auto line = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), at) - 1;
    const Finding finding{static_cast<std::size_t>(line - m_lineStarts.begin()) + 1, at - *line + 1,
                          severity, message};
    // Mostly in order already: a large table can have a finding on every row.
    m_findings.insert(std::upper_bound(m_findings.begin(), m_findings.end(), finding,
                                       [](const Finding& a, const Finding& b) {
                                           return a.line != b.line ? a.line < b.line
                                                                   : a.column < b.column;
                                       }),
                      finding);
}

std::size_t SourceFile::offsetOf(const char* parsed) const {
    return static_cast<std::size_t>(parsed - m_buffer.data());
}

std::size_t SourceFile::offsetOf(const pugi::xml_node& node) const {
    switch (node.type()) {
    case pugi::node_element:
        return offsetOf(node.name()) - 1;
    case pugi::node_pcdata:
        // Text starts with the blanks after the previous tag; a finding points at the words.
        return std::min(m_text.find_first_not_of(" \t\r\n", offsetOf(node.value())), m_text.size());
    case pugi::node_cdata:
        return offsetOf(node.value());
    default:
        return 0;
    }
}

std::size_t SourceFile::offsetOf(const pugi::xml_attribute& attribute) const {
    return offsetOf(attribute.name());
}

std::size_t SourceFile::offsetOf(const pugi::xml_node& node, const char* attribute) const {
    const pugi::xml_attribute found = node.attribute(attribute);
    return found ? offsetOf(found) : offsetOf(node);
}

} // namespace pallix::check
