#pragma once

#include "PallixRuntimeExport.h"

// Removes paths and opens files, folders, images and web addresses with the desktop.
class PALLIX_RUNTIME_EXPORT PRuntimeShell {
public:
    PRuntimeShell() noexcept;
    virtual ~PRuntimeShell();

    PRuntimeShell(const PRuntimeShell&) = delete;
    PRuntimeShell& operator=(const PRuntimeShell&) = delete;
};
