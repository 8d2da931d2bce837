#include "PRuntimeConfig.h"

#include "ConfigMaps.h"
#include "NFileSystem.h"
#include "NormalisedPath.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

// Named working directories and the working directories derived from "Data". Every accessor
// but localRestoreVersion() (a file) creates its directory on each call and returns the path
// whether or not that worked.

namespace {

constexpr unsigned int kDirectoryMode = 0755;

NString created(const NString& path) {
    NFileSystem::directory::create(path, kDirectoryMode);
    return path;
}

} // namespace

void PRuntimeConfig::setConfigDirectory(const NString& name, const NString& path) noexcept {
    try {
        pallix::config::replaceEntry(_globalFrameworkConfig.directory, name, path);
    } catch (...) {
        return;
    }
    save();
}

NString PRuntimeConfig::getConfigDirectory(const NString& name) noexcept {
    try {
        const std::map<NString, NString>& directory = _globalFrameworkConfig.directory;
        const auto found = directory.find(name);
        return found != directory.end() ? found->second : NString();
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localRoot() noexcept {
    try {
        return created(pallix::config::normalisedPath(getConfigDirectory("Data")));
    } catch (...) {
        return NString();
    }
}

// Firmware downloads and other downloads share one directory on purpose.
NString PRuntimeConfig::localFirmwareSave() noexcept {
    try {
        return created(localRoot() + "/Download");
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localFirmwareArchiver() noexcept {
    try {
        return created(localRoot() + "/IpswCache");
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localDownload() noexcept {
    try {
        return created(localRoot() + "/Download");
    } catch (...) {
        return NString();
    }
}

// A file inside the firmware cache; its directory is created by localFirmwareArchiver().
NString PRuntimeConfig::localRestoreVersion() noexcept {
    try {
        return localFirmwareArchiver() + "/version.xml";
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localRingtoneSave() noexcept {
    try {
        return created(localRoot() + "/Ringtone");
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localRingtoneMake() noexcept {
    try {
        return created(localRoot() + "/RingtoneMake");
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localPluginsSave() noexcept {
    try {
        return created(localRoot() + "/PluginsSave");
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localScreenSave() noexcept {
    try {
        return created(localRoot() + "/ScreenSave");
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localPicturePreview() noexcept {
    try {
        return created(localRoot() + "/PicturePreview");
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localNormal() noexcept {
    try {
        return created(localRoot() + "/Normal");
    } catch (...) {
        return NString();
    }
}

NString PRuntimeConfig::localNormalBottomBackup() noexcept {
    try {
        return created(localNormal() + "/Bottom");
    } catch (...) {
        return NString();
    }
}
