#pragma once

#include "PallixRuntimeExport.h"

// Short texts for the interface: sizes, dates, core counts, Wi-Fi kinds; password rule.
class PALLIX_RUNTIME_EXPORT PRuntimeString {
public:
    PRuntimeString() noexcept;
    virtual ~PRuntimeString();

    PRuntimeString(const PRuntimeString&) = delete;
    PRuntimeString& operator=(const PRuntimeString&) = delete;
};
