#include "PRuntimeConfig.h"

#include "ConfigLocations.h"
#include "ConfigMaps.h"
#include "ConfigXml.h"
#include "ConfigurationFormat.h"
#include "Conversions.h"
#include "NApple.h"
#include "NFileSystem.h"
#include "Operation.h"
#include "XmlFile.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

// The current configuration file: the root cfg::kRoot with one element per field, always all of
// them, in a fixed order. Scalars carry their value in "Value"; containers hold one "Item" per
// entry.

namespace cfg = pallix::format::configuration;
using pallix::config::forEachChild;
using pallix::config::insertIfAbsent;

namespace {

const char* valueOf(const pugi::xml_node& root, const char* element, const char* fallback) {
    return root.child(element).attribute(cfg::kValue).as_string(fallback);
}

void readFlags(const pugi::xml_node& element, std::map<NString, bool>& flags) {
    forEachChild(element, [&flags](const pugi::xml_node& item) {
        insertIfAbsent(flags, NString(item.attribute(cfg::kName).as_string("")),
                       item.attribute(cfg::kFlag).as_bool(false));
    });
}

void readPlaces(const pugi::xml_node& element, std::list<_PALLIX_RUNTIME_CONFIG_VL>& places) {
    forEachChild(element, [&places](const pugi::xml_node& item) {
        _PALLIX_RUNTIME_CONFIG_VL place;
        place.X = item.attribute(cfg::kX).as_double(0.0);
        place.Y = item.attribute(cfg::kY).as_double(0.0);
        place.Location = NString(item.attribute(cfg::kLocation).as_string(""));
        places.push_back(place);
    });
}

void writeValue(pugi::xml_node& root, const char* element, const NString& value) {
    root.append_child(element).append_attribute(cfg::kValue).set_value(value.data());
}

template <typename Number>
void writeNumber(pugi::xml_node& root, const char* element, Number value) {
    root.append_child(element).append_attribute(cfg::kValue).set_value(value);
}

void writeFlags(pugi::xml_node& root, const char* element, const std::map<NString, bool>& flags) {
    pugi::xml_node list = root.append_child(element);
    for (const auto& flag : flags) {
        pugi::xml_node item = list.append_child(cfg::kItem);
        item.append_attribute(cfg::kName).set_value(flag.first.data());
        item.append_attribute(cfg::kFlag).set_value(flag.second);
    }
}

void writePlaces(pugi::xml_node& root, const char* element,
                 const std::list<_PALLIX_RUNTIME_CONFIG_VL>& places) {
    pugi::xml_node list = root.append_child(element);
    for (const _PALLIX_RUNTIME_CONFIG_VL& place : places) {
        pugi::xml_node item = list.append_child(cfg::kItem);
        item.append_attribute(cfg::kX).set_value(place.X);
        item.append_attribute(cfg::kY).set_value(place.Y);
        item.append_attribute(cfg::kLocation).set_value(place.Location.data());
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
        const pugi::xml_node root = document.child(cfg::kRoot);
        if (!root) {
            return;
        }

        // A missing element resets the field to the reader's default. The two download limits
        // are written 64 bits wide but read as int: a larger value does not survive a load.
        // Each number is read as cfg::kPreferences says, which is what `pallix check` expects.
        static_assert(cfg::preference(cfg::kPopupTimeADAPP).width == cfg::Width::UInt64 &&
                      cfg::preference(cfg::kSameTimeDownloadNumber).width == cfg::Width::Int32 &&
                      cfg::preference(cfg::kDownloadMaxSpeed).width == cfg::Width::Int32 &&
                      cfg::preference(cfg::kLastLanguage).width == cfg::Width::Int32 &&
                      cfg::preference(cfg::kRestoreCore).width == cfg::Width::Int32);
        config.lastVersion = NString(valueOf(root, cfg::kLastVersion, ""));
        config.popupTimeADAPP =
            pallix::format::readUInt64(root.child(cfg::kPopupTimeADAPP).attribute(cfg::kValue), 0);
        config.sameTimeDownloadNumber = pallix::format::readInt32(
            root.child(cfg::kSameTimeDownloadNumber).attribute(cfg::kValue),
            cfg::kDefaultSameTimeDownloadNumber);
        config.downloadMaxSpeed =
            pallix::format::readInt32(root.child(cfg::kDownloadMaxSpeed).attribute(cfg::kValue), 0);
        config.lastSkin = NString(valueOf(root, cfg::kLastSkin, ""));
        config.lastLanguage = EPALLIX_RUNTIME_LANGUAGE(
            pallix::format::readInt32(root.child(cfg::kLastLanguage).attribute(cfg::kValue), 0));
        config.restoreCore = EPALLIX_RUNTIME_RESTORE_CORE(
            pallix::format::readInt32(root.child(cfg::kRestoreCore).attribute(cfg::kValue), 0));

        readFlags(root.child(cfg::kStatus), config.status);

        forEachChild(root.child(cfg::kDirectory), [&](const pugi::xml_node& item) {
            insertIfAbsent(config.directory, NString(item.attribute(cfg::kName).as_string("")),
                           NString(item.attribute(cfg::kPath).as_string("")));
        });
        // Files of older versions kept the data directory in cfg::kUserDir; an empty one is given
        // the built-in default by initialize().
        insertIfAbsent(config.directory, NString(cfg::kDataDirectory),
                       NString(valueOf(root, cfg::kUserDir, "")));
        insertIfAbsent(config.directory, NString(cfg::kBackupDirectory), NApple::BackupDirectory());

        readFlags(root.child(cfg::kTools), config.tools);

        forEachChild(root.child(cfg::kCustomBackup), [&](const pugi::xml_node& item) {
            config.customBackup.emplace_back(item.attribute(cfg::kPath).as_string(""));
        });

        forEachChild(root.child(cfg::kFileFavorites), [&](const pugi::xml_node& item) {
            _PALLIX_RUNTIME_CONFIG_FC favourite;
            favourite.Path = NString(item.attribute(cfg::kPath).as_string(""));
            favourite.Root = item.attribute(cfg::kRootFlag).as_bool(false);
            config.fileFavorites.push_back(favourite);
        });

        readFlags(root.child(cfg::kAutoImport), config.autoImport);
        readPlaces(root.child(cfg::kVirtualLocation), config.virtualLocation);
        readPlaces(root.child(cfg::kLocationFavorites), config.locationFavorites);
    });
}

