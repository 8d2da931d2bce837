#pragma once

#include "PallixRuntimeExport.h"

// The restore error table: restore error codes to descriptions and solutions.
class PALLIX_RUNTIME_EXPORT PRuntimeRestoreError {
public:
    PRuntimeRestoreError() noexcept;
    virtual ~PRuntimeRestoreError();

    PRuntimeRestoreError(const PRuntimeRestoreError&) = delete;
    PRuntimeRestoreError& operator=(const PRuntimeRestoreError&) = delete;
};
