#include "SourceFile.h"

#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

namespace pallix::check {

namespace {

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

} // namespace

SourceFile::SourceFile(std::string path) : m_path(std::move(path)) {
    struct stat info {};
    if (::stat(m_path.c_str(), &info) != 0) {
        m_problem = std::string("cannot read the file: ") + std::strerror(errno);
        return;
    }
    if (S_ISDIR(info.st_mode)) {
        m_problem = "cannot read the file: it is a directory";
        return;
    }
    if (!S_ISREG(info.st_mode)) {
        m_problem = "cannot read the file: it is not a regular file";
        return;
    }
    std::ifstream input(m_path, std::ios::binary);
    if (!input) {
        m_problem = std::string("cannot read the file: ") + std::strerror(errno);
        return;
    }
    m_text.assign(std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>());
    if (input.bad()) {
        m_problem = std::string("cannot read the file: ") + std::strerror(errno);
    }
}

SourceFile::SourceFile(std::string name, std::string text)
    : m_path(std::move(name)), m_text(std::move(text)) {}

void SourceFile::error(std::size_t offset, const std::string& message) {
    report(offset, Severity::Error, message);
}

void SourceFile::warning(std::size_t offset, const std::string& message) {
    report(offset, Severity::Warning, message);
}

void SourceFile::report(std::size_t offset, Severity severity, const std::string& message) {
    // The starts of the lines, found once: a large table can have a finding on every row.
    if (m_lineStarts.empty()) {
        m_lineStarts.push_back(0);
        for (std::size_t i = 0; i < m_text.size(); ++i) {
            if (m_text[i] == '\n') {
                m_lineStarts.push_back(i + 1);
            }
        }
    }
    const std::size_t at = std::min(offset, m_text.size());
    const auto line = std::upper_bound(m_lineStarts.begin(), m_lineStarts.end(), at) - 1;
    Finding finding;
    finding.severity = severity;
    finding.message = message;
    finding.line = static_cast<std::size_t>(line - m_lineStarts.begin()) + 1;
    finding.column = at - *line + 1;
    m_findings.push_back(std::move(finding));
    m_sorted = false;
}

const std::vector<Finding>& SourceFile::findings() const {
    if (!m_sorted) {
        // Stable: findings at one position keep the order in which they were made.
        std::stable_sort(m_findings.begin(), m_findings.end(),
                         [](const Finding& a, const Finding& b) {
                             return a.line != b.line ? a.line < b.line : a.column < b.column;
                         });
        m_sorted = true;
    }
    return m_findings;
}

void SourceFile::malformed(std::size_t offset, const std::string& message) {
    m_wellFormed = false;
    error(offset, message);
}

std::size_t SourceFile::offsetOf(const pugi::xml_node& node) const {
    const std::ptrdiff_t offset = node.offset_debug();
    if (offset < 0) {
        return 0;
    }
    auto position = static_cast<std::size_t>(offset);
    if (node.type() == pugi::node_pcdata) {
        // Text starts with the blanks after the previous tag; a finding points at the words.
        while (position < m_text.size() && isBlank(m_text[position])) {
            ++position;
        }
        return position;
    }
    // pugixml points after the '<' of an element; a finding points at the '<'.
    return position > 0 && position <= m_text.size() && m_text[position - 1] == '<' ? position - 1
                                                                                    : position;
}

std::size_t SourceFile::offsetOf(const pugi::xml_node& node, const char* attribute) const {
    for (const AttributeSpan& span : attributesOf(node)) {
        if (span.name == attribute) {
            return span.nameOffset;
        }
    }
    return offsetOf(node);
}

std::vector<AttributeSpan> SourceFile::attributesOf(const pugi::xml_node& node) const {
    std::vector<AttributeSpan> spans;
    if (node.type() != pugi::node_element) {
        return spans;
    }
    // The document parsed, so the start tag is well formed: name="value" pairs up to the
    // closing '>' or "/>", quoted with ' or ".
    std::size_t at = offsetOf(node);
    if (at >= m_text.size() || m_text[at] != '<') {
        return spans;
    }
    at += 1 + std::strlen(node.name());
    const std::size_t size = m_text.size();
    for (;;) {
        while (at < size && isBlank(m_text[at])) {
            ++at;
        }
        if (at >= size || m_text[at] == '>' || m_text[at] == '/') {
            return spans;
        }
        AttributeSpan span;
        span.nameOffset = at;
        while (at < size && !isBlank(m_text[at]) && m_text[at] != '=' && m_text[at] != '>' &&
               m_text[at] != '/') {
            ++at;
        }
        span.name = m_text.substr(span.nameOffset, at - span.nameOffset);
        while (at < size && (isBlank(m_text[at]) || m_text[at] == '=')) {
            ++at;
        }
        if (at >= size || (m_text[at] != '"' && m_text[at] != '\'')) {
            return spans;
        }
        const char quote = m_text[at];
        span.valueBegin = at + 1;
        span.valueEnd = m_text.find(quote, span.valueBegin);
        if (span.valueEnd == std::string::npos) {
            return spans;
        }
        at = span.valueEnd + 1;
        spans.push_back(std::move(span));
    }
}

std::size_t SourceFile::count(Severity severity) const {
    return static_cast<std::size_t>(
        std::count_if(m_findings.begin(), m_findings.end(),
                      [severity](const Finding& finding) { return finding.severity == severity; }));
}

bool parseXml(SourceFile& file, pugi::xml_document& document) {
    const pugi::xml_parse_result result = document.load_buffer(
        file.text().data(), file.text().size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result) {
        file.malformed(static_cast<std::size_t>(result.offset),
                       std::string("not well-formed XML: ") + result.description() +
                           "; the library reads nothing from this file");
        return false;
    }
    return true;
}

} // namespace pallix::check
