#pragma once

#include <sys/stat.h>
#include <sys/types.h>

#include <cstddef>
#include <string>

// Small POSIX helpers shared by the file reader and the file writer: each one retries what a
// signal interrupted and says in its name what it guarantees.
namespace nevor::core {

// Opens an existing regular file without ever blocking: a FIFO, a device or a socket at the
// path would block open() or read(), so the descriptor is opened non-blocking and dropped
// unless fstat() says it is a regular file. Links are followed. Returns -1 on failure; `info`
// receives the file's status on success.
int openRegularFile(const std::string& path, int accessMode, struct stat& info);

// Writes all bytes (at the current offset), retrying short and interrupted writes.
bool writeAll(int fd, const char* data, std::size_t size);

// fsync(), retried while a signal interrupts it.
bool syncToDisk(int fd);

// close(). An interrupted close() is not retried: Linux and macOS release the descriptor
// before they report EINTR, so a second close() could close a descriptor that another thread
// has just been given under the same number. Every caller has already flushed the file with
// syncToDisk(), so an interrupted close loses nothing and counts as success.
bool closeDescriptor(int fd);

// The directory part of a path ("." for a bare name, "/" for a file at the root).
std::string directoryOf(const std::string& path);
// The last component of a path.
std::string nameOf(const std::string& path);

} // namespace nevor::core
