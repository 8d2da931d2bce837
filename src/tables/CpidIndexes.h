#pragma once

#include "CpidIndex.h"

class PRuntimeCpid;

namespace pallix::tables {

// The index of every chip table, filed under the table's address.
//
// The index cannot be a member of the table: the table's size and members are part of the
// binary interface, which leaves it a virtual table pointer and its row vector and no room
// (no pimpl, no spare pointer). A side map keyed by the table's address keeps the layout as it
// is: the address is the table's identity for as long as it lives, the table cannot be copied
// or moved, and its destructor removes the entry, so a later table at the same address starts
// without one. The map itself is shared by every table, which different threads may use, so it
// has a lock; an index is then used outside the lock, by its own table's operations only,
// which the table's rules already keep from running concurrently.
class CpidIndexes {
public:
    // The table's index, made empty on first use.
    static CpidIndex& of(const PRuntimeCpid* table);
    // The table's index, or null when none was made: the table never held a row.
    static const CpidIndex* find(const PRuntimeCpid* table);
    // Drops the table's index; its destructor calls this.
    static void forget(const PRuntimeCpid* table) noexcept;
};

} // namespace pallix::tables
