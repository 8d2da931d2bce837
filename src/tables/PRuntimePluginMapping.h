#pragma once

#include "PallixRuntimeExport.h"

// The plug-in mapping table: versions to mapped versions.
class PALLIX_RUNTIME_EXPORT PRuntimePluginMapping {
public:
    PRuntimePluginMapping() noexcept;
    virtual ~PRuntimePluginMapping();

    PRuntimePluginMapping(const PRuntimePluginMapping&) = delete;
    PRuntimePluginMapping& operator=(const PRuntimePluginMapping&) = delete;
};
