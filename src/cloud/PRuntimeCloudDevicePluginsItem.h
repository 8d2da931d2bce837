#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// One developer plug-in package offered by the cloud document: the package version it serves,
// its download address and the digest of the package.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeCloudDevicePluginsItem {
public:
    PRuntimeCloudDevicePluginsItem() noexcept = default;
    PRuntimeCloudDevicePluginsItem(NString version, NString url, NString hash) noexcept;
    virtual ~PRuntimeCloudDevicePluginsItem();

    PRuntimeCloudDevicePluginsItem(const PRuntimeCloudDevicePluginsItem&) = default;
    PRuntimeCloudDevicePluginsItem(PRuntimeCloudDevicePluginsItem&&) noexcept = default;
    PRuntimeCloudDevicePluginsItem& operator=(const PRuntimeCloudDevicePluginsItem&) = default;
    PRuntimeCloudDevicePluginsItem& operator=(PRuntimeCloudDevicePluginsItem&&) noexcept = default;

    virtual const NString& version() const;
    virtual const NString& url() const;
    virtual const NString& hash() const;

private:
    NString m_version;
    NString m_url;
    NString m_hash;
};
