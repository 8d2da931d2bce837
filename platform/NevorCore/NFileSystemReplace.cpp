// file::fromBytes(): the one writer of every file, and the care it takes of the user's files.
//
// A write replaces the file atomically: the bytes go to a temporary file beside the file,
// are flushed to disk and renamed over it, so that a reader or a crash sees the old content
// or the new, never a part. Around that:
// - a symbolic link at the path stays a link; the file it leads to is replaced (a dangling
//   link gets its file created);
// - where the directory allows no new file but the file itself may be written, the file is
//   rewritten in place, as an editor would;
// - each temporary is locked (flock) while its writer lives, and every save of the same file
//   removes the temporaries whose lock can be taken: those a crash left behind.

#include "NFileSystem.h"
#include "PosixFile.h"

#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace NFileSystem {
namespace file {

namespace {

using nevor::core::closeDescriptor;
using nevor::core::directoryOf;
using nevor::core::nameOf;
using nevor::core::syncToDisk;
using nevor::core::writeAll;

// The kernel's own limit on the links it follows in one path.
constexpr int kMaxLinkHops = 40;
// A temporary that a concurrent save's clean-up removed before it could be locked is made
// again; more attempts than this mean something else is wrong.
constexpr int kTemporaryAttempts = 8;
// Temporaries are named "." + the file's name + ".tmp-" + six random characters, so that the
// clean-up can tell them from anything else the user keeps in the directory.
constexpr char kTemporaryInfix[] = ".tmp-";
constexpr char kTemporaryRandom[] = "XXXXXX";

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

bool readLink(const std::string& link, std::string& target) {
    std::string buffer(256, '\0');
    for (;;) {
        const ssize_t length = ::readlink(link.c_str(), &buffer[0], buffer.size());
        if (length < 0) {
            return false;
        }
        if (static_cast<std::size_t>(length) < buffer.size()) {
            buffer.resize(static_cast<std::size_t>(length));
            target = std::move(buffer);
            return !target.empty();
        }
        buffer.resize(buffer.size() * 2);
    }
}

// Where a write lands: the path itself or, through any chain of symbolic links, the file
// that they lead to, whether or not it exists yet.
struct Destination {
    std::string path;
    bool exists = false;
    struct stat info {};
};

bool resolveDestination(const std::string& target, Destination& destination) {
    std::string current = target;
    for (int hop = 0;; ++hop) {
        struct stat info {};
        if (::lstat(current.c_str(), &info) != 0) {
            // Nothing there, or the end of a dangling link: the write creates the file. Any
            // other error shows again, with its own cause, when the temporary is made.
            destination.path = current;
            return true;
        }
        if (!S_ISLNK(info.st_mode)) {
            destination.path = current;
            destination.exists = true;
            destination.info = info;
            return true;
        }
        std::string link;
        if (hop == kMaxLinkHops || !readLink(current, link)) {
            return false;
        }
        current = link.front() == '/' ? link : directoryOf(current) + "/" + link;
    }
}

bool isSameFile(const struct stat& a, const struct stat& b) {
    return a.st_dev == b.st_dev && a.st_ino == b.st_ino;
}

// A temporary file beside the destination, created close-on-exec and held under an exclusive
// flock for as long as this object lives. Unless it was renamed into place, it is removed
// when the object goes away.
class Temporary {
public:
    Temporary() = default;
    ~Temporary() {
        if (m_fd >= 0) {
            if (!m_renamed) {
                ::unlink(m_path.c_str());
            }
            ::close(m_fd);
        }
    }
    Temporary(const Temporary&) = delete;
    Temporary& operator=(const Temporary&) = delete;

