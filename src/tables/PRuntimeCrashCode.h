#pragma once

#include "PallixRuntimeExport.h"

// The crash code table: failure texts to reasons and solutions.
class PALLIX_RUNTIME_EXPORT PRuntimeCrashCode {
public:
    PRuntimeCrashCode() noexcept;
    virtual ~PRuntimeCrashCode();

    PRuntimeCrashCode(const PRuntimeCrashCode&) = delete;
    PRuntimeCrashCode& operator=(const PRuntimeCrashCode&) = delete;
};
