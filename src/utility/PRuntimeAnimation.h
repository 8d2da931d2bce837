#pragma once

#include "PallixRuntimeExport.h"

// Property animations that honour the user's "WindowAnimation" setting.
class PALLIX_RUNTIME_EXPORT PRuntimeAnimation {
public:
    PRuntimeAnimation() noexcept;
    virtual ~PRuntimeAnimation();

    PRuntimeAnimation(const PRuntimeAnimation&) = delete;
    PRuntimeAnimation& operator=(const PRuntimeAnimation&) = delete;
};
