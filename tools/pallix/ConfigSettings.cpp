#include "ConfigSettings.h"

#include "ConfigurationFormat.h"
#include "Conversions.h"
#include "Failure.h"
#include "Suggestion.h"
#include "ToolOutput.h"
#include "Values.h"

#include "PRuntimeConfig.h"

#include <algorithm>
#include <functional>
#include <iostream>
#include <limits>
#include <map>
#include <optional>

namespace pallix::tool::config {

namespace {

namespace cfg = format::configuration;
using json = nlohmann::ordered_json;
using C = PRuntimeConfig;
using Entries = std::vector<std::pair<std::string, json>>;

// The library's values as JSON and back: text as strings, numbers and flags as themselves, the
// enumerations as the numbers that the file keeps.
json toJson(const NString& text) {
    return text.toStdString();
}
template <typename Value> json toJson(const Value& value) {
    return value;
}
template <typename Value> Value fromJson(const json& value) {
    return value.get<Value>();
}
template <> NString fromJson<NString>(const json& value) {
    return NString(value.get<std::string>());
}

json parseFlag(const std::string& key, const std::string& text) {
    static const std::map<std::string, bool> words{{"true", true}, {"yes", true},    {"on", true},
                                                   {"1", true},    {"false", false}, {"no", false},
                                                   {"off", false}, {"0", false}};
    std::string lower = text;
    std::transform(lower.begin(), lower.end(), lower.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    const auto word = words.find(lower);
    if (word == words.end()) {
        failUsage(key + ": '" + text + "' is not a boolean (true or false)");
    }
    return word->second;
}

// The reader keeps each number at its width, whatever the setter takes: a wider value would not
// survive the next start, so it is refused here. Text must be something XML can carry.
json parseValue(const std::string& key, cfg::Width width, const std::string& text) {
    constexpr unsigned long long kUInt64Max = std::numeric_limits<unsigned long long>::max();
    if (width == cfg::Width::Text) {
        return xmlText(key + ": the value", text);
    }
    if (width == cfg::Width::UInt64) {
        if (const auto value = parseUnsigned(text, kUInt64Max)) {
            return *value;
        }
        failUsage(key + ": '" + text + "' is not a whole number from 0 to " +
                  std::to_string(kUInt64Max) + " (an unsigned 64-bit number)");
    }
    if (const auto value = parseInteger(text, format::kInt32Min, format::kInt32Max)) {
        return *value;
    }
    failUsage(key + ": '" + text + "' is not a whole number from " +
              std::to_string(format::kInt32Min) + " to " + std::to_string(format::kInt32Max) +
              " (the configuration is read back as a 32-bit number)");
}

// ---- the keys without a family: the preferences, and the facts that start-up finds

struct Scalar {
    std::string name;
    std::function<json(C&)> get;
    std::function<void(C&, const json&)> set = {}; // none: a fact, which cannot be set
    cfg::Width width = cfg::Width::Text;
};

template <typename Value> std::function<json(C&)> getter(Value (C::*get)()) {
    return [get](C& config) { return toJson((config.*get)()); };
}

template <typename Value, typename Argument>
Scalar preference(Value (C::*get)(), void (C::*set)(Argument)) {
    return {{}, getter(get), [set](C& config, const json& value) {
                (config.*set)(fromJson<std::decay_t<Argument>>(value));
            }};
}

const std::vector<Scalar>& scalars() {
    static const std::vector<Scalar> table = [] {
        std::vector<Scalar> list{{"Version", getter(&C::version)},
                                 {"NewInstall", getter(&C::newInstall)},
                                 {"NewUpdate", getter(&C::newUpdate)}};
        // The library's accessors of each preference, by the element that keeps it in the file.
        const std::map<std::string, Scalar> accessors{
            {cfg::kPopupTimeADAPP, preference(&C::getPopupTimeADAPP, &C::setPopupTimeADAPP)},
            {cfg::kSameTimeDownloadNumber,
             preference(&C::getSameTimeDownloadNumber, &C::setSameTimeDownloadNumber)},
            {cfg::kDownloadMaxSpeed, preference(&C::getDownloadMaxSpeed, &C::setDownloadMaxSpeed)},
            {cfg::kLastSkin, preference(&C::getLastSkin, &C::setLastSkin)},
            {cfg::kLastLanguage, preference(&C::getLastLanguage, &C::setLastLanguage)},
            {cfg::kRestoreCore, preference(&C::getRestoreCore, &C::setRestoreCore)}};
        for (const cfg::Preference& preference : cfg::kPreferences) {
            list.push_back(accessors.at(preference.element));
            list.back().name = preference.element;
            list.back().width = preference.width;
        }
        return list;
    }();
    return table;
}

std::vector<std::string> scalarNames(bool settable) {
    std::vector<std::string> names;
    for (const Scalar& scalar : scalars()) {
        if (bool(scalar.set) == settable) {
            names.push_back(scalar.name);
        }
    }
    return names;
}

// ---- the maps, whose keys are FAMILY/NAME

// The application answers for the known names even when they were never stored; a map that
// cannot be traversed holds nothing else.
struct Family {
    const char* name;
    std::function<void(C&, Entries&)> traverse;
    std::function<void(C&, const NString&, const json&)> set;
    std::vector<std::string> known = {};
    std::function<json(C&, const NString&)> get = {}; // of a known name
    bool paths = false;                               // holds paths; the others hold flags
};

// A map as the library's traversal and setter give it; a map of text holds paths.
template <typename Value>
Family map(const char* name,
           void (C::*traverse)(const std::function<void(const NString&, Value)>&) const,
           void (C::*set)(const NString&, Value)) {
    return {name,
            [traverse](C& config, Entries& entries) {
                (config.*traverse)([&entries](const NString& entry, Value value) {
                    entries.emplace_back(entry.toStdString(), toJson(value));
                });
            },
            [set](C& config, const NString& entry, const json& value) {
                (config.*set)(entry, fromJson<std::decay_t<Value>>(value));
            },
            {},
            {},
            std::is_same_v<std::decay_t<Value>, NString>};
}

const std::vector<Family>& families() {
    static const std::vector<Family> table = [] {
        Family status = map(cfg::kStatus, &C::settingStatusTraverse, &C::setSettingStatus);
        for (const cfg::KnownSetting& setting : cfg::kKnownSettings) {
            status.known.emplace_back(setting.name);
        }
        status.get = [](C& c, const NString& name) -> json { return c.getSettingStatus(name); };
        // The library offers the ringtone's flag alone, with its own default.
        const Family autoImport{
            cfg::kAutoImport,
            nullptr,
            [](C& c, const NString&, const json& on) { c.setAutoImportRingtone(on.get<bool>()); },
            {cfg::kRingtone},
            [](C& c, const NString&) -> json { return c.getAutoImportRingtone(); }};
        return std::vector<Family>{
            status, map(cfg::kTools, &C::toolsHotTraverse, &C::setToolsHot), autoImport,
            map(cfg::kDirectory, &C::configDirectoryTraverse, &C::setConfigDirectory)};
    }();
    return table;
}

bool holds(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The maps' keys for help texts: "Status/NAME", "AutoImport/Ringtone".
std::string familyKey(const Family& family) {
    return family.name + ("/" + (family.traverse ? "NAME" : joined(family.known, "or")));
}

std::string keysHelp() {
    std::vector<std::string> keys;
    for (const Family& family : families()) {
        keys.push_back(familyKey(family));
    }
    return "a preference (" + joined(scalarNames(true), "or") + "), a fact of start-up (" +
           joined(scalarNames(false), "or") + "), or " + joined(keys, "or");
}

// What the map holds, as its traversal gives it.
Entries stored(C& config, const Family& family) {
    Entries entries;
    if (family.traverse) {
        family.traverse(config, entries);
    }
    return entries;
}

// ---- the keys

// What a key names: a scalar, or a name in a map. A key is checked before the configuration
// starts, so that a refused command starts nothing.
struct Key {
    std::string text;
    const Scalar* scalar = nullptr;
    const Family* family = nullptr;
    std::string name = {};
};

Key parseKey(const std::string& text) {
    Key key{text};
    const auto slash = text.find('/');
    if (slash == std::string::npos) {
        std::vector<std::string> names;
        for (const Scalar& scalar : scalars()) {
            key.scalar = scalar.name == text ? &scalar : key.scalar;
            names.push_back(scalar.name);
        }
        if (key.scalar == nullptr) {
            // A known name of a family, typed without its family, is suggested with it.
            std::string meant = closestMatch(text, names);
            for (const Family& family : families()) {
                if (const std::string known = closestMatch(text, family.known);
                    meant.empty() && !known.empty()) {
                    meant = family.name + std::string("/") + known;
                }
            }
            failUsage("unknown key '" + text + "': a key is " + keysHelp() + didYouMean(meant));
        }
        return key;
    }
    const std::string family = text.substr(0, slash);
    std::vector<std::string> names;
    for (const Family& candidate : families()) {
        key.family = family == candidate.name ? &candidate : key.family;
        names.emplace_back(candidate.name);
    }
    key.name = text.substr(slash + 1);
    if (key.family == nullptr) {
        failUsage("unknown key '" + text + "': no family '" + family + "' (" + joined(names, "or") +
                  ")" + didYouMean(family, names));
    }
    if (key.name.empty()) {
        failUsage("unknown key '" + text + "': a name must follow '" + family + "/'");
    }
    xmlText("the name in '" + text + "'", key.name);
    if (!key.family->traverse && !holds(key.family->known, key.name)) {
        failUsage("unknown key '" + text + "': " + family + " holds only " +
                  joined(key.family->known, "or"));
    }
    return key;
}

// What the configuration holds for the key; nothing for a name that its map does not hold.
std::optional<json> current(C& config, const Key& key) {
    if (key.scalar != nullptr) {
        return key.scalar->get(config);
    }
    if (holds(key.family->known, key.name)) {
        return key.family->get(config, NString(key.name));
    }
    for (const auto& [name, value] : stored(config, *key.family)) {
        if (name == key.name) {
            return value;
        }
    }
    return std::nullopt;
}

void get(const ConfigOptions& options, const std::string& text) {
    const Key key = parseKey(text);
    ConfigSession session(options, false);
    const std::optional<json> value = current(session.config(), key);
    if (!value) {
        std::vector<std::string> names;
        for (const auto& entry : stored(session.config(), *key.family)) {
            names.push_back(entry.first);
        }
        names.insert(names.end(), key.family->known.begin(), key.family->known.end());
        const std::string closest = closestMatch(key.name, names);
        failNotFound(text + ": not found; the configuration holds no such name" +
                     didYouMean(closest.empty() ? "" : key.family->name + ("/" + closest)));
    }
    printAnswer(options.json, {{"key", text}, {"value", *value}}, plainText(*value));
}

void set(const ConfigOptions& options, const std::string& text, const std::string& valueText) {
    const Key key = parseKey(text);
    if (key.scalar != nullptr && !key.scalar->set) {
        failUsage("'" + text + "' is found at start-up and cannot be set");
    }
    // An empty path names no directory: start-up puts the default back in its place, so it
    // would be "changed" again by every run.
    if (key.family != nullptr && key.family->paths && valueText.empty()) {
        failUsage(text + ": the path is empty");
    }
    const json value = key.scalar != nullptr ? parseValue(text, key.scalar->width, valueText)
                       : key.family->paths   ? parseValue(text, cfg::Width::Text, valueText)
                                             : parseFlag(text, valueText);

    ConfigSession session(options, true);
    const std::optional<json> was = current(session.config(), key);
    if (was == value) {
        std::cout << text << ": already " << plainText(value) << "; nothing changed\n";
        return;
    }
    // Any name is stored, but a new one within a typo of a name that the application knows is
    // taken for that one rather than written beside it.
    if (!was && key.family != nullptr) {
        if (const std::string meant = closestMatch(key.name, key.family->known); !meant.empty()) {
            failUsage("'" + key.name + "' is not a setting that the application knows" +
                      didYouMean(key.family->name + ("/" + meant)));
        }
    }
    if (key.scalar != nullptr) {
        key.scalar->set(session.config(), value);
    } else {
        key.family->set(session.config(), NString(key.name), value);
    }
    session.requireWritten();
    // Said as the library now reads it, which is not always what was given.
    const json now = current(session.config(), key).value_or(value);
    std::cout << text << ": " << plainText(now)
              << (was ? " (was " + plainText(*was) + ")" : " (new)") << '\n';
    if (now != value) {
        reportNote("'" + plainText(value) + "' is stored, and the application reads it as '" +
                   plainText(now) + "'");
    }
    if (!was && !key.family->known.empty()) {
        reportNote("'" + key.name +
                   "' is not a setting that the application knows; it is kept "
                   "beside them");
    }
}

} // namespace

void addSettings(PRuntimeConfig& config, nlohmann::ordered_json& document) {
    // The facts come first in the table, and so before the preferences in the document.
    for (const Scalar& scalar : scalars()) {
        (scalar.set ? document["preferences"][scalar.name] : document[lowerCamel(scalar.name)]) =
            scalar.get(config);
    }
    for (const Family& family : families()) {
        // The known names first, with what the application answers for them, then the others.
        json& values = document[lowerCamel(family.name)] = json::object();
        for (const std::string& name : family.known) {
            values[name] = family.get(config, NString(name));
        }
        for (const auto& [name, value] : stored(config, family)) {
            if (!holds(family.known, name)) {
                values[name] = value;
            }
        }
    }
}

std::string plainText(const nlohmann::ordered_json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

void addSettingActions(CLI::App& group, ConfigOptions& options) {
    static std::string key;
    static std::string value;
    CLI::App& getCommand = addConfigCommand(
        group, options, "get",
        "Print one value: " + keysHelp() +
            ". A name that the configuration does not hold is not found; the settings that the "
            "application knows are found with their defaults. With --json: {\"key\": KEY, "
            "\"value\": VALUE}, the value a string, a number or a boolean.",
        std::string("pallix config get ") + cfg::kStatus + "/" + cfg::kSettingITunesAutorun,
        "0 printed; 1 the configuration holds no such name", true);
    getCommand.add_option("key", key, "What to print")->required();
    getCommand.callback([&options] { get(options, key); });

    std::vector<std::string> keys;
    for (const Family& family : families()) {
        keys.push_back(familyKey(family) + (family.paths ? " (a path)" : " (true or false)"));
    }
    std::map<cfg::Width, std::vector<std::string>> widths;
    for (const cfg::Preference& preference : cfg::kPreferences) {
        widths[preference.width].emplace_back(preference.element);
    }
    CLI::App& setCommand = addConfigCommand(
        group, options, "set",
        "Change a preference, or " + joined(keys, "or") +
            ". Numbers are refused beyond what the configuration keeps when it is read again: "
            "32 bits for " +
            joined(widths[cfg::Width::Int32], "and") + ", unsigned 64 bits for " +
            joined(widths[cfg::Width::UInt64], "and") + ". Prints what changed.",
        std::string("pallix config set ") + cfg::kStatus + "/" + cfg::kSettingKeepFirmwareCache +
            " false",
        "0 changed, or already so (nothing written); 1 the change could not be written");
    setCommand.add_option("key", key, "What to change")->required();
    setCommand.add_option("value", value, "The new value")->required();
    setCommand.callback([&options] { set(options, key, value); });
}

} // namespace pallix::tool::config
