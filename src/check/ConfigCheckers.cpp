// Checks of the application's configuration file, of the legacy file it replaces and of the
// running version: values that would not survive a load, names the application does not know,
// repeated keys.

#include "Checkers.h"

#include "ConfigurationFormat.h"
#include "ValueRules.h"

#include <algorithm>
#include <set>
#include <string>

namespace pallix::check {

namespace {

namespace cfg = format::configuration;
namespace legacy = cfg::legacy;
using format::ValueKind;

// The numbers among the scalars, as the reader's width takes them.
void checkNumbers(SourceFile& file, const pugi::xml_node& root, const char* valueAttribute,
                  bool imported) {
    for (const cfg::Preference& scalar : cfg::kPreferences) {
        // The import leaves the language out.
        if (scalar.width != ValueKind::Text &&
            !(imported && format::sameName(scalar.element, cfg::kLastLanguage))) {
            checkValue(file, root.child(scalar.element), valueAttribute, scalar.width,
                       imported ? "it is read as {}, so it is not imported as written"
                                : "it is read as {}, so it does not survive a load",
                       scalar.byDefault);
        }
    }
}

// A list whose entries are keyed: the reader keeps the first entry of a key. `known`, when not
// empty, holds the keys that the application has defaults for.
void checkKeyedList(SourceFile& file, const pugi::xml_node& list, const char* key, const char* flag,
                    const std::vector<std::string>& known = {}) {
    std::set<std::string> keys;
    for (const pugi::xml_node& item : entries(file, list, kTextIsAnEmptyEntry)) {
        const std::string name = item.attribute(key).value();
        const std::size_t at = file.offsetOf(item, key);
        if (!keys.insert(name).second) {
            file.warning(at, inQuotes(list.name()) + " lists " + inQuotes(name) +
                                 " again; only the first entry is kept");
        } else if (!known.empty() && std::find(known.begin(), known.end(), name) == known.end()) {
            file.warning(at, inQuotes(name) + " is not a setting that the library knows: it has "
                                              "no default of its own and is only carried along, "
                                              "read and written back as it is");
        }
        if (flag != nullptr) {
            checkValue(file, item, flag, ValueKind::Boolean);
        }
    }
}

// Flags on the entries of a list that takes text as an entry too, without saying so.
void checkFlags(SourceFile& file, const pugi::xml_node& list, const char* flag) {
    for (const pugi::xml_node& item : entries(file, list, nullptr)) {
        checkValue(file, item, flag, ValueKind::Boolean);
    }
}

void checkPlaces(SourceFile& file, const pugi::xml_node& list) {
    for (const pugi::xml_node& item : entries(file, list, kTextIsAnEmptyEntry)) {
        checkValue(file, item, cfg::kX, ValueKind::Number);
        checkValue(file, item, cfg::kY, ValueKind::Number);
    }
}

// The reader looks each element up by name: a later one of a name is never read, and one of
// another name not at all.
void checkElements(SourceFile& file, const pugi::xml_node& root,
                   const std::vector<const char*>& scalars, const std::vector<const char*>& lists,
                   const char* valueAttribute) {
    warnAboutRepeatedElements(file, root, scalars, valueAttribute);
    warnAboutRepeatedElements(file, root, lists, nullptr);
    std::set<std::string> known(scalars.begin(), scalars.end());
    known.insert(lists.begin(), lists.end());
    known.insert(cfg::kLastLanguage); // the legacy file's is known, but not imported
    for (const pugi::xml_node& child : entries(file, root, nullptr)) {
        if (known.count(child.name()) == 0) {
            file.warning(file.offsetOf(child),
                         "element " + inQuotes(child.name()) + " is not read and is ignored");
        }
    }
}

} // namespace

void checkConfig(SourceFile& file, const pugi::xml_node& root) {
    checkNumbers(file, root, cfg::kValue, false);
    const pugi::xml_node skin = root.child(cfg::kLastSkin);
    const std::string skinText = skin.attribute(cfg::kValue).value();
    if (skin && !(skinText.size() == 6 && isHexDigits(skinText))) {
        file.warning(file.offsetOf(skin, cfg::kValue), std::string(cfg::kLastSkin) + " " +
                                                           inQuotes(skinText) +
                                                           " is not six hexadecimal digits");
    }
    std::vector<std::string> settings;
    for (const cfg::KnownSetting& setting : cfg::kKnownSettings) {
        settings.emplace_back(setting.name);
    }
    checkKeyedList(file, root.child(cfg::kStatus), cfg::kName, cfg::kFlag, settings);
    checkKeyedList(file, root.child(cfg::kDirectory), cfg::kName, nullptr);
    checkKeyedList(file, root.child(cfg::kTools), cfg::kName, cfg::kFlag);
    checkKeyedList(file, root.child(cfg::kAutoImport), cfg::kName, cfg::kFlag, {cfg::kRingtone});
    checkFlags(file, root.child(cfg::kFileFavorites), cfg::kRootFlag);
    checkPlaces(file, root.child(cfg::kVirtualLocation));
    checkPlaces(file, root.child(cfg::kLocationFavorites));
    checkElements(file, root, {std::begin(cfg::kScalars), std::end(cfg::kScalars)},
                  {std::begin(cfg::kLists), std::end(cfg::kLists)}, cfg::kValue);
}

void checkLegacyConfig(SourceFile& file, const pugi::xml_node& root) {
    checkNumbers(file, root, legacy::kValue, true);
    std::vector<const char*> scalars(std::begin(legacy::kScalars), std::end(legacy::kScalars));
    for (const legacy::RenamedSetting& setting : legacy::kSettings) {
        checkValue(file, root.child(setting.legacyName), legacy::kValue, ValueKind::Boolean);
        scalars.push_back(setting.legacyName);
    }
    checkKeyedList(file, root.child(cfg::kDirectory), legacy::kKey, nullptr);
    checkKeyedList(file, root.child(cfg::kTools), legacy::kKey, legacy::kKeyValue);
    checkValue(file, root.child(cfg::kAutoImport).child(cfg::kRingtone), legacy::kValue,
               ValueKind::Boolean);
    checkFlags(file, root.child(legacy::kCollectionList), legacy::kCollectionRoot);
    checkPlaces(file, root.child(legacy::kVirtualLocationList));
    checkPlaces(file, root.child(legacy::kLocationCollectList));
    if (const pugi::xml_node language = root.child(cfg::kLastLanguage)) {
        file.warning(file.offsetOf(language), "the language of the legacy file is not imported");
    }
    checkElements(file, root, scalars, {std::begin(legacy::kLists), std::end(legacy::kLists)},
                  legacy::kValue);
}

// The running version decides whether the application was just updated, so a file that yields
// no version makes every start look like an update.
void checkVersion(SourceFile& file, const pugi::xml_node& root) {
    namespace version = cfg::version;
    const pugi::xml_node control = root.child(version::kControl);
    if (!control) {
        file.error(file.offsetOf(root), "no " + inQuotes(version::kControl) +
                                            " element: the running version falls back to " +
                                            inQuotes(cfg::kFallbackVersion));
        return;
    }
    const pugi::xml_node value = control.child(version::kVersion);
    if (*value.attribute(version::kValue).value() == '\0') {
        file.error(file.offsetOf(value ? value : control),
                   "no " + inQuotes(version::kVersion) + " element with a " + version::kValue +
                       ": the running version is empty");
    }
}

} // namespace pallix::check
