#include "NFileSystemBuffer.h"
#include "PosixFile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace NFileSystem {
namespace file {

namespace {

// Closes the file on every way out.
class Descriptor {
public:
    explicit Descriptor(int fd) noexcept : m_fd(fd) {}
    ~Descriptor() { ::close(m_fd); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const noexcept { return m_fd; }

private:
    int m_fd;
};

} // namespace

bool toBuffer(const path& p, void* (*allocate)(std::size_t), void (*release)(void*), char*& data,
              std::size_t& size) {
    struct stat info {};
    const int fd = nevor::core::openRegularFile(p.data().toStdString(), O_RDONLY, info);
    if (fd < 0) {
        return false;
    }
    const Descriptor file(fd);
    // Room for the whole file, the spare byte the caller is promised, and one more byte that
    // lets the end of the file show without growing the block; a file that grows meanwhile is
    // read to its new end.
    std::size_t capacity = static_cast<std::size_t>(info.st_size) + 2;
    char* block = static_cast<char*>(allocate(capacity));
    if (block == nullptr) {
        return false;
    }
    std::size_t used = 0;
    for (;;) {
        if (used + 1 == capacity) {
            char* larger = static_cast<char*>(allocate(capacity * 2));
            if (larger == nullptr) {
                release(block);
                return false;
            }
            std::memcpy(larger, block, used);
            release(block);
            block = larger;
            capacity *= 2;
        }
        const ssize_t got = ::read(file.get(), block + used, capacity - 1 - used);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            // An error half-way leaves the file unreadable, not cut short.
            release(block);
            return false;
        }
        if (got == 0) {
            break;
        }
        used += static_cast<std::size_t>(got);
    }
    data = block;
    size = used;
    return true;
}

} // namespace file
} // namespace NFileSystem
