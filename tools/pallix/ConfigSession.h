#pragma once

#include "Directories.h"

#include <CLI/CLI.hpp>

#include <optional>
#include <string>

class PRuntimeConfig;

namespace pallix::tool {

// What every "pallix config" action takes, on the group and on the action alike.
struct ConfigOptions {
    Directories directories;
    bool force = false;
    bool json = false;
};

// Adds --config-dir, --resources-dir and --force to a command, bound to `options`.
void addConfigOptions(CLI::App& command, ConfigOptions& options);

// The application's configuration, started for one command as the application starts it
// (PRuntimeConfig::initialize(), which imports a legacy Config.xml once and then writes the
// current file). The configuration directory stays locked until the session ends, so that the
// tool's own changes take turns. A file that the start-up or the command's change would replace
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
};

} // namespace pallix::tool
