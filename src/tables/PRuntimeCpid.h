#pragma once

#include "NDeviceInfoRecovery.h"
#include "NString.h"
#include "PRuntimeInfoCpid.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <vector>

// The chip identifier table: turns the chip and board identifiers of a device in recovery or
// DFU mode into its model. Rows are kept in file order, duplicates included; the earliest row
// of a pair wins. No lock: load it before looking anything up.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeCpid {
public:
    PRuntimeCpid() noexcept;
    virtual ~PRuntimeCpid();

    // Replaces the table with the rows of the file (root "DEVICE", one row per child). The
    // table is emptied first, so a missing or unreadable file leaves it empty and gives false;
    // a file without the root gives true and an empty table.
    virtual bool format(const NString& path);
    // Appends a copy of the row at the end of the table.
    virtual void append(const PRuntimeInfoCpid& row);
    // Finds the device's row, falling back to the chip's board "00" row, and hands it to the
    // callback once. False, without a call, when nothing matched or the callback is empty.
    virtual bool find(const NDeviceInfoRecovery& device,
                      const std::function<void(const PRuntimeInfoCpid&)>& callback) const;
    // The same search; the row is copied into `out`, which is left untouched when false.
    virtual bool find(const NDeviceInfoRecovery& device, PRuntimeInfoCpid& out) const;

    PRuntimeCpid(const PRuntimeCpid&) = delete;
    PRuntimeCpid& operator=(const PRuntimeCpid&) = delete;

private:
    std::vector<PRuntimeInfoCpid> m_rows;
};
