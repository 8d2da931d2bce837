#include "PRuntimeConfig.h"

#include "ConfigLocations.h"
#include "ConfigMaps.h"
#include "ConfigXml.h"
#include "ConfigurationFormat.h"
#include "NApple.h"
#include "Operation.h"
#include "XmlFile.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

// The configuration file of earlier releases ("Config" root). It is read once, into the record
// only; initialize() writes the current file and removes this one. The three kinds of input
// behave differently on purpose: scalars overwrite, dictionaries keep what is already there,
// lists append.

namespace cfg = pallix::format::configuration;
namespace legacy = pallix::format::configuration::legacy;
using pallix::config::forEachChild;
using pallix::config::insertIfAbsent;
using pallix::config::readPreference;

namespace {

// The order in which the flags go into the setting flags, by their place in legacy::kSettings:
// WindowCloseSelect, WindowCloseOperate, WindowAnimation, WiFiConnect, ITunesAutorun,
// KeepFirmwareCache, RelationIpa, VerifySerialNumber, VerifyPaymentConfirm,
// VerifyTimecardConfirm.
constexpr std::size_t kInsertionOrder[] = {0, 1, 7, 2, 3, 4, 5, 6, 8, 9};

static_assert(sizeof legacy::kSettings / sizeof legacy::kSettings[0] ==
              sizeof kInsertionOrder / sizeof kInsertionOrder[0]);

pugi::xml_attribute valueOf(const pugi::xml_node& root, const char* element) {
    return root.child(element).attribute(legacy::kValue);
}

void appendPlaces(const pugi::xml_node& list, std::list<_PALLIX_RUNTIME_CONFIG_VL>& places) {
    forEachChild(list, [&places](const pugi::xml_node& item) {
        _PALLIX_RUNTIME_CONFIG_VL place;
        place.X = item.attribute(cfg::kX).as_double(0.0);
        place.Y = item.attribute(cfg::kY).as_double(0.0);
        place.Location = NString(item.attribute(cfg::kLocation).as_string(""));
        places.push_back(place);
    });
}

} // namespace

void PRuntimeConfig::load_old() {
    pallix::operation([&] {
        _PALLIX_RUNTIME_CONFIG& config = _globalFrameworkConfig;
        const NString path = pallix::config::legacyFilePath();
        // A legacy file means an earlier installation, whether or not it can be read.
        config.newInstall = false;

        pugi::xml_document document;
        if (!pallix::XmlFile::load(document, path)) {
            return;
        }
        const pugi::xml_node root = document.child(legacy::kRoot);
        if (!root) {
            return;
        }

        // The numbers are read as load_new() reads them, as cfg::kPreferences says.
        config.lastVersion = NString(valueOf(root, cfg::kLastVersion).as_string(""));
        config.popupTimeADAPP =
            readPreference<unsigned long long>(root, cfg::kPopupTimeADAPP, legacy::kValue);
        config.sameTimeDownloadNumber =
            readPreference<long long>(root, cfg::kSameTimeDownloadNumber, legacy::kValue);
        config.downloadMaxSpeed =
            readPreference<long long>(root, cfg::kDownloadMaxSpeed, legacy::kValue);
        config.lastSkin = NString(valueOf(root, cfg::kLastSkin).as_string(""));
        config.restoreCore =
            readPreference<EPALLIX_RUNTIME_RESTORE_CORE>(root, cfg::kRestoreCore, legacy::kValue);

        // All ten are read before any is stored; the setting flags keep a name they already hold.
        std::map<NString, bool> imported;
        for (const legacy::RenamedSetting& flag : legacy::kSettings) {
            imported.emplace(flag.name, valueOf(root, flag.legacyName).as_bool(flag.byDefault));
        }
        for (const std::size_t index : kInsertionOrder) {
            const char* name = legacy::kSettings[index].name;
            insertIfAbsent(config.status, NString(name), imported.at(name));
        }

        forEachChild(root.child(cfg::kDirectory), [&](const pugi::xml_node& item) {
            insertIfAbsent(config.directory, NString(item.attribute(legacy::kKey).as_string("")),
                           NString(item.attribute(legacy::kKeyValue).as_string("")));
        });
        insertIfAbsent(config.directory, NString(cfg::kDataDirectory),
                       NString(valueOf(root, cfg::kUserDir).as_string("")));
        insertIfAbsent(config.directory, NString(cfg::kBackupDirectory), NApple::BackupDirectory());

        forEachChild(root.child(cfg::kTools), [&](const pugi::xml_node& item) {
            insertIfAbsent(config.tools, NString(item.attribute(legacy::kKey).as_string("")),
                           item.attribute(legacy::kKeyValue).as_bool(false));
        });

        // Taken as they are: neither normalised nor checked for duplicates.
        forEachChild(root.child(legacy::kBackupList), [&](const pugi::xml_node& item) {
            config.customBackup.emplace_back(item.attribute(legacy::kBackupCustom).as_string(""));
        });

        forEachChild(root.child(legacy::kCollectionList), [&](const pugi::xml_node& item) {
            _PALLIX_RUNTIME_CONFIG_FC favourite;
            favourite.Path = NString(item.attribute(legacy::kCollectionPath).as_string(""));
            favourite.Root = item.attribute(legacy::kCollectionRoot).as_bool(false);
            config.fileFavorites.push_back(favourite);
        });

        if (const pugi::xml_node autoImport = root.child(cfg::kAutoImport)) {
            insertIfAbsent(config.autoImport, NString(cfg::kRingtone),
                           autoImport.child(cfg::kRingtone)
                               .attribute(legacy::kValue)
                               .as_bool(cfg::kDefaultAutoImportRingtone));
        }

        appendPlaces(root.child(legacy::kVirtualLocationList), config.virtualLocation);
        appendPlaces(root.child(legacy::kLocationCollectList), config.locationFavorites);
    });
}
