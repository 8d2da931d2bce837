#include "ConfigSession.h"

#include "Failure.h"
#include "FileGuard.h"
#include "FileNames.h"
#include "ToolOutput.h"
#include "Values.h"

#include "ConfigurationFormat.h"
#include "Conversions.h"

#include "NFileSystem.h"
#include "PRuntime.h"
#include "PRuntimeConfig.h"

#include <cctype>
#include <filesystem>
#include <string>
#include <vector>

namespace pallix::tool {

namespace cfg = format::configuration;

namespace {

bool exists(const std::string& path) {
    return NFileSystem::path::exist(NString(path));
}

// The running version decides whether this start counts as an update and what a write records
// as the last version; the library says nothing when it cannot read it, so the tool does.
void diagnoseVersionFile(const std::string& resources) {
    const std::string path = resources + "/" + format::kVersionFile;
    if (!exists(path)) {
        reportWarning(path + ": no such file; the running version is the library's built-in one");
    } else if (const std::string error = firstError(path, check::FileKind::Version);
               !error.empty()) {
        reportWarning(error + " (run 'pallix check " + path + "')");
    }
}

// What the import of the legacy file would lose: what the import reads otherwise than written,
// or not at all; and the current file, which the import replaces whatever it holds.
std::vector<std::string> importLosses(const std::string& legacy, const std::string& current) {
    std::vector<std::string> losses;
    if (std::string error = firstError(legacy, check::FileKind::LegacyConfig); !error.empty()) {
        losses.push_back(std::move(error));
    }
    std::error_code ignored;
    if (std::filesystem::file_size(current, ignored) > 0 && !ignored) {
        losses.push_back(current + ": what it holds is replaced by the import");
    }
    return losses;
}

} // namespace

CLI::App& addConfigCommand(CLI::App& parent, ConfigOptions& options, const char* name,
                           const std::string& description, const std::string& example,
                           const std::string& statuses, bool json) {
    CLI::App& command = *parent.add_subcommand(name, description);
    addConfigDirectoryOption(command, options.directories.config);
    addResourcesDirectoryOption(command, options.directories.resources);
    command.add_flag("--force", options.force,
                     std::string("Go on when a configuration file cannot be read as it is, or "
                                 "holds what the library reads otherwise: a change writes back "
                                 "what was read; the import of a legacy ") +
                         format::kLegacyConfigurationFile +
                         " goes ahead though it loses something; a command that only reads "
                         "shows the start-up values");
    if (json) {
        addJsonFlag(command, options.json);
    }
    finishHelp(command,
               statuses + "; 2 a usage error, a directory that cannot be used, or a "
                          "configuration file that cannot be read as it is (see --force).",
               example);
    return command;
}

std::string lowerCamel(std::string name) {
    name[0] = static_cast<char>(std::tolower(static_cast<unsigned char>(name[0])));
    return name;
}

const std::string& xmlText(const std::string& what, const std::string& text) {
    const std::string problem = format::xmlTextProblem(text);
    if (!problem.empty()) {
        failUsage(what + " has " + problem);
    }
    return text;
}

ConfigSession::ConfigSession(const ConfigOptions& options, bool changes) {
    m_directory = useConfigDirectory(options.directories.config);
    if (!options.directories.resources.empty()) {
        diagnoseVersionFile(useResourcesDirectory(options.directories.resources));
    }
    m_lock.emplace(m_directory);

    // A legacy file is imported by every start, read-only commands included: the import writes
    // the current file over whatever it held and removes the legacy file, so it is the legacy
    // file that must be readable before anything starts.
    const std::string legacy = m_directory + "/" + format::kLegacyConfigurationFile;
    const std::string current = currentFile();
    const bool imports = NFileSystem::file::exist(NString(legacy));
    if (imports) {
        guardImport(current, legacy);
        guardImportLosses(importLosses(legacy, current), legacy, m_directory, options.force);
        reportNote("importing the legacy " + legacy + " into " + current +
                   " and removing it, as the application does at start-up");
    } else if (changes) {
        guardFile(current, check::FileKind::Config, options.force);
    } else if (const std::string problem = fileProblem(current, check::FileKind::Config);
               !problem.empty()) {
        // Nothing is written, but what start-up makes of a file it cannot read is not what the
        // file says: only --force shows it.
        if (!options.force) {
            failUnreadable(current + ": " + problem + " (run 'pallix check " + current +
                           "' to see why, or pass --force to see the start-up values instead)");
        }
        reportWarning(current + ": " + problem + "; showing the start-up values instead");
    }

    m_updates = !imports && exists(current);
    PRuntime* runtime = PRuntime::getInstance();
    m_config = runtime != nullptr ? runtime->config() : nullptr;
    if (m_config == nullptr) {
        PRuntime::freeInstance();
        failRejected("the configuration could not be created");
    }
    m_config->initialize();
    m_updates = m_updates && m_config->newUpdate();
    if (imports && !PRuntime::lastWriteSucceeded()) {
        reportWarning(current + ": the imported configuration could not be written");
    }
}

ConfigSession::~ConfigSession() {
    PRuntime::freeInstance();
}

std::string ConfigSession::currentFile() const {
    return m_directory + "/" + format::kConfigurationFile;
}

void ConfigSession::requireWritten() const {
    if (!PRuntime::lastWriteSucceeded()) {
        failRejected(currentFile() + ": the change could not be written; the file is as it was");
    }
    // The first write after an update records it, as the application's start-up does; the user
    // asked for one change and should learn of the others.
    if (m_updates) {
        const std::string version = m_config->version().toStdString();
        reportNote(currentFile() + ": " +
                   (version.empty() ? std::string("an empty version") : "version " + version) +
                   " starts here for the first time, so the file now also records it as " +
                   cfg::kLastVersion + " and sets " + cfg::kStatus + "/" +
                   cfg::kSettingKeepFirmwareCache + " to true, as the application's start-up does");
    }
}

} // namespace pallix::tool
