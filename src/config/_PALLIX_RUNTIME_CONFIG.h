#pragma once

#include "EPALLIX_RUNTIME_LANGUAGE.h"
#include "EPALLIX_RUNTIME_RESTORE_CORE.h"
#include "NString.h"
#include "PallixRuntimeExport.h"
#include "_PALLIX_RUNTIME_CONFIG_FC.h"
#include "_PALLIX_RUNTIME_CONFIG_VL.h"

#include <list>
#include <map>

// The application's persistent configuration, one record per process (_globalFrameworkConfig).
// PRuntimeConfig is the interface to it; the record is public so that the host can inspect it.
//
// The constructor builds only the strings and the containers. The global record is zeroed
// before it is constructed, so its scalars read 0 or false until PRuntimeConfig::initialize()
// gives them their start-up values.
//
// The field order is part of the binary interface.
struct PALLIX_RUNTIME_EXPORT _PALLIX_RUNTIME_CONFIG {
    _PALLIX_RUNTIME_CONFIG() noexcept;

    bool newInstall; // no configuration existed before this run
    bool newUpdate;  // the running version differs from the last one recorded
    NString version; // the running application's version; never written to the file
    NString lastVersion;
    long long sameTimeDownloadNumber; // 64 bits wide, used as an int
    long long downloadMaxSpeed;
    unsigned long long popupTimeADAPP;
    NString lastSkin; // six hexadecimal digits
    EPALLIX_RUNTIME_LANGUAGE lastLanguage;
    EPALLIX_RUNTIME_RESTORE_CORE restoreCore;
    std::map<NString, bool> status;       // setting flags
    std::map<NString, bool> autoImport;   // auto-import flags ("Ringtone")
    std::map<NString, NString> directory; // named working directories ("Data", "Backup", ...)
    std::map<NString, bool> tools;        // tools-hot flags
    std::list<NString> customBackup;
    std::list<_PALLIX_RUNTIME_CONFIG_VL> virtualLocation;
    std::list<_PALLIX_RUNTIME_CONFIG_VL> locationFavorites;
    std::list<_PALLIX_RUNTIME_CONFIG_FC> fileFavorites;
};

// Built when the library loads, before any other static initialiser of the library, and
// destroyed at process exit. It outlives PRuntime and every PRuntimeConfig.
PALLIX_RUNTIME_EXPORT extern _PALLIX_RUNTIME_CONFIG _globalFrameworkConfig;
