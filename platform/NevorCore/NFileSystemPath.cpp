#include "NFileSystem.h"

#include <sys/stat.h>

#include <string>
#include <utility>
#include <vector>

namespace NFileSystem {

namespace {

bool statPath(const path& p, struct stat& info) {
    return !p.data().empty() && ::stat(p.data().data(), &info) == 0;
}

} // namespace

NString path::fileName() const {
    const std::string& text = m_text.toStdString();
    const auto slash = text.find_last_of('/');
    return slash == std::string::npos ? m_text : NString(text.substr(slash + 1));
}

NString path::baseName() const {
    const std::string name = fileName().toStdString();
    const auto dot = name.find_last_of('.');
    // A leading dot names a hidden file, not an extension.
    return (dot == std::string::npos || dot == 0) ? NString(name) : NString(name.substr(0, dot));
}

path path::parent() const {
    const std::string text = format(*this).data().toStdString();
    const auto slash = text.find_last_of('/');
    if (slash == std::string::npos) {
        return path();
    }
    return path(NString(slash == 0 ? std::string("/") : text.substr(0, slash)));
}

path path::format(const path& p) {
    const std::string& text = p.m_text.toStdString();
    if (text.empty()) {
        return path();
    }
    const bool absolute = text.front() == '/';
    std::vector<std::string> parts;
    std::size_t start = 0;
    while (start <= text.size()) {
        auto end = text.find('/', start);
        if (end == std::string::npos) {
            end = text.size();
        }
        std::string part = text.substr(start, end - start);
        if (part.empty() || part == ".") {
            // nothing: repeated separator or current directory
        } else if (part == "..") {
            if (!parts.empty() && parts.back() != "..") {
                parts.pop_back();
            } else if (!absolute) {
                parts.push_back(part);
            }
        } else {
            parts.push_back(std::move(part));
        }
        start = end + 1;
    }
    std::string result = absolute ? "/" : "";
    for (std::size_t i = 0; i < parts.size(); ++i) {
        if (i > 0) {
            result += '/';
        }
        result += parts[i];
    }
    if (result.empty()) {
        result = ".";
    }
    return path(NString(std::move(result)));
}

bool path::exist(const path& p) {
    struct stat info {};
    return statPath(p, info);
}

bool path::isFile(const path& p) {
    struct stat info {};
    return statPath(p, info) && S_ISREG(info.st_mode);
}

bool path::isDirectory(const path& p) {
    struct stat info {};
    return statPath(p, info) && S_ISDIR(info.st_mode);
}

} // namespace NFileSystem
