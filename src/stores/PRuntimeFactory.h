#pragma once

#include "PallixRuntimeExport.h"

// Factory information of devices, kept per device in "/Factory.json".
class PALLIX_RUNTIME_EXPORT PRuntimeFactory {
public:
    PRuntimeFactory() noexcept;
    virtual ~PRuntimeFactory();

    PRuntimeFactory(const PRuntimeFactory&) = delete;
    PRuntimeFactory& operator=(const PRuntimeFactory&) = delete;
};