    // False with errno set when no temporary can be made in the directory.
    bool create(const std::string& directory, const std::string& name) {
        for (int attempt = 0; attempt < kTemporaryAttempts; ++attempt) {
            std::string pattern = directory + "/." + name + kTemporaryInfix + kTemporaryRandom;
            const int fd = ::mkostemp(&pattern[0], O_CLOEXEC);
            if (fd < 0) {
                return false;
            }
            // Another save's clean-up may take the lock and remove the file in the moment
            // between its creation and the lock here; then the path no longer names this
            // file, and a new one is made. A file system without flock keeps its temporaries
            // unlocked, and the clean-up, unable to lock them either, leaves them alone.
            const bool locked = ::flock(fd, LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK;
            struct stat held {};
            struct stat named {};
            if (locked && ::fstat(fd, &held) == 0 && ::lstat(pattern.c_str(), &named) == 0 &&
                isSameFile(held, named)) {
                m_fd = fd;
                m_path = std::move(pattern);
                return true;
            }
            ::close(fd);
        }
        errno = EAGAIN;
        return false;
    }

    int fd() const { return m_fd; }
    const std::string& path() const { return m_path; }
    void renamed() { m_renamed = true; }

private:
    int m_fd = -1;
    std::string m_path;
    bool m_renamed = false;
};

// The replaced file keeps its owner and group where this process may give them (a save by
// the superuser must not take a user's file from them); the mode is set afterwards, since a
// change of owner clears the set-id bits.
void keepOwnership(int fd, const struct stat& existing) {
    if (existing.st_uid == ::geteuid() && existing.st_gid == ::getegid()) {
        return;
    }
    if (::fchown(fd, existing.st_uid, existing.st_gid) != 0) {
        (void)::fchown(fd, static_cast<uid_t>(-1), existing.st_gid);
    }
}

void syncDirectory(const std::string& directory) {
    const int fd = ::open(directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (fd >= 0) {
        syncToDisk(fd);
        ::close(fd);
    }
}

// Removes the temporaries of `name` that no live writer holds: a crash leaves the temporary of
// the save it interrupted, and without this they would pile up with every crash.
void removeAbandonedTemporaries(const std::string& directory, const std::string& name) {
    const std::string prefix = "." + name + kTemporaryInfix;
    const std::size_t length = prefix.size() + sizeof kTemporaryRandom - 1;
    DIR* handle = ::opendir(directory.c_str());
    if (handle == nullptr) {
        return;
    }
    const int directoryFd = ::dirfd(handle);
    while (const dirent* entry = ::readdir(handle)) {
        const std::string candidate = entry->d_name;
        if (candidate.size() != length || candidate.compare(0, prefix.size(), prefix) != 0) {
            continue;
        }
        const int fd = ::openat(directoryFd, candidate.c_str(),
                                O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
        if (fd < 0) {
            continue;
        }
        // The lock proves that no writer holds the file; the second look proves that the name
        // still leads to the file locked, and not to a new temporary made under the same name.
        struct stat held {};
        struct stat named {};
        if (::fstat(fd, &held) == 0 && S_ISREG(held.st_mode) &&
            ::flock(fd, LOCK_EX | LOCK_NB) == 0 &&
            ::fstatat(directoryFd, candidate.c_str(), &named, AT_SYMLINK_NOFOLLOW) == 0 &&
            isSameFile(held, named)) {
            ::unlinkat(directoryFd, candidate.c_str(), 0);
        }
        ::close(fd);
    }
    ::closedir(handle);
}

// The fallback where no temporary can be made: the file is rewritten where it is. A crash in
// the middle can leave it cut short, which is why this is only the fallback.
bool writeInPlace(const std::string& path, const NByteArray& bytes) {
    struct stat info {};
    const int fd = nevor::core::openRegularFile(path, O_WRONLY, info);
    if (fd < 0) {
        return false;
    }
    const bool written = writeAll(fd, bytes.data(), bytes.size()) &&
                         ::ftruncate(fd, static_cast<off_t>(bytes.size())) == 0 && syncToDisk(fd);
    return closeDescriptor(fd) && written;
}

} // namespace

bool fromBytes(const path& p, const NByteArray& bytes) {
    const std::string target = p.data().toStdString();
    Destination destination;
    if (target.empty() || !resolveDestination(target, destination)) {
        return false;
    }
    // A directory, a FIFO or a device where the file should be is never replaced.
    if (destination.exists && !S_ISREG(destination.info.st_mode)) {
        return false;
    }
    const std::string directory = directoryOf(destination.path);
    const std::string name = nameOf(destination.path);

    // The leftovers go before this save makes a temporary of its own: a kill during the
    // clean-up adds nothing, and a kill after it leaves only this save's temporary. However
    // many saves in a row are killed, one stray remains (one per writer killed at once).
    removeAbandonedTemporaries(directory, name);
    Temporary temporary;
    if (!temporary.create(directory, name)) {
        const bool directoryClosed = errno == EACCES || errno == EPERM;
        return directoryClosed && destination.exists && writeInPlace(destination.path, bytes);
    }
    if (destination.exists) {
        keepOwnership(temporary.fd(), destination.info);
    }
    const mode_t mode = destination.exists ? (destination.info.st_mode & 07777) : newFileMode();
    if (::fchmod(temporary.fd(), mode) != 0 ||
        !writeAll(temporary.fd(), bytes.data(), bytes.size()) || !syncToDisk(temporary.fd())) {
        return false;
    }
    // The temporary stays open, and so locked, until it has its final name: no clean-up can
    // take it for a crash's leftover in between.
    if (std::rename(temporary.path().c_str(), destination.path.c_str()) != 0) {
        return false;
    }
    temporary.renamed();
    syncDirectory(directory);
    return true;
}

} // namespace file
} // namespace NFileSystem
