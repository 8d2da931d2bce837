// "pallix cloud": reads a cloud document through the library and shows what it switches on,
// which reference files and plug-in packages it names, and which rules recognise programs; or
// answers single queries against it.
//
// Exit status: 0 when the document was read (and every query found an answer), 1 when a query
// found nothing, 2 when the document cannot be used.

#include "Commands.h"
#include "ToolOutput.h"

#include "PRuntimeCloud.h"

#include <pugixml.hpp>

#include <cstddef>
#include <iostream>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace pallix::tool {

namespace {

struct CloudOptions {
    std::string file;
    std::string hash;
    std::string plugin;
    std::string pluginRvq;
    std::string process;
    std::string pluginProcess;
    bool hashGiven = false;
    bool pluginGiven = false;
    bool pluginRvqGiven = false;
    bool processGiven = false;
    bool pluginProcessGiven = false;

    bool anyQuery() const {
        return hashGiven || pluginGiven || pluginRvqGiven || processGiven || pluginProcessGiven;
    }
};

using HashQuery = PRuntimeCloudApplicationHash (PRuntimeCloud::*)() const;

// The reference files the library can be asked for, in the order the queries are declared.
const std::vector<std::pair<std::string, HashQuery>>& hashQueries() {
    static const std::vector<std::pair<std::string, HashQuery>> queries = {
        {"CPID", &PRuntimeCloud::application_hash_cpid},
        {"CrashCode", &PRuntimeCloud::application_hash_crash_code},
        {"RestoreCode", &PRuntimeCloud::application_hash_restore_code},
        {"RestoreVersion", &PRuntimeCloud::application_hash_restore_version},
        {"DeveloperPluginMapping", &PRuntimeCloud::application_hash_developer_plugin_mapping}};
    return queries;
}

std::string onOff(bool value) {
    return value ? "on" : "off";
}

std::string orNone(const NString& text) {
    return text.empty() ? std::string("(none)") : text.toStdString();
}

// Long pixmap texts (encoded pictures) are cut for the overview, on a character boundary.
std::string abbreviated(const std::string& text) {
    constexpr std::size_t kShown = 40;
    if (text.size() <= kShown + 8) {
        return text;
    }
    std::size_t cut = kShown;
    while (cut > 0 && (static_cast<unsigned char>(text[cut]) & 0xC0) == 0x80) {
        --cut;
    }
    return text.substr(0, cut) + "... (" + std::to_string(text.size()) + " bytes)";
}

std::string quoted(const NString& text) {
    return "\"" + text.toStdString() + "\"";
}

std::string describeRule(const PRuntimeCloudDeviceProcessItem& rule) {
    return "starts " + quoted(rule.startsWith()) + ", contains " + quoted(rule.contains()) +
           ", ends " + quoted(rule.endsWith()) + " -> " + orNone(rule.name());
}

void printHashEntry(const PRuntimeCloudApplicationHash& entry) {
    std::cout << "  " << entry.name().toStdString() << "\n"
              << "    digest:  " << orNone(entry.hash()) << "\n"
              << "    address: " << orNone(entry.url()) << "\n";
}

void printPlugin(const PRuntimeCloudDevicePluginsItem& item) {
    std::cout << "  " << item.version().toStdString() << "\n"
              << "    digest:  " << orNone(item.hash()) << "\n"
              << "    address: " << orNone(item.url()) << "\n";
}

// The library answers lookups but does not hand out its lists, so the overview takes the
// versions and rules from the document and shows what the library answers for them.
std::vector<pugi::xml_node> childElements(const pugi::xml_node& list) {
    std::vector<pugi::xml_node> children;
    for (pugi::xml_node child = list.first_child(); child; child = child.next_sibling()) {
        if (child.type() == pugi::node_element) {
            children.push_back(child);
        }
    }
    return children;
}

std::vector<std::string> documentVersions(const pugi::xml_node& list) {
    std::vector<std::string> versions;
    for (const pugi::xml_node& child : childElements(list)) {
        const std::string version = child.attribute("Version").as_string("");
        bool seen = false;
        for (const std::string& known : versions) {
            seen = seen || known == version;
        }
        if (!seen) {
            versions.push_back(version);
        }
    }
    return versions;
}

void printPlugins(const char* title, const PRuntimeCloud& cloud, const pugi::xml_node& list,
                  PRuntimeCloudDevicePluginsItem (PRuntimeCloud::*find)(const NString&) const) {
    const std::vector<std::string> versions = documentVersions(list);
    std::cout << title << " (" << versions.size() << ")\n";
    for (const std::string& version : versions) {
        if (version.empty()) {
            std::cout << "  (a package without a version; lookups never return it)\n";
            continue;
        }
        printPlugin((cloud.*find)(NString(version)));
    }
}

void printRules(const char* title, const pugi::xml_node& list) {
    const std::vector<pugi::xml_node> children = childElements(list);
    std::cout << title << " (" << children.size() << ")\n";
    int number = 0;
    for (const pugi::xml_node& child : children) {
        const PRuntimeCloudDeviceProcessItem rule(
            child.attribute("StartsWith").as_string(""), child.attribute("Contains").as_string(""),
            child.attribute("EndsWith").as_string(""), child.attribute("Name").as_string(""));
        std::cout << "  " << ++number << ". " << describeRule(rule) << "\n";
    }
}

void printOverview(const CloudOptions& options, const PRuntimeCloud& cloud,
                   const pugi::xml_node& root) {
    std::cout << "Cloud document: " << options.file << "\n";
    std::cout << "Switches\n"
              << "  advertisement pop-up:       "
              << onOff(cloud.application_advertisement_iosapp_popup()) << "\n"
              << "  advertisement auto-install: "
              << onOff(cloud.application_advertisement_iosapp_auto_install()) << "\n"
              << "  verification guide:         " << onOff(cloud.applet_verify_guide_status())
              << "\n"
              << "  verification guide pixmap:  "
              << abbreviated(orNone(cloud.applet_verify_guide_pixmap())) << "\n"
              << "  partner selling:            " << onOff(cloud.cooperate_hsb_sell_status())
              << "\n";
    std::cout << "Partner\n"
              << "  device information text:    "
              << orNone(cloud.cooperate_hsb_sell_text_device_info()) << "\n"
              << "  device verification text:   "
              << orNone(cloud.cooperate_hsb_sell_text_device_verify()) << "\n"
              << "  authorisation service:      "
              << orNone(cloud.cooperate_hsb_device_authorize_ipaddress()) << " port "
              << cloud.cooperate_hsb_device_authorize_ipport() << "\n";

    std::cout << "Reference files\n";
    for (const auto& [name, query] : hashQueries()) {
        const PRuntimeCloudApplicationHash entry = (cloud.*query)();
        if (entry.name().empty()) {
            std::cout << "  " << name << ": (none)\n";
        } else {
            printHashEntry(entry);
        }
    }
    // Entries under other names are kept by the library but no query asks for them.
    for (const pugi::xml_node& child : childElements(root.child("Application").child("Hash"))) {
        const std::string name = child.attribute("Name").as_string("");
        bool known = false;
        for (const auto& query : hashQueries()) {
            known = known || query.first == name;
        }
        if (!known) {
            std::cout << "  other entry " << (name.empty() ? "(no name)" : "\"" + name + "\"")
                      << ": no query asks for it\n";
        }
    }

    const pugi::xml_node device = root.child("Device");
    printPlugins("Developer plug-ins", cloud, device.child("DeveloperPlugins"),
                 &PRuntimeCloud::device_plugins_find);
    printPlugins("Developer plug-ins (RVQ)", cloud, device.child("DeveloperPlugins_RVQ"),
                 &PRuntimeCloud::device_plugins_find_by_rvq);

    std::cout << "Drivers\n"
              << "  driver version:             " << orNone(cloud.device_drive_version()) << "\n"
              << "  iTunes, 32-bit:             " << orNone(cloud.device_drive_itunes_32()) << "\n"
              << "  iTunes, 64-bit:             " << orNone(cloud.device_drive_itunes_64()) << "\n";

    const pugi::xml_node manager = device.child("ProcessManager");
    printRules("Plug-in process rules", manager.child("Plugins"));
    printRules("Application process rules", manager.child("Process"));
}

// Each query prints its answer; false when there is none.
bool answerHash(const PRuntimeCloud& cloud, const std::string& name) {
    for (const auto& [known, query] : hashQueries()) {
        if (known == name) {
            const PRuntimeCloudApplicationHash entry = (cloud.*query)();
            if (entry.name().empty()) {
                std::cout << "reference file " << name << ": not in the document\n";
                return false;
            }
            std::cout << "reference file\n";
            printHashEntry(entry);
            return true;
        }
    }
    return false; // names are checked before the document is read
}

bool answerPlugin(const PRuntimeCloud& cloud, const std::string& version, bool rvq) {
    const PRuntimeCloudDevicePluginsItem item =
        rvq ? cloud.device_plugins_find_by_rvq(NString(version))
            : cloud.device_plugins_find(NString(version));
    const char* kind = rvq ? "developer plug-in (RVQ)" : "developer plug-in";
    if (item.version().empty()) {
        std::cout << kind << " \"" << version << "\": not in the document\n";
        return false;
    }
    std::cout << kind << "\n";
    printPlugin(item);
    return true;
}

bool answerProcess(const PRuntimeCloud& cloud, const std::string& name, bool plugins) {
    std::string found;
    const auto record = [&found](const PRuntimeCloudDeviceProcessItem& rule) {
        found = describeRule(rule);
    };
    const bool matched = plugins ? cloud.device_process_plugins_find(NString(name), record)
                                 : cloud.device_process_application_find(NString(name), record);
    const char* kind = plugins ? "plug-in process" : "application process";
    if (!matched) {
        std::cout << kind << " \"" << name << "\": no rule holds\n";
        return false;
    }
    std::cout << kind << " \"" << name << "\": " << found << "\n";
    return true;
}

void runCloud(const CloudOptions& options) {
    if (options.hashGiven) {
        bool known = false;
        std::string names;
        for (const auto& query : hashQueries()) {
            known = known || query.first == options.hash;
            names += (names.empty() ? "" : ", ") + query.first;
        }
        if (!known) {
            reportError("unknown reference file \"" + options.hash + "\" (one of " + names + ")");
            exitStatus() = 2;
            return;
        }
    }

    const std::string problem = describeXmlProblem(options.file);
    if (!problem.empty()) {
        reportError(problem);
        exitStatus() = 2;
        return;
    }
    // The library accepts a document without the root and reads nothing from it; the tool
    // says so instead.
    pugi::xml_document document;
    document.load_file(options.file.c_str(), pugi::parse_default, pugi::encoding_utf8);
    const pugi::xml_node root = document.child("Nevor");
    if (!root) {
        const pugi::xml_node element = document.document_element();
        reportError(options.file + ": not a cloud document: the root element is " +
                    (element ? "\"" + std::string(element.name()) + "\"" : std::string("missing")) +
                    ", not \"Nevor\"");
        exitStatus() = 2;
        return;
    }

    PRuntimeCloud cloud;
    if (!cloud.format(NString(options.file))) {
        reportError(options.file + ": the library could not read the document");
        exitStatus() = 2;
        return;
    }

    if (!options.anyQuery()) {
        printOverview(options, cloud, root);
        exitStatus() = 0;
        return;
    }
    bool allFound = true;
    if (options.hashGiven) {
        allFound = answerHash(cloud, options.hash) && allFound;
    }
    if (options.pluginGiven) {
        allFound = answerPlugin(cloud, options.plugin, false) && allFound;
    }
    if (options.pluginRvqGiven) {
        allFound = answerPlugin(cloud, options.pluginRvq, true) && allFound;
    }
    if (options.processGiven) {
        allFound = answerProcess(cloud, options.process, false) && allFound;
    }
    if (options.pluginProcessGiven) {
        allFound = answerProcess(cloud, options.pluginProcess, true) && allFound;
    }
    exitStatus() = allFound ? 0 : 1;
}

} // namespace

