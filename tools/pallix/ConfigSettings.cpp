#include "ConfigSettings.h"

#include "ConfigurationFormat.h"
#include "Failure.h"
#include "Suggestion.h"
#include "Values.h"

#include "PRuntimeConfig.h"

#include <cctype>
#include <cstdint>
#include <limits>

namespace pallix::tool::config {

namespace {

using nlohmann::json;

using Parser = std::function<json(const std::string&)>;

// The configuration file's reader keeps the two download limits, the language and the restore
// engine as 32-bit numbers, whatever the setters take: a wider value would not survive the next
// start, so it is refused here.
Parser int32Parser(const std::string& name) {
    return [name](const std::string& text) -> json {
        const auto value = parseInteger(text, INT32_MIN, INT32_MAX);
        if (!value) {
            failUsage(name + ": '" + text + "' is not a whole number from " +
                      std::to_string(INT32_MIN) + " to " + std::to_string(INT32_MAX) +
                      " (the configuration is read back as a 32-bit number)");
        }
        return *value;
    };
}

Parser uint64Parser(const std::string& name) {
    return [name](const std::string& text) -> json {
        const auto value = parseUnsigned(text, std::numeric_limits<unsigned long long>::max());
        if (!value) {
            failUsage(name + ": '" + text + "' is not a whole number from 0 to " +
                      std::to_string(std::numeric_limits<unsigned long long>::max()) +
                      " (an unsigned 64-bit number)");
        }
        return *value;
    };
}

Parser textParser(const std::string& name) {
    return [name](const std::string& text) -> json {
        const std::string problem = xmlTextProblem(text);
        if (!problem.empty()) {
            failUsage(name + ": the value has " + problem);
        }
        return text;
    };
}

Parser booleanParser(const std::string& name) {
    return [name](const std::string& text) -> json {
        std::string lower;
        for (char c : text) {
            lower += static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
        }
        if (lower == "true" || lower == "yes" || lower == "on" || lower == "1") {
            return true;
        }
        if (lower == "false" || lower == "no" || lower == "off" || lower == "0") {
            return false;
        }
        failUsage(name + ": '" + text + "' is not a boolean (true or false)");
    };
}

struct Preference {
    const char* name;
    std::function<json(PRuntimeConfig&)> get;
    Parser parse;                                          // empty: found at start-up
    std::function<void(PRuntimeConfig&, const json&)> set; // empty: found at start-up
};

const std::vector<Preference>& preferenceTable() {
    static const std::vector<Preference> table{
        {"Version", [](PRuntimeConfig& c) -> json { return c.version().toStdString(); }, {}, {}},
        {"NewInstall", [](PRuntimeConfig& c) -> json { return c.newInstall(); }, {}, {}},
        {"NewUpdate", [](PRuntimeConfig& c) -> json { return c.newUpdate(); }, {}, {}},
        {"LastSkin", [](PRuntimeConfig& c) -> json { return c.getLastSkin().toStdString(); },
         textParser("LastSkin"),
         [](PRuntimeConfig& c, const json& v) { c.setLastSkin(NString(v.get<std::string>())); }},
        {"PopupTimeADAPP", [](PRuntimeConfig& c) -> json { return c.getPopupTimeADAPP(); },
         uint64Parser("PopupTimeADAPP"),
         [](PRuntimeConfig& c, const json& v) {
             c.setPopupTimeADAPP(v.get<unsigned long long>());
         }},
        {"SameTimeDownloadNumber",
         [](PRuntimeConfig& c) -> json { return c.getSameTimeDownloadNumber(); },
         int32Parser("SameTimeDownloadNumber"),
         [](PRuntimeConfig& c, const json& v) { c.setSameTimeDownloadNumber(v.get<int>()); }},
        {"DownloadMaxSpeed", [](PRuntimeConfig& c) -> json { return c.getDownloadMaxSpeed(); },
         int32Parser("DownloadMaxSpeed"),
         [](PRuntimeConfig& c, const json& v) { c.setDownloadMaxSpeed(v.get<long long>()); }},
        {"LastLanguage",
         [](PRuntimeConfig& c) -> json { return static_cast<int>(c.getLastLanguage()); },
         int32Parser("LastLanguage"),
         [](PRuntimeConfig& c, const json& v) {
             c.setLastLanguage(EPALLIX_RUNTIME_LANGUAGE(v.get<int>()));
         }},
        {"RestoreCore",
         [](PRuntimeConfig& c) -> json { return static_cast<int>(c.getRestoreCore()); },
         int32Parser("RestoreCore"),
         [](PRuntimeConfig& c, const json& v) {
             c.setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE(v.get<int>()));
         }},
    };
    return table;
}

std::vector<std::string> preferenceNames() {
    std::vector<std::string> names;
    for (const Preference& preference : preferenceTable()) {
        names.emplace_back(preference.name);
    }
    return names;
}

const std::vector<std::string>& families() {
    static const std::vector<std::string> names{"Status", "Tools", "AutoImport", "Directory"};
    return names;
}

Setting preferenceSetting(PRuntimeConfig* config, const std::string& key) {
    for (const Preference& preference : preferenceTable()) {
        if (key != preference.name) {
            continue;
        }
        Setting setting{key, std::nullopt, preference.parse, {}, {}};
        if (config != nullptr) {
            setting.current = preference.get(*config);
            if (preference.set) {
                setting.store = [config, set = preference.set](const json& value) {
                    set(*config, value);
                };
            }
        }
        return setting;
    }
    failUsage("unknown key '" + key +
              "' (a preference, Version, NewInstall, NewUpdate, or Status/NAME, Tools/NAME, "
              "AutoImport/Ringtone, Directory/NAME)" +
              didYouMean(key, preferenceNames()));
}

// The names and values of a family, as its traversal gives them.
using Entries = std::vector<std::pair<std::string, json>>;

Entries
flagEntries(const std::function<void(const std::function<void(const NString&, bool)>&)>& traverse) {
    Entries entries;
    traverse([&entries](const NString& name, bool value) {
        entries.emplace_back(name.toStdString(), value);
    });
    return entries;
}

Entries familyEntries(PRuntimeConfig& config, const std::string& family) {
    if (family == "Status") {
        return flagEntries([&config](const auto& visit) { config.settingStatusTraverse(visit); });
    }
    if (family == "Tools") {
        return flagEntries([&config](const auto& visit) { config.toolsHotTraverse(visit); });
    }
    Entries entries;
    config.configDirectoryTraverse([&entries](const NString& name, const NString& path) {
        entries.emplace_back(name.toStdString(), path.toStdString());
    });
    return entries;
}

Setting familySetting(PRuntimeConfig* config, const std::string& key, const std::string& family,
                      const std::string& name) {
    const std::string problem = xmlTextProblem(name);
    if (!problem.empty()) {
        failUsage("the name in '" + key + "' has " + problem);
    }
    if (family == "AutoImport" && name != "Ringtone") {
        failUsage("unknown key '" + key + "': AutoImport holds only Ringtone");
    }
    Setting setting{
        key, std::nullopt, family == "Directory" ? textParser(key) : booleanParser(key), {}, {}};
    if (config == nullptr) {
        return setting;
    }
    PRuntimeConfig& c = *config;
    if (family == "AutoImport") {
        // The library answers a documented default for Ringtone, stored or not.
        setting.current = c.getAutoImportRingtone();
        setting.store = [&c](const json& value) { c.setAutoImportRingtone(value.get<bool>()); };
        return setting;
    }
    for (const auto& [stored, value] : familyEntries(c, family)) {
        setting.neighbours.push_back(stored);
        if (stored == name) {
            setting.current = value;
        }
    }
    if (family == "Status") {
        // A known setting answers with its default even when it was never stored.
        for (const std::string& known : knownSettings()) {
            setting.neighbours.push_back(known);
            if (known == name && !setting.current) {
                setting.current = c.getSettingStatus(NString(name));
            }
        }
        setting.store = [&c, name](const json& value) {
            c.setSettingStatus(NString(name), value.get<bool>());
        };
    } else if (family == "Tools") {
        setting.store = [&c, name](const json& value) {
            c.setToolsHot(NString(name), value.get<bool>());
        };
    } else {
        setting.store = [&c, name](const json& value) {
            c.setConfigDirectory(NString(name), NString(value.get<std::string>()));
        };
    }
    return setting;
}

} // namespace

