#include "ToolOutput.h"

#include <cstdlib>
#include <iostream>
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
    for (char c : field) {
        const char* escape = c == '\t'   ? "\\t"
                             : c == '\n' ? "\\n"
                             : c == '\r' ? "\\r"
                             : c == '\\' ? "\\\\"
                                         : nullptr;
        escaped += escape != nullptr ? std::string(escape) : std::string(1, c);
    }
    return escaped;
}

void printFields(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields) {
        line += (&field == &fields.front() ? "" : "\t") + escapeField(field);
    }
    std::cout << line << '\n';
}

void printAnswer(bool json, const nlohmann::ordered_json& document, const std::string& text) {
    if (json) {
        printJson(document);
    } else {
        std::cout << text << '\n';
    }
}

nlohmann::ordered_json reportFindings(const check::SourceFile& file, bool json, std::size_t& errors,
                                      std::size_t& warnings) {
    nlohmann::ordered_json findings = nlohmann::ordered_json::array();
    for (const check::Finding& finding : file.findings()) {
        const bool error = finding.severity == check::Severity::Error;
        const char* severity = error ? "error" : "warning";
        ++(error ? errors : warnings);
        findings.push_back({{"file", file.path()},
                            {"line", finding.line},
                            {"column", finding.column},
                            {"severity", severity},
                            {"message", finding.message}});
        // A value quoted in a message may hold a line break: one finding stays one line.
        if (!json) {
            std::cout << escapeField(file.path()) << ':' << finding.line << ':' << finding.column
                      << ": " << severity << ": " << escapeField(finding.message) << '\n';
        }
    }
    return findings;
}

std::string plural(std::size_t count, const char* word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
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

void finishHelp(CLI::App& command, const std::string& statuses, const std::string& example) {
    endHelp(command, "Exit status: " + statuses, example);
}

} // namespace pallix::tool
