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
    virtual void initialize();
    virtual void release();
    virtual void load_old();
    virtual void load_new();
    virtual void save();
    virtual void check_disk();

    // Setting flags without saving.
    virtual void _set_setting_status(const NString& name, bool status);
    virtual bool _get_setting_status(const NString& name, bool defaultStatus) const;

    virtual bool newInstall();
    virtual NString version();
    virtual bool newUpdate();

    // Scalar preferences; every setter saves.
    virtual void setPopupTimeADAPP(unsigned long long time);
    virtual unsigned long long getPopupTimeADAPP();
    virtual void setSameTimeDownloadNumber(int number);
    virtual int getSameTimeDownloadNumber();
    virtual void setDownloadMaxSpeed(long long speed);
    virtual long long getDownloadMaxSpeed();
    virtual void setLastSkin(const NString& skin);
    virtual NString getLastSkin();
    virtual void setLastLanguage(EPALLIX_RUNTIME_LANGUAGE language);
    virtual EPALLIX_RUNTIME_LANGUAGE getLastLanguage();
    virtual void setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE core);
    virtual EPALLIX_RUNTIME_RESTORE_CORE getRestoreCore();
    virtual void setConfigDirectory(const NString& name, const NString& path);
    virtual NString getConfigDirectory(const NString& name);

    // Named flags.
    virtual void setSettingStatus(const NString& name, bool status);
    virtual bool getSettingStatus(const NString& name) const;
    virtual void setToolsHot(const NString& tool, bool hot);
    virtual bool getToolsHot(const NString& tool);
    virtual void setAutoImportRingtone(bool on);
    virtual bool getAutoImportRingtone() const;

    // Favourites and location lists.
    virtual void customBackupAppend(const NString& directory);
    virtual void customBackupRemove(const NString& directory);
    virtual void customBackupTraverse(std::function<void(const NString&)> visit);
    virtual void fileCollectAppend(const NString& path, bool root);
    virtual void fileCollectRemove(const NString& path, bool root);
    virtual void fileCollectTraverse(const std::function<bool(const NString&, bool)>& visit);
    virtual void virtualLocationAppend(double x, double y, const NString& location);
    virtual void virtualLocationRemove(double x, double y);
    virtual void virtualLocationClear();
    virtual void
    virtualLocationTraverse(const std::function<void(double, double, const NString&)>& visit);
    virtual void locationCollectAppend(double x, double y, const NString& location);
    virtual void locationCollectRemove(double x, double y);
    virtual void locationCollectClear();
    virtual void
    locationCollectTraverse(const std::function<void(double, double, const NString&)>& visit);

    // Working directories under the data root; each but localRestoreVersion() is created
    // (mode 0755) on every call.
    virtual NString localRoot();
    virtual NString localFirmwareSave();
    virtual NString localFirmwareArchiver();
    virtual NString localDownload();
    virtual NString localRestoreVersion();
    virtual NString localRingtoneSave();
    virtual NString localRingtoneMake();
    virtual NString localPluginsSave();
    virtual NString localScreenSave();
    virtual NString localPicturePreview();
    virtual NString localNormal();
    virtual NString localNormalBottomBackup();

    // Beyond the virtual operations: every name that the status, tools and directory maps hold,
    // in name order, for a caller that shows the whole configuration. A setting that was never
    // stored is not among them even though getSettingStatus() answers for it.
    void settingStatusTraverse(const std::function<void(const NString&, bool)>& visit) const;
    void toolsHotTraverse(const std::function<void(const NString&, bool)>& visit) const;
    void
    configDirectoryTraverse(const std::function<void(const NString&, const NString&)>& visit) const;

    PRuntimeConfig(const PRuntimeConfig&) = delete;
    PRuntimeConfig& operator=(const PRuntimeConfig&) = delete;
};