void PRuntimeConfig::save() {
    pallix::operation([&] {
        const _PALLIX_RUNTIME_CONFIG& config = _globalFrameworkConfig;
        pugi::xml_document document;
        pugi::xml_node root = document.append_child(cfg::kRoot);
        pallix::XmlFile::prependDeclaration(document, "utf-8", false);

        writeValue(root, cfg::kLastVersion, config.lastVersion);
        writeNumber(root, cfg::kPopupTimeADAPP, config.popupTimeADAPP);
        writeNumber(root, cfg::kSameTimeDownloadNumber, config.sameTimeDownloadNumber);
        writeNumber(root, cfg::kDownloadMaxSpeed, config.downloadMaxSpeed);
        writeValue(root, cfg::kLastSkin, config.lastSkin);
        writeNumber(root, cfg::kLastLanguage, static_cast<int>(config.lastLanguage));
        writeNumber(root, cfg::kRestoreCore, static_cast<int>(config.restoreCore));

        writeFlags(root, cfg::kStatus, config.status);

        pugi::xml_node directory = root.append_child(cfg::kDirectory);
        for (const auto& entry : config.directory) {
            pugi::xml_node item = directory.append_child(cfg::kItem);
            item.append_attribute(cfg::kName).set_value(entry.first.data());
            item.append_attribute(cfg::kPath).set_value(entry.second.data());
        }

        writeFlags(root, cfg::kTools, config.tools);

        pugi::xml_node customBackup = root.append_child(cfg::kCustomBackup);
        for (const NString& path : config.customBackup) {
            customBackup.append_child(cfg::kItem)
                .append_attribute(cfg::kPath)
                .set_value(path.data());
        }

        pugi::xml_node fileFavorites = root.append_child(cfg::kFileFavorites);
        for (const _PALLIX_RUNTIME_CONFIG_FC& favourite : config.fileFavorites) {
            pugi::xml_node item = fileFavorites.append_child(cfg::kItem);
            item.append_attribute(cfg::kPath).set_value(favourite.Path.data());
            item.append_attribute(cfg::kRootFlag).set_value(favourite.Root);
        }

        writeFlags(root, cfg::kAutoImport, config.autoImport);
        writePlaces(root, cfg::kVirtualLocation, config.virtualLocation);
        writePlaces(root, cfg::kLocationFavorites, config.locationFavorites);

        // A failed write leaves the previous file (or none); the record keeps its values.
        pallix::XmlFile::save(document, pallix::config::currentFilePath());
    });
}
