#pragma once

#include "NByteArray.h"
#include "NString.h"
#include "NevorCoreExport.h"

#include <functional>

namespace NFileSystem {

// A file-system path held as UTF-8 text. It converts implicitly from text so that the
// operations below accept either.
class NEVORCORE_EXPORT path {
public:
    path() = default;
    path(const NString& text) : m_text(text) {}
    path(const char* text) : m_text(text) {}

    const NString& data() const noexcept { return m_text; }

    // Last component, and the last component without its extension ("a/b.xml" -> "b").
    NString fileName() const;
    NString baseName() const;
    path parent() const;

    // Lexical normalisation: repeated separators collapse, "." components go, ".." removes the
    // component before it, and a trailing separator is dropped (the root "/" stays).
    static path format(const path& p);
    // Whether anything (file, directory, other) exists at the path; symbolic links followed.
    static bool exist(const path& p);
    static bool isFile(const path& p);
    static bool isDirectory(const path& p);

    friend bool operator==(const path& a, const path& b) { return a.m_text == b.m_text; }
    friend bool operator!=(const path& a, const path& b) { return !(a == b); }

private:
    NString m_text;
};

namespace file {

// Whether a regular file exists at the path.
NEVORCORE_EXPORT bool exist(const path& p);
NEVORCORE_EXPORT bool remove(const path& p);
// The whole content of the file; empty when it cannot be read. Only a regular file is read
// (links followed): a FIFO, a device, a socket or a directory reads as empty, at once.
NEVORCORE_EXPORT NByteArray toBytes(const path& p);
// Replaces the file with the bytes atomically: they are written to a temporary file in the
// same directory, flushed to disk and renamed over the target, so that a reader sees either
// the old or the new content, never a part. A failed write leaves the old file in place.
// A symbolic link stays a link: the file it leads to is replaced (or created). Where the
// directory allows no new file but the file may be written, it is rewritten in place. Only
// a regular file is ever replaced. A save also removes the temporaries that crashed saves of
// the same file left behind, so at most a couple ever remain.
NEVORCORE_EXPORT bool fromBytes(const path& p, const NByteArray& bytes);

} // namespace file

namespace directory {

// Filter of remove(): called for every entry below the directory; an entry is removed when the
// filter is empty or returns true. The directory itself is removed when it ends up empty.
using Filter = std::function<bool(const path& entry)>;
// Visitor of traverse(): called with every entry directly inside the directory (not
// recursively, in the order the file system gives); returning false ends the walk.
using Visitor = std::function<bool(const path& entry)>;

NEVORCORE_EXPORT bool exist(const path& p);
// Creates the directory and any missing parent with the given mode; true when it exists after.
NEVORCORE_EXPORT bool create(const path& p, unsigned int mode);
NEVORCORE_EXPORT bool remove(const path& p, const Filter& filter);
NEVORCORE_EXPORT bool traverse(const path& p, const Visitor& visit);

} // namespace directory

} // namespace NFileSystem
