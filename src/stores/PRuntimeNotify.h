#pragma once

#include "PRuntimeNotifyItem.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <map>
#include <mutex>

// The notifications received by the application, keyed by their identifier and kept in
// "/notify.xml" of the configuration directory. Every change rewrites the whole file under the
// store's lock, so the store may be shared between threads; it is meant for a few hundred
// notifications at most.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeNotify {
public:
    using Visitor = std::function<void(unsigned long long, const PRuntimeNotifyItem&)>;

    // Loads "/notify.xml", or, when the directory of the old one-file-per-notification layout
    // is still there, imports that directory once and deletes it instead.
    PRuntimeNotify() noexcept;
    // Writes nothing: every change has been written when it was made.
    virtual ~PRuntimeNotify();

protected:
    // Imports the old "/Notify" directory into the map.
    virtual void _read_old();
    // Reads "/notify.xml" into the map.
    virtual void _read();
    // Replaces "/notify.xml" with the whole map. Called with the lock held.
    virtual void _write() const;

public:
    // Calls fn for every notification in ascending order of id, removed ones included. The
    // callback runs on a copy taken under the lock and after the lock is released, so it may
    // call back into the store; it sees the notifications as they were when it began.
    virtual void traverse(const Visitor& fn) const;
    // Whether a notification with this id is kept, whether marked removed or not.
    virtual bool exist(unsigned long long id) const;
    // A copy of the notification, or a default item (id 0, empty texts, flags false).
    virtual PRuntimeNotifyItem find(unsigned long long id) const;
    // Inserts the item under id, or replaces the one stored there; then rewrites the file.
    virtual void append(unsigned long long id, const PRuntimeNotifyItem& item);
    // Replaces the item stored under id and rewrites the file; false, with nothing written,
    // when there is none.
    virtual bool update(unsigned long long id, const PRuntimeNotifyItem& item);
    // Marks the notification deleted and rewrites the file; the entry itself is kept.
    virtual void remove(unsigned long long id);

    PRuntimeNotify(const PRuntimeNotify&) = delete;
    PRuntimeNotify& operator=(const PRuntimeNotify&) = delete;

private:
    mutable std::mutex m_mutex;
    std::map<unsigned long long, PRuntimeNotifyItem> m_items;
};
