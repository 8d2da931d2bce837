#include "StoreCommon.h"

#include "Failure.h"
#include "FileGuard.h"
#include "ToolOutput.h"

#include "PRuntime.h"

#include <sys/stat.h>

namespace pallix::tool {

namespace {

bool exists(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0;
}

} // namespace

void shareConfigDirectory(CLI::App& group, std::string& directory) {
    addConfigDirectoryOption(group, directory);
    for (CLI::App* action : group.get_subcommands([](const CLI::App*) { return true; })) {
        addConfigDirectoryOption(*action, directory);
    }
}

std::string readableStoreFile(const std::string& directoryOption, const std::string& name,
                              check::FileKind kind) {
    const std::string file = useConfigDirectory(directoryOption) + name;
    guardReading(file, kind);
    return file;
}

StoreChange::StoreChange(const std::string& directoryOption, const std::string& name)
    : m_directory(useConfigDirectory(directoryOption)), m_lock(m_directory),
      m_file(m_directory + name), m_existed(exists(m_file)) {}

void StoreChange::guard(check::FileKind kind, bool force) const {
    guardFile(m_file, kind, force);
}

void StoreChange::requireWritten() const {
    if (PRuntime::lastWriteSucceeded()) {
        return;
    }
    // The port binding and firmware stores delete their file when a save fails, so that no
    // stale content is read back; say so rather than let the user think it is intact.
    failRejected("could not write " + m_file +
                 (m_existed && !exists(m_file) ? "; the library removed it, as it does when a "
                                                 "write fails"
                                               : ""));
}

} // namespace pallix::tool
