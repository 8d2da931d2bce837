#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <map>
#include <mutex>

// Persistent bindings from a source text to a target text (the application binds one port or
// connection to another; the store treats both as opaque), kept in "/PortBind.xml" of the
// configuration directory. A source has at most one target. The file is read once, on the
// first operation that needs it, and rewritten whole after every change, under the store's
// lock, so the store may be shared between threads.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimePortbind {
public:
    using Visitor = std::function<void(const NString&, const NString&)>;

    // Reads nothing yet.
    PRuntimePortbind() noexcept;
    // Writes nothing: every change has been written when it was made.
    virtual ~PRuntimePortbind();

protected:
    // Reads "/PortBind.xml" into the table.
    virtual void _read();
    // Deletes "/PortBind.xml" and writes the whole table in its place.
    virtual void _write();
    // Reads the file the first time it is called, and never again.
    virtual void _initialize();

public:
    // Binds source to target, replacing an earlier binding of source, and rewrites the file.
    // An empty source or target is refused: nothing changes and nothing is written.
    virtual void append(const NString& source, const NString& target);
    // Drops the binding of source and rewrites the file, even when there was none. An empty
    // source is refused.
    virtual void remove(const NString& source);
    // The target bound to source; empty when there is none or source is empty.
    virtual NString find(const NString& source);
    // Calls fn(source, target) for every binding in the table's order. The callback runs on a
    // copy after the lock is released, so it may call back into the store.
    virtual void traverse(const Visitor& fn);
    // Whether source has a binding; false for an empty source.
    virtual bool exist(const NString& source);

    PRuntimePortbind(const PRuntimePortbind&) = delete;
    PRuntimePortbind& operator=(const PRuntimePortbind&) = delete;

private:
    bool m_initialized = false;
    std::mutex m_mutex;
    std::map<NString, NString> m_bindings;
};
