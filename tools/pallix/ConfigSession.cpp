#include "ConfigSession.h"

#include "Failure.h"
#include "FileGuard.h"
#include "FileNames.h"
#include "ToolOutput.h"

#include "NFileSystem.h"
#include "PRuntime.h"
#include "PRuntimeConfig.h"

namespace pallix::tool {

namespace {

// The library does not hand out the names of its files; these are the names it reads and
// writes, in the configuration directory (the first two) and the resources directory.
const std::string kCurrentFile = std::string("/") + format::kConfigurationFile;
const std::string kLegacyFile = std::string("/") + format::kLegacyConfigurationFile;
const std::string kVersionFile = std::string("/") + format::kVersionFile;

// The running version decides whether this start counts as an update; the library says nothing
// when it cannot read the version, so the tool does.
void diagnoseVersionFile(const std::string& resources) {
    const std::string path = resources + kVersionFile;
    if (!NFileSystem::path::exist(NString(path))) {
        reportWarning(path + ": no such file; the running version is the library's built-in one");
        return;
    }
    const std::string problem = fileProblem(path, check::FileKind::Version);
    if (!problem.empty()) {
        reportWarning(path + ": " + problem +
                      "; the running version is the library's built-in one (run 'pallix check " +
                      path + "')");
    }
}

} // namespace

void addConfigOptions(CLI::App& command, ConfigOptions& options) {
    addConfigDirectoryOption(command, options.directories.config);
    addResourcesDirectoryOption(command, options.directories.resources);
    command.add_flag("--force", options.force,
                     "Go on when a configuration file cannot be read as it is: a change, or the "
                     "import of a legacy Config.xml, replaces it (its content is lost); a command "
                     "that only reads shows the start-up values");
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
    const std::string legacy = m_directory + kLegacyFile;
    const std::string current = currentFile();
    const bool imports = NFileSystem::file::exist(NString(legacy));
    if (imports) {
        guardFile(legacy, check::FileKind::LegacyConfig, options.force);
        // The library removes the legacy file even when the import could not be written.
        if (NFileSystem::path::exist(NString(current)) &&
            !NFileSystem::file::exist(NString(current))) {
            failUnreadable(current + ": is not a regular file, so the import of " + legacy +
                           " could not be written and the legacy file would be lost");
        }
        reportNote("importing the legacy " + legacy + " into " + current +
                   " and removing it, as the application does at start-up");
    } else if (changes) {
        guardFile(current, check::FileKind::Config, options.force);
    } else {
        // Nothing is written, but what start-up makes of a file it cannot read is not what the
        // file says: only --force shows it.
        const std::string problem = fileProblem(current, check::FileKind::Config);
        if (!problem.empty() && !options.force) {
            failUnreadable(current + ": " + problem + " (run 'pallix check " + current +
                           "' to see why, or pass --force to see the start-up values instead)");
        }
        if (!problem.empty()) {
            reportWarning(current + ": " + problem + "; showing the start-up values instead");
        }
    }

    PRuntime* runtime = PRuntime::getInstance();
    m_config = runtime != nullptr ? runtime->config() : nullptr;
    if (m_config == nullptr) {
        PRuntime::freeInstance();
        failRejected("the configuration could not be created");
    }
    m_config->initialize();
    if (imports && !PRuntime::lastWriteSucceeded()) {
        reportWarning(current + ": the imported configuration could not be written");
    }
}

ConfigSession::~ConfigSession() {
    PRuntime::freeInstance();
}

std::string ConfigSession::currentFile() const {
    return m_directory + kCurrentFile;
}

void ConfigSession::requireWritten() const {
    if (!PRuntime::lastWriteSucceeded()) {
        failRejected(currentFile() + ": the change could not be written; the file is as it was");
    }
}

} // namespace pallix::tool
