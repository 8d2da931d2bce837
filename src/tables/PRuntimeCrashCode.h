#pragma once

#include "NString.h"
#include "PRuntimeInfoCrash.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <vector>

// The crash code table: turns a failure text into a reason and a solution for the user. Rows
// are kept in file order and the first matching row wins, so a table lists specific keys
// before general ones. No lock: load it before looking anything up.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeCrashCode {
public:
    PRuntimeCrashCode() noexcept;
    virtual ~PRuntimeCrashCode();

    // Replaces the table with the rows of the file (root "CRASH", one row per child). The
    // table is emptied first, so a missing or unreadable file leaves it empty and gives false;
    // a file without the root gives true and an empty table.
    virtual bool format(const NString& path);
    // Appends a copy of the row at the end of the table.
    virtual void append(const PRuntimeInfoCrash& row);
    // Calls the callback for every row in table order. The callback must not be empty: the
    // standard wrapper's bad-call exception cannot leave this operation and ends the process.
    virtual void traverse(const std::function<void(const PRuntimeInfoCrash&)>& callback) const;
    // Calls the callback once with the first row that matches the key (see
    // PRuntimeInfoCrash::isMatch); nothing happens without a match or with an empty callback.
    virtual void find(const NString& key,
                      const std::function<void(const PRuntimeInfoCrash&)>& callback) const;

    PRuntimeCrashCode(const PRuntimeCrashCode&) = delete;
    PRuntimeCrashCode& operator=(const PRuntimeCrashCode&) = delete;

private:
    std::vector<PRuntimeInfoCrash> m_rows;
};
