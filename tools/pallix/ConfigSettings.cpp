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
        const std::string problem = xmlTextProblem(text);
        if (!problem.empty()) {
            failUsage(key + ": the value has " + problem);
        }
        return text;
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

// Collects what a traversal of the library visits.
template <typename Value>
auto traverser(void (C::*traverse)(const std::function<void(const NString&, Value)>&) const) {
    return [traverse](C& config, Entries& entries) {
        (config.*traverse)([&entries](const NString& name, Value value) {
            entries.emplace_back(name.toStdString(), toJson(value));
        });
    };
}

template <typename Value> auto setter(void (C::*set)(const NString&, Value)) {
    return [set](C& config, const NString& name, const json& value) {
        (config.*set)(name, fromJson<std::decay_t<Value>>(value));
    };
}

const std::vector<Family>& families() {
    static const std::vector<Family> table = [] {
        std::vector<std::string> settings;
        for (const cfg::KnownSetting& setting : cfg::kKnownSettings) {
            settings.emplace_back(setting.name);
        }
        return std::vector<Family>{
            {cfg::kStatus, traverser(&C::settingStatusTraverse), setter(&C::setSettingStatus),
             settings, [](C& c, const NString& name) -> json { return c.getSettingStatus(name); }},
            {cfg::kTools, traverser(&C::toolsHotTraverse), setter(&C::setToolsHot)},
            {cfg::kAutoImport,
             nullptr,
             [](C& c, const NString&, const json& on) { c.setAutoImportRingtone(on.get<bool>()); },
             {cfg::kRingtone},
             [](C& c, const NString&) -> json { return c.getAutoImportRingtone(); }},
            {cfg::kDirectory,
             traverser(&C::configDirectoryTraverse),
             setter(&C::setConfigDirectory),
             {},
             {},
             true}};
    }();
    return table;
}

bool holds(const std::vector<std::string>& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

// The maps' keys for help texts: "Status/NAME", "AutoImport/Ringtone".
std::string familyKey(const Family& family) {
    return family.name + ("/" + (family.traverse ? "NAME" : joined(family.known)));
}

std::string keysHelp() {
    std::vector<std::string> keys;
    for (const Family& family : families()) {
        keys.push_back(familyKey(family));
    }
    return "a preference (" + joined(scalarNames(true)) + "), a fact of start-up (" +
           joined(scalarNames(false)) + "), or " + joined(keys);
}

// ---- resolving a key

// What a key names: checked before a configuration starts (so that a refused command starts
// nothing), then resolved against it.
struct Setting {
    std::optional<json> current = {}; // nothing: an entry that the map does not hold
    std::function<json(const std::string&)> parse = {}; // none: a fact of start-up
    std::function<void(const json&)> store = {};
    std::vector<std::string> neighbours = {}; // the names that the key's map holds
    std::string note = {};                    // said when a new entry has been stored
};

Setting scalarSetting(C* config, const std::string& key) {
    const auto scalar = std::find_if(scalars().begin(), scalars().end(),
                                     [&key](const Scalar& s) { return s.name == key; });
    if (scalar == scalars().end()) {
        std::vector<std::string> keys = scalarNames(true);
        const std::vector<std::string> facts = scalarNames(false);
        keys.insert(keys.end(), facts.begin(), facts.end());
        failUsage("unknown key '" + key + "': a key is " + keysHelp() + didYouMean(key, keys));
    }
    Setting setting;
    if (config != nullptr) {
        setting.current = scalar->get(*config);
    }
    if (scalar->set) {
        setting.parse = [key, width = scalar->width](const std::string& text) {
            return parseValue(key, width, text);
        };
        setting.store = [config, set = scalar->set](const json& value) { set(*config, value); };
    }
    return setting;
}

Setting familySetting(C* config, const std::string& key, const std::string& family,
                      const std::string& name) {
    const auto found = std::find_if(families().begin(), families().end(),
                                    [&family](const Family& f) { return family == f.name; });
    if (found == families().end()) {
        std::vector<std::string> names;
        for (const Family& f : families()) {
            names.emplace_back(f.name);
        }
        failUsage("unknown key '" + key + "': no family '" + family + "' (" + joined(names) + ")" +
                  didYouMean(family, names));
    }
    if (name.empty()) {
        failUsage("unknown key '" + key + "': a name must follow '" + family + "/'");
    }
    const std::string problem = xmlTextProblem(name);
    if (!problem.empty()) {
        failUsage("the name in '" + key + "' has " + problem);
    }
    const bool known = holds(found->known, name);
    if (!found->traverse && !known) {
        failUsage("unknown key '" + key + "': " + family + " holds only " + joined(found->known));
    }
    Setting setting;
    setting.parse = [key, paths = found->paths](const std::string& text) {
        return paths ? parseValue(key, cfg::Width::Text, text) : parseFlag(key, text);
    };
    if (config == nullptr) {
        return setting;
    }
    Entries stored;
    if (found->traverse) {
        found->traverse(*config, stored);
    }
    for (const auto& [storedName, value] : stored) {
        setting.neighbours.push_back(storedName);
        setting.current = storedName == name ? value : setting.current;
    }
    setting.neighbours.insert(setting.neighbours.end(), found->known.begin(), found->known.end());
    if (known) {
        setting.current = found->get(*config, NString(name));
    } else if (!setting.current && !found->known.empty()) {
        setting.note = "'" + name + "' is not a setting that the application knows" +
                       didYouMean(name, found->known);
    }
    setting.store = [config, set = found->set, name](const json& value) {
        set(*config, NString(name), value);
    };
    return setting;
}

Setting resolve(C* config, const std::string& key) {
    const auto slash = key.find('/');
    return slash == std::string::npos
               ? scalarSetting(config, key)
               : familySetting(config, key, key.substr(0, slash), key.substr(slash + 1));
}

void get(const ConfigOptions& options, const std::string& key) {
    resolve(nullptr, key);
    ConfigSession session(options, false);
    const Setting setting = resolve(&session.config(), key);
    if (!setting.current) {
        failNotFound(key + ": not found; the configuration holds no such name" +
                     didYouMean(key.substr(key.find('/') + 1), setting.neighbours));
    }
    if (options.json) {
        printJson(json{{"key", key}, {"value", *setting.current}});
    } else {
        std::cout << plainText(*setting.current) << '\n';
    }
}

void set(const ConfigOptions& options, const std::string& key, const std::string& text) {
    const Setting checked = resolve(nullptr, key);
    if (!checked.parse) {
        failUsage("'" + key + "' is found at start-up and cannot be set");
    }
    const json value = checked.parse(text);

    ConfigSession session(options, true);
    const Setting setting = resolve(&session.config(), key);
    if (setting.current == value) {
        std::cout << key << ": already " << plainText(value) << "; nothing changed\n";
        return;
    }
    setting.store(value);
    session.requireWritten();
    std::cout << key << ": " << plainText(value)
              << (setting.current ? " (was " + plainText(*setting.current) + ")" : " (new)")
              << '\n';
    if (!setting.note.empty()) {
        reportNote(setting.note);
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
        Entries stored;
        if (family.traverse) {
            family.traverse(config, stored);
        }
        for (const auto& [name, value] : stored) {
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
        "Change a preference, or " + joined(keys) +
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
