#include "RecordText.h"

#include <cstdio>
#include <sstream>

namespace pallix::test {

namespace {

std::string exact(double value) {
    char buffer[64];
    std::snprintf(buffer, sizeof buffer, "%a", value);
    return buffer;
}

} // namespace

std::string recordText(const _PALLIX_RUNTIME_CONFIG& record) {
    std::ostringstream text;
    text << "newInstall=" << record.newInstall << '\n';
    text << "newUpdate=" << record.newUpdate << '\n';
    text << "version=" << record.version.data() << '\n';
    text << "lastVersion=" << record.lastVersion.data() << '\n';
    text << "sameTimeDownloadNumber=" << record.sameTimeDownloadNumber << '\n';
    text << "downloadMaxSpeed=" << record.downloadMaxSpeed << '\n';
    text << "popupTimeADAPP=" << record.popupTimeADAPP << '\n';
    text << "lastSkin=" << record.lastSkin.data() << '\n';
    text << "lastLanguage=" << static_cast<int>(record.lastLanguage) << '\n';
    text << "restoreCore=" << static_cast<int>(record.restoreCore) << '\n';
    for (const auto& entry : record.status) {
        text << "status[" << entry.first.data() << "]=" << entry.second << '\n';
    }
    for (const auto& entry : record.autoImport) {
        text << "autoImport[" << entry.first.data() << "]=" << entry.second << '\n';
    }
    for (const auto& entry : record.directory) {
        text << "directory[" << entry.first.data() << "]=" << entry.second.data() << '\n';
    }
    for (const auto& entry : record.tools) {
        text << "tools[" << entry.first.data() << "]=" << entry.second << '\n';
    }
    for (const NString& path : record.customBackup) {
        text << "customBackup=" << path.data() << '\n';
    }
    for (const auto& place : record.virtualLocation) {
        text << "virtualLocation=" << exact(place.X) << ',' << exact(place.Y) << ','
             << place.Location.data() << '\n';
    }
    for (const auto& place : record.locationFavorites) {
        text << "locationFavorites=" << exact(place.X) << ',' << exact(place.Y) << ','
             << place.Location.data() << '\n';
    }
    for (const auto& favourite : record.fileFavorites) {
        text << "fileFavorites=" << favourite.Path.data() << ',' << favourite.Root << '\n';
    }
    return text.str();
}

} // namespace pallix::test
