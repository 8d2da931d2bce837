#include "PRuntimeConfig.h"

#include "ConfigMaps.h"
#include "ConfigurationFormat.h"
#include "Operation.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

namespace cfg = pallix::format::configuration;

// Scalar preferences and the three families of named flags. Every public setter saves the
// whole file once, through the virtual save(); no getter saves, although some getters record
// a missing name in memory so that the next save writes it explicitly.

using pallix::config::replaceEntry;

void PRuntimeConfig::_set_setting_status(const NString& name, bool status) {
    pallix::operation([&] { replaceEntry(_globalFrameworkConfig.status, name, status); });
}

bool PRuntimeConfig::_get_setting_status(const NString& name, bool defaultStatus) const {
    return pallix::operation(
        [&] { return _globalFrameworkConfig.status.emplace(name, defaultStatus).first->second; });
}

void PRuntimeConfig::setPopupTimeADAPP(unsigned long long time) {
    pallix::operation([&] {
        _globalFrameworkConfig.popupTimeADAPP = time;
        save();
    });
}

unsigned long long PRuntimeConfig::getPopupTimeADAPP() {
    return _globalFrameworkConfig.popupTimeADAPP;
}

void PRuntimeConfig::setSameTimeDownloadNumber(int number) {
    pallix::operation([&] {
        _globalFrameworkConfig.sameTimeDownloadNumber = number;
        save();
    });
}

int PRuntimeConfig::getSameTimeDownloadNumber() {
    return static_cast<int>(_globalFrameworkConfig.sameTimeDownloadNumber);
}

void PRuntimeConfig::setDownloadMaxSpeed(long long speed) {
    pallix::operation([&] {
        _globalFrameworkConfig.downloadMaxSpeed = speed;
        save();
    });
}

long long PRuntimeConfig::getDownloadMaxSpeed() {
    return _globalFrameworkConfig.downloadMaxSpeed;
}

void PRuntimeConfig::setLastSkin(const NString& skin) {
    pallix::operation([&] {
        _globalFrameworkConfig.lastSkin = skin;
        save();
    });
}

NString PRuntimeConfig::getLastSkin() {
    return pallix::operation([&] {
        const NString& skin = _globalFrameworkConfig.lastSkin;
        return skin.exist() ? skin : NString(cfg::kDefaultSkin);
    });
}

void PRuntimeConfig::setLastLanguage(EPALLIX_RUNTIME_LANGUAGE language) {
    pallix::operation([&] {
        _globalFrameworkConfig.lastLanguage = language;
        save();
    });
}

EPALLIX_RUNTIME_LANGUAGE PRuntimeConfig::getLastLanguage() {
    return _globalFrameworkConfig.lastLanguage;
}

void PRuntimeConfig::setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE core) {
    pallix::operation([&] {
        _globalFrameworkConfig.restoreCore = core;
        save();
    });
}

EPALLIX_RUNTIME_RESTORE_CORE PRuntimeConfig::getRestoreCore() {
    return _globalFrameworkConfig.restoreCore;
}

void PRuntimeConfig::setSettingStatus(const NString& name, bool status) {
    pallix::operation([&] {
        _set_setting_status(name, status);
        save();
    });
}

bool PRuntimeConfig::getSettingStatus(const NString& name) const {
    return pallix::operation([&] {
        // The defaults of the settings the application knows; any other name defaults to false.
        static std::map<NString, bool> _staticSettingDefault;
        if (_staticSettingDefault.empty()) {
            for (const cfg::KnownSetting& setting : cfg::kKnownSettings) {
                _staticSettingDefault.emplace(setting.name, setting.byDefault);
            }
        }
        bool defaultStatus = false;
        const auto found = _staticSettingDefault.find(name);
        if (found != _staticSettingDefault.end()) {
            defaultStatus = found->second;
        }
        return _get_setting_status(name, defaultStatus);
    });
}

void PRuntimeConfig::setToolsHot(const NString& tool, bool hot) {
    pallix::operation([&] {
        replaceEntry(_globalFrameworkConfig.tools, tool, hot);
        save();
    });
}

bool PRuntimeConfig::getToolsHot(const NString& tool) {
    return pallix::operation(
        [&] { return _globalFrameworkConfig.tools.emplace(tool, true).first->second; });
}

void PRuntimeConfig::setAutoImportRingtone(bool on) {
    pallix::operation([&] {
        replaceEntry(_globalFrameworkConfig.autoImport, NString(cfg::kRingtone), on);
        save();
    });
}

bool PRuntimeConfig::getAutoImportRingtone() const {
    return pallix::operation([&] {
        const std::map<NString, bool>& autoImport = _globalFrameworkConfig.autoImport;
        const auto found = autoImport.find(NString(cfg::kRingtone));
        return found != autoImport.end() ? found->second : cfg::kDefaultAutoImportRingtone;
    });
}

void PRuntimeConfig::settingStatusTraverse(
    const std::function<void(const NString&, bool)>& visit) const {
    pallix::operation([&] {
        for (const auto& [name, status] : _globalFrameworkConfig.status) {
            visit(name, status);
        }
    });
}

void PRuntimeConfig::toolsHotTraverse(
    const std::function<void(const NString&, bool)>& visit) const {
    pallix::operation([&] {
        for (const auto& [tool, hot] : _globalFrameworkConfig.tools) {
            visit(tool, hot);
        }
    });
}

void PRuntimeConfig::configDirectoryTraverse(
    const std::function<void(const NString&, const NString&)>& visit) const {
    pallix::operation([&] {
        for (const auto& [name, path] : _globalFrameworkConfig.directory) {
            visit(name, path);
        }
    });
}
