#pragma once

#include "NFileSystem.h"
#include "NevorCoreExport.h"

#include <cstddef>

namespace NFileSystem {
namespace file {

// Reads the whole content of the file as toBytes() does, with the same rules (only a regular
// file is read, links followed; a FIFO, a device, a socket or a directory fails at once, and
// nothing blocks), but into one block of memory from `allocate`, for a caller that hands the
// block on to a consumer with its own allocator (a parser that takes ownership of its input)
// instead of copying the bytes once more. The block holds the `size` bytes of content and at
// least one spare byte after them. False, with no block left allocated, when the file cannot
// be read or `allocate` gives nothing; `release` takes back every block that is not handed out.
NEVORCORE_EXPORT bool toBuffer(const path& p, void* (*allocate)(std::size_t),
                               void (*release)(void*), char*& data, std::size_t& size);

} // namespace file
} // namespace NFileSystem
