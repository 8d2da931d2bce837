// "pallix config": the application's configuration, started for every command as the
// application starts it (ConfigSession.h) and then read or changed through PRuntimeConfig only;
// the library's own setters save. The values and their actions are in ConfigSettings, the lists
// and theirs in ConfigLists; here are the group and the two views of the whole.

#include "Commands.h"
#include "ConfigLists.h"
#include "ConfigSession.h"
#include "ConfigSettings.h"
#include "ConfigurationFormat.h"
#include "FileNames.h"
#include "ToolOutput.h"

#include "PRuntimeConfig.h"

#include <algorithm>
#include <cctype>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace pallix::tool {

namespace {

namespace cfg = format::configuration;
using nlohmann::ordered_json;

void printRow(const std::string& name, const std::string& value) {
    std::string padded = "  " + escapeField(name);
    padded.resize(std::max<std::size_t>(padded.size() + 1, 28), ' ');
    std::cout << padded << escapeField(value) << '\n';
}

// The text form prints the same document as --json: the maps as rows, the lists as
// tab-separated fields, each under its title.
void show(ConfigSession& session, bool json) {
    ordered_json document{{"configDirectory", session.directory()},
                          {"configFile", session.currentFile()}};
    config::addSettings(session.config(), document);
    config::addLists(session.config(), document);
    if (json) {
        printJson(document);
        return;
    }
    const bool fresh = document["newInstall"].get<bool>();
    std::cout << "Configuration directory: " << config::plainText(document["configDirectory"])
              << "\nConfiguration file:      " << config::plainText(document["configFile"])
              << (fresh ? " (not written yet)" : "")
              << "\nVersion:                 " << config::plainText(document["version"])
              << "\nNew installation:        " << (fresh ? "yes" : "no")
              << "\nNew update:              " << (document["newUpdate"].get<bool>() ? "yes" : "no")
              << '\n';
    const std::string tools = lowerCamel(cfg::kTools);
    for (const auto& [field, values] : document.items()) {
        if (!values.is_structured()) {
            continue;
        }
        std::string title = field;
        title[0] = static_cast<char>(std::toupper(static_cast<unsigned char>(title[0])));
        std::cout << '\n' << title;
        if (values.is_array() || field == tools) {
            std::cout << " (" << values.size() << ")";
        }
        std::cout << '\n';
        for (const auto& [name, value] : values.items()) {
            if (values.is_array()) {
                std::cout << "  ";
                printFields(config::fieldsOf(value));
            } else {
                printRow(name, field != tools      ? config::plainText(value)
                               : value.get<bool>() ? "hot"
                                                   : "not hot");
            }
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
        printJson(ordered_json{{lowerCamel(cfg::kDirectory), named}, {"working", working}});
        return;
    }
    for (const auto* section : {&named, &working}) {
        for (const auto& [name, path] : section->items()) {
            printRow(name, path.get<std::string>());
        }
    }
}

} // namespace

void registerConfigCommands(CLI::App& app) {
    static ConfigOptions options;
    CLI::App& group = addConfigCommand(
        app, options, "config",
        std::string("Show and change the application's configuration. Every command starts the "
                    "configuration as the application does, which imports a legacy ") +
            format::kLegacyConfigurationFile +
            " once; a change is saved at once, and a command that changes nothing writes "
            "nothing.",
        "pallix config --config-dir " + kOwnConfigDirectory + " show\npallix config set " +
            cfg::kDownloadMaxSpeed + " 1048576",
        "0 success; 1 not found, or a change that could not be written");
    group.require_subcommand(1);

    addConfigCommand(group, options, "show",
                     "Print the whole configuration. With --json: an object with configDirectory, "
                     "configFile, version, newInstall, newUpdate, preferences (by name), status, "
                     "tools, autoImport and directory (objects by name), and customBackup, "
                     "fileFavorites, virtualLocation and locationFavorites (arrays of the entries "
                     "that 'list --json' prints).",
                     "pallix config show --json", "0 printed", true)
        .callback([] {
            ConfigSession session(options, false);
            show(session, options.json);
        });
    config::addSettingActions(group, options);
    config::addListActions(group, options);
    addConfigCommand(group, options, "dirs",
                     "Print the named directories and the working directories under the data "
                     "root, creating the working directories as the application does. With "
                     "--json: {\"directory\": {NAME: PATH}, \"working\": {\"localRoot\": PATH, "
                     "...}}.",
                     "pallix config dirs --json", "0 printed", true)
        .callback([] {
            ConfigSession session(options, false);
            printDirectories(session.config(), options.json);
        });
}

} // namespace pallix::tool
