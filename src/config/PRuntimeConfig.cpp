#include "PRuntimeConfig.h"

#include "ConfigLocations.h"
#include "ConfigurationFormat.h"
#include "NApple.h"
#include "NFileSystem.h"
#include "NSystem.h"
#include "NevorFrameworkConfigDirectoryDefault.h"
#include "Operation.h"
#include "RunningVersion.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

namespace cfg = pallix::format::configuration;

// Start-up, shutdown and what start-up finds out. The file formats, the settings, the lists
// and the directories live in files of their own.

PRuntimeConfig::PRuntimeConfig() noexcept = default;

PRuntimeConfig::~PRuntimeConfig() = default;

void PRuntimeConfig::initialize() {
    pallix::operation([&] {
        _PALLIX_RUNTIME_CONFIG& config = _globalFrameworkConfig;
        config.newInstall = true;
        config.newUpdate = false;
        config.version = cfg::kFallbackVersion;
        config.lastVersion = cfg::kFallbackVersion;
        config.sameTimeDownloadNumber = cfg::preference(cfg::kSameTimeDownloadNumber).byDefault;
        config.downloadMaxSpeed = cfg::preference(cfg::kDownloadMaxSpeed).byDefault;
        config.popupTimeADAPP = cfg::preference(cfg::kPopupTimeADAPP).byDefault;
        config.lastSkin = cfg::kDefaultSkin;
        config.lastLanguage =
            EPALLIX_RUNTIME_LANGUAGE(cfg::preference(cfg::kLastLanguage).byDefault);
        config.restoreCore =
            EPALLIX_RUNTIME_RESTORE_CORE(cfg::preference(cfg::kRestoreCore).byDefault);

        // A configuration of an earlier release is carried over once, written in the current
        // format and then removed, so that the next start reads the current file.
        const NString legacy = pallix::config::legacyFilePath();
        if (NFileSystem::file::exist(legacy)) {
            load_old();
            save();
            NFileSystem::file::remove(legacy);
        } else {
            load_new();
        }

        // Runs before the "Data" default below on purpose: on a first run there is no data
        // directory to create yet; the first directory accessor creates it.
        check_disk();

        pallix::config::readRunningVersion(config.version);
        config.newUpdate = config.version != config.lastVersion;
        config.lastVersion = config.version;
        if (config.newUpdate) {
            // An update brings a new firmware table; keep the cache whatever was chosen before.
            _set_setting_status(cfg::kSettingKeepFirmwareCache, true);
        }

        NevorFrameworkConfigDirectoryDefault(
            cfg::kDataDirectory, NSystem::userHome() + "/" + cfg::kDefaultDataDirectoryName);
        NevorFrameworkConfigDirectoryDefault(cfg::kBackupDirectory, NApple::BackupDirectory());
    });
}

void PRuntimeConfig::release() {
    pallix::operation([&] { save(); });
}

void PRuntimeConfig::check_disk() {
    pallix::operation(
        [&] { NFileSystem::directory::create(getConfigDirectory(cfg::kDataDirectory), 0755); });
}

bool PRuntimeConfig::newInstall() {
    return _globalFrameworkConfig.newInstall;
}

NString PRuntimeConfig::version() {
    return pallix::operation([&] { return _globalFrameworkConfig.version; });
}

bool PRuntimeConfig::newUpdate() {
    return _globalFrameworkConfig.newUpdate;
}
