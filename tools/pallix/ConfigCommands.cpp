// "pallix config": the application's configuration, started for every command as the
// application starts it (ConfigSession.h) and then read or changed through PRuntimeConfig only;
// the library's own setters save. The values are in ConfigSettings, the lists in ConfigLists.

#include "Commands.h"
#include "ConfigLists.h"
#include "ConfigSession.h"
#include "ConfigSettings.h"
#include "Failure.h"
#include "Suggestion.h"
#include "ToolOutput.h"

#include "PRuntimeConfig.h"

#include <algorithm>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace pallix::tool {

namespace {

using nlohmann::ordered_json;
using namespace pallix::tool::config;

struct Arguments {
    std::string key;
    std::string value;
    std::string list;
    std::vector<std::string> values;
    bool root = false;
};

const char* const kStartProblems =
    "2 a usage error, a directory that cannot be used, or a configuration file that cannot be "
    "read as it is (see --force).";

// ---- show and dirs ---------------------------------------------------------------------------

void printRow(const std::string& name, const std::string& value) {
    std::string padded = "  " + escapeField(name);
    padded.resize(std::max<std::size_t>(padded.size() + 1, 28), ' ');
    std::cout << padded << escapeField(value) << '\n';
}

// The status flags: the known settings first (with their defaults when never stored), then
// every other name that the configuration holds.
std::vector<std::pair<std::string, bool>> statusFlags(PRuntimeConfig& config) {
    std::vector<std::pair<std::string, bool>> others;
    config.settingStatusTraverse([&others](const NString& name, bool status) {
        others.emplace_back(name.toStdString(), status);
    });
    std::vector<std::pair<std::string, bool>> flags;
    for (const std::string& name : knownSettings()) {
        flags.emplace_back(name, config.getSettingStatus(NString(name)));
    }
    for (const auto& flag : others) {
        bool known = false;
        for (const std::string& name : knownSettings()) {
            known = known || name == flag.first;
        }
        if (!known) {
            flags.push_back(flag);
        }
    }
    return flags;
}

ordered_json showJson(ConfigSession& session) {
    PRuntimeConfig& config = session.config();
    ordered_json document{{"configDirectory", session.directory()},
                          {"configFile", session.currentFile()},
                          {"version", config.version().toStdString()},
                          {"newInstall", config.newInstall()},
                          {"newUpdate", config.newUpdate()}};
    ordered_json& preferenceValues = document["preferences"] = ordered_json::object();
    for (const auto& [name, value] : preferences(config)) {
        preferenceValues[name] = value;
    }
    ordered_json& status = document["status"] = ordered_json::object();
    for (const auto& [name, value] : statusFlags(config)) {
        status[name] = value;
    }
    ordered_json& tools = document["tools"] = ordered_json::object();
    config.toolsHotTraverse([&tools](const NString& name, bool hot) { tools[name.data()] = hot; });
    document["autoImport"] = {{"Ringtone", config.getAutoImportRingtone()}};
    ordered_json& directory = document["directory"] = ordered_json::object();
    config.configDirectoryTraverse([&directory](const NString& name, const NString& path) {
        directory[name.data()] = path.toStdString();
    });
    for (std::size_t i = 0; i < listNames().size(); ++i) {
        const List list = static_cast<List>(i);
        std::string field = nameOf(list);
        field[0] = static_cast<char>(field[0] - 'A' + 'a');
        ordered_json& values = document[field] = ordered_json::array();
        for (const Entry& entry : entries(config, list)) {
            values.push_back(jsonOf(list, entry));
        }
    }
    return document;
}

// The text form prints the same document: the maps as rows, the lists as tab-separated fields.
void show(ConfigSession& session, bool json) {
    const ordered_json document = showJson(session);
    if (json) {
        printJson(document);
        return;
    }
    const bool fresh = document["newInstall"].get<bool>();
    std::cout << "Configuration directory: " << plainText(document["configDirectory"]) << '\n'
              << "Configuration file:      " << plainText(document["configFile"])
              << (fresh ? " (not written yet)" : "") << '\n'
              << "Version:                 " << plainText(document["version"]) << '\n'
              << "New installation:        " << (fresh ? "yes" : "no") << '\n'
              << "New update:              " << (document["newUpdate"].get<bool>() ? "yes" : "no")
              << '\n';
    const auto rows = [&document](const char* title, const char* field, bool counted) {
        const ordered_json& values = document[field];
        std::cout << '\n' << title;
        if (counted) {
            std::cout << " (" << values.size() << ")";
        }
        std::cout << '\n';
        for (const auto& [name, value] : values.items()) {
            const bool tools = std::string(field) == "tools";
            printRow(name, tools ? (value.get<bool>() ? "hot" : "not hot") : plainText(value));
        }
    };
    rows("Preferences", "preferences", false);
    rows("Status", "status", false);
    rows("Tools", "tools", true);
    rows("AutoImport", "autoImport", false);
    rows("Directory", "directory", false);
    for (std::size_t i = 0; i < listNames().size(); ++i) {
        const List list = static_cast<List>(i);
        const std::vector<Entry> found = entries(session.config(), list);
        std::cout << '\n' << nameOf(list) << " (" << found.size() << ")\n";
        for (const Entry& entry : found) {
            std::cout << "  ";
            printFields(fieldsOf(list, entry));
        }
    }
}

// The named directories, then the working directories, which the library creates (but the
// version file) as it names them: asking prepares the data directory as the application would.
void printDirectories(PRuntimeConfig& config, bool json) {
    ordered_json named = ordered_json::object();
    config.configDirectoryTraverse([&named](const NString& name, const NString& path) {
        named[name.data()] = path.toStdString();
    });
    const std::vector<std::pair<const char*, NString (PRuntimeConfig::*)()>> accessors{
        {"localRoot", &PRuntimeConfig::localRoot},
        {"localFirmwareSave", &PRuntimeConfig::localFirmwareSave},
        {"localFirmwareArchiver", &PRuntimeConfig::localFirmwareArchiver},
        {"localDownload", &PRuntimeConfig::localDownload},
        {"localRestoreVersion", &PRuntimeConfig::localRestoreVersion},
        {"localRingtoneSave", &PRuntimeConfig::localRingtoneSave},
        {"localRingtoneMake", &PRuntimeConfig::localRingtoneMake},
        {"localPluginsSave", &PRuntimeConfig::localPluginsSave},
        {"localScreenSave", &PRuntimeConfig::localScreenSave},
        {"localPicturePreview", &PRuntimeConfig::localPicturePreview},
        {"localNormal", &PRuntimeConfig::localNormal},
        {"localNormalBottomBackup", &PRuntimeConfig::localNormalBottomBackup}};
    ordered_json working = ordered_json::object();
    for (const auto& [name, accessor] : accessors) {
        working[name] = (config.*accessor)().toStdString();
    }
    if (json) {
        printJson(ordered_json{{"directory", named}, {"working", working}});
        return;
    }
    for (const auto* section : {&named, &working}) {
        for (const auto& [name, path] : section->items()) {
            printRow(name, path.get<std::string>());
        }
    }
}

// ---- get and set -----------------------------------------------------------------------------

void get(ConfigSession& session, const std::string& key, bool json) {
    const Setting setting = resolveSetting(&session.config(), key);
    if (!setting.current) {
        const std::string name = key.substr(key.find('/') + 1);
        failNotFound(key + ": not found; the configuration holds no such name" +
                     didYouMean(name, setting.neighbours));
    }
    if (json) {
        printJson(ordered_json{{"key", key}, {"value", *setting.current}});
    } else {
        std::cout << plainText(*setting.current) << '\n';
    }
}

void set(const ConfigOptions& options, const std::string& key, const std::string& text) {
    // The key and the value are checked before anything starts: a refused command changes
    // nothing, not even by the start-up's import.
    const Setting checked = resolveSetting(nullptr, key);
    if (!checked.parse) {
        failUsage("'" + key + "' is found at start-up and cannot be set");
    }
    const nlohmann::json value = checked.parse(text);

    ConfigSession session(options, true);
    const Setting setting = resolveSetting(&session.config(), key);
    if (setting.current && *setting.current == value) {
        std::cout << key << ": already " << plainText(value) << "; nothing changed\n";
        return;
    }
    setting.store(value);
    session.requireWritten();
    std::cout << key << ": " << plainText(value)
              << (setting.current ? " (was " + plainText(*setting.current) + ")" : " (new)")
              << '\n';
    const std::string family = "Status/";
    const std::string name = key.substr(family.size());
    if (!setting.current && key.rfind(family, 0) == 0) {
        reportNote("'" + name + "' is not a setting that the application knows" +
                   didYouMean(name, knownSettings()));
    }
}

} // namespace

