#include "ToolOutput.h"

#include <pugixml.hpp>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <iterator>
#include <sys/stat.h>
#include <unistd.h>

namespace pallix::tool {

int& exitStatus() {
    static int status = 0;
    return status;
}

void reportError(const std::string& message) {
    std::cerr << "pallix: " << message << '\n';
}

void reportWarning(const std::string& message) {
    std::cerr << "pallix: " << paint(Colour::Yellow, "warning", STDERR_FILENO) << ": " << message
              << '\n';
}

void reportNote(const std::string& message) {
    std::cerr << "pallix: note: " << message << '\n';
}

void addJsonFlag(CLI::App& command, bool& json) {
    command.add_flag("--json", json, "Print the result as JSON");
}

void printJson(const nlohmann::ordered_json& document) {
    std::cout << document.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
              << '\n';
}

std::string escapeField(const std::string& field) {
    std::string escaped;
    escaped.reserve(field.size());
    for (char c : field) {
        switch (c) {
        case '\t':
            escaped += "\\t";
            break;
        case '\n':
            escaped += "\\n";
            break;
        case '\r':
            escaped += "\\r";
            break;
        case '\\':
            escaped += "\\\\";
            break;
        default:
            escaped += c;
        }
    }
    return escaped;
}

void printFields(const std::vector<std::string>& fields) {
    std::string line;
    for (std::size_t i = 0; i < fields.size(); ++i) {
        if (i > 0) {
            line += '\t';
        }
        line += escapeField(fields[i]);
    }
    line += '\n';
    std::cout << line;
}

std::string paint(Colour colour, const std::string& text, int fileDescriptor) {
    const char* term = std::getenv("TERM");
    if (std::getenv("NO_COLOR") != nullptr || ::isatty(fileDescriptor) != 1 ||
        (term != nullptr && std::string(term) == "dumb")) {
        return text;
    }
    const char* code = colour == Colour::Red      ? "\033[1;31m"
                       : colour == Colour::Yellow ? "\033[1;33m"
                       : colour == Colour::Green  ? "\033[1;32m"
                                                  : "\033[1m";
    return code + text + "\033[0m";
}

std::string joined(const std::vector<std::string>& words, const char* last) {
    std::string text;
    for (std::size_t i = 0; i < words.size(); ++i) {
        const bool final = i > 0 && i + 1 == words.size() && last != nullptr;
        text += i == 0 ? "" : final ? std::string(" ") + last + " " : ", ";
        text += words[i];
    }
    return text;
}

void setExample(CLI::App& command, const std::string& example) {
    std::string lines =
        "\nExample" + std::string(example.find('\n') == std::string::npos ? "" : "s") + ":\n  ";
    for (char c : example) {
        lines += c;
        if (c == '\n') {
            lines += "  ";
        }
    }
    command.footer(lines);
}

void endHelp(CLI::App& command, const std::string& notes, const std::string& example) {
    setExample(command, example);
    command.footer(notes + "\n" + command.get_footer());
}

void finishHelp(CLI::App& command, const std::string& example, const std::string& statuses) {
    endHelp(command, "Exit status: " + statuses, example);
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
