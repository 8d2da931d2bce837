// The bytes of "/configure.xml": the same record must always give the same file, byte for byte.
// The golden files were written by the library before its writer was changed.

#include "ConfigTestSupport.h"
#include "GoldenFile.h"

#include <cmath>
#include <limits>

using namespace pallix::test;

namespace {

class ConfigGoldenFileTest : public ConfigTest {
protected:
    // Every field away from its default, with every list and map filled: texts that need
    // escaping or go beyond ASCII, the extremes of the numbers, and doubles that take every
    // digit pugixml gives them.
    void fillEveryField() {
        _PALLIX_RUNTIME_CONFIG& r = record();
        r.lastVersion = "5.2.1 <beta> & \"final\"";
        r.popupTimeADAPP = std::numeric_limits<unsigned long long>::max();
        r.sameTimeDownloadNumber = std::numeric_limits<long long>::min();
        r.downloadMaxSpeed = 9000000000LL;
        r.lastSkin = "1A2B3C";
        r.lastLanguage = EPALLIX_RUNTIME_LANGUAGE(-12);
        r.restoreCore = EPALLIX_RUNTIME_RESTORE_CORE(2147483647);
        r.status.emplace("ApplicationAutorun", true);
        r.status.emplace("RESTORE_FACTORY", false);
        r.status.emplace("Zeichen \xc3\xa4\xc3\xb6\xc3\xbc & <quote>\"'\t\n", true);
        r.autoImport.emplace("Ringtone", true);
        r.autoImport.emplace("Photo", false);
        r.directory.emplace("Backup", "/Volumes/Backup Disk/Mobile Sync");
        r.directory.emplace("Data", "/Users/\xe6\x9d\x8e\xe9\x9b\xb7/TolVane Data");
        r.directory.emplace("", "");
        r.tools.emplace("Flash Tool", false);
        r.tools.emplace("\xc3\x89"
                        "cran \xf0\x9f\x93\xb1",
                        true);
        r.customBackup.emplace_back("/Users/me/Backups 2024");
        r.customBackup.emplace_back("/Users/me/\xe3\x83\x90\xe3\x83\x83\xe3\x82\xaf");
        r.customBackup.emplace_back("");
        r.customBackup.emplace_back("/Users/me/Backups 2024");
        _PALLIX_RUNTIME_CONFIG_FC favourite;
        favourite.Path = "/Users/me/Documents/report & summary <final>.pdf";
        favourite.Root = true;
        r.fileFavorites.push_back(favourite);
        favourite.Path = "/Users/me/M\xc3\xbasica";
        favourite.Root = false;
        r.fileFavorites.push_back(favourite);
        const double coordinates[][2] = {
            {0.1, -33.868820099999999},
            {1e-300, 123456789.123456789},
            {-0.0, 4.9406564584124654e-324},
            {std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest()},
            {std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()},
            {std::nan(""), 1.0 / 3.0},
        };
        int index = 0;
        for (const auto& pair : coordinates) {
            _PALLIX_RUNTIME_CONFIG_VL place;
            place.X = pair[0];
            place.Y = pair[1];
            place.Location = "Place " + std::to_string(index++) + " \xe5\x8c\x97\xe4\xba\xac & co";
            r.virtualLocation.push_back(place);
        }
        _PALLIX_RUNTIME_CONFIG_VL place;
        place.X = 48.858370;
        place.Y = 2.294481;
        place.Location = "Tour Eiffel";
        r.locationFavorites.push_back(place);
        place.Location = "Tour Eiffel";
        r.locationFavorites.push_back(place);
    }

    void expectGolden(const std::string& name) {
        std::string actual;
        EXPECT_TRUE(matchesGolden(name, readCurrent(), actual))
            << "the file as written is in " << actual;
    }
};

} // namespace

TEST_F(ConfigGoldenFileTest, EveryFieldWritesTheGoldenFile) {
    fillEveryField();
    config()->save();
    expectGolden("config/configure-every-field.xml");
}

TEST_F(ConfigGoldenFileTest, ASetterWritesTheGoldenFile) {
    fillEveryField();
    // The flag is set already: the setter saves the same record.
    config()->setSettingStatus("ApplicationAutorun", true);
    expectGolden("config/configure-every-field.xml");
}

TEST_F(ConfigGoldenFileTest, AnEmptyRecordWritesTheGoldenFile) {
    config()->save();
    expectGolden("config/configure-empty.xml");
}
