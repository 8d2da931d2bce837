#include "NFileSystem.h"
#include "PosixFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <utility>

namespace NFileSystem {
namespace file {

bool exist(const path& p) {
    return path::isFile(p);
}

bool remove(const path& p) {
    return !p.data().empty() && ::unlink(p.data().data()) == 0;
}

NByteArray toBytes(const path& p) {
    struct stat info {};
    const int fd = nevor::core::openRegularFile(p.data().toStdString(), O_RDONLY, info);
    if (fd < 0) {
        return NByteArray();
    }
    // Read straight into the result; the spare byte lets the end of the file show without a
    // second buffer, and a file that grows meanwhile is read to its new end.
    std::string bytes(static_cast<std::size_t>(info.st_size) + 1, '\0');
    std::size_t used = 0;
    for (;;) {
        if (used == bytes.size()) {
            bytes.resize(bytes.size() * 2);
        }
        const ssize_t got = ::read(fd, &bytes[used], bytes.size() - used);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            // An error half-way leaves the file unreadable, not cut short.
            ::close(fd);
            return NByteArray();
        }
        if (got == 0) {
            break;
        }
        used += static_cast<std::size_t>(got);
    }
    bytes.resize(used);
    ::close(fd);
    return NByteArray(std::move(bytes));
}

} // namespace file
} // namespace NFileSystem
