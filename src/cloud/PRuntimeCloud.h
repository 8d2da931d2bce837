#pragma once

#include "PallixRuntimeExport.h"

// The cloud document that the application downloads, and its queries.
class PALLIX_RUNTIME_EXPORT PRuntimeCloud {
public:
    PRuntimeCloud() noexcept;
    virtual ~PRuntimeCloud();

    PRuntimeCloud(const PRuntimeCloud&) = delete;
    PRuntimeCloud& operator=(const PRuntimeCloud&) = delete;
};
