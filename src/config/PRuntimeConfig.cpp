#include "PRuntimeConfig.h"

// Placeholder bodies: the configuration subsystem replaces them.

PRuntimeConfig::PRuntimeConfig() noexcept = default;

PRuntimeConfig::~PRuntimeConfig() = default;

void PRuntimeConfig::initialize() noexcept {}

void PRuntimeConfig::release() noexcept {}

void PRuntimeConfig::load_old() noexcept {}

void PRuntimeConfig::load_new() noexcept {}

void PRuntimeConfig::save() noexcept {}

void PRuntimeConfig::check_disk() noexcept {}

void PRuntimeConfig::_set_setting_status(const NString& /*name*/, bool /*status*/) noexcept {}

bool PRuntimeConfig::_get_setting_status(const NString& /*name*/,
                                         bool /*defaultStatus*/) const noexcept {
    return false;
}

bool PRuntimeConfig::newInstall() noexcept {
    return false;
}

NString PRuntimeConfig::version() noexcept {
    return NString();
}

bool PRuntimeConfig::newUpdate() noexcept {
    return false;
}

void PRuntimeConfig::setPopupTimeADAPP(unsigned long long /*time*/) noexcept {}

unsigned long long PRuntimeConfig::getPopupTimeADAPP() noexcept {
    return 0;
}

void PRuntimeConfig::setSameTimeDownloadNumber(int /*number*/) noexcept {}

int PRuntimeConfig::getSameTimeDownloadNumber() noexcept {
    return 0;
}

void PRuntimeConfig::setDownloadMaxSpeed(long long /*speed*/) noexcept {}

long long PRuntimeConfig::getDownloadMaxSpeed() noexcept {
    return 0;
}

void PRuntimeConfig::setLastSkin(const NString& /*skin*/) noexcept {}

NString PRuntimeConfig::getLastSkin() noexcept {
    return NString();
}

void PRuntimeConfig::setLastLanguage(EPALLIX_RUNTIME_LANGUAGE /*language*/) noexcept {}

EPALLIX_RUNTIME_LANGUAGE PRuntimeConfig::getLastLanguage() noexcept {
    return EPALLIX_RUNTIME_LANGUAGE(0);
}

void PRuntimeConfig::setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE /*core*/) noexcept {}

EPALLIX_RUNTIME_RESTORE_CORE PRuntimeConfig::getRestoreCore() noexcept {
    return EPALLIX_RUNTIME_RESTORE_CORE(0);
}

void PRuntimeConfig::setConfigDirectory(const NString& /*name*/, const NString& /*path*/) noexcept {
}

NString PRuntimeConfig::getConfigDirectory(const NString& /*name*/) noexcept {
    return NString();
}

void PRuntimeConfig::setSettingStatus(const NString& /*name*/, bool /*status*/) noexcept {}

bool PRuntimeConfig::getSettingStatus(const NString& /*name*/) const noexcept {
    return false;
}

void PRuntimeConfig::setToolsHot(const NString& /*tool*/, bool /*hot*/) noexcept {}

bool PRuntimeConfig::getToolsHot(const NString& /*tool*/) noexcept {
    return false;
}

void PRuntimeConfig::setAutoImportRingtone(bool /*on*/) noexcept {}

bool PRuntimeConfig::getAutoImportRingtone() const noexcept {
    return false;
}

void PRuntimeConfig::customBackupAppend(const NString& /*directory*/) noexcept {}

void PRuntimeConfig::customBackupRemove(const NString& /*directory*/) noexcept {}

void PRuntimeConfig::customBackupTraverse(std::function<void(const NString&)> /*visit*/) noexcept {}

void PRuntimeConfig::fileCollectAppend(const NString& /*path*/, bool /*root*/) noexcept {}

void PRuntimeConfig::fileCollectRemove(const NString& /*path*/, bool /*root*/) noexcept {}

void PRuntimeConfig::fileCollectTraverse(
    const std::function<bool(const NString&, bool)>& /*visit*/) noexcept {}

void PRuntimeConfig::virtualLocationAppend(double /*x*/, double /*y*/,
                                           const NString& /*location*/) noexcept {}

void PRuntimeConfig::virtualLocationRemove(double /*x*/, double /*y*/) noexcept {}

void PRuntimeConfig::virtualLocationClear() noexcept {}

void PRuntimeConfig::virtualLocationTraverse(
    const std::function<void(double, double, const NString&)>& /*visit*/) noexcept {}

void PRuntimeConfig::locationCollectAppend(double /*x*/, double /*y*/,
                                           const NString& /*location*/) noexcept {}

void PRuntimeConfig::locationCollectRemove(double /*x*/, double /*y*/) noexcept {}

void PRuntimeConfig::locationCollectClear() noexcept {}

void PRuntimeConfig::locationCollectTraverse(
    const std::function<void(double, double, const NString&)>& /*visit*/) noexcept {}

NString PRuntimeConfig::localRoot() noexcept {
    return NString();
}

NString PRuntimeConfig::localFirmwareSave() noexcept {
    return NString();
}

NString PRuntimeConfig::localFirmwareArchiver() noexcept {
    return NString();
}

NString PRuntimeConfig::localDownload() noexcept {
    return NString();
}

NString PRuntimeConfig::localRestoreVersion() noexcept {
    return NString();
}

NString PRuntimeConfig::localRingtoneSave() noexcept {
    return NString();
}

NString PRuntimeConfig::localRingtoneMake() noexcept {
    return NString();
}

NString PRuntimeConfig::localPluginsSave() noexcept {
    return NString();
}

NString PRuntimeConfig::localScreenSave() noexcept {
    return NString();
}

NString PRuntimeConfig::localPicturePreview() noexcept {
    return NString();
}

NString PRuntimeConfig::localNormal() noexcept {
    return NString();
}

NString PRuntimeConfig::localNormalBottomBackup() noexcept {
    return NString();
}
