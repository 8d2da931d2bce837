#include "ToolOutput.h"

#include <pugixml.hpp>

#include <fstream>
#include <iostream>
#include <iterator>
#include <sys/stat.h>

namespace pallix::tool {

int& exitStatus() {
    static int status = 0;
    return status;
}

void reportError(const std::string& message) {
    std::cerr << "pallix: " << message << '\n';
}

std::string describeXmlProblem(const std::string& path) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return path + ": no such file";
    }
    if (S_ISDIR(info.st_mode)) {
        return path + ": is a directory";
    }
    std::ifstream input(path, std::ios::binary);
    if (!input) {
        return path + ": cannot be read";
    }
    const std::string text((std::istreambuf_iterator<char>(input)),
                           std::istreambuf_iterator<char>());
    pugi::xml_document document;
    const pugi::xml_parse_result result =
        document.load_buffer(text.data(), text.size(), pugi::parse_default, pugi::encoding_utf8);
    if (result) {
        return std::string();
    }
    // pugixml reports a byte offset; turn it into a line and a column (both from 1).
    std::size_t line = 1;
    std::size_t column = 1;
    const auto offset = static_cast<std::size_t>(result.offset);
    for (std::size_t i = 0; i < offset && i < text.size(); ++i) {
        if (text[i] == '\n') {
            ++line;
            column = 1;
        } else {
            ++column;
        }
    }
    return path + ":" + std::to_string(line) + ":" + std::to_string(column) +
           ": not well-formed XML: " + result.description();
}

} // namespace pallix::tool
