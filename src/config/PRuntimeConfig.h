#pragma once

#include "PallixRuntimeExport.h"

// The application's persistent configuration (a facade over the process-wide record).
class PALLIX_RUNTIME_EXPORT PRuntimeConfig {
public:
    PRuntimeConfig() noexcept;
    virtual ~PRuntimeConfig();

    PRuntimeConfig(const PRuntimeConfig&) = delete;
    PRuntimeConfig& operator=(const PRuntimeConfig&) = delete;
};
