// "pallix check": says exactly what is wrong with a file that the library reads, before it
// ships. The library itself is silent by design (a malformed table is simply empty).

#include "Commands.h"
#include "Directories.h"
#include "Failure.h"
#include "Suggestion.h"
#include "ToolOutput.h"

#include "Checkers.h"
#include "ConfigDirectoryFiles.h"

#include <nlohmann/json.hpp>

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

const char* const kStandardInput = "-";

// Standard input as a file to check, or a failure when it cannot be read (a directory, a
// closed descriptor): an empty text would be checked as a broken file.
check::SourceFile standardInput() {
    std::string text;
    char buffer[65536];
    for (;;) {
        const ssize_t count = ::read(STDIN_FILENO, buffer, sizeof buffer);
        if (count > 0) {
            text.append(buffer, static_cast<std::size_t>(count));
        } else if (count == 0) {
            return check::SourceFile("<stdin>", std::move(text));
        } else if (errno != EINTR) {
            failUnreadable(std::string("<stdin>: cannot be read (") + std::strerror(errno) + ")");
        }
    }
}

// --kind, with a suggestion for a mistyped one.
CLI::Validator FileKindName() {
    return CLI::Validator(
        [](const std::string& name) {
            return check::fileKindFromName(name) ? std::string()
                                                 : "'" + name + "' is not a kind of file (" +
                                                       joined(check::fileKindNames(), "or") + ")" +
                                                       didYouMean(name, check::fileKindNames());
        },
        "");
}

struct CheckOptions {
    std::string kind;
    std::string configDirectory;
    bool json = false;
    std::vector<std::string> files;
};

int runCheck(const CheckOptions& options) {
    if (options.files.empty() && options.configDirectory.empty()) {
        failUsage("check: name a FILE, - for standard input, or --config-dir DIR");
    }
    if (std::count(options.files.begin(), options.files.end(), kStandardInput) > 1) {
        failUsage("check: standard input (-) can be checked only once");
    }
    std::vector<check::DirectoryFile> inputs;
    if (!options.configDirectory.empty()) {
        std::error_code ignored;
        if (!fs::is_directory(options.configDirectory, ignored)) {
            failUsage(options.configDirectory + ": not a directory");
        }
        inputs = check::configDirectoryFiles(options.configDirectory);
    }
    for (const std::string& path : options.files) {
        inputs.push_back(
            check::DirectoryFile{path, check::fileKindFromName(options.kind), "", false});
    }

    bool cannotCheck = false;
    std::size_t checked = 0, errors = 0, warnings = 0;
    Json report = Json::array();
    for (const check::DirectoryFile& input : inputs) {
        check::SourceFile file = input.path == kStandardInput ? standardInput()
                                 : input.noteOnly ? check::SourceFile(input.path, std::string())
                                                  : check::SourceFile(input.path);
        const std::string problem = !file.readable() ? file.problem()
                                    : input.noteOnly ? std::string()
                                                     : check::checkFile(file, input.kind);
        if (!problem.empty()) {
            reportError(file.path() + ": " + problem);
            cannotCheck = true;
            continue;
        }
        if (!input.note.empty()) {
            file.warning(0, input.note);
        }
        cannotCheck = cannotCheck || !file.wellFormed();
        ++checked;
        Json findings = reportFindings(file, options.json, errors, warnings);
        report.push_back({{"file", file.path()}, {"findings", std::move(findings)}});
    }
    printAnswer(options.json, report,
                plural(checked, "file") + " checked: " + plural(errors, "error") + ", " +
                    plural(warnings, "warning"));
    return cannotCheck ? 2 : errors + warnings > 0 ? 1 : 0;
}

} // namespace

void registerCheckCommands(CLI::App& app) {
    auto options = std::make_shared<CheckOptions>();
    CLI::App* command = app.add_subcommand(
        "check", "Validate files that the library reads and say what the library makes of them");
    command
        ->add_option("--kind", options->kind,
                     "Kind of every FILE (found from its content when not given)")
        ->type_name("KIND")
        ->check(FileKindName());
    command
        ->add_option("--config-dir", options->configDirectory,
                     "Check every file of this configuration directory that the library "
                     "reads, each as its kind")
        ->type_name("DIR")
        ->check(DirectoryPath());
    command->add_flag("--json", options->json,
                      "Print the findings as one JSON document: an array of files, each with "
                      "its findings");
    command->add_option("files", options->files, "Files to check; - reads standard input");
    endHelp(*command,
            "Findings are printed as FILE:LINE:COLUMN: error|warning: message, in the order of "
            "their positions.\n"
            "Exit status: 0 every file is clean; 1 some file has findings (errors or warnings); 2 "
            "a usage error, or a file that cannot be read at all (missing, not a regular file, "
            "unreadable, not well-formed XML or JSON, or of a kind that cannot be told).",
            "pallix check --config-dir " + kOwnConfigDirectory + " cloud.xml");
    command->callback([options] { exitStatus() = runCheck(*options); });
}

} // namespace pallix::tool
