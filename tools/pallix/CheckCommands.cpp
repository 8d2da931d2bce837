// "pallix check": says exactly what is wrong with a file that the library reads, before it
// ships. The library itself is silent by design (a malformed table is simply empty).

#include "Commands.h"
#include "FileNames.h"
#include "ToolOutput.h"

#include "check/Checkers.h"
#include "check/FileKind.h"
#include "check/SourceFile.h"
#include "check/ValueRules.h"

#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <iterator>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

// The exit statuses of the check, as of the whole tool.
constexpr int kClean = 0;
constexpr int kFindings = 1;
constexpr int kCannotCheck = 2;

const char* const kStandardInput = "-";
const char* const kStandardInputName = "<stdin>";

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
    bool standardInput = false;
    // Not read: only the note is said of it.
    bool noteOnly = false;
    std::vector<std::string> notes;
};

bool isRegularFile(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

bool isDirectory(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

// The framework's base name: the file name without its last extension; a leading dot names a
// hidden file, not an extension.
std::string baseName(const std::string& name) {
    const auto dot = name.find_last_of('.');
    return dot == std::string::npos || dot == 0 ? name : name.substr(0, dot);
}

std::vector<std::string> sortedEntries(const std::string& directory) {
    std::vector<std::string> names;
    std::error_code ignored;
    for (const auto& entry : std::filesystem::directory_iterator(directory, ignored)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

// The old layout of the notifications: one file per notification, which the store imports by
// reading "<base name>.xml" for every regular file in the directory.
void addOldNotifications(const std::string& directory, std::vector<Input>& inputs) {
    for (const std::string& name : sortedEntries(directory)) {
        const std::string path = directory + "/" + name;
        if (!isRegularFile(path)) {
            continue;
        }
        const std::string readInstead = baseName(name) + ".xml";
        if (readInstead == name) {
            inputs.push_back(Input{path, check::FileKind::OldNotify, false, false, {}});
        } else {
            inputs.push_back(Input{path,
                                   std::nullopt,
                                   false,
                                   true,
                                   {"the library never reads this file: for it, the import of "
                                    "the old \"Notify\" directory reads " +
                                    check::inQuotes(readInstead) + " in its place"}});
        }
    }
}

// Every file of a configuration directory that the library reads, each as its kind, in the
// order in which the library comes to them.
std::vector<Input> configDirectoryInputs(std::string directory) {
    while (directory.size() > 1 && directory.back() == '/') {
        directory.pop_back();
    }
    const std::string prefix = directory == "/" ? directory : directory + "/";
    std::vector<Input> inputs;
    auto add = [&](const char* name, check::FileKind kind, std::vector<std::string> notes = {}) {
        if (exists(prefix + name)) {
            inputs.push_back(Input{prefix + name, kind, false, false, std::move(notes)});
        }
    };
    // The configuration reads "Config.xml" when it is there, imports it, saves the current
    // file from it and deletes it; the current file is then never read.
    std::vector<std::string> configNotes;
    if (isRegularFile(prefix + format::kLegacyConfigurationFile)) {
        configNotes.push_back("the library does not read this file: \"Config.xml\" beside it is "
                              "imported in its place, and the import then overwrites this file");
    }
    add(format::kConfigurationFile, check::FileKind::Config, configNotes);
    add(format::kLegacyConfigurationFile, check::FileKind::LegacyConfig);
    // Likewise the old "Notify" directory: while it is there, the store imports it (and then
    // deletes it) instead of reading "notify.xml".
    const bool oldNotifications = isDirectory(prefix + format::kOldNotifyDirectory);
    std::vector<std::string> notifyNotes;
    if (oldNotifications) {
        notifyNotes.push_back("the library does not read this file: the old \"Notify\" directory "
                              "beside it is imported in its place, and the next change to the "
                              "notifications overwrites this file");
    }
    add(format::kNotifyFile, check::FileKind::Notify, notifyNotes);
    if (oldNotifications) {
        addOldNotifications(prefix + format::kOldNotifyDirectory, inputs);
    }
    add(format::kPortbindFile, check::FileKind::Portbind);
    add(format::kFactoryFile, check::FileKind::Factory);
    add(format::kCustomFirmwareFile, check::FileKind::Ipsw);
    return inputs;
}

const char* severityName(check::Severity severity) {
    return severity == check::Severity::Error ? "error" : "warning";
}

void printFindings(const check::SourceFile& file) {
    for (const check::Finding& finding : file.findings()) {
        std::cout << file.path() << ':' << finding.line << ':' << finding.column << ": "
                  << severityName(finding.severity) << ": " << finding.message << '\n';
    }
}

nlohmann::ordered_json findingsAsJson(const check::SourceFile& file) {
    nlohmann::ordered_json findings = nlohmann::ordered_json::array();
    for (const check::Finding& finding : file.findings()) {
        findings.push_back({{"file", file.path()},
                            {"line", finding.line},
                            {"column", finding.column},
                            {"severity", severityName(finding.severity)},
                            {"message", finding.message}});
    }
    return nlohmann::ordered_json{{"file", file.path()}, {"findings", std::move(findings)}};
}

std::string plural(std::size_t count, const char* word) {
    return std::to_string(count) + " " + word + (count == 1 ? "" : "s");
}

std::string readStandardInput() {
    return std::string(std::istreambuf_iterator<char>(std::cin), std::istreambuf_iterator<char>());
}

int runCheck(const CheckOptions& options) {
    std::optional<check::FileKind> forcedKind;
    if (!options.kind.empty()) {
        forcedKind = check::fileKindFromName(options.kind);
    }
    if (options.files.empty() && options.configDirectory.empty()) {
        reportError("check: name a FILE, - for standard input, or --config-dir DIR");
        return kCannotCheck;
    }
    if (std::count(options.files.begin(), options.files.end(), kStandardInput) > 1) {
        reportError("check: standard input (-) can be checked only once");
        return kCannotCheck;
    }
    std::vector<Input> inputs;
    if (!options.configDirectory.empty()) {
        if (!isDirectory(options.configDirectory)) {
            reportError(options.configDirectory + ": not a directory");
            return kCannotCheck;
        }
        inputs = configDirectoryInputs(options.configDirectory);
    }
    for (const std::string& path : options.files) {
        const bool standardInput = path == kStandardInput;
        inputs.push_back(
            Input{standardInput ? kStandardInputName : path, forcedKind, standardInput, false, {}});
    }

    bool cannotCheck = false;
    std::size_t checked = 0;
    std::size_t errors = 0;
    std::size_t warnings = 0;
    nlohmann::ordered_json report = nlohmann::ordered_json::array();
    for (const Input& input : inputs) {
        check::SourceFile file = input.standardInput
                                     ? check::SourceFile(input.path, readStandardInput())
                                 : input.noteOnly ? check::SourceFile(input.path, std::string())
                                                  : check::SourceFile(input.path);
        if (!file.readable()) {
            reportError(file.path() + ": " + file.problem());
            cannotCheck = true;
            continue;
        }
        if (!input.noteOnly) {
            const std::string problem = check::checkFile(file, input.kind);
            if (!problem.empty()) {
                reportError(file.path() + ": " + problem);
                cannotCheck = true;
                continue;
            }
        }
        for (const std::string& note : input.notes) {
            file.warning(0, note);
        }
        cannotCheck = cannotCheck || !file.wellFormed();
        ++checked;
        errors += file.count(check::Severity::Error);
        warnings += file.count(check::Severity::Warning);
        if (options.json) {
            report.push_back(findingsAsJson(file));
        } else {
            printFindings(file);
        }
    }
    if (options.json) {
        // Messages quote the file's own bytes, which need not be UTF-8.
        std::cout << report.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)
                  << '\n';
    } else {
        std::cout << plural(checked, "file") << " checked: " << plural(errors, "error") << ", "
                  << plural(warnings, "warning") << '\n';
    }
    if (cannotCheck) {
        return kCannotCheck;
    }
    return errors + warnings > 0 ? kFindings : kClean;
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