const std::vector<std::string>& knownSettings() {
    // getSettingStatus() answers these by name even before one is stored.
    static const std::vector<std::string> names = [] {
        std::vector<std::string> list;
        for (const auto& setting : format::configuration::kKnownSettings) {
            list.emplace_back(setting.name);
        }
        return list;
    }();
    return names;
}

Setting resolveSetting(PRuntimeConfig* config, const std::string& key) {
    const auto slash = key.find('/');
    if (slash == std::string::npos) {
        return preferenceSetting(config, key);
    }
    const std::string family = key.substr(0, slash);
    const std::string name = key.substr(slash + 1);
    bool known = false;
    for (const std::string& candidate : families()) {
        known = known || candidate == family;
    }
    if (!known) {
        failUsage("unknown key '" + key + "': no family '" + family +
                  "' (Status, Tools, AutoImport or Directory)" + didYouMean(family, families()));
    }
    if (name.empty()) {
        failUsage("unknown key '" + key + "': a name must follow '" + family + "/'");
    }
    return familySetting(config, key, family, name);
}

std::string plainText(const nlohmann::json& value) {
    return value.is_string() ? value.get<std::string>() : value.dump();
}

std::vector<std::pair<std::string, nlohmann::json>> preferences(PRuntimeConfig& config) {
    std::vector<std::pair<std::string, nlohmann::json>> values;
    for (const Preference& preference : preferenceTable()) {
        if (preference.set) {
            values.emplace_back(preference.name, preference.get(config));
        }
    }
    return values;
}

} // namespace pallix::tool::config
