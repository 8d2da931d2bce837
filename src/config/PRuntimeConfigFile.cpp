#include "PRuntimeConfig.h"

#include "ConfigLocations.h"
#include "ConfigMaps.h"
#include "ConfigXml.h"
#include "NApple.h"
#include "NFileSystem.h"
#include "Operation.h"
#include "XmlFile.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

// The current configuration file: the root "Nevor" with one element per field, always all of
// them, in a fixed order. Scalars carry their value in "Value"; containers hold one "Item" per
// entry.

using pallix::config::forEachChild;
using pallix::config::insertIfAbsent;

namespace {

const char* valueOf(const pugi::xml_node& root, const char* element, const char* fallback) {
    return root.child(element).attribute("Value").as_string(fallback);
}

void readFlags(const pugi::xml_node& element, std::map<NString, bool>& flags) {
    forEachChild(element, [&flags](const pugi::xml_node& item) {
        insertIfAbsent(flags, NString(item.attribute("Name").as_string("")),
                       item.attribute("Status").as_bool(false));
    });
}

void readPlaces(const pugi::xml_node& element, std::list<_PALLIX_RUNTIME_CONFIG_VL>& places) {
    forEachChild(element, [&places](const pugi::xml_node& item) {
        _PALLIX_RUNTIME_CONFIG_VL place;
        place.X = item.attribute("X").as_double(0.0);
        place.Y = item.attribute("Y").as_double(0.0);
        place.Location = NString(item.attribute("Location").as_string(""));
        places.push_back(place);
    });
}

void writeValue(pugi::xml_node& root, const char* element, const NString& value) {
    root.append_child(element).append_attribute("Value").set_value(value.data());
}

template <typename Number>
void writeNumber(pugi::xml_node& root, const char* element, Number value) {
    root.append_child(element).append_attribute("Value").set_value(value);
}

void writeFlags(pugi::xml_node& root, const char* element, const std::map<NString, bool>& flags) {
    pugi::xml_node list = root.append_child(element);
    for (const auto& flag : flags) {
        pugi::xml_node item = list.append_child("Item");
        item.append_attribute("Name").set_value(flag.first.data());
        item.append_attribute("Status").set_value(flag.second);
    }
}

void writePlaces(pugi::xml_node& root, const char* element,
                 const std::list<_PALLIX_RUNTIME_CONFIG_VL>& places) {
    pugi::xml_node list = root.append_child(element);
    for (const _PALLIX_RUNTIME_CONFIG_VL& place : places) {
        pugi::xml_node item = list.append_child("Item");
        item.append_attribute("X").set_value(place.X);
        item.append_attribute("Y").set_value(place.Y);
        item.append_attribute("Location").set_value(place.Location.data());
    }
}

} // namespace

void PRuntimeConfig::load_new() {
    pallix::operation([&] {
        _PALLIX_RUNTIME_CONFIG& config = _globalFrameworkConfig;
        const NString path = pallix::config::currentFilePath();
        config.newInstall = !NFileSystem::path::exist(path);

        pugi::xml_document document;
        if (!pallix::XmlFile::load(document, path)) {
            return;
        }
        const pugi::xml_node root = document.child("Nevor");
        if (!root) {
            return;
        }

        // A missing element resets the field to the reader's default. The two download limits
        // are written 64 bits wide but read as int: a larger value does not survive a load.
        config.lastVersion = NString(valueOf(root, "LastVersion", ""));
        config.popupTimeADAPP = root.child("PopupTimeADAPP").attribute("Value").as_ullong(0);
        config.sameTimeDownloadNumber =
            root.child("SameTimeDownloadNumber").attribute("Value").as_int(3);
        config.downloadMaxSpeed = root.child("DownloadMaxSpeed").attribute("Value").as_int(0);
        config.lastSkin = NString(valueOf(root, "LastSkin", ""));
        config.lastLanguage =
            EPALLIX_RUNTIME_LANGUAGE(root.child("LastLanguage").attribute("Value").as_int(0));
        config.restoreCore =
            EPALLIX_RUNTIME_RESTORE_CORE(root.child("RestoreCore").attribute("Value").as_int(0));

        readFlags(root.child("Status"), config.status);

        forEachChild(root.child("Directory"), [&](const pugi::xml_node& item) {
            insertIfAbsent(config.directory, NString(item.attribute("Name").as_string("")),
                           NString(item.attribute("Path").as_string("")));
        });
        // Files of older versions kept the data directory in "UserDir"; an empty one is given
        // the built-in default by initialize().
        insertIfAbsent(config.directory, NString("Data"), NString(valueOf(root, "UserDir", "")));
        insertIfAbsent(config.directory, NString("Backup"), NApple::BackupDirectory());

        readFlags(root.child("Tools"), config.tools);

        forEachChild(root.child("CustomBackup"), [&](const pugi::xml_node& item) {
            config.customBackup.emplace_back(item.attribute("Path").as_string(""));
        });

        forEachChild(root.child("FileFavorites"), [&](const pugi::xml_node& item) {
            _PALLIX_RUNTIME_CONFIG_FC favourite;
            favourite.Path = NString(item.attribute("Path").as_string(""));
            favourite.Root = item.attribute("Root").as_bool(false);
            config.fileFavorites.push_back(favourite);
        });

        readFlags(root.child("AutoImport"), config.autoImport);
        readPlaces(root.child("VirtualLocation"), config.virtualLocation);
        readPlaces(root.child("LocationFavorites"), config.locationFavorites);
    });
}

void PRuntimeConfig::save() {
    pallix::operation([&] {
        const _PALLIX_RUNTIME_CONFIG& config = _globalFrameworkConfig;
        pugi::xml_document document;
        pugi::xml_node root = document.append_child("Nevor");
        pallix::XmlFile::prependDeclaration(document, "utf-8", false);

        writeValue(root, "LastVersion", config.lastVersion);
        writeNumber(root, "PopupTimeADAPP", config.popupTimeADAPP);
        writeNumber(root, "SameTimeDownloadNumber", config.sameTimeDownloadNumber);
        writeNumber(root, "DownloadMaxSpeed", config.downloadMaxSpeed);
        writeValue(root, "LastSkin", config.lastSkin);
        writeNumber(root, "LastLanguage", static_cast<int>(config.lastLanguage));
        writeNumber(root, "RestoreCore", static_cast<int>(config.restoreCore));

        writeFlags(root, "Status", config.status);

        pugi::xml_node directory = root.append_child("Directory");
        for (const auto& entry : config.directory) {
            pugi::xml_node item = directory.append_child("Item");
            item.append_attribute("Name").set_value(entry.first.data());
            item.append_attribute("Path").set_value(entry.second.data());
        }

        writeFlags(root, "Tools", config.tools);

        pugi::xml_node customBackup = root.append_child("CustomBackup");
        for (const NString& path : config.customBackup) {
            customBackup.append_child("Item").append_attribute("Path").set_value(path.data());
        }

        pugi::xml_node fileFavorites = root.append_child("FileFavorites");
        for (const _PALLIX_RUNTIME_CONFIG_FC& favourite : config.fileFavorites) {
            pugi::xml_node item = fileFavorites.append_child("Item");
            item.append_attribute("Path").set_value(favourite.Path.data());
            item.append_attribute("Root").set_value(favourite.Root);
        }

        writeFlags(root, "AutoImport", config.autoImport);
        writePlaces(root, "VirtualLocation", config.virtualLocation);
        writePlaces(root, "LocationFavorites", config.locationFavorites);

        // A failed write leaves the previous file (or none); the record keeps its values.
        pallix::XmlFile::save(document, pallix::config::currentFilePath());
    });
}
