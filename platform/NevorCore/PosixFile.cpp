#include "PosixFile.h"

#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace nevor::core {

int openRegularFile(const std::string& path, int accessMode, struct stat& info) {
    if (path.empty()) {
        return -1;
    }
    int fd = -1;
    do {
        fd = ::open(path.c_str(), accessMode | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    } while (fd < 0 && errno == EINTR);
    if (fd < 0) {
        return -1;
    }
    if (::fstat(fd, &info) != 0 || !S_ISREG(info.st_mode)) {
        ::close(fd);
        errno = EINVAL;
        return -1;
    }
    // Regular files ignore O_NONBLOCK; it is cleared all the same so that no later reader of
    // the descriptor is surprised by it.
    const int flags = ::fcntl(fd, F_GETFL);
    if (flags >= 0) {
        ::fcntl(fd, F_SETFL, flags & ~O_NONBLOCK);
    }
    return fd;
}

bool writeAll(int fd, const char* data, std::size_t size) {
    while (size > 0) {
        const ssize_t written = ::write(fd, data, size);
        if (written < 0) {
            if (errno == EINTR) {
                continue;
            }
            return false;
        }
        data += written;
        size -= static_cast<std::size_t>(written);
    }
    return true;
}

bool syncToDisk(int fd) {
    while (::fsync(fd) != 0) {
        if (errno != EINTR) {
            return false;
        }
    }
    return true;
}

bool closeDescriptor(int fd) {
    return ::close(fd) == 0 || errno == EINTR;
}

std::string directoryOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    if (slash == std::string::npos) {
        return ".";
    }
    return slash == 0 ? std::string("/") : path.substr(0, slash);
}

std::string nameOf(const std::string& path) {
    const auto slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

} // namespace nevor::core
