#include "ReadOnlyDirectory.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

namespace pallix::test {

namespace {

constexpr uid_t nobody = 65534;

std::string parentOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos || slash == 0 ? std::string("/") : path.substr(0, slash);
}

// Whether the calling process can create a file in the directory.
bool canCreateIn(const std::string& directory) {
    const std::string probe = directory + "/.write-probe";
    const int fd = ::open(probe.c_str(), O_WRONLY | O_CREAT | O_EXCL, 0644);
    if (fd < 0) {
        return false;
    }
    ::close(fd);
    ::unlink(probe.c_str());
    return true;
}

} // namespace

int runWithReadOnlyDirectory(const std::string& directory, const std::function<bool()>& body) {
    struct stat before {};
    struct stat parentBefore {};
    const std::string parent = parentOf(directory);
    if (::stat(directory.c_str(), &before) != 0 || ::stat(parent.c_str(), &parentBefore) != 0) {
        return 2;
    }
    ::chmod(parent.c_str(), (parentBefore.st_mode & 07777) | 0555);
    ::chmod(directory.c_str(), 0555);
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        if (::geteuid() == 0 && (::setgid(nobody) != 0 || ::setuid(nobody) != 0)) {
            ::_exit(2);
        }
        if (canCreateIn(directory)) {
            ::_exit(2);
        }
        const bool ok = body();
        std::fflush(nullptr);
        ::_exit(ok ? 0 : 1);
    }
    int status = 0;
    if (child > 0) {
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
    }
    ::chmod(directory.c_str(), before.st_mode & 07777);
    ::chmod(parent.c_str(), parentBefore.st_mode & 07777);
    if (child < 0 || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

} // namespace pallix::test
