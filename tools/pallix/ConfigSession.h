#pragma once

#include "Directories.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

class PRuntimeConfig;

// What the "pallix config" commands share: their options, the shape of their help, the words
// their help texts are made of, and the configuration started for each.
namespace pallix::tool {

// Bound to the group and to every action alike, so an option may come before or after the action.
struct ConfigOptions {
    Directories directories;
    bool force = false;
    bool json = false;
};

// Adds the group (to the tool) or an action (to the group) with --config-dir, --resources-dir,
// --force and, where it prints values, --json. Its help gives the exit statuses, followed by
// those that every start of the configuration may end with, then ends with the example.
CLI::App& addConfigCommand(CLI::App& parent, ConfigOptions& options, const char* name,
                           const std::string& description, const std::string& example,
                           const std::string& statuses, bool json = false);

// The name --json gives to an element of the file: "CustomBackup" becomes "customBackup".
std::string lowerCamel(std::string name);
// The text, or a usage error "WHAT has PROBLEM" when an XML file cannot carry it.
const std::string& xmlText(const std::string& what, const std::string& text);

// The application's configuration, started for one command as the application starts it
// (PRuntimeConfig::initialize(), which imports a legacy file once and then writes the current
// one). The configuration directory stays locked until the session ends, so that the tool's
// own changes take turns. A file that the start-up or the command's change would replace
// without having read it is guarded first (FileGuard.h); a read-only command refuses a current
// file that it cannot read as well, unless forced, since it would show start-up values as if
// they were the file's.
class ConfigSession {
public:
    ConfigSession(const ConfigOptions& options, bool changes);
    ~ConfigSession();
    ConfigSession(const ConfigSession&) = delete;
    ConfigSession& operator=(const ConfigSession&) = delete;

    PRuntimeConfig& config() { return *m_config; }
    const std::string& directory() const { return m_directory; }
    std::string currentFile() const;

    // Called right after a change: a change that did not reach the disk is rejected (status 1),
    // since the next start would not see it.
    void requireWritten() const;

private:
    std::string m_directory;
    std::optional<DirectoryLock> m_lock;
    PRuntimeConfig* m_config = nullptr;
    // Whether this start updates an existing file to a new version.
    bool m_updates = false;
};

} // namespace pallix::tool