void registerCloudCommands(CLI::App& app) {
    auto options = std::make_shared<CloudOptions>();
    CLI::App* cloud = app.add_subcommand(
        "cloud", "Read a cloud document: its switches, reference files, plug-in packages, "
                 "driver versions and process rules, or answer queries against it");
    cloud->footer("Exit status: 0 read (every query answered), 1 a query found nothing, "
                  "2 the document cannot be used.");
    cloud->add_option("FILE", options->file, "The cloud document (XML, root \"Nevor\")")
        ->required();
    cloud->add_option("--hash", options->hash,
                      "Reference file entry: CPID, CrashCode, RestoreCode, RestoreVersion or "
                      "DeveloperPluginMapping");
    cloud->add_option("--plugin", options->plugin, "Developer plug-in package of a version");
    cloud->add_option("--plugin-rvq", options->pluginRvq,
                      "Developer plug-in package of a version, RVQ list");
    cloud->add_option("--process", options->process,
                      "Program name to match against the application process rules");
    cloud->add_option("--plugin-process", options->pluginProcess,
                      "Program name to match against the plug-in process rules");
    cloud->callback([options, cloud] {
        options->hashGiven = cloud->count("--hash") > 0;
        options->pluginGiven = cloud->count("--plugin") > 0;
        options->pluginRvqGiven = cloud->count("--plugin-rvq") > 0;
        options->processGiven = cloud->count("--process") > 0;
        options->pluginProcessGiven = cloud->count("--plugin-process") > 0;
        runCloud(*options);
    });
}

} // namespace pallix::tool
