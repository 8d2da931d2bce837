#include "PRuntimeConfig.h"

#include "ConfigFileText.h"
#include "ConfigLocations.h"
#include "ConfigMaps.h"
#include "ConfigXml.h"
#include "ConfigurationFormat.h"
#include "NApple.h"
#include "NFileSystem.h"
#include "Operation.h"
#include "WriteOutcome.h"
#include "XmlFile.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

#include <string>
#include <utility>

// The current configuration file: the root cfg::kRoot with one element per field, always all of
// them, in a fixed order. Scalars carry their value in "Value"; containers hold one "Item" per
// entry.

namespace cfg = pallix::format::configuration;
using pallix::config::forEachChild;
using pallix::config::insertIfAbsent;
using pallix::config::readPreference;

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
            readPreference<unsigned long long>(root, cfg::kPopupTimeADAPP, cfg::kValue);
        config.sameTimeDownloadNumber =
            readPreference<long long>(root, cfg::kSameTimeDownloadNumber, cfg::kValue);
        config.downloadMaxSpeed =
            readPreference<long long>(root, cfg::kDownloadMaxSpeed, cfg::kValue);
        config.lastSkin = NString(valueOf(root, cfg::kLastSkin, ""));
        config.lastLanguage =
            readPreference<EPALLIX_RUNTIME_LANGUAGE>(root, cfg::kLastLanguage, cfg::kValue);
        config.restoreCore =
            readPreference<EPALLIX_RUNTIME_RESTORE_CORE>(root, cfg::kRestoreCore, cfg::kValue);

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
        std::string bytes;
        if (!pallix::config::renderConfiguration(_globalFrameworkConfig, bytes)) {
            pallix::recordWrite(false);
            return;
        }
        // A failed write leaves the previous file (or none); the record keeps its values.
        pallix::XmlFile::saveText(std::move(bytes), pallix::config::currentFilePath());
    });
}
