#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One row of the crash code table: a fragment of a failure text and what to tell the user
// about it.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeInfoCrash {
public:
    PRuntimeInfoCrash() noexcept;
    // Should copying the texts run out of memory, the process ends (the constructor is noexcept).
    PRuntimeInfoCrash(const NString& key, const NString& reason, const NString& solution) noexcept;
    // The same row, taking the texts over instead of copying them.
    PRuntimeInfoCrash(NString&& key, NString&& reason, NString&& solution) noexcept;
    PRuntimeInfoCrash(const PRuntimeInfoCrash&);
    PRuntimeInfoCrash(PRuntimeInfoCrash&&) noexcept;
    PRuntimeInfoCrash& operator=(const PRuntimeInfoCrash&);
    PRuntimeInfoCrash& operator=(PRuntimeInfoCrash&&) noexcept;
    virtual ~PRuntimeInfoCrash();

    // Containment in either direction, ignoring case: a long failure message matches the row
    // whose key is a fragment of it, and a short query matches a key that contains it. An
    // empty query matches nothing; an empty key is part of every non-empty query.
    virtual bool isMatch(const NString& key) const;
    virtual const NString& key() const;
    virtual const NString& reason() const;
    virtual const NString& solution() const;

private:
    NString m_key;
    NString m_reason;
    NString m_solution;
};
