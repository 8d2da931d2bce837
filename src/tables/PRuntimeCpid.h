#pragma once

#include "PallixRuntimeExport.h"

// The chip identifier table: chip and board identifiers to device models.
class PALLIX_RUNTIME_EXPORT PRuntimeCpid {
public:
    PRuntimeCpid() noexcept;
    virtual ~PRuntimeCpid();

    PRuntimeCpid(const PRuntimeCpid&) = delete;
    PRuntimeCpid& operator=(const PRuntimeCpid&) = delete;
};
