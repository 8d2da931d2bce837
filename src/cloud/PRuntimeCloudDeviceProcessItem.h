#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

// A rule that recognises a running program by its name: three patterns (an empty one holds for
// every name) and the payload name of the plug-in or application the program belongs to.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeCloudDeviceProcessItem {
public:
    PRuntimeCloudDeviceProcessItem() noexcept = default;
    PRuntimeCloudDeviceProcessItem(NString startsWith, NString contains, NString endsWith,
                                   NString name) noexcept;
    virtual ~PRuntimeCloudDeviceProcessItem();

    PRuntimeCloudDeviceProcessItem(const PRuntimeCloudDeviceProcessItem&) = default;
    PRuntimeCloudDeviceProcessItem(PRuntimeCloudDeviceProcessItem&&) noexcept = default;
    PRuntimeCloudDeviceProcessItem& operator=(const PRuntimeCloudDeviceProcessItem&) = default;
    PRuntimeCloudDeviceProcessItem& operator=(PRuntimeCloudDeviceProcessItem&&) noexcept = default;

    virtual const NString& startsWith() const;
    virtual const NString& contains() const;
    virtual const NString& endsWith() const;
    virtual const NString& name() const;

private:
    NString m_startsWith;
    NString m_contains;
    NString m_endsWith;
    NString m_name;
};
