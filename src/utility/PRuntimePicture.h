#pragma once

#include "PallixRuntimeExport.h"

// Fills a fixed-size box from a picture by cropping its centre.
class PALLIX_RUNTIME_EXPORT PRuntimePicture {
public:
    PRuntimePicture() noexcept;
    virtual ~PRuntimePicture();

    PRuntimePicture(const PRuntimePicture&) = delete;
    PRuntimePicture& operator=(const PRuntimePicture&) = delete;
};
