#include "SourceFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>
#include <fstream>
#include <iterator>
#include <utility>

namespace pallix::check {

SourceFile::SourceFile(std::string path) : m_path(std::move(path)) {
    struct stat info {};
    if (::stat(m_path.c_str(), &info) != 0) {
        error(0, std::string("cannot read the file: ") + std::strerror(errno));
        return;
    }
    if (S_ISDIR(info.st_mode)) {
        error(0, "cannot read the file: it is a directory");
        return;
    }
    std::ifstream input(m_path, std::ios::binary);
    if (!input) {
        error(0, std::string("cannot read the file: ") + std::strerror(errno));
        return;
    }
    m_text.assign(std::istreambuf_iterator<char>(input), std::istreambuf_iterator<char>());
    m_readable = true;
}

void SourceFile::error(std::size_t offset, const std::string& message) {
    report(offset, Severity::Error, message);
}

void SourceFile::warning(std::size_t offset, const std::string& message) {
    report(offset, Severity::Warning, message);
}

void SourceFile::report(std::size_t offset, Severity severity, const std::string& message) {
    Finding finding;
    finding.severity = severity;
    finding.message = message;
    for (std::size_t i = 0; i < offset && i < m_text.size(); ++i) {
        if (m_text[i] == '\n') {
            ++finding.line;
            finding.column = 1;
        } else {
            ++finding.column;
        }
    }
    m_findings.push_back(std::move(finding));
}

std::size_t SourceFile::offsetOf(const pugi::xml_node& node) const {
    const std::ptrdiff_t offset = node.offset_debug();
    if (offset < 0) {
        return 0;
    }
    // pugixml points after the '<' of an element; a finding points at the '<'.
    const auto position = static_cast<std::size_t>(offset);
    return position > 0 && position <= m_text.size() && m_text[position - 1] == '<' ? position - 1
                                                                                    : position;
}

std::size_t SourceFile::offsetOf(const pugi::xml_node& node, const char* attribute) const {
    const std::size_t start = offsetOf(node);
    const std::size_t end = m_text.find('>', start);
    const std::string name = attribute;
    for (std::size_t at = m_text.find(name, start); at != std::string::npos && at < end;
         at = m_text.find(name, at + 1)) {
        // The name must stand alone: preceded by white space and followed by '='.
        const bool alone = at > 0 && std::strchr(" \t\r\n", m_text[at - 1]) != nullptr;
        std::size_t after = at + name.size();
        while (after < m_text.size() && std::strchr(" \t\r\n", m_text[after]) != nullptr) {
            ++after;
        }
        if (alone && after < m_text.size() && m_text[after] == '=') {
            return at;
        }
    }
    return start;
}

std::size_t SourceFile::count(Severity severity) const {
    std::size_t total = 0;
    for (const Finding& finding : m_findings) {
        total += finding.severity == severity ? 1 : 0;
    }
    return total;
}

bool parseXml(SourceFile& file, pugi::xml_document& document) {
    const pugi::xml_parse_result result = document.load_buffer(
        file.text().data(), file.text().size(), pugi::parse_default, pugi::encoding_utf8);
    if (!result) {
        file.error(static_cast<std::size_t>(result.offset),
                   std::string("not well-formed XML: ") + result.description());
        return false;
    }
    return true;
}

} // namespace pallix::check
