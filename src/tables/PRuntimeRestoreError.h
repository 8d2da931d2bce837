#pragma once

#include "NString.h"
#include "PRuntimeInfoRestoreError.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <map>

// The restore error table: turns the error code of a failed restore into a description and a
// solution for the user. One row per code, ascending by code; of several rows with the same
// code the first one stays. It belongs to the restore component. No lock: load it before
// looking anything up.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeRestoreError {
public:
    PRuntimeRestoreError() noexcept;
    virtual ~PRuntimeRestoreError();

    // Replaces the table with the rows of the file (root "APPLE", one row per child; a code
    // that is missing or no number counts as 0). The table is emptied first, so a missing or
    // unreadable file leaves it empty and gives false; a file without the root gives true and
    // an empty table.
    virtual bool format(const NString& path);
    // Adds a copy of the row under its code; a code already present keeps its row.
    virtual void append(const PRuntimeInfoRestoreError& row);
    // Calls the callback once with the row of the code; nothing happens for an unknown code or
    // with an empty callback.
    virtual void find(long long code,
                      const std::function<void(const PRuntimeInfoRestoreError&)>& callback) const;

    PRuntimeRestoreError(const PRuntimeRestoreError&) = delete;
    PRuntimeRestoreError& operator=(const PRuntimeRestoreError&) = delete;

private:
    std::map<long long, PRuntimeInfoRestoreError> m_rows;
};
