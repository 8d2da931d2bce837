#pragma once

#include "PallixRuntimeExport.h"

// Persistent bindings from a source text to a target text, kept in "/PortBind.xml".
class PALLIX_RUNTIME_EXPORT PRuntimePortbind {
public:
    PRuntimePortbind() noexcept;
    virtual ~PRuntimePortbind();

    PRuntimePortbind(const PRuntimePortbind&) = delete;
    PRuntimePortbind& operator=(const PRuntimePortbind&) = delete;
};
