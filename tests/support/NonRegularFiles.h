#pragma once

// Things a user may leave where a file is expected, and a guard that turns a blocked reader
// into a failed test instead of a hung one.

#include <signal.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstring>
#include <string>

namespace pallix::test {

// Ends the process with SIGALRM when the scope lasts longer than `seconds`.
class BlockingAlarm {
public:
    explicit BlockingAlarm(unsigned int seconds = 5) {
        ::signal(SIGALRM, SIG_DFL);
        ::alarm(seconds);
    }
    ~BlockingAlarm() { ::alarm(0); }
    BlockingAlarm(const BlockingAlarm&) = delete;
    BlockingAlarm& operator=(const BlockingAlarm&) = delete;
};

inline bool makeFifo(const std::string& path) {
    return ::mkfifo(path.c_str(), 0644) == 0;
}

// A listening Unix socket bound at `path`; the descriptor is returned (close it when done).
inline int makeSocket(const std::string& path) {
    const int fd = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (fd < 0 || path.size() >= sizeof address.sun_path) {
        return -1;
    }
    std::memcpy(address.sun_path, path.c_str(), path.size() + 1);
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(fd, 1) != 0) {
        ::close(fd);
        return -1;
    }
    return fd;
}

inline bool isFifo(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0 && S_ISFIFO(info.st_mode);
}

inline bool isSymbolicLink(const std::string& path) {
    struct stat info {};
    return ::lstat(path.c_str(), &info) == 0 && S_ISLNK(info.st_mode);
}

} // namespace pallix::test
