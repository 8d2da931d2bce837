// "pallix check": says exactly what is wrong with a file that the library reads, before it
// ships. The library itself is silent by design (a malformed table is simply empty).

#include "Commands.h"
#include "ToolOutput.h"

#include "check/Checkers.h"
#include "check/FileKind.h"
#include "check/SourceFile.h"

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

struct CheckOptions {
    std::string kind;
    std::vector<std::string> files;
};

void printFindings(const check::SourceFile& file) {
    for (const check::Finding& finding : file.findings()) {
        std::cout << file.path() << ':' << finding.line << ':' << finding.column << ": "
                  << (finding.severity == check::Severity::Error ? "error" : "warning") << ": "
                  << finding.message << '\n';
    }
}

std::string plural(std::size_t count, const char* word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

void runCheck(const CheckOptions& options) {
    std::optional<check::FileKind> forcedKind;
    if (!options.kind.empty()) {
        forcedKind = check::fileKindFromName(options.kind);
    }
    std::size_t errors = 0;
    std::size_t warnings = 0;
    for (const std::string& path : options.files) {
        check::SourceFile file(path);
        if (file.readable()) {
            const std::optional<check::FileKind> kind =
                forcedKind ? forcedKind : check::detectFileKind(file);
            if (kind) {
                check::checkFile(file, *kind);
            }
        }
        printFindings(file);
        errors += file.count(check::Severity::Error);
        warnings += file.count(check::Severity::Warning);
    }
    std::cout << plural(options.files.size(), "file") << " checked: " << plural(errors, "error")
              << ", " << plural(warnings, "warning") << '\n';
    exitStatus() = errors > 0 ? 2 : warnings > 0 ? 1 : 0;
}

} // namespace

void registerCheckCommands(CLI::App& app) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command = app.add_subcommand(
        "check", "Validate files that the library reads; exit 0 clean, 1 warnings, 2 errors");
    command
        ->add_option("--kind", options->kind,
                     "Kind of every file (found from its content "
                     "when not given)")
        ->check(CLI::IsMember(check::fileKindNames()));
    command->add_option("files", options->files, "Files to check")->required();
    command->callback([options] { runCheck(*options); });
}

} // namespace pallix::tool
