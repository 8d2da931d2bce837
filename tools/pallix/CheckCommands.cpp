// "pallix check": says exactly what is wrong with a file that the library reads, before it
// ships. The library itself is silent by design (a malformed table is simply empty).

#include "Commands.h"
#include "Failure.h"
#include "FileNames.h"
#include "ToolOutput.h"

#include "check/Checkers.h"
#include "check/ValueRules.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

namespace fs = std::filesystem;
using Json = nlohmann::ordered_json;

const char* const kStandardInput = "-";

struct CheckOptions {
    std::string kind;
    std::string configDirectory;
    bool json = false;
    std::vector<std::string> files;
};

// One file to check. A note is a finding that comes from the file's place among the others
// rather than from its text (for example a file that the library never reads).
struct Input {
    std::string path;
    std::optional<check::FileKind> kind;
    std::vector<std::string> notes;
    bool noteOnly = false; // not read: only the notes are said of it
};

bool is(fs::file_type type, const fs::path& path) {
    std::error_code ignored;
    return fs::status(path, ignored).type() == type;
}

// Every file of a configuration directory that the library reads, each as its kind, in the
// order in which the library comes to them.
std::vector<Input> configDirectoryInputs(std::string given) {
    while (given.size() > 1 && given.back() == '/') {
        given.pop_back();
    }
    const fs::path directory(given);
    const fs::path legacy = directory / format::kLegacyConfigurationFile;
    const fs::path old = directory / format::kOldNotifyDirectory;
    const std::string hidden = "the library does not read this file: ";
    const std::string oldName = check::inQuotes(format::kOldNotifyDirectory);
    std::vector<Input> inputs;
    auto add = [&inputs](const fs::path& path, std::optional<check::FileKind> kind,
                         const std::string& note = "", bool noteOnly = false) {
        std::error_code ignored;
        if (fs::exists(path, ignored)) {
            inputs.push_back(Input{path.string(), kind, {}, noteOnly});
            if (!note.empty()) {
                inputs.back().notes.push_back(note);
            }
        }
    };
    // While the legacy configuration or the old notifications' directory is there, the library
    // imports it in place of the current file, and its next write replaces that file.
    add(directory / format::kConfigurationFile, check::FileKind::Config,
        is(fs::file_type::regular, legacy)
            ? hidden + check::inQuotes(format::kLegacyConfigurationFile) +
                  " beside it is imported in its place, and the import then overwrites this file"
            : "");
    add(legacy, check::FileKind::LegacyConfig);
    add(directory / format::kNotifyFile, check::FileKind::Notify,
        is(fs::file_type::directory, old)
            ? hidden + "the old " + oldName +
                  " directory beside it is imported in its place, and the next change to the "
                  "notifications overwrites this file"
            : "");
    // The import reads "<base name>.xml" for every regular file of the directory.
    std::error_code ignored;
    std::set<fs::path> oldFiles;
    for (const auto& entry : fs::directory_iterator(old, ignored)) {
        if (is(fs::file_type::regular, entry.path())) {
            oldFiles.insert(entry.path());
        }
    }
    for (const fs::path& path : oldFiles) {
        const std::string readInstead = path.stem().string() + format::kOldNotifyExtension;
        if (path.filename() == readInstead) {
            add(path, check::FileKind::OldNotify);
        } else {
            add(path, std::nullopt,
                "the library never reads this file: for it, the import of the old " + oldName +
                    " directory reads " + check::inQuotes(readInstead) + " in its place",
                true);
        }
    }
    add(directory / format::kPortbindFile, check::FileKind::Portbind);
    add(directory / format::kFactoryFile, check::FileKind::Factory);
    add(directory / format::kCustomFirmwareFile, check::FileKind::Ipsw);
    return inputs;
}

std::string plural(std::size_t count, const char* word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

int runCheck(const CheckOptions& options) {
    if (options.files.empty() && options.configDirectory.empty()) {
        failUsage("check: name a FILE, - for standard input, or --config-dir DIR");
    }
    if (std::count(options.files.begin(), options.files.end(), kStandardInput) > 1) {
        failUsage("check: standard input (-) can be checked only once");
    }
    std::vector<Input> inputs;
    if (!options.configDirectory.empty()) {
        if (!is(fs::file_type::directory, options.configDirectory)) {
            failUsage(options.configDirectory + ": not a directory");
        }
        inputs = configDirectoryInputs(options.configDirectory);
    }
    for (const std::string& path : options.files) {
        inputs.push_back(Input{path, check::fileKindFromName(options.kind), {}});
    }

    bool cannotCheck = false;
    std::size_t checked = 0, errors = 0, warnings = 0;
    Json report = Json::array();
    for (const Input& input : inputs) {
        check::SourceFile file =
            input.path == kStandardInput
                ? check::SourceFile("<stdin>", std::string(std::istreambuf_iterator<char>(std::cin),
                                                           std::istreambuf_iterator<char>()))
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
        for (const std::string& note : input.notes) {
            file.warning(0, note);
        }
        cannotCheck = cannotCheck || !file.wellFormed();
        ++checked;
        Json findings = Json::array();
        for (const check::Finding& finding : file.findings()) {
            const bool error = finding.severity == check::Severity::Error;
            const char* severity = error ? "error" : "warning";
            ++(error ? errors : warnings);
            findings.push_back({{"file", file.path()},
                                {"line", finding.line},
                                {"column", finding.column},
                                {"severity", severity},
                                {"message", finding.message}});
            if (!options.json) {
                std::cout << file.path() << ':' << finding.line << ':' << finding.column << ": "
                          << severity << ": " << finding.message << '\n';
            }
        }
        report.push_back({{"file", file.path()}, {"findings", std::move(findings)}});
    }
    if (options.json) {
        // Messages quote the file's own bytes, which need not be UTF-8.
        std::cout << report.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
    } else {
        std::cout << plural(checked, "file") << " checked: " << plural(errors, "error") << ", "
                  << plural(warnings, "warning") << '\n';
    }
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
        ->check(CLI::IsMember(check::fileKindNames()));
    command->add_option("--config-dir", options->configDirectory,
                        "Check every file of this configuration directory that the library "
                        "reads, each as its kind");
    command->add_flag("--json", options->json,
                      "Print the findings as one JSON document: an array of files, each with "
                      "its findings");
    command->add_option("files", options->files, "Files to check; - reads standard input");
    command->footer("Findings are printed as FILE:LINE:COLUMN: error|warning: message, in the "
                    "order of their positions.\n"
                    "Exit status: 0 every file is clean; 1 some file has findings (errors or "
                    "warnings); 2 a usage error, or a file that cannot be read at all (missing, "
                    "not a regular file, unreadable, not well-formed XML or JSON, or of a kind "
                    "that cannot be told).\n"
                    "Example: pallix check --config-dir \"$HOME/.config/TolVane\" cloud.xml");
    command->callback([options] { exitStatus() = runCheck(*options); });
}

} // namespace pallix::tool
