#pragma once

#include "EPALLIX_RUNTIME_LANGUAGE.h"
#include "EPALLIX_RUNTIME_RESTORE_CORE.h"
#include "NString.h"
#include "PallixRuntimeExport.h"

#include <functional>

// The application's persistent configuration. The object holds no state: every instance reads
// and writes the one process-wide record, and every call between its own operations goes
// through the virtual table, so a subclass that overrides save() sees every save.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeConfig {
public:
    PRuntimeConfig() noexcept;
    virtual ~PRuntimeConfig();

    // Start-up and shutdown.
    virtual void initialize() noexcept;
    virtual void release() noexcept;
    virtual void load_old() noexcept;
    virtual void load_new() noexcept;
    virtual void save() noexcept;
    virtual void check_disk() noexcept;

    // Setting flags without saving.
    virtual void _set_setting_status(const NString& name, bool status) noexcept;
    virtual bool _get_setting_status(const NString& name, bool defaultStatus) const noexcept;

    virtual bool newInstall() noexcept;
    virtual NString version() noexcept;
    virtual bool newUpdate() noexcept;

    // Scalar preferences; every setter saves.
    virtual void setPopupTimeADAPP(unsigned long long time) noexcept;
    virtual unsigned long long getPopupTimeADAPP() noexcept;
    virtual void setSameTimeDownloadNumber(int number) noexcept;
    virtual int getSameTimeDownloadNumber() noexcept;
    virtual void setDownloadMaxSpeed(long long speed) noexcept;
    virtual long long getDownloadMaxSpeed() noexcept;
    virtual void setLastSkin(const NString& skin) noexcept;
    virtual NString getLastSkin() noexcept;
    virtual void setLastLanguage(EPALLIX_RUNTIME_LANGUAGE language) noexcept;
    virtual EPALLIX_RUNTIME_LANGUAGE getLastLanguage() noexcept;
    virtual void setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE core) noexcept;
    virtual EPALLIX_RUNTIME_RESTORE_CORE getRestoreCore() noexcept;
    virtual void setConfigDirectory(const NString& name, const NString& path) noexcept;
    virtual NString getConfigDirectory(const NString& name) noexcept;

    // Named flags.
    virtual void setSettingStatus(const NString& name, bool status) noexcept;
    virtual bool getSettingStatus(const NString& name) const noexcept;
    virtual void setToolsHot(const NString& tool, bool hot) noexcept;
    virtual bool getToolsHot(const NString& tool) noexcept;
    virtual void setAutoImportRingtone(bool on) noexcept;
    virtual bool getAutoImportRingtone() const noexcept;

    // Favourites and location lists.
    virtual void customBackupAppend(const NString& directory) noexcept;
    virtual void customBackupRemove(const NString& directory) noexcept;
    virtual void customBackupTraverse(std::function<void(const NString&)> visit) noexcept;
    virtual void fileCollectAppend(const NString& path, bool root) noexcept;
    virtual void fileCollectRemove(const NString& path, bool root) noexcept;
    virtual void
    fileCollectTraverse(const std::function<bool(const NString&, bool)>& visit) noexcept;
    virtual void virtualLocationAppend(double x, double y, const NString& location) noexcept;
    virtual void virtualLocationRemove(double x, double y) noexcept;
    virtual void virtualLocationClear() noexcept;
    virtual void virtualLocationTraverse(
        const std::function<void(double, double, const NString&)>& visit) noexcept;
    virtual void locationCollectAppend(double x, double y, const NString& location) noexcept;
    virtual void locationCollectRemove(double x, double y) noexcept;
    virtual void locationCollectClear() noexcept;
    virtual void locationCollectTraverse(
        const std::function<void(double, double, const NString&)>& visit) noexcept;

    // Working directories under the data root; each but localRestoreVersion() is created
    // (mode 0755) on every call.
    virtual NString localRoot() noexcept;
    virtual NString localFirmwareSave() noexcept;
    virtual NString localFirmwareArchiver() noexcept;
    virtual NString localDownload() noexcept;
    virtual NString localRestoreVersion() noexcept;
    virtual NString localRingtoneSave() noexcept;
    virtual NString localRingtoneMake() noexcept;
    virtual NString localPluginsSave() noexcept;
    virtual NString localScreenSave() noexcept;
    virtual NString localPicturePreview() noexcept;
    virtual NString localNormal() noexcept;
    virtual NString localNormalBottomBackup() noexcept;

    PRuntimeConfig(const PRuntimeConfig&) = delete;
    PRuntimeConfig& operator=(const PRuntimeConfig&) = delete;
};
