#pragma once

#include "PallixRuntimeExport.h"

// The restore function's state: auto-activation, firmware lists and the error table.
class PALLIX_RUNTIME_EXPORT PRuntimeRestore {
public:
    PRuntimeRestore() noexcept;
    virtual ~PRuntimeRestore();

    PRuntimeRestore(const PRuntimeRestore&) = delete;
    PRuntimeRestore& operator=(const PRuntimeRestore&) = delete;
};
