#pragma once

#include "NString.h"
#include "PallixRuntimeExport.h"

#include <functional>
#include <map>

// The plug-in mapping table: turns a version text into its mapped text. One mapping per
// version; of several with the same version the first one stays. No lock: load it before
// looking anything up.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimePluginMapping {
public:
    PRuntimePluginMapping() noexcept;
    virtual ~PRuntimePluginMapping();

    // Replaces the table with the mappings of the file (root "Nevor", one mapping per child
    // that has both a "Version" and a "Mapping"). The table is emptied first, so a missing or
    // unreadable file leaves it empty and gives false; a file without the root gives true and
    // an empty table.
    virtual bool format(const NString& path);
    // Calls the callback once with the mapped text of the version. False, without a call, for
    // an empty version, an empty callback or an unknown version.
    virtual bool find(const NString& version,
                      const std::function<void(const NString&)>& callback) const;
    // The same lookup; the mapped text is copied into `out`, which is left untouched when
    // false.
    virtual bool find(const NString& version, NString& out) const;

    PRuntimePluginMapping(const PRuntimePluginMapping&) = delete;
    PRuntimePluginMapping& operator=(const PRuntimePluginMapping&) = delete;

private:
    std::map<NString, NString> m_mappings;
};
