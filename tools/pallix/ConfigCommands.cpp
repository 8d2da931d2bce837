#include "Commands.h"
#include "ToolOutput.h"

#include "NApplication.h"
#include "PRuntime.h"
#include "PRuntimeConfig.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

#include <pugixml.hpp>

#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <string>
#include <sys/stat.h>
#include <utility>
#include <vector>

// "pallix config": the application's configuration in a directory of the caller's choice. Every
// command starts the configuration as the application does (PRuntimeConfig::initialize(), which
// also imports a legacy Config.xml once) and then reads or changes it through PRuntimeConfig
// only; changes are saved by the library's own setters. Nothing else writes the file.

namespace pallix::tool {

namespace {

struct ConfigOptions {
    std::string configDirectory;
    std::string resourcesDirectory;
};

ConfigOptions& options() {
    static ConfigOptions instance;
    return instance;
}

// Exit statuses: 1 for a problem with the configuration directory, 2 for a bad argument.
constexpr int kDirectoryProblem = 1;
constexpr int kBadArgument = 2;

void fail(int status, const std::string& message) {
    reportError(message);
    exitStatus() = status;
}

// The settings the application knows, shown even when the file does not name them.
const std::vector<std::string>& knownSettings() {
    static const std::vector<std::string> names{
        "ApplicationAutorun",   "WindowCloseSelect",     "WindowCloseOperate",
        "WindowAnimation",      "WiFiConnect",           "ITunesAutorun",
        "KeepFirmwareCache",    "RelationIpa",           "VerifySerialNumber",
        "VerifyPaymentConfirm", "VerifyTimecardConfirm", "ToolsProcessSkipService",
        "RESTORE_FACTORY"};
    return names;
}

// The four lists, by the names of their elements in the configuration file.
enum class List { CustomBackup, FileFavorites, VirtualLocation, LocationFavorites };

bool parseList(const std::string& text, List& list) {
    static const std::vector<std::pair<std::string, List>> names{
        {"CustomBackup", List::CustomBackup},
        {"FileFavorites", List::FileFavorites},
        {"VirtualLocation", List::VirtualLocation},
        {"LocationFavorites", List::LocationFavorites}};
    for (const auto& name : names) {
        if (name.first == text) {
            list = name.second;
            return true;
        }
    }
    fail(kBadArgument, "unknown list '" + text +
                           "' (CustomBackup, FileFavorites, VirtualLocation or LocationFavorites)");
    return false;
}

// ---- values ---------------------------------------------------------------------------------

bool parseBool(const std::string& text, bool& value) {
    std::string lower;
    for (char c : text) {
        lower += static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    if (lower == "true" || lower == "1" || lower == "yes" || lower == "on") {
        value = true;
        return true;
    }
    if (lower == "false" || lower == "0" || lower == "no" || lower == "off") {
        value = false;
        return true;
    }
    fail(kBadArgument, "'" + text + "' is not a boolean (true or false)");
    return false;
}

bool parseLongLong(const std::string& text, long long minimum, long long maximum,
                   long long& value) {
    errno = 0;
    char* end = nullptr;
    const long long parsed = std::strtoll(text.c_str(), &end, 10);
    if (text.empty() || *end != '\0' || errno == ERANGE || parsed < minimum || parsed > maximum) {
        fail(kBadArgument, "'" + text + "' is not an integer from " + std::to_string(minimum) +
                               " to " + std::to_string(maximum));
        return false;
    }
    value = parsed;
    return true;
}

bool parseUnsigned(const std::string& text, unsigned long long& value) {
    errno = 0;
    char* end = nullptr;
    const unsigned long long parsed = std::strtoull(text.c_str(), &end, 10);
    if (text.empty() || text.find('-') != std::string::npos || *end != '\0' || errno == ERANGE) {
        fail(kBadArgument, "'" + text + "' is not an unsigned 64-bit integer");
        return false;
    }
    value = parsed;
    return true;
}

bool parseDouble(const std::string& text, double& value) {
    char* end = nullptr;
    const double parsed = std::strtod(text.c_str(), &end);
    if (text.empty() || *end != '\0') {
        fail(kBadArgument, "'" + text + "' is not a number");
        return false;
    }
    value = parsed;
    return true;
}

const char* boolText(bool value) {
    return value ? "true" : "false";
}

// The shortest text that reads back as the same double.
std::string doubleText(double value) {
    char buffer[64];
    for (int precision = 1; precision <= 17; ++precision) {
        std::snprintf(buffer, sizeof buffer, "%.*g", precision, value);
        if (std::strtod(buffer, nullptr) == value) {
            break;
        }
    }
    return buffer;
}

// ---- keys -----------------------------------------------------------------------------------

// A key names a preference ("LastSkin"), a read-only fact of start-up ("Version"), or an entry
// of a named family: "Status/NAME", "Tools/NAME", "AutoImport/Ringtone", "Directory/NAME".
struct Key {
    std::string family; // empty for preferences
    std::string name;
};

Key splitKey(const std::string& text) {
    const auto slash = text.find('/');
    if (slash == std::string::npos) {
        return Key{std::string(), text};
    }
    return Key{text.substr(0, slash), text.substr(slash + 1)};
}

void unknownKey(const std::string& text) {
    fail(kBadArgument, "unknown key '" + text +
                           "' (a preference such as LastSkin, Version, NewInstall, NewUpdate, or "
                           "Status/NAME, Tools/NAME, AutoImport/Ringtone, Directory/NAME)");
}

bool getValue(PRuntimeConfig& config, const std::string& text, std::string& value) {
    const Key key = splitKey(text);
    if (key.family.empty()) {
        const std::string& name = key.name;
        if (name == "Version") {
            value = config.version().data();
        } else if (name == "NewInstall") {
            value = boolText(config.newInstall());
        } else if (name == "NewUpdate") {
            value = boolText(config.newUpdate());
        } else if (name == "PopupTimeADAPP") {
            value = std::to_string(config.getPopupTimeADAPP());
        } else if (name == "SameTimeDownloadNumber") {
            value = std::to_string(config.getSameTimeDownloadNumber());
        } else if (name == "DownloadMaxSpeed") {
            value = std::to_string(config.getDownloadMaxSpeed());
        } else if (name == "LastSkin") {
            value = config.getLastSkin().data();
        } else if (name == "LastLanguage") {
            value = std::to_string(static_cast<int>(config.getLastLanguage()));
        } else if (name == "RestoreCore") {
            value = std::to_string(static_cast<int>(config.getRestoreCore()));
        } else {
            unknownKey(text);
            return false;
        }
        return true;
    }
    if (key.name.empty()) {
        unknownKey(text);
        return false;
    }
    if (key.family == "Status") {
        value = boolText(config.getSettingStatus(NString(key.name)));
    } else if (key.family == "Tools") {
        value = boolText(config.getToolsHot(NString(key.name)));
    } else if (key.family == "AutoImport" && key.name == "Ringtone") {
        value = boolText(config.getAutoImportRingtone());
    } else if (key.family == "Directory") {
        value = config.getConfigDirectory(NString(key.name)).data();
    } else {
        unknownKey(text);
        return false;
    }
    return true;
}

bool setValue(PRuntimeConfig& config, const std::string& text, const std::string& value) {
    const Key key = splitKey(text);
    bool flag = false;
    long long number = 0;
    if (key.family.empty()) {
        const std::string& name = key.name;
        if (name == "Version" || name == "NewInstall" || name == "NewUpdate") {
            fail(kBadArgument, "'" + name + "' is found at start-up and cannot be set");
            return false;
        }
        if (name == "PopupTimeADAPP") {
            unsigned long long time = 0;
            if (!parseUnsigned(value, time)) {
                return false;
            }
            config.setPopupTimeADAPP(time);
        } else if (name == "SameTimeDownloadNumber") {
            if (!parseLongLong(value, INT32_MIN, INT32_MAX, number)) {
                return false;
            }
            config.setSameTimeDownloadNumber(static_cast<int>(number));
        } else if (name == "DownloadMaxSpeed") {
            if (!parseLongLong(value, INT64_MIN, INT64_MAX, number)) {
                return false;
            }
            config.setDownloadMaxSpeed(number);
        } else if (name == "LastSkin") {
            config.setLastSkin(NString(value));
        } else if (name == "LastLanguage") {
            if (!parseLongLong(value, INT32_MIN, INT32_MAX, number)) {
                return false;
            }
            config.setLastLanguage(EPALLIX_RUNTIME_LANGUAGE(number));
        } else if (name == "RestoreCore") {
            if (!parseLongLong(value, INT32_MIN, INT32_MAX, number)) {
                return false;
            }
            config.setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE(number));
        } else {
            unknownKey(text);
            return false;
        }
        return true;
    }
    if (key.name.empty()) {
        unknownKey(text);
        return false;
    }
    if (key.family == "Directory") {
        config.setConfigDirectory(NString(key.name), NString(value));
        return true;
    }
    const bool known = key.family == "Status" || key.family == "Tools" ||
                       (key.family == "AutoImport" && key.name == "Ringtone");
    if (!known) {
        unknownKey(text);
        return false;
    }
    if (!parseBool(value, flag)) {
        return false;
    }
    if (key.family == "Status") {
        config.setSettingStatus(NString(key.name), flag);
    } else if (key.family == "Tools") {
        config.setToolsHot(NString(key.name), flag);
    } else {
        config.setAutoImportRingtone(flag);
    }
    return true;
}

// ---- lists ----------------------------------------------------------------------------------

// The entries of a list, one line each, fields separated by a tab.
std::vector<std::string> listLines(PRuntimeConfig& config, List list) {
    std::vector<std::string> lines;
    const auto place = [&lines](double x, double y, const NString& location) {
        lines.push_back(doubleText(x) + "\t" + doubleText(y) + "\t" + location.data());
    };
    switch (list) {
    case List::CustomBackup:
        config.customBackupTraverse(
            [&lines](const NString& path) { lines.push_back(path.data()); });
        break;
    case List::FileFavorites:
        config.fileCollectTraverse([&lines](const NString& path, bool root) {
            lines.push_back(std::string(path.data()) + "\t" + (root ? "root" : "-"));
            return true;
        });
        break;
    case List::VirtualLocation:
        config.virtualLocationTraverse(place);
        break;
    case List::LocationFavorites:
        config.locationCollectTraverse(place);
        break;
    }
    return lines;
}

bool wrongArity(const std::string& command, List list, const std::vector<std::string>& values,
                std::size_t paths, std::size_t places) {
    const bool isPlace = list == List::VirtualLocation || list == List::LocationFavorites;
    const std::size_t expected = isPlace ? places : paths;
    if (values.size() == expected) {
        return false;
    }
    const char* usage = isPlace ? (places == 3 ? "X Y NAME" : "X Y") : "PATH";
    fail(kBadArgument, command + " expects " + usage);
    return true;
}

bool addEntry(PRuntimeConfig& config, List list, const std::vector<std::string>& values,
              bool root) {
    if (wrongArity("add", list, values, 1, 3)) {
        return false;
    }
    double x = 0;
    double y = 0;
    switch (list) {
    case List::CustomBackup:
        config.customBackupAppend(NString(values[0]));
        break;
    case List::FileFavorites:
        config.fileCollectAppend(NString(values[0]), root);
        break;
    case List::VirtualLocation:
    case List::LocationFavorites:
        if (!parseDouble(values[0], x) || !parseDouble(values[1], y)) {
            return false;
        }
        if (list == List::VirtualLocation) {
            config.virtualLocationAppend(x, y, NString(values[2]));
        } else {
            config.locationCollectAppend(x, y, NString(values[2]));
        }
        break;
    }
    return true;
}

bool removeEntry(PRuntimeConfig& config, List list, const std::vector<std::string>& values,
                 bool root) {
    if (wrongArity("remove", list, values, 1, 2)) {
        return false;
    }
    double x = 0;
    double y = 0;
    switch (list) {
    case List::CustomBackup:
        config.customBackupRemove(NString(values[0]));
        break;
    case List::FileFavorites:
        config.fileCollectRemove(NString(values[0]), root);
        break;
    case List::VirtualLocation:
    case List::LocationFavorites:
        if (!parseDouble(values[0], x) || !parseDouble(values[1], y)) {
            return false;
        }
        if (list == List::VirtualLocation) {
            config.virtualLocationRemove(x, y);
        } else {
            config.locationCollectRemove(x, y);
        }
        break;
    }
    return true;
}

// ---- start-up -------------------------------------------------------------------------------

bool isDirectory(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool isFile(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

// What the library would silently ignore in an XML file: not well-formed, or another root.
std::string describeFile(const std::string& path, const char* root) {
    std::string problem = describeXmlProblem(path);
    if (!problem.empty()) {
        return problem;
    }
    pugi::xml_document document;
    document.load_file(path.c_str(), pugi::parse_default, pugi::encoding_utf8);
    if (!document.child(root)) {
        return path + ": has no \"" + root + "\" root element";
    }
    return std::string();
}

// Tells what start-up will make of the files, since the library says nothing.
void diagnoseFiles(const std::string& directory) {
    const std::string legacy = directory + "/Config.xml";
    const std::string current = directory + "/configure.xml";
    if (isFile(legacy)) {
        const std::string problem = describeFile(legacy, "Config");
        std::cerr << "pallix: note: importing the legacy " << legacy << " into " << current
                  << " and removing it\n";
        if (!problem.empty()) {
            reportError("warning: " + problem + "; nothing is imported from it");
        }
    } else if (isFile(current)) {
        const std::string problem = describeFile(current, "Nevor");
        if (!problem.empty()) {
            reportError("warning: " + problem + "; start-up values are used instead");
        }
    }
    const std::string& resources = options().resourcesDirectory;
    if (!resources.empty()) {
        const std::string version = resources + "/UpdateCfg.xml";
        const std::string problem = describeFile(version, "root");
        if (!problem.empty()) {
            reportError("warning: " + problem + "; the running version is taken as 5.0.0");
        }
    }
}

// Starts the configuration in the chosen directories and runs `body` on it. A command that
// changes the configuration needs a directory it can write, or its change would live only in
// this process.
void withConfiguration(bool changes, const std::function<void(PRuntimeConfig&)>& body) {
    const std::string& directory = options().configDirectory;
    if (!isDirectory(directory)) {
        fail(kDirectoryProblem, directory + ": no such configuration directory");
        return;
    }
    if (!options().resourcesDirectory.empty() && !isDirectory(options().resourcesDirectory)) {
        fail(kDirectoryProblem, options().resourcesDirectory + ": no such resources directory");
        return;
    }
    if (changes && ::access(directory.c_str(), W_OK) != 0) {
        fail(kDirectoryProblem, directory + ": the configuration directory is not writable");
        return;
    }
    NApplication::setDirectoryConfig(NString(directory));
    if (!options().resourcesDirectory.empty()) {
        NApplication::setDirectoryResources(NString(options().resourcesDirectory));
    }
    diagnoseFiles(directory);

    PRuntime* runtime = PRuntime::getInstance();
    PRuntimeConfig* config = runtime != nullptr ? runtime->config() : nullptr;
    if (config == nullptr) {
        fail(kDirectoryProblem, "the configuration could not be created");
        PRuntime::freeInstance();
        return;
    }
    config->initialize();
    body(*config);
    PRuntime::freeInstance();
}

// ---- show -----------------------------------------------------------------------------------

void printRow(const std::string& name, const std::string& value) {
    std::string padded = "  " + name;
    if (padded.size() < 28) {
        padded.resize(28, ' ');
    } else {
        padded += ' ';
    }
    std::cout << padded << value << '\n';
}

void printLines(const char* title, const std::vector<std::string>& lines) {
    std::cout << '\n' << title << " (" << lines.size() << ")\n";
    for (const std::string& line : lines) {
        std::cout << "  " << line << '\n';
    }
}

// The facade reads values by name but cannot list names; the names stored in the record are
// taken from the record, every value from the facade.
void show(PRuntimeConfig& config) {
    const std::string& directory = options().configDirectory;
    std::cout << "Configuration directory: " << directory << '\n';
    std::cout << "Configuration file:      " << directory << "/configure.xml"
              << (isFile(directory + "/configure.xml") ? "" : " (not written yet)") << '\n';
    std::cout << "Version:                 " << config.version().data() << '\n';
    std::cout << "New installation:        " << (config.newInstall() ? "yes" : "no") << '\n';
    std::cout << "New update:              " << (config.newUpdate() ? "yes" : "no") << '\n';

    std::cout << "\nPreferences\n";
    for (const char* name : {"LastSkin", "PopupTimeADAPP", "SameTimeDownloadNumber",
                             "DownloadMaxSpeed", "LastLanguage", "RestoreCore"}) {
        std::string value;
        getValue(config, name, value);
        printRow(name, value);
    }

    std::vector<std::string> settings = knownSettings();
    for (const auto& entry : _globalFrameworkConfig.status) {
        bool known = false;
        for (const std::string& name : knownSettings()) {
            known = known || name == entry.first.data();
        }
        if (!known) {
            settings.emplace_back(entry.first.data());
        }
    }
    std::cout << "\nStatus\n";
    for (const std::string& name : settings) {
        printRow(name, boolText(config.getSettingStatus(NString(name))));
    }

    std::vector<std::string> tools;
    for (const auto& entry : _globalFrameworkConfig.tools) {
        tools.emplace_back(entry.first.data());
    }
    std::cout << "\nTools (" << tools.size() << ")\n";
    for (const std::string& name : tools) {
        printRow(name, config.getToolsHot(NString(name)) ? "hot" : "not hot");
    }

    std::cout << "\nAutoImport\n";
    printRow("Ringtone", boolText(config.getAutoImportRingtone()));

    std::vector<std::string> directories;
    for (const auto& entry : _globalFrameworkConfig.directory) {
        directories.emplace_back(entry.first.data());
    }
    std::cout << "\nDirectory\n";
    for (const std::string& name : directories) {
        printRow(name, config.getConfigDirectory(NString(name)).data());
    }

    printLines("CustomBackup", listLines(config, List::CustomBackup));
    printLines("FileFavorites", listLines(config, List::FileFavorites));
    printLines("VirtualLocation", listLines(config, List::VirtualLocation));
    printLines("LocationFavorites", listLines(config, List::LocationFavorites));
}

// The working directories; the library creates each one (but the version file) as it names
// it, so asking for them prepares the data directory as the application would.
void printDirectories(PRuntimeConfig& config) {
    printRow("Data", config.getConfigDirectory("Data").data());
    printRow("Backup", config.getConfigDirectory("Backup").data());
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
    for (const auto& accessor : accessors) {
        printRow(accessor.first, (config.*accessor.second)().data());
    }
}

// ---- command line ---------------------------------------------------------------------------

struct Arguments {
    std::string key;
    std::string value;
    std::string list;
    std::vector<std::string> values;
    bool root = false;
};

Arguments& arguments() {
    static Arguments instance;
    return instance;
}

} // namespace

void registerConfigCommands(CLI::App& app) {
    CLI::App* config = app.add_subcommand(
        "config", "Show and change the application's configuration in a directory. Every "
                  "command starts the configuration as the application does, which imports a "
                  "legacy Config.xml once; changes are saved at once.");
    config->require_subcommand(1);
    config->fallthrough();
    config
        ->add_option("--config-dir", options().configDirectory,
                     "The configuration directory (holding configure.xml)")
        ->required();
    config->add_option("--resources-dir", options().resourcesDirectory,
                       "The resources directory (holding UpdateCfg.xml, the running version)");

    CLI::App* showCommand = config->add_subcommand("show", "Print the whole configuration");
    showCommand->callback([] { withConfiguration(false, [](PRuntimeConfig& c) { show(c); }); });

    CLI::App* get = config->add_subcommand(
        "get", "Print a preference (LastSkin, PopupTimeADAPP, SameTimeDownloadNumber, "
               "DownloadMaxSpeed, LastLanguage, RestoreCore, Version, NewInstall, NewUpdate) "
               "or Status/NAME, Tools/NAME, AutoImport/Ringtone, Directory/NAME");
    get->add_option("key", arguments().key, "What to print")->required();
    get->callback([] {
        withConfiguration(false, [](PRuntimeConfig& c) {
            std::string value;
            if (getValue(c, arguments().key, value)) {
                std::cout << value << '\n';
            }
        });
    });

    CLI::App* set = config->add_subcommand(
        "set", "Change a preference or Status/NAME, Tools/NAME, AutoImport/Ringtone (true or "
               "false), Directory/NAME (a path)");
    set->add_option("key", arguments().key, "What to change")->required();
    set->add_option("value", arguments().value, "The new value")->required();
    set->callback([] {
        withConfiguration(
            true, [](PRuntimeConfig& c) { setValue(c, arguments().key, arguments().value); });
    });

    const char* listHelp = "CustomBackup, FileFavorites, VirtualLocation or LocationFavorites";

    CLI::App* list = config->add_subcommand("list", "Print a list, one entry per line");
    list->add_option("list", arguments().list, listHelp)->required();
    list->callback([] {
        List which{};
        if (!parseList(arguments().list, which)) {
            return;
        }
        withConfiguration(false, [which](PRuntimeConfig& c) {
            for (const std::string& line : listLines(c, which)) {
                std::cout << line << '\n';
            }
        });
    });

    CLI::App* add = config->add_subcommand(
        "add", "Add to a list: CustomBackup PATH, FileFavorites PATH [--root], "
               "VirtualLocation X Y NAME, LocationFavorites X Y NAME");
    add->add_option("list", arguments().list, listHelp)->required();
    add->add_option("values", arguments().values, "The entry")->required();
    add->add_flag("--root", arguments().root, "Mark a file favourite as a root");
    add->callback([] {
        List which{};
        if (!parseList(arguments().list, which)) {
            return;
        }
        withConfiguration(true, [which](PRuntimeConfig& c) {
            const std::size_t before = listLines(c, which).size();
            if (!addEntry(c, which, arguments().values, arguments().root)) {
                return;
            }
            if (listLines(c, which).size() == before) {
                std::cerr << "pallix: note: already in " << arguments().list
                          << "; nothing changed\n";
            }
        });
    });

    CLI::App* remove = config->add_subcommand(
        "remove", "Remove from a list: CustomBackup PATH, FileFavorites PATH [--root], "
                  "VirtualLocation X Y, LocationFavorites X Y");
    remove->add_option("list", arguments().list, listHelp)->required();
    remove->add_option("values", arguments().values, "The entry")->required();
    remove->add_flag("--root", arguments().root, "The file favourite is marked as a root");
    remove->callback([] {
        List which{};
        if (!parseList(arguments().list, which)) {
            return;
        }
        withConfiguration(true, [which](PRuntimeConfig& c) {
            const std::size_t before = listLines(c, which).size();
            if (!removeEntry(c, which, arguments().values, arguments().root)) {
                return;
            }
            if (listLines(c, which).size() == before) {
                std::cerr << "pallix: note: no such entry in " << arguments().list << '\n';
            }
        });
    });

    CLI::App* clear =
        config->add_subcommand("clear", "Empty a place list: VirtualLocation or LocationFavorites");
    clear->add_option("list", arguments().list, "VirtualLocation or LocationFavorites")->required();
    clear->callback([] {
        List which{};
        if (!parseList(arguments().list, which)) {
            return;
        }
        if (which != List::VirtualLocation && which != List::LocationFavorites) {
            fail(kBadArgument, arguments().list + " cannot be cleared; remove its entries");
            return;
        }
        withConfiguration(true, [which](PRuntimeConfig& c) {
            if (which == List::VirtualLocation) {
                c.virtualLocationClear();
            } else {
                c.locationCollectClear();
            }
        });
    });

    CLI::App* dirs = config->add_subcommand(
        "dirs", "Print the named and the working directories (creating the working "
                "directories, as the application does)");
    dirs->callback(
        [] { withConfiguration(false, [](PRuntimeConfig& c) { printDirectories(c); }); });
}

} // namespace pallix::tool
