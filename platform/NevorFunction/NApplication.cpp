#include "NApplication.h"

#include "ApplicationDirectories.h"
#include "NFileSystem.h"
#include "NSystem.h"

#include <unistd.h>

#include <cstdlib>
#include <mutex>
#include <string>

namespace nevor::function {

NString environmentDirectory(const char* variable, const char* homeRelativeFallback) {
    const char* value = std::getenv(variable);
    if (value != nullptr && *value != '\0') {
        return NString(value);
    }
    return NSystem::userHome() + homeRelativeFallback;
}

} // namespace nevor::function

namespace {

nevor::function::DirectorySetting& configDirectory() {
    static nevor::function::DirectorySetting setting;
    return setting;
}

nevor::function::DirectorySetting& resourcesDirectory() {
    static nevor::function::DirectorySetting setting;
    return setting;
}

NString platformConfigDirectory() {
#if defined(__APPLE__)
    return NSystem::userHome() + "/Library/Application Support/TolVane";
#else
    return nevor::function::environmentDirectory("XDG_CONFIG_HOME", "/.config") + "/TolVane";
#endif
}

// The default directory exists from the first time it is asked for, private to the user, as
// the application's own directory does on the real platform; without it nothing could ever be
// saved on a new machine. The directory last made sure of is remembered, so that the many
// reads of the setting cost no system call; a default that follows a changed environment is
// made in its turn.
NString defaultConfigDirectory() {
    static std::mutex mutex;
    static NString ensured;
    NString directory = platformConfigDirectory();
    std::lock_guard<std::mutex> lock(mutex);
    if (directory != ensured &&
        NFileSystem::directory::create(NFileSystem::path(directory), 0700)) {
        ensured = directory;
    }
    return directory;
}

NString executableDirectory() {
#if defined(__linux__)
    std::string buffer(4096, '\0');
    const ssize_t length = ::readlink("/proc/self/exe", &buffer[0], buffer.size());
    if (length > 0) {
        buffer.resize(static_cast<std::size_t>(length));
        return NFileSystem::path(NString(buffer)).parent().data();
    }
#endif
    return NString(".");
}

} // namespace

namespace NApplication {

NString DirectoryConfig() {
    return configDirectory().get(defaultConfigDirectory);
}

NString DirectoryResources() {
    return resourcesDirectory().get(executableDirectory);
}

void setDirectoryConfig(const NString& directory) {
    configDirectory().set(directory);
}

void setDirectoryResources(const NString& directory) {
    resourcesDirectory().set(directory);
}

} // namespace NApplication
