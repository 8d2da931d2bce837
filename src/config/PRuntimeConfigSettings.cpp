#include "PRuntimeConfig.h"

#include "ConfigMaps.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

// Scalar preferences and the three families of named flags. Every public setter saves the
// whole file once, through the virtual save(); no getter saves, although some getters record
// a missing name in memory so that the next save writes it explicitly.

using pallix::config::replaceEntry;

void PRuntimeConfig::_set_setting_status(const NString& name, bool status) noexcept {
    try {
        replaceEntry(_globalFrameworkConfig.status, name, status);
    } catch (...) {
    }
}

bool PRuntimeConfig::_get_setting_status(const NString& name, bool defaultStatus) const noexcept {
    try {
        return _globalFrameworkConfig.status.emplace(name, defaultStatus).first->second;
    } catch (...) {
        return defaultStatus;
    }
}

void PRuntimeConfig::setPopupTimeADAPP(unsigned long long time) noexcept {
    _globalFrameworkConfig.popupTimeADAPP = time;
    save();
}

unsigned long long PRuntimeConfig::getPopupTimeADAPP() noexcept {
    return _globalFrameworkConfig.popupTimeADAPP;
}

void PRuntimeConfig::setSameTimeDownloadNumber(int number) noexcept {
    _globalFrameworkConfig.sameTimeDownloadNumber = number;
    save();
}

int PRuntimeConfig::getSameTimeDownloadNumber() noexcept {
    return static_cast<int>(_globalFrameworkConfig.sameTimeDownloadNumber);
}

void PRuntimeConfig::setDownloadMaxSpeed(long long speed) noexcept {
    _globalFrameworkConfig.downloadMaxSpeed = speed;
    save();
}

long long PRuntimeConfig::getDownloadMaxSpeed() noexcept {
    return _globalFrameworkConfig.downloadMaxSpeed;
}

void PRuntimeConfig::setLastSkin(const NString& skin) noexcept {
    try {
        _globalFrameworkConfig.lastSkin = skin;
    } catch (...) {
        return;
    }
    save();
}

NString PRuntimeConfig::getLastSkin() noexcept {
    try {
        const NString& skin = _globalFrameworkConfig.lastSkin;
        return skin.exist() ? skin : NString("236EE7");
    } catch (...) {
        return NString();
    }
}

void PRuntimeConfig::setLastLanguage(EPALLIX_RUNTIME_LANGUAGE language) noexcept {
    _globalFrameworkConfig.lastLanguage = language;
    save();
}

EPALLIX_RUNTIME_LANGUAGE PRuntimeConfig::getLastLanguage() noexcept {
    return _globalFrameworkConfig.lastLanguage;
}

void PRuntimeConfig::setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE core) noexcept {
    _globalFrameworkConfig.restoreCore = core;
    save();
}

EPALLIX_RUNTIME_RESTORE_CORE PRuntimeConfig::getRestoreCore() noexcept {
    return _globalFrameworkConfig.restoreCore;
}

void PRuntimeConfig::setSettingStatus(const NString& name, bool status) noexcept {
    _set_setting_status(name, status);
    save();
}

bool PRuntimeConfig::getSettingStatus(const NString& name) const noexcept {
    try {
        // The defaults of the settings the application knows; any other name defaults to false.
        static std::map<NString, bool> _staticSettingDefault;
        if (_staticSettingDefault.empty()) {
            _staticSettingDefault.emplace("ApplicationAutorun", false);
            _staticSettingDefault.emplace("WindowCloseSelect", false);
            _staticSettingDefault.emplace("WindowCloseOperate", false);
            _staticSettingDefault.emplace("WindowAnimation", false);
            _staticSettingDefault.emplace("WiFiConnect", false);
            _staticSettingDefault.emplace("ITunesAutorun", true);
            _staticSettingDefault.emplace("KeepFirmwareCache", true);
            _staticSettingDefault.emplace("RelationIpa", false);
            _staticSettingDefault.emplace("VerifySerialNumber", true);
            _staticSettingDefault.emplace("VerifyPaymentConfirm", false);
            _staticSettingDefault.emplace("VerifyTimecardConfirm", false);
            _staticSettingDefault.emplace("ToolsProcessSkipService", true);
            _staticSettingDefault.emplace("RESTORE_FACTORY", false);
        }
        bool defaultStatus = false;
        const auto found = _staticSettingDefault.find(name);
        if (found != _staticSettingDefault.end()) {
            defaultStatus = found->second;
        }
        return _get_setting_status(name, defaultStatus);
    } catch (...) {
        return false;
    }
}

void PRuntimeConfig::setToolsHot(const NString& tool, bool hot) noexcept {
    try {
        replaceEntry(_globalFrameworkConfig.tools, tool, hot);
    } catch (...) {
        return;
    }
    save();
}

bool PRuntimeConfig::getToolsHot(const NString& tool) noexcept {
    try {
        return _globalFrameworkConfig.tools.emplace(tool, true).first->second;
    } catch (...) {
        return true;
    }
}

void PRuntimeConfig::setAutoImportRingtone(bool on) noexcept {
    try {
        replaceEntry(_globalFrameworkConfig.autoImport, NString("Ringtone"), on);
    } catch (...) {
        return;
    }
    save();
}

bool PRuntimeConfig::getAutoImportRingtone() const noexcept {
    try {
        const std::map<NString, bool>& autoImport = _globalFrameworkConfig.autoImport;
        const auto found = autoImport.find(NString("Ringtone"));
        return found != autoImport.end() ? found->second : true;
    } catch (...) {
        return true;
    }
}
