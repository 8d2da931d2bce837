#pragma once

#include "Conversions.h"

#include <cstddef>
#include <stdexcept>
#include <string_view>

// The configuration files: "configure.xml" (current), "Config.xml" (earlier releases, imported
// once) and the running version in "UpdateCfg.xml", with the values a new configuration starts
// from.
namespace pallix::format::configuration {

// ---- configure.xml: one element per field; scalars carry "Value", containers hold "Item"s.
inline constexpr char kRoot[] = "Nevor";
inline constexpr char kValue[] = "Value";
inline constexpr char kItem[] = "Item";

inline constexpr char kLastVersion[] = "LastVersion";
inline constexpr char kPopupTimeADAPP[] = "PopupTimeADAPP";
inline constexpr char kSameTimeDownloadNumber[] = "SameTimeDownloadNumber";
inline constexpr char kDownloadMaxSpeed[] = "DownloadMaxSpeed";
inline constexpr char kLastSkin[] = "LastSkin";
inline constexpr char kLastLanguage[] = "LastLanguage";
inline constexpr char kRestoreCore[] = "RestoreCore";
inline constexpr char kStatus[] = "Status";
inline constexpr char kDirectory[] = "Directory";
inline constexpr char kUserDir[] = "UserDir"; // the data directory of older files
inline constexpr char kTools[] = "Tools";
inline constexpr char kCustomBackup[] = "CustomBackup";
inline constexpr char kFileFavorites[] = "FileFavorites";
inline constexpr char kAutoImport[] = "AutoImport";
inline constexpr char kVirtualLocation[] = "VirtualLocation";
inline constexpr char kLocationFavorites[] = "LocationFavorites";

inline constexpr int kDefaultSameTimeDownloadNumber = 3; // when none is stored

// How the reader keeps each preference, and the value a missing or empty one is read as: a
// number beyond its width does not survive a load (the download limits are written 64 bits
// wide but read back as 32-bit numbers).
using Width = ValueKind;
struct Preference {
    const char* element;
    Width width;
    long long byDefault = 0;
};
inline constexpr Preference kPreferences[] = {
    {kPopupTimeADAPP, Width::UInt64},
    {kSameTimeDownloadNumber, Width::Int32, kDefaultSameTimeDownloadNumber},
    {kDownloadMaxSpeed, Width::Int32},
    {kLastSkin, Width::Text},
    {kLastLanguage, Width::Int32},
    {kRestoreCore, Width::Int32},
};

// Every element of the file, each looked up by name: the scalars (kValue) and the lists.
inline constexpr const char* kScalars[] = {
    kLastVersion,      kPopupTimeADAPP, kSameTimeDownloadNumber,
    kDownloadMaxSpeed, kLastSkin,       kLastLanguage,
    kRestoreCore,      kUserDir};
inline constexpr const char* kLists[] = {kStatus,          kDirectory,        kTools,
                                         kCustomBackup,    kFileFavorites,    kAutoImport,
                                         kVirtualLocation, kLocationFavorites};

// The entry of kPreferences for `element`, which must be one of them.
constexpr const Preference& preference(std::string_view element) {
    for (const Preference& entry : kPreferences) {
        if (element == entry.element) {
            return entry;
        }
    }
    throw std::invalid_argument("not a preference of the configuration");
}

// Attributes of the items.
inline constexpr char kName[] = "Name";
inline constexpr char kFlag[] = "Status";
inline constexpr char kPath[] = "Path";
inline constexpr char kRootFlag[] = "Root";
inline constexpr char kX[] = "X";
inline constexpr char kY[] = "Y";
inline constexpr char kLocation[] = "Location";

// Names inside the maps.
inline constexpr char kDataDirectory[] = "Data";
inline constexpr char kBackupDirectory[] = "Backup";
inline constexpr char kRingtone[] = "Ringtone";

// ---- the values a configuration starts from
inline constexpr char kFallbackVersion[] = "5.0.0"; // when UpdateCfg.xml names none
inline constexpr char kDefaultSkin[] = "236EE7";
inline constexpr bool kDefaultAutoImportRingtone = true;
inline constexpr char kDefaultDataDirectoryName[] = "TolVaneData"; // under the user's home

// The settings the application knows by name.
inline constexpr char kSettingApplicationAutorun[] = "ApplicationAutorun";
inline constexpr char kSettingWindowCloseSelect[] = "WindowCloseSelect";
inline constexpr char kSettingWindowCloseOperate[] = "WindowCloseOperate";
inline constexpr char kSettingWindowAnimation[] = "WindowAnimation";
inline constexpr char kSettingWiFiConnect[] = "WiFiConnect";
inline constexpr char kSettingITunesAutorun[] = "ITunesAutorun";
inline constexpr char kSettingKeepFirmwareCache[] = "KeepFirmwareCache";
inline constexpr char kSettingRelationIpa[] = "RelationIpa";
inline constexpr char kSettingVerifySerialNumber[] = "VerifySerialNumber";
inline constexpr char kSettingVerifyPaymentConfirm[] = "VerifyPaymentConfirm";
inline constexpr char kSettingVerifyTimecardConfirm[] = "VerifyTimecardConfirm";
inline constexpr char kSettingToolsProcessSkipService[] = "ToolsProcessSkipService";
inline constexpr char kSettingRestoreFactory[] = "RESTORE_FACTORY";

// The settings the application knows, with the answer getSettingStatus() gives for each until
// one is stored; any other name answers false.
struct KnownSetting {
    const char* name;
    bool byDefault;
};
inline constexpr KnownSetting kKnownSettings[] = {
    {kSettingApplicationAutorun, false},    {kSettingWindowCloseSelect, false},
    {kSettingWindowCloseOperate, false},    {kSettingWindowAnimation, false},
    {kSettingWiFiConnect, false},           {kSettingITunesAutorun, true},
    {kSettingKeepFirmwareCache, true},      {kSettingRelationIpa, false},
    {kSettingVerifySerialNumber, true},     {kSettingVerifyPaymentConfirm, false},
    {kSettingVerifyTimecardConfirm, false}, {kSettingToolsProcessSkipService, true},
    {kSettingRestoreFactory, false},
};
inline constexpr std::size_t kKnownSettingCount = sizeof kKnownSettings / sizeof kKnownSettings[0];

// ---- Config.xml of earlier releases (root "Config"): the same scalars under their own names,
// the settings under older names, the lists under other element and attribute names.
namespace legacy {
inline constexpr char kRoot[] = "Config";
inline constexpr char kValue[] = "Value";
inline constexpr char kKey[] = "KEY";
inline constexpr char kKeyValue[] = "VALUE";
inline constexpr char kBackupList[] = "BackupList";
inline constexpr char kBackupCustom[] = "BackupCustom";
inline constexpr char kCollectionList[] = "CollectionList";
inline constexpr char kCollectionPath[] = "CollectionPath";
inline constexpr char kCollectionRoot[] = "CollectionRoot";
inline constexpr char kVirtualLocationList[] = "VirtualLocationList";
inline constexpr char kLocationCollectList[] = "LocationCollectList";

// A setting of the earlier file, the value it takes when the element is missing, and the name
// the current file gives it.
struct RenamedSetting {
    const char* legacyName;
    bool byDefault;
    const char* name;
};
inline constexpr RenamedSetting kSettings[] = {
    {"SelectClose", false, kSettingWindowCloseSelect},
    {"CloseButton", false, kSettingWindowCloseOperate},
    {"WifiConnect", false, kSettingWiFiConnect},
    {"ITunesState", true, kSettingITunesAutorun},
    {"SaveIpswCache", true, kSettingKeepFirmwareCache},
    {kSettingRelationIpa, false, kSettingRelationIpa},
    {"VerifySerial", true, kSettingVerifySerialNumber},
    {kSettingWindowAnimation, false, kSettingWindowAnimation},
    {"VerifyPro", false, kSettingVerifyPaymentConfirm},
    {"NumberCard", false, kSettingVerifyTimecardConfirm},
};

// Every element of the earlier file that the import looks up by name: the scalars (kValue; the
// settings above are scalars too) and the lists. Its language (kLastLanguage) is not imported.
inline constexpr const char* kScalars[] = {
    kLastVersion, kPopupTimeADAPP, kSameTimeDownloadNumber, kDownloadMaxSpeed, kLastSkin,
    kRestoreCore, kUserDir};
inline constexpr const char* kLists[] = {kDirectory,          kTools,      kBackupList,
                                         kCollectionList,     kAutoImport, kVirtualLocationList,
                                         kLocationCollectList};
} // namespace legacy

// ---- UpdateCfg.xml: <root><Control><Version VALUE="..."/></Control></root>
namespace version {
inline constexpr char kRoot[] = "root";
inline constexpr char kControl[] = "Control";
inline constexpr char kVersion[] = "Version";
inline constexpr char kValue[] = "VALUE";
} // namespace version

} // namespace pallix::format::configuration
