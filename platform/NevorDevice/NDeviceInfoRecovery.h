#pragma once

#include "NevorDeviceExport.h"

// What a device in recovery or DFU mode tells about itself: its chip and board identifiers.
class NEVORDEVICE_EXPORT NDeviceInfoRecovery {
public:
    NDeviceInfoRecovery() = default;
    NDeviceInfoRecovery(unsigned int cpid, unsigned int bdid) : m_cpid(cpid), m_bdid(bdid) {}

    unsigned int cpid() const noexcept { return m_cpid; }
    unsigned int bdid() const noexcept { return m_bdid; }
    void setCpid(unsigned int cpid) noexcept { m_cpid = cpid; }
    void setBdid(unsigned int bdid) noexcept { m_bdid = bdid; }

private:
    unsigned int m_cpid = 0;
    unsigned int m_bdid = 0;
};
