#pragma once

#include <CLI/CLI.hpp>

#include <string>

namespace pallix::tool {

// The directories a subcommand works in. Each subcommand group that works on a directory adds
// the options to the group and to each of its actions, bound to the same variables, so that
// "pallix notify --config-dir D list" and "pallix notify list --config-dir D" mean the same.
struct Directories {
    std::string config;    // empty: the application's own
    std::string resources; // empty: the application's own
};

// The application's own configuration directory on Linux, as the help texts and examples write
// it. (Asking the application for it would create it.)
extern const std::string kOwnConfigDirectory;

// Refuses an empty path, which would otherwise mean the application's own directory: an unset
// variable in a script must not reach the user's real files. Every directory option has it.
CLI::Validator DirectoryPath();
void addConfigDirectoryOption(CLI::App& command, std::string& directory);
void addResourcesDirectoryOption(CLI::App& command, std::string& directory);

// Makes the directory the application's configuration (or resources) directory after checking
// that it is one the tool can use; an empty name keeps the application's own. A missing path,
// a file or an unreadable directory is a usage error that names it. Returns the directory used.
std::string useConfigDirectory(const std::string& directory);
// The check that both make: a usage error naming the directory ("the <what> directory") unless
// it is a directory that can be read.
void requireDirectory(const std::string& directory, const char* what);
std::string useResourcesDirectory(const std::string& directory);

// An exclusive advisory lock on a directory, held while a subcommand reads, changes and writes
// the files in it, so that parallel invocations of the tool take turns instead of losing each
// other's changes. The application does not take it; it only orders the tool's own changes.
class DirectoryLock {
public:
    explicit DirectoryLock(const std::string& directory);
    ~DirectoryLock();
    DirectoryLock(const DirectoryLock&) = delete;
    DirectoryLock& operator=(const DirectoryLock&) = delete;

private:
    int m_descriptor = -1;
};

} // namespace pallix::tool
