#pragma once

#include "PallixRuntimeExport.h"

// Brings windows forward, centres them, and sets and reads widget texts.
class PALLIX_RUNTIME_EXPORT PRuntimeWindow {
public:
    PRuntimeWindow() noexcept;
    virtual ~PRuntimeWindow();

    PRuntimeWindow(const PRuntimeWindow&) = delete;
    PRuntimeWindow& operator=(const PRuntimeWindow&) = delete;
};
