#pragma once

// What the store tool tests look at to tell that a command wrote nothing: the bytes of a file,
// its inode (the library replaces a file by renaming a new one over it) and its modification
// time, set far in the past first so that any write in between shows.

#include "TemporaryDirectory.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <ostream>
#include <string>

namespace pallix::test {

struct FileState {
    std::string bytes;
    ino_t inode = 0;
    long long modifiedSeconds = 0;
    long modifiedNanoseconds = 0;

    friend bool operator==(const FileState& a, const FileState& b) {
        return a.bytes == b.bytes && a.inode == b.inode && a.modifiedSeconds == b.modifiedSeconds &&
               a.modifiedNanoseconds == b.modifiedNanoseconds;
    }
    friend std::ostream& operator<<(std::ostream& out, const FileState& state) {
        return out << "inode " << state.inode << ", modified " << state.modifiedSeconds << "."
                   << state.modifiedNanoseconds << ", bytes:\n"
                   << state.bytes;
    }
};

inline FileState stateOf(const std::string& path) {
    struct stat info {};
    ::stat(path.c_str(), &info);
    return {TemporaryDirectory::read(path), info.st_ino,
            static_cast<long long>(info.st_mtim.tv_sec), info.st_mtim.tv_nsec};
}

// Sets the file's modification time to 2001-09-09 and returns its state.
inline FileState ageFile(const std::string& path) {
    const timespec times[2] = {{1000000000, 0}, {1000000000, 0}};
    ::utimensat(AT_FDCWD, path.c_str(), times, 0);
    return stateOf(path);
}

} // namespace pallix::test
