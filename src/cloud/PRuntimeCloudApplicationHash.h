#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One reference file named by the cloud document: which table it is ("CPID", "CrashCode", ...),
// the MD5 digest of its content as text, and where to download it. The application downloads
// and checks the file; this record only carries what the document says.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeCloudApplicationHash {
public:
    PRuntimeCloudApplicationHash() noexcept = default;
    PRuntimeCloudApplicationHash(NString name, NString hash, NString url) noexcept;
    virtual ~PRuntimeCloudApplicationHash();

    PRuntimeCloudApplicationHash(const PRuntimeCloudApplicationHash&) = default;
    PRuntimeCloudApplicationHash(PRuntimeCloudApplicationHash&&) noexcept = default;
    PRuntimeCloudApplicationHash& operator=(const PRuntimeCloudApplicationHash&) = default;
    PRuntimeCloudApplicationHash& operator=(PRuntimeCloudApplicationHash&&) noexcept = default;

    virtual const NString& name() const;
    virtual const NString& hash() const;
    virtual const NString& url() const;

private:
    NString m_name;
    NString m_hash;
    NString m_url;
};
