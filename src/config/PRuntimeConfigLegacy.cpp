#include "PRuntimeConfig.h"

#include "ConfigLocations.h"
#include "ConfigMaps.h"
#include "ConfigXml.h"
#include "NApple.h"
#include "Operation.h"
#include "XmlFile.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

// The configuration file of earlier releases ("Config" root). It is read once, into the record
// only; initialize() writes the current file and removes this one. The three kinds of input
// behave differently on purpose: scalars overwrite, dictionaries keep what is already there,
// lists append.

using pallix::config::forEachChild;
using pallix::config::insertIfAbsent;

namespace {

// A legacy flag under its current setting name.
struct RenamedFlag {
    const char* legacyName;
    bool legacyDefault;
    const char* settingName;
};

// The legacy file's flags in the order they are read.
constexpr RenamedFlag kRenamedFlags[] = {
    {"SelectClose", false, "WindowCloseSelect"},  {"CloseButton", false, "WindowCloseOperate"},
    {"WifiConnect", false, "WiFiConnect"},        {"ITunesState", true, "ITunesAutorun"},
    {"SaveIpswCache", true, "KeepFirmwareCache"}, {"RelationIpa", false, "RelationIpa"},
    {"VerifySerial", true, "VerifySerialNumber"}, {"WindowAnimation", false, "WindowAnimation"},
    {"VerifyPro", false, "VerifyPaymentConfirm"}, {"NumberCard", false, "VerifyTimecardConfirm"},
};

// The order in which the flags go into the setting flags.
constexpr const char* kInsertionOrder[] = {
    "WindowCloseSelect",    "WindowCloseOperate",    "WindowAnimation", "WiFiConnect",
    "ITunesAutorun",        "KeepFirmwareCache",     "RelationIpa",     "VerifySerialNumber",
    "VerifyPaymentConfirm", "VerifyTimecardConfirm",
};

static_assert(sizeof kRenamedFlags / sizeof kRenamedFlags[0] ==
              sizeof kInsertionOrder / sizeof kInsertionOrder[0]);

pugi::xml_attribute valueOf(const pugi::xml_node& root, const char* element) {
    return root.child(element).attribute("Value");
}

void appendPlaces(const pugi::xml_node& list, std::list<_PALLIX_RUNTIME_CONFIG_VL>& places) {
    forEachChild(list, [&places](const pugi::xml_node& item) {
        _PALLIX_RUNTIME_CONFIG_VL place;
        place.X = item.attribute("X").as_double(0.0);
        place.Y = item.attribute("Y").as_double(0.0);
        place.Location = NString(item.attribute("Location").as_string(""));
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
        const pugi::xml_node root = document.child("Config");
        if (!root) {
            return;
        }

        config.lastVersion = NString(valueOf(root, "LastVersion").as_string(""));
        config.popupTimeADAPP = valueOf(root, "PopupTimeADAPP").as_ullong(0);
        config.sameTimeDownloadNumber = valueOf(root, "SameTimeDownloadNumber").as_int(3);
        config.downloadMaxSpeed = valueOf(root, "DownloadMaxSpeed").as_int(0);
        config.lastSkin = NString(valueOf(root, "LastSkin").as_string(""));
        config.restoreCore = EPALLIX_RUNTIME_RESTORE_CORE(valueOf(root, "RestoreCore").as_int(0));

        // All ten are read before any is stored; the setting flags keep a name they already hold.
        std::map<NString, bool> imported;
        for (const RenamedFlag& flag : kRenamedFlags) {
            imported.emplace(flag.settingName,
                             valueOf(root, flag.legacyName).as_bool(flag.legacyDefault));
        }
        for (const char* name : kInsertionOrder) {
            insertIfAbsent(config.status, NString(name), imported.at(name));
        }

        forEachChild(root.child("Directory"), [&](const pugi::xml_node& item) {
            insertIfAbsent(config.directory, NString(item.attribute("KEY").as_string("")),
                           NString(item.attribute("VALUE").as_string("")));
        });
        insertIfAbsent(config.directory, NString("Data"),
                       NString(valueOf(root, "UserDir").as_string("")));
        insertIfAbsent(config.directory, NString("Backup"), NApple::BackupDirectory());

        forEachChild(root.child("Tools"), [&](const pugi::xml_node& item) {
            insertIfAbsent(config.tools, NString(item.attribute("KEY").as_string("")),
                           item.attribute("VALUE").as_bool(false));
        });

        // Taken as they are: neither normalised nor checked for duplicates.
        forEachChild(root.child("BackupList"), [&](const pugi::xml_node& item) {
            config.customBackup.emplace_back(item.attribute("BackupCustom").as_string(""));
        });

        forEachChild(root.child("CollectionList"), [&](const pugi::xml_node& item) {
            _PALLIX_RUNTIME_CONFIG_FC favourite;
            favourite.Path = NString(item.attribute("CollectionPath").as_string(""));
            favourite.Root = item.attribute("CollectionRoot").as_bool(false);
            config.fileFavorites.push_back(favourite);
        });

        if (const pugi::xml_node autoImport = root.child("AutoImport")) {
            insertIfAbsent(config.autoImport, NString("Ringtone"),
                           autoImport.child("Ringtone").attribute("Value").as_bool(true));
        }

        appendPlaces(root.child("VirtualLocationList"), config.virtualLocation);
        appendPlaces(root.child("LocationCollectList"), config.locationFavorites);
    });
}
