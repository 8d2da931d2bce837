#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One row of the chip identifier table: a chip and board identifier pair (upper-case
// hexadecimal text, four and two digits) and the device model it stands for. A board of "00"
// marks the chip's default row.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeInfoCpid {
public:
    PRuntimeInfoCpid() noexcept;
    // Should copying the texts run out of memory, the process ends (the constructor is noexcept).
    PRuntimeInfoCpid(const NString& cpid, const NString& bdid, const NString& mode,
                     const NString& network, const NString& product, bool support) noexcept;
    // The same row, taking the texts over instead of copying them.
    PRuntimeInfoCpid(NString&& cpid, NString&& bdid, NString&& mode, NString&& network,
                     NString&& product, bool support) noexcept;
    PRuntimeInfoCpid(const PRuntimeInfoCpid&);
    PRuntimeInfoCpid(PRuntimeInfoCpid&&) noexcept;
    PRuntimeInfoCpid& operator=(const PRuntimeInfoCpid&);
    PRuntimeInfoCpid& operator=(PRuntimeInfoCpid&&) noexcept;
    virtual ~PRuntimeInfoCpid();

    // Exact, case-sensitive equality of both texts: "0c" and "C" never match a board "0C".
    virtual bool isMatch(const NString& cpid, const NString& bdid) const;
    virtual const NString& cpid() const;
    virtual const NString& bdid() const;
    virtual const NString& mode() const;
    virtual const NString& network() const;
    virtual const NString& product() const;
    virtual bool support() const;

private:
    NString m_cpid;
    NString m_bdid;
    NString m_mode;
    NString m_network;
    NString m_product;
    bool m_support = false;
};
