// Checks of the application's configuration file and of the legacy file it replaces: values
// that would not survive a load, names the application does not know, repeated keys.

#include "Checkers.h"

#include "ConfigurationFormat.h"
#include "SourceFile.h"
#include "ValueRules.h"

#include <set>
#include <string>

namespace pallix::check {

namespace {

const std::set<std::string>& knownSettings() {
    static const std::set<std::string> names = {
        "ApplicationAutorun",   "WindowCloseSelect",     "WindowCloseOperate",
        "WindowAnimation",      "WiFiConnect",           "ITunesAutorun",
        "KeepFirmwareCache",    "RelationIpa",           "VerifySerialNumber",
        "VerifyPaymentConfirm", "VerifyTimecardConfirm", "ToolsProcessSkipService",
        "RESTORE_FACTORY"};
    return names;
}

// A number of the file as the library reads it: pugixml's conversion of the reader's width,
// which gives the reader's default for an empty value and clamps what does not fit.
std::string readAs(const pugi::xml_attribute& attribute, IntegerWidth width, int fallback) {
    switch (width) {
    case IntegerWidth::Int32:
        return std::to_string(attribute.as_int(fallback));
    case IntegerWidth::Int64:
        return std::to_string(attribute.as_llong(fallback));
    case IntegerWidth::UInt64:
        return std::to_string(attribute.as_ullong(static_cast<unsigned long long>(fallback)));
    }
    return std::string();
}

void checkScalar(SourceFile& file, const pugi::xml_node& parent, const char* element,
                 IntegerWidth width, int fallback, const std::string& consequence) {
    const pugi::xml_node node = parent.child(element);
    const pugi::xml_attribute value = node.attribute("Value");
    checkIntegerAttribute(file, node, "Value", width,
                          "it is read as " + readAs(value, width, fallback) + consequence);
}

// A list element whose items are keyed by `keyAttribute`: the first item of a key wins.
void checkKeyedItems(SourceFile& file, const pugi::xml_node& list, const char* keyAttribute,
                     const char* booleanAttribute, const std::set<std::string>* knownKeys) {
    if (!list) {
        return;
    }
    warnAboutTextEntries(file, list, kTextIsAnEmptyEntry);
    std::set<std::string> keys;
    for (pugi::xml_node item = list.first_child(); item; item = item.next_sibling()) {
        if (item.type() != pugi::node_element) {
            continue;
        }
        const std::string key = item.attribute(keyAttribute).value();
        const std::size_t at = file.offsetOf(item, keyAttribute);
        if (!keys.insert(key).second) {
            file.warning(at, inQuotes(list.name()) + " lists " + inQuotes(key) +
                                 " again; only the first entry is kept");
        } else if (knownKeys != nullptr && !knownKeys->count(key)) {
            file.warning(at, inQuotes(key) + " is not a setting that the library knows: it has "
                                             "no default of its own and is only carried along, "
                                             "read and written back as it is");
        }
        if (booleanAttribute != nullptr) {
            checkBooleanAttribute(file, item, booleanAttribute);
        }
    }
}

void checkLocations(SourceFile& file, const pugi::xml_node& list) {
    if (!list) {
        return;
    }
    warnAboutTextEntries(file, list, kTextIsAnEmptyEntry);
    for (pugi::xml_node item = list.first_child(); item; item = item.next_sibling()) {
        checkNumberAttribute(file, item, "X");
        checkNumberAttribute(file, item, "Y");
    }
}

void warnAboutUnknownElements(SourceFile& file, const pugi::xml_node& root,
                              const std::set<std::string>& known) {
    for (pugi::xml_node child = root.first_child(); child; child = child.next_sibling()) {
        if (child.type() == pugi::node_element && !known.count(child.name())) {
            file.warning(file.offsetOf(child),
                         "element " + inQuotes(child.name()) + " is not read and is ignored");
        }
    }
}

} // namespace

void checkConfig(SourceFile& file, const pugi::xml_document& document) {
    const pugi::xml_node root = requireRoot(file, document, "Nevor");
    if (!root) {
        return;
    }
    const std::string lost = ", so it does not survive a load";
    checkScalar(file, root, "PopupTimeADAPP", IntegerWidth::UInt64, 0, lost);
    checkScalar(file, root, "SameTimeDownloadNumber", IntegerWidth::Int32, 3, lost);
    checkScalar(file, root, "DownloadMaxSpeed", IntegerWidth::Int32, 0, lost);
    checkScalar(file, root, "LastLanguage", IntegerWidth::Int32, 0, lost);
    checkScalar(file, root, "RestoreCore", IntegerWidth::Int32, 0, lost);
    const pugi::xml_node skin = root.child("LastSkin");
    const std::string skinText = skin.attribute("Value").value();
    if (skin && !(skinText.size() == 6 && isHexDigits(skinText, false))) {
        file.warning(file.offsetOf(skin, "Value"),
                     "LastSkin " + inQuotes(skinText) + " is not six hexadecimal digits");
    }
    warnAboutRepeatedElements(file, root,
                              {"LastVersion", "PopupTimeADAPP", "SameTimeDownloadNumber",
                               "DownloadMaxSpeed", "LastSkin", "LastLanguage", "RestoreCore",
                               "UserDir"},
                              "Value");
    warnAboutRepeatedElements(file, root,
                              {"Status", "Directory", "Tools", "CustomBackup", "FileFavorites",
                               "AutoImport", "VirtualLocation", "LocationFavorites"},
                              nullptr);
    checkKeyedItems(file, root.child("Status"), "Name", "Status", &knownSettings());
    checkKeyedItems(file, root.child("Directory"), "Name", nullptr, nullptr);
    checkKeyedItems(file, root.child("Tools"), "Name", "Status", nullptr);
    static const std::set<std::string> autoImportKeys = {"Ringtone"};
    checkKeyedItems(file, root.child("AutoImport"), "Name", "Status", &autoImportKeys);
    const pugi::xml_node favourites = root.child("FileFavorites");
    for (pugi::xml_node item = favourites.first_child(); item; item = item.next_sibling()) {
        checkBooleanAttribute(file, item, "Root");
    }
    checkLocations(file, root.child("VirtualLocation"));
    checkLocations(file, root.child("LocationFavorites"));
    warnAboutUnknownElements(file, root,
                             {"LastVersion", "PopupTimeADAPP", "SameTimeDownloadNumber",
                              "DownloadMaxSpeed", "LastSkin", "LastLanguage", "RestoreCore",
                              "Status", "Directory", "Tools", "CustomBackup", "FileFavorites",
                              "AutoImport", "VirtualLocation", "LocationFavorites", "UserDir"});
}

void checkLegacyConfig(SourceFile& file, const pugi::xml_document& document) {
    const pugi::xml_node root = requireRoot(file, document, "Config");
    if (!root) {
        return;
    }
    const std::string lost = ", so it is not imported as written";
    checkScalar(file, root, "PopupTimeADAPP", IntegerWidth::UInt64, 0, lost);
    checkScalar(file, root, "SameTimeDownloadNumber", IntegerWidth::Int32, 3, lost);
    checkScalar(file, root, "DownloadMaxSpeed", IntegerWidth::Int32, 0, lost);
    checkScalar(file, root, "RestoreCore", IntegerWidth::Int32, 0, lost);
    static const char* const flags[] = {
        "SelectClose", "CloseButton",  "WifiConnect",     "ITunesState", "SaveIpswCache",
        "RelationIpa", "VerifySerial", "WindowAnimation", "VerifyPro",   "NumberCard"};
    for (const char* flag : flags) {
        checkBooleanAttribute(file, root.child(flag), "Value");
    }
    checkKeyedItems(file, root.child("Directory"), "KEY", nullptr, nullptr);
    checkKeyedItems(file, root.child("Tools"), "KEY", "VALUE", nullptr);
    checkBooleanAttribute(file, root.child("AutoImport").child("Ringtone"), "Value");
    const pugi::xml_node collections = root.child("CollectionList");
    for (pugi::xml_node item = collections.first_child(); item; item = item.next_sibling()) {
        checkBooleanAttribute(file, item, "CollectionRoot");
    }
    checkLocations(file, root.child("VirtualLocationList"));
    checkLocations(file, root.child("LocationCollectList"));
    warnAboutRepeatedElements(
        file, root,
        {"LastVersion", "PopupTimeADAPP", "SameTimeDownloadNumber", "DownloadMaxSpeed", "LastSkin",
         "RestoreCore", "SelectClose", "CloseButton", "WifiConnect", "ITunesState", "SaveIpswCache",
         "RelationIpa", "VerifySerial", "WindowAnimation", "VerifyPro", "NumberCard", "UserDir"},
        "Value");
    warnAboutRepeatedElements(file, root,
                              {"Directory", "Tools", "BackupList", "CollectionList", "AutoImport",
                               "VirtualLocationList", "LocationCollectList"},
                              nullptr);
    if (root.child("LastLanguage")) {
        file.warning(file.offsetOf(root.child("LastLanguage")),
                     "the language of the legacy file is not imported");
    }
    warnAboutUnknownElements(file, root,
                             {"LastVersion",
                              "PopupTimeADAPP",
                              "SameTimeDownloadNumber",
                              "DownloadMaxSpeed",
                              "LastSkin",
                              "RestoreCore",
                              "SelectClose",
                              "CloseButton",
                              "WifiConnect",
                              "ITunesState",
                              "SaveIpswCache",
                              "RelationIpa",
                              "VerifySerial",
                              "WindowAnimation",
                              "VerifyPro",
                              "NumberCard",
                              "Directory",
                              "UserDir",
                              "Tools",
                              "BackupList",
                              "CollectionList",
                              "AutoImport",
                              "VirtualLocationList",
                              "LocationCollectList",
                              "LastLanguage"});
}

// The resources' version file: the running version decides whether the application was just
// updated, so a file that yields no version makes every start look like an update.
void checkVersion(SourceFile& file, const pugi::xml_document& document) {
    const pugi::xml_node root = requireRoot(file, document, "root");
    if (!root) {
        return;
    }
    const pugi::xml_node control = root.child("Control");
    if (!control) {
        file.error(file.offsetOf(root),
                   "no \"Control\" element: the running version falls back to \"" +
                       std::string(format::configuration::kFallbackVersion) + "\"");
        return;
    }
    const pugi::xml_node version = control.child("Version");
    const std::string value = version.attribute("VALUE").value();
    if (value.empty()) {
        file.error(file.offsetOf(version ? version : control),
                   "no \"Version\" element with a VALUE: the running version is empty");
    }
}

} // namespace pallix::check
