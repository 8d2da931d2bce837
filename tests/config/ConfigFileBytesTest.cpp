// Every save writes the bytes of the whole record's document, however the record got its
// content: through the setters, or changed in place between saves. The reference renders the
// whole document with pugixml's own save to a stream, the straightforward way.

#include "ConfigTestSupport.h"

#include <cmath>
#include <limits>
#include <random>
#include <sstream>

using namespace pallix::test;

namespace {

std::string referenceBytes(const _PALLIX_RUNTIME_CONFIG& r) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Nevor");
    pugi::xml_node declaration = document.prepend_child(pugi::node_declaration);
    declaration.append_attribute("version").set_value("1.0");
    declaration.append_attribute("encoding").set_value("utf-8");
    const auto value = [&](const char* name) {
        return root.append_child(name).append_attribute("Value");
    };
    value("LastVersion").set_value(r.lastVersion.data());
    value("PopupTimeADAPP").set_value(r.popupTimeADAPP);
    value("SameTimeDownloadNumber").set_value(r.sameTimeDownloadNumber);
    value("DownloadMaxSpeed").set_value(r.downloadMaxSpeed);
    value("LastSkin").set_value(r.lastSkin.data());
    value("LastLanguage").set_value(static_cast<int>(r.lastLanguage));
    value("RestoreCore").set_value(static_cast<int>(r.restoreCore));
    const auto flags = [&](const char* name, const std::map<NString, bool>& entries) {
        pugi::xml_node list = root.append_child(name);
        for (const auto& entry : entries) {
            pugi::xml_node item = list.append_child("Item");
            item.append_attribute("Name").set_value(entry.first.data());
            item.append_attribute("Status").set_value(entry.second);
        }
    };
    const auto places = [&](const char* name, const std::list<_PALLIX_RUNTIME_CONFIG_VL>& entries) {
        pugi::xml_node list = root.append_child(name);
        for (const auto& place : entries) {
            pugi::xml_node item = list.append_child("Item");
            item.append_attribute("X").set_value(place.X);
            item.append_attribute("Y").set_value(place.Y);
            item.append_attribute("Location").set_value(place.Location.data());
        }
    };
    flags("Status", r.status);
    pugi::xml_node directory = root.append_child("Directory");
    for (const auto& entry : r.directory) {
        pugi::xml_node item = directory.append_child("Item");
        item.append_attribute("Name").set_value(entry.first.data());
        item.append_attribute("Path").set_value(entry.second.data());
    }
    flags("Tools", r.tools);
    pugi::xml_node backup = root.append_child("CustomBackup");
    for (const NString& path : r.customBackup) {
        backup.append_child("Item").append_attribute("Path").set_value(path.data());
    }
    pugi::xml_node favourites = root.append_child("FileFavorites");
    for (const auto& favourite : r.fileFavorites) {
        pugi::xml_node item = favourites.append_child("Item");
        item.append_attribute("Path").set_value(favourite.Path.data());
        item.append_attribute("Root").set_value(favourite.Root);
    }
    flags("AutoImport", r.autoImport);
    places("VirtualLocation", r.virtualLocation);
    places("LocationFavorites", r.locationFavorites);
    std::ostringstream text;
    document.save(text, "\t", pugi::format_indent, pugi::encoding_utf8);
    return text.str();
}

class ConfigFileBytesTest : public ConfigTest {};

} // namespace

TEST_F(ConfigFileBytesTest, EverySaveMatchesTheReferenceOverRandomChanges) {
    const double numbers[] = {0.0,          -0.0,          0.1,
                              -33.8688201,  1e-300,        std::numeric_limits<double>::infinity(),
                              std::nan(""), -std::nan(""), 116.397128};
    const char* const texts[] = {"", "a", "b", "&<>\"'", "\xe5\x8c\x97\xe4\xba\xac", "ab", "ba"};
    std::mt19937_64 random(11);
    const auto text = [&] { return NString(texts[random() % (sizeof texts / sizeof *texts)]); };
    const auto number = [&] { return numbers[random() % (sizeof numbers / sizeof *numbers)]; };
    const auto somePlace =
        [&](std::list<_PALLIX_RUNTIME_CONFIG_VL>& list) -> _PALLIX_RUNTIME_CONFIG_VL* {
        if (list.empty()) {
            return nullptr;
        }
        auto at = list.begin();
        std::advance(at, static_cast<long>(random() % list.size()));
        return &*at;
    };
    PRuntimeConfig* facade = config();
    _PALLIX_RUNTIME_CONFIG& r = record();
    for (int step = 0; step < 400; ++step) {
        switch (random() % 16) {
        case 0:
            facade->setSettingStatus(text(), random() % 2 == 0);
            break;
        case 1:
            // In place, between saves, as a host may do.
            if (!r.status.empty()) {
                r.status.begin()->second = !r.status.begin()->second;
            }
            break;
        case 2:
            facade->setToolsHot(text(), random() % 2 == 0);
            break;
        case 3:
            facade->setConfigDirectory(text(), text());
            break;
        case 4:
            r.directory[text()] = text();
            break;
        case 5:
            facade->customBackupAppend(text());
            break;
        case 6:
            if (!r.customBackup.empty()) {
                r.customBackup.front() = text();
            }
            break;
        case 7:
            facade->fileCollectAppend(text(), random() % 2 == 0);
            break;
        case 8:
            if (!r.fileFavorites.empty()) {
                r.fileFavorites.back().Root = !r.fileFavorites.back().Root;
            }
            break;
        case 9:
            facade->virtualLocationAppend(number(), number(), text());
            break;
        case 10:
            // 0 becomes -0, a NaN another NaN: the same value to ==, not to the file.
            if (_PALLIX_RUNTIME_CONFIG_VL* place = somePlace(r.virtualLocation)) {
                place->X = number();
            }
            break;
        case 11:
            facade->locationCollectAppend(number(), number(), text());
            break;
        case 12:
            if (_PALLIX_RUNTIME_CONFIG_VL* place = somePlace(r.locationFavorites)) {
                place->Y = -place->Y;
            }
            break;
        case 13:
            facade->setAutoImportRingtone(random() % 2 == 0);
            break;
        case 14:
            facade->setPopupTimeADAPP(random());
            break;
        default:
            if (random() % 4 == 0) {
                r.virtualLocation.clear();
                r.status.clear();
            }
            facade->setLastSkin(text());
            break;
        }
        facade->save();
        ASSERT_EQ(readCurrent(), referenceBytes(r)) << "step " << step;
    }
}

// Values that compare equal yet are written differently, changed in place between two saves.
TEST_F(ConfigFileBytesTest, ZeroesOfEitherSignAndNaNsAreWrittenAsTheyAre) {
    config()->virtualLocationAppend(0.0, std::nan(""), "here");
    config()->locationCollectAppend(1.5, 0.0, "there");
    _PALLIX_RUNTIME_CONFIG& r = record();
    r.virtualLocation.front().X = -0.0;
    r.virtualLocation.front().Y = -std::nan("");
    r.locationFavorites.front().Y = -0.0;
    config()->save();
    const std::string written = readCurrent();
    EXPECT_EQ(written, referenceBytes(r));
    EXPECT_NE(written.find("X=\"-0\" Y=\"-nan\""), std::string::npos) << written;
    EXPECT_NE(written.find("X=\"1.5\" Y=\"-0\""), std::string::npos) << written;
}
