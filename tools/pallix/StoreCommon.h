#pragma once

#include "Directories.h"
#include "FileKind.h"

#include <CLI/CLI.hpp>

#include <string>

// What the subcommands of the local stores (notify, portbind, factory, ipsw) share: where their
// options go, what their help ends with, and how a change of a store file is made safe.
namespace pallix::tool {

// Adds --config-dir to the group and to each of its actions, all bound to `directory`, so that
// it goes before or after the action alike.
void shareConfigDirectory(CLI::App& group, std::string& directory);

// The store file `name` (with its leading "/") of the configuration directory given by the option
// (or the application's own), after making sure that listing it lists what it holds: a file
// the library cannot read fails with status 2.
std::string readableStoreFile(const std::string& directoryOption, const std::string& name,
                              check::FileKind kind);

// One change of one store file. Holds the configuration directory's lock from before the
// library reads the file until after it has written it, so that parallel invocations of the
// tool take turns.
class StoreChange {
public:
    StoreChange(const std::string& directoryOption, const std::string& name);

    const std::string& directory() const { return m_directory; }
    const std::string& file() const { return m_file; }
    // Whether the file was there when the change began.
    bool existed() const { return m_existed; }

    // Refuses to let the library replace a file it cannot read, or one whose content it would
    // write back otherwise than it stands (guardFile).
    void guard(check::FileKind kind, bool force) const;
    // Fails (status 1) when the library's last write did not reach the disk.
    void requireWritten() const;

private:
    std::string m_directory;
    DirectoryLock m_lock;
    std::string m_file;
    bool m_existed = false;
};

} // namespace pallix::tool
