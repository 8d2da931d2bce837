#pragma once

#include "PallixRuntimeExport.h"

// Conversion of map coordinates between the WGS-84, GCJ-02 and BD-09 datums.
class PALLIX_RUNTIME_EXPORT PRuntimeLocation {
public:
    PRuntimeLocation() noexcept;
    virtual ~PRuntimeLocation();

    PRuntimeLocation(const PRuntimeLocation&) = delete;
    PRuntimeLocation& operator=(const PRuntimeLocation&) = delete;
};
