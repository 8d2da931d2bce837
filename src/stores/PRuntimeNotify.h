#pragma once

#include "PallixRuntimeExport.h"

// The notifications received by the application, kept in "/notify.xml".
class PALLIX_RUNTIME_EXPORT PRuntimeNotify {
public:
    PRuntimeNotify() noexcept;
    virtual ~PRuntimeNotify();

    PRuntimeNotify(const PRuntimeNotify&) = delete;
    PRuntimeNotify& operator=(const PRuntimeNotify&) = delete;
};
