#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One row of the restore error table: a restore error code (often negative) and what to tell
// the user about it.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeInfoRestoreError {
public:
    PRuntimeInfoRestoreError() noexcept;
    // Should copying the texts run out of memory, the process ends (the constructor is noexcept).
    PRuntimeInfoRestoreError(long long code, const NString& describe,
                             const NString& solution) noexcept;
    // The same row, taking the texts over instead of copying them.
    PRuntimeInfoRestoreError(long long code, NString&& describe, NString&& solution) noexcept;
    PRuntimeInfoRestoreError(const PRuntimeInfoRestoreError&);
    PRuntimeInfoRestoreError(PRuntimeInfoRestoreError&&) noexcept;
    PRuntimeInfoRestoreError& operator=(const PRuntimeInfoRestoreError&);
    PRuntimeInfoRestoreError& operator=(PRuntimeInfoRestoreError&&) noexcept;
    virtual ~PRuntimeInfoRestoreError();

    virtual bool isMatch(long long code) const;
    virtual long long code() const;
    virtual const NString& describe() const;
    virtual const NString& solution() const;

private:
    long long m_code = 0;
    NString m_describe;
    NString m_solution;
};
