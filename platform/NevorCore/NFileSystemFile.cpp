#include "NFileSystem.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <string>
#include <utility>

namespace NFileSystem {
namespace file {

namespace {

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

// Mode for a new file: what open(2) would give with 0666 under the process's umask. Setting
// the umask to read it would race with other threads, so it is read from the kernel's process
// status once; where that is not available the usual 0644 is taken.
mode_t newFileMode() {
    static const mode_t mode = [] {
        mode_t mask = 022;
        if (std::FILE* status = std::fopen("/proc/self/status", "r")) {
            char line[256];
            while (std::fgets(line, sizeof line, status) != nullptr) {
                unsigned int value = 0;
                if (std::sscanf(line, "Umask: %o", &value) == 1) {
                    mask = static_cast<mode_t>(value);
                    break;
                }
            }
            std::fclose(status);
        }
        return static_cast<mode_t>(0666 & ~mask);
    }();
    return mode;
}

} // namespace

bool exist(const path& p) {
    return path::isFile(p);
}

bool remove(const path& p) {
    return !p.data().empty() && ::unlink(p.data().data()) == 0;
}

NByteArray toBytes(const path& p) {
    if (p.data().empty()) {
        return NByteArray();
    }
    const int fd = ::open(p.data().data(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        return NByteArray();
    }
    std::string bytes;
    char buffer[65536];
    for (;;) {
        const ssize_t got = ::read(fd, buffer, sizeof buffer);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got <= 0) {
            break;
        }
        bytes.append(buffer, static_cast<std::size_t>(got));
    }
    ::close(fd);
    return NByteArray(std::move(bytes));
}

bool fromBytes(const path& p, const NByteArray& bytes) {
    const std::string target = p.data().toStdString();
    if (target.empty()) {
        return false;
    }
    const path directoryPath = p.parent();
    const std::string directory =
        directoryPath.data().empty() ? std::string(".") : directoryPath.data().toStdString();
    std::string temporary = directory + "/." + p.fileName().toStdString() + ".XXXXXX";
    const int fd = ::mkstemp(&temporary[0]);
    if (fd < 0) {
        return false;
    }
    // Keep the mode of the file being replaced; a new file gets the usual default.
    struct stat existing {};
    const mode_t mode =
        ::stat(target.c_str(), &existing) == 0 ? (existing.st_mode & 07777) : newFileMode();
    bool ok =
        ::fchmod(fd, mode) == 0 && writeAll(fd, bytes.data(), bytes.size()) && ::fsync(fd) == 0;
    ok = (::close(fd) == 0) && ok;
    if (ok && std::rename(temporary.c_str(), target.c_str()) == 0) {
        // Make the rename itself durable.
        const int dirFd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (dirFd >= 0) {
            ::fsync(dirFd);
            ::close(dirFd);
        }
        return true;
    }
    ::unlink(temporary.c_str());
    return false;
}

} // namespace file
} // namespace NFileSystem