void registerConfigCommands(CLI::App& app) {
    static ConfigOptions options;
    static Arguments arguments;

    CLI::App* group = app.add_subcommand(
        "config", "Show and change the application's configuration. Every command starts the "
                  "configuration as the application does, which imports a legacy Config.xml "
                  "once; a change is saved at once, and a command that changes nothing writes "
                  "nothing.");
    group->require_subcommand(1);
    addConfigOptions(*group, options);
    finishHelp(*group,
               "pallix config --config-dir ~/.config/TolVane show\n"
               "pallix config set DownloadMaxSpeed 1048576",
               "0 success; 1 not found, or a change that could not be written; " +
                   std::string(kStartProblems));

    const auto action = [group](const char* name, const std::string& description,
                                const std::string& example, const std::string& statuses,
                                bool json) {
        CLI::App* command = group->add_subcommand(name, description);
        addConfigOptions(*command, options);
        if (json) {
            addJsonFlag(*command, options.json);
        }
        finishHelp(*command, example, statuses + "; " + kStartProblems);
        return command;
    };

    const std::string listHelp = "CustomBackup, FileFavorites, VirtualLocation or "
                                 "LocationFavorites";

    action("show",
           "Print the whole configuration. With --json: an object with configDirectory, "
           "configFile, version, newInstall, newUpdate, preferences (by name), status, tools, "
           "autoImport and directory (objects by name), and customBackup, fileFavorites, "
           "virtualLocation and locationFavorites (arrays of the entries that 'list --json' "
           "prints).",
           "pallix config show --json", "0 printed", true)
        ->callback([] {
            ConfigSession session(options, false);
            show(session, options.json);
        });

    CLI::App* getCommand = action(
        "get",
        "Print one value: a preference (LastSkin, PopupTimeADAPP, SameTimeDownloadNumber, "
        "DownloadMaxSpeed, LastLanguage, RestoreCore), a fact of start-up (Version, NewInstall, "
        "NewUpdate), or Status/NAME, Tools/NAME, AutoImport/Ringtone, Directory/NAME. A name "
        "that the configuration does not hold is not found; the settings that the application "
        "knows are found with their defaults. With --json: {\"key\": KEY, \"value\": VALUE}, "
        "the value a string, a number or a boolean.",
        "pallix config get Status/ITunesAutorun",
        "0 printed; 1 the configuration holds no such name", true);
    getCommand->add_option("key", arguments.key, "What to print")->required();
    getCommand->callback([] {
        resolveSetting(nullptr, arguments.key);
        ConfigSession session(options, false);
        get(session, arguments.key, options.json);
    });

    CLI::App* setCommand = action(
        "set",
        "Change a preference, or Status/NAME, Tools/NAME, AutoImport/Ringtone (true or false), "
        "Directory/NAME (a path). Numbers are refused beyond what the configuration keeps when "
        "it is read again: 32 bits for SameTimeDownloadNumber, DownloadMaxSpeed, LastLanguage "
        "and RestoreCore, unsigned 64 bits for PopupTimeADAPP. Prints what changed.",
        "pallix config set Status/KeepFirmwareCache false",
        "0 changed, or already so (nothing written); 1 the change could not be written", false);
    setCommand->add_option("key", arguments.key, "What to change")->required();
    setCommand->add_option("value", arguments.value, "The new value")->required();
    setCommand->callback([] { set(options, arguments.key, arguments.value); });

    CLI::App* listCommand =
        action("list",
               "Print a list, one entry per line, fields separated by a tab: PATH; PATH and "
               "'root' or '-'; X, Y and NAME. With --json: {\"list\": NAME, \"entries\": [...]}, "
               "each entry {\"path\"}, {\"path\", \"root\"} or {\"x\", \"y\", \"location\"}.",
               "pallix config list VirtualLocation --json", "0 printed", true);
    listCommand->add_option("list", arguments.list, listHelp)->required();
    listCommand->callback([] {
        const List list = parseList(arguments.list);
        ConfigSession session(options, false);
        const std::vector<Entry> found = entries(session.config(), list);
        if (options.json) {
            ordered_json values = ordered_json::array();
            for (const Entry& entry : found) {
                values.push_back(jsonOf(list, entry));
            }
            printJson(ordered_json{{"list", nameOf(list)}, {"entries", values}});
            return;
        }
        for (const Entry& entry : found) {
            printFields(fieldsOf(list, entry));
        }
    });

    CLI::App* addCommand = action(
        "add",
        "Add to a list: CustomBackup PATH, FileFavorites PATH [--root], VirtualLocation X Y "
        "NAME, LocationFavorites X Y NAME. A place that is there already (same X and Y) is "
        "renamed and moved to the end, as the application does; a path that is there already "
        "is left as it is, root flag included. Prints what happened.",
        "pallix config add VirtualLocation 31.2304 121.4737 Shanghai",
        "0 added, renamed, moved, or already there (nothing written); 1 a file favourite there "
        "with the other root flag (nothing written), or a change that could not be written",
        false);
    addCommand->add_option("list", arguments.list, listHelp)->required();
    addCommand->add_option("values", arguments.values, "The entry")->required();
    addCommand->add_flag("--root", arguments.root, "Mark a file favourite as a root");
    addCommand->callback([] {
        const List list = parseList(arguments.list);
        const Entry entry = parseEntry(list, arguments.values, arguments.root, true);
        ConfigSession session(options, true);
        addEntry(session, list, entry);
    });

    CLI::App* removeCommand = action(
        "remove",
        "Remove from a list: CustomBackup PATH, FileFavorites PATH [--root] (the root flag must "
        "match), VirtualLocation X Y, LocationFavorites X Y (exactly as 'list' prints them).",
        "pallix config remove CustomBackup /Volumes/Backups",
        "0 removed; 1 not there (nothing written), or a change that could not be written", false);
    removeCommand->add_option("list", arguments.list, listHelp)->required();
    removeCommand->add_option("values", arguments.values, "The entry")->required();
    removeCommand->add_flag("--root", arguments.root, "The file favourite is marked as a root");
    removeCommand->callback([] {
        const List list = parseList(arguments.list);
        const Entry entry = parseEntry(list, arguments.values, arguments.root, false);
        ConfigSession session(options, true);
        removeEntry(session, list, entry);
    });

    CLI::App* clearCommand = action(
        "clear", "Empty a place list: VirtualLocation or LocationFavorites.",
        "pallix config clear VirtualLocation",
        "0 cleared, or already empty (nothing written); 1 a change that could not be written",
        false);
    clearCommand->add_option("list", arguments.list, "VirtualLocation or LocationFavorites")
        ->required();
    clearCommand->callback([] {
        const List list = parseList(arguments.list);
        if (!holdsPlaces(list)) {
            failUsage(nameOf(list) + " cannot be cleared; remove its entries one by one");
        }
        ConfigSession session(options, true);
        clearList(session, list);
    });

    action("dirs",
           "Print the named directories and the working directories under the data root, "
           "creating the working directories as the application does. With --json: "
           "{\"directory\": {NAME: PATH}, \"working\": {\"localRoot\": PATH, ...}}.",
           "pallix config dirs --json", "0 printed", true)
        ->callback([] {
            ConfigSession session(options, false);
            printDirectories(session.config(), options.json);
        });
}

} // namespace pallix::tool
