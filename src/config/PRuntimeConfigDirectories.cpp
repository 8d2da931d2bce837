#include "PRuntimeConfig.h"

#include "ConfigMaps.h"
#include "ConfigurationFormat.h"
#include "FileNames.h"
#include "NFileSystem.h"
#include "NormalisedPath.h"
#include "Operation.h"
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

void PRuntimeConfig::setConfigDirectory(const NString& name, const NString& path) {
    pallix::operation([&] {
        pallix::config::replaceEntry(_globalFrameworkConfig.directory, name, path);
        save();
    });
}

NString PRuntimeConfig::getConfigDirectory(const NString& name) {
    return pallix::operation([&] {
        const std::map<NString, NString>& directory = _globalFrameworkConfig.directory;
        const auto found = directory.find(name);
        return found != directory.end() ? found->second : NString();
    });
}

NString PRuntimeConfig::localRoot() {
    return pallix::operation([&] {
        return created(pallix::config::normalisedPath(
            getConfigDirectory(pallix::format::configuration::kDataDirectory)));
    });
}

// Firmware downloads and other downloads share one directory on purpose.
NString PRuntimeConfig::localFirmwareSave() {
    return pallix::operation([&] { return created(localRoot() + "/Download"); });
}

NString PRuntimeConfig::localFirmwareArchiver() {
    return pallix::operation([&] { return created(localRoot() + "/IpswCache"); });
}

NString PRuntimeConfig::localDownload() {
    return pallix::operation([&] { return created(localRoot() + "/Download"); });
}

// A file inside the firmware cache; its directory is created by localFirmwareArchiver().
NString PRuntimeConfig::localRestoreVersion() {
    return pallix::operation([&] {
        return localFirmwareArchiver() + "/" + NString(pallix::format::kFirmwareVersionFile);
    });
}

NString PRuntimeConfig::localRingtoneSave() {
    return pallix::operation([&] { return created(localRoot() + "/Ringtone"); });
}

NString PRuntimeConfig::localRingtoneMake() {
    return pallix::operation([&] { return created(localRoot() + "/RingtoneMake"); });
}

NString PRuntimeConfig::localPluginsSave() {
    return pallix::operation([&] { return created(localRoot() + "/PluginsSave"); });
}

NString PRuntimeConfig::localScreenSave() {
    return pallix::operation([&] { return created(localRoot() + "/ScreenSave"); });
}

NString PRuntimeConfig::localPicturePreview() {
    return pallix::operation([&] { return created(localRoot() + "/PicturePreview"); });
}

NString PRuntimeConfig::localNormal() {
    return pallix::operation([&] { return created(localRoot() + "/Normal"); });
}

NString PRuntimeConfig::localNormalBottomBackup() {
    return pallix::operation([&] { return created(localNormal() + "/Bottom"); });
}
