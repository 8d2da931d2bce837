#include "Directories.h"

#include "Failure.h"
#include "FileNames.h"
#include "Values.h"

#include "NApplication.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <map>

namespace pallix::tool {

const std::string kOwnConfigDirectory = "~/.config/TolVane";

namespace {

const std::string kConfigHelp =
    "The configuration directory (default: the application's own, " + kOwnConfigDirectory +
    ", or under $XDG_CONFIG_HOME when it is set; on macOS under ~/Library/Application Support)";
const std::string kResourcesHelp =
    std::string("The resources directory, holding ") + pallix::format::kVersionFile +
    " with the running version (default: the application's own, beside the program)";

} // namespace

void requireDirectory(const std::string& directory, const char* what) {
    struct stat info {};
    if (::stat(directory.c_str(), &info) != 0) {
        failUsage(directory + ": no such " + what + " directory (" + std::strerror(errno) + ")");
    }
    if (!S_ISDIR(info.st_mode)) {
        failUsage(directory + ": is not a directory; the " + what + " directory is expected");
    }
    if (::access(directory.c_str(), R_OK | X_OK) != 0) {
        failUsage(directory + ": the " + what + " directory cannot be read (" +
                  std::strerror(errno) + ")");
    }
}

CLI::Validator DirectoryPath() {
    return NonEmptyPath("leave the option out for the default directory");
}

namespace {

// A group and each of its actions take the same directory option, bound to one string; given to
// both, the later would silently win, so the second is a usage error.
void refuseSecondValue(CLI::Option& option, std::string& directory) {
    static std::map<const std::string*, int> given;
    option.each([&directory](const std::string&) {
        if (++given[&directory] > 1) {
            throw CLI::ValidationError("is given twice; give it once");
        }
    });
}

} // namespace

void addConfigDirectoryOption(CLI::App& command, std::string& directory) {
    CLI::Option* option = command.add_option("--config-dir", directory, kConfigHelp)
                              ->type_name("DIR")
                              ->check(DirectoryPath());
    refuseSecondValue(*option, directory);
}

void addResourcesDirectoryOption(CLI::App& command, std::string& directory) {
    CLI::Option* option = command.add_option("--resources-dir", directory, kResourcesHelp)
                              ->type_name("DIR")
                              ->check(DirectoryPath());
    refuseSecondValue(*option, directory);
}

std::string useConfigDirectory(const std::string& directory) {
    if (!directory.empty()) {
        requireDirectory(directory, "configuration");
        NApplication::setDirectoryConfig(NString(directory));
        return directory;
    }
    // The application's own directory exists from the first time it is asked for.
    const std::string used = NApplication::DirectoryConfig().toStdString();
    requireDirectory(used, "configuration");
    return used;
}

std::string useResourcesDirectory(const std::string& directory) {
    if (!directory.empty()) {
        requireDirectory(directory, "resources");
        NApplication::setDirectoryResources(NString(directory));
        return directory;
    }
    return NApplication::DirectoryResources().toStdString();
}

DirectoryLock::DirectoryLock(const std::string& directory) {
    m_descriptor = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (m_descriptor < 0) {
        failUsage(directory + ": cannot be locked (" + std::strerror(errno) + ")");
    }
    while (::flock(m_descriptor, LOCK_EX) != 0) {
        if (errno != EINTR) {
            const int error = errno;
            ::close(m_descriptor);
            m_descriptor = -1;
            failUnreadable(directory + ": cannot be locked (" + std::strerror(error) + ")");
        }
    }
}

DirectoryLock::~DirectoryLock() {
    if (m_descriptor >= 0) {
        ::close(m_descriptor);
    }
}

} // namespace pallix::tool
