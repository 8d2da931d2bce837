// "pallix cloud": reads a cloud document through the library and shows what it switches on,
// which reference files and plug-in packages it names, and which rules recognise programs; or
// answers single queries against it.

#include "CloudFormat.h"
#include "Commands.h"
#include "Failure.h"
#include "FileGuard.h"
#include "Suggestion.h"
#include "ToolOutput.h"

#include "PRuntimeCloud.h"

#include <cstddef>
#include <iostream>
#include <memory>
#include <set>
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
    bool json = false;
    CLI::App* command = nullptr;

    bool given(const char* option) const { return command->count(option) > 0; }
};

using HashQuery = PRuntimeCloudApplicationHash (PRuntimeCloud::*)() const;

// The entry names that the library's reference-file queries look for, which --hash takes.
const std::vector<std::pair<std::string, HashQuery>>& hashQueries() {
    static const std::vector<std::pair<std::string, HashQuery>> queries = {
        {format::cloud::kReferenceCpid, &PRuntimeCloud::application_hash_cpid},
        {format::cloud::kReferenceCrashCode, &PRuntimeCloud::application_hash_crash_code},
        {format::cloud::kReferenceRestoreCode, &PRuntimeCloud::application_hash_restore_code},
        {format::cloud::kReferenceRestoreVersion, &PRuntimeCloud::application_hash_restore_version},
        {format::cloud::kReferencePluginMapping,
         &PRuntimeCloud::application_hash_developer_plugin_mapping}};
    return queries;
}

// The query of a name, or null.
HashQuery hashQuery(const std::string& name) {
    for (const auto& [known, query] : hashQueries()) {
        if (known == name) {
            return query;
        }
    }
    return nullptr;
}

std::vector<std::string> hashNames() {
    std::vector<std::string> names;
    for (const auto& query : hashQueries()) {
        names.push_back(query.first);
    }
    return names;
}

std::string orNone(const NString& text) {
    return text.empty() ? std::string("(none)") : text.toStdString();
}

std::string quoted(const NString& text) {
    return "\"" + text.toStdString() + "\"";
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

// The records as JSON, with the names of the library's accessors.
nlohmann::ordered_json toJson(const PRuntimeCloudApplicationHash& entry) {
    return {{"name", entry.name().toStdString()},
            {"hash", entry.hash().toStdString()},
            {"url", entry.url().toStdString()}};
}

nlohmann::ordered_json toJson(const PRuntimeCloudDevicePluginsItem& item) {
    return {{"version", item.version().toStdString()},
            {"hash", item.hash().toStdString()},
            {"url", item.url().toStdString()}};
}

nlohmann::ordered_json toJson(const PRuntimeCloudDeviceProcessItem& rule) {
    return {{"startsWith", rule.startsWith().toStdString()},
            {"contains", rule.contains().toStdString()},
            {"endsWith", rule.endsWith().toStdString()},
            {"name", rule.name().toStdString()}};
}

// ... and as text: a reference file under its name, a package under its version.
template <typename File> std::string describe(const NString& title, const File& file) {
    return "  " + title.toStdString() + "\n    digest:  " + orNone(file.hash()) +
           "\n    address: " + orNone(file.url()) + "\n";
}
std::string describe(const PRuntimeCloudApplicationHash& entry) {
    return describe(entry.name(), entry);
}
std::string describe(const PRuntimeCloudDevicePluginsItem& item) {
    return describe(item.version(), item);
}

std::string describe(const PRuntimeCloudDeviceProcessItem& rule) {
    return "starts " + quoted(rule.startsWith()) + ", contains " + quoted(rule.contains()) +
           ", ends " + quoted(rule.endsWith()) + " -> " + orNone(rule.name());
}

using PluginTraversal = void (PRuntimeCloud::*)(
    const std::function<void(const NString&, const PRuntimeCloudDevicePluginsItem&)>&) const;
using RuleTraversal = void (PRuntimeCloud::*)(
    const std::function<void(const PRuntimeCloudDeviceProcessItem&)>&) const;

nlohmann::ordered_json pluginsJson(const PRuntimeCloud& cloud, PluginTraversal traverse) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    (cloud.*traverse)([&list](const NString&, const PRuntimeCloudDevicePluginsItem& item) {
        list.push_back(toJson(item));
    });
    return list;
}

nlohmann::ordered_json rulesJson(const PRuntimeCloud& cloud, RuleTraversal traverse) {
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    (cloud.*traverse)(
        [&list](const PRuntimeCloudDeviceProcessItem& rule) { list.push_back(toJson(rule)); });
    return list;
}

void printOverviewJson(const PRuntimeCloud& cloud) {
    nlohmann::ordered_json hashes = nlohmann::ordered_json::array();
    cloud.application_hash_traverse(
        [&hashes](const PRuntimeCloudApplicationHash& entry) { hashes.push_back(toJson(entry)); });
    printJson({
        {"advertisement",
         {{"popup", cloud.application_advertisement_iosapp_popup()},
          {"autoInstall", cloud.application_advertisement_iosapp_auto_install()}}},
        {"verifyGuide",
         {{"status", cloud.applet_verify_guide_status()},
          {"pixmap", cloud.applet_verify_guide_pixmap().toStdString()}}},
        {"partner",
         {{"sellStatus", cloud.cooperate_hsb_sell_status()},
          {"deviceInfoText", cloud.cooperate_hsb_sell_text_device_info().toStdString()},
          {"deviceVerifyText", cloud.cooperate_hsb_sell_text_device_verify().toStdString()},
          {"authorizeAddress", cloud.cooperate_hsb_device_authorize_ipaddress().toStdString()},
          {"authorizePort", cloud.cooperate_hsb_device_authorize_ipport()}}},
        {"referenceFiles", hashes},
        {"developerPlugins", pluginsJson(cloud, &PRuntimeCloud::device_plugins_traverse)},
        {"developerPluginsRvq", pluginsJson(cloud, &PRuntimeCloud::device_plugins_rvq_traverse)},
        {"drivers",
         {{"version", cloud.device_drive_version().toStdString()},
          {"itunes32", cloud.device_drive_itunes_32().toStdString()},
          {"itunes64", cloud.device_drive_itunes_64().toStdString()}}},
        {"pluginProcessRules", rulesJson(cloud, &PRuntimeCloud::device_process_plugins_traverse)},
        {"applicationProcessRules",
         rulesJson(cloud, &PRuntimeCloud::device_process_application_traverse)},
    });
}

void printPlugins(const char* title, const PRuntimeCloud& cloud, PluginTraversal traverse) {
    std::string lines;
    std::size_t count = 0;
    (cloud.*traverse)([&](const NString& version, const PRuntimeCloudDevicePluginsItem& item) {
        ++count;
        lines += version.empty() ? "  (a package without a version; lookups never return it)\n"
                                 : describe(item);
    });
    std::cout << title << " (" << count << ")\n" << lines;
}

void printRules(const char* title, const PRuntimeCloud& cloud, RuleTraversal traverse) {
    std::string lines;
    std::size_t count = 0;
    (cloud.*traverse)([&](const PRuntimeCloudDeviceProcessItem& rule) {
        lines += "  " + std::to_string(++count) + ". " + describe(rule) + "\n";
    });
    std::cout << title << " (" << count << ")\n" << lines;
}

void printOverview(const CloudOptions& options, const PRuntimeCloud& cloud) {
    const auto onOff = [](bool value) { return value ? "on" : "off"; };
    std::cout << "Cloud document: " << options.file << "\n"
              << "Switches\n"
              << "  advertisement pop-up:       "
              << onOff(cloud.application_advertisement_iosapp_popup()) << "\n"
              << "  advertisement auto-install: "
              << onOff(cloud.application_advertisement_iosapp_auto_install()) << "\n"
              << "  verification guide:         " << onOff(cloud.applet_verify_guide_status())
              << "\n"
              << "  verification guide pixmap:  "
              << abbreviated(orNone(cloud.applet_verify_guide_pixmap())) << "\n"
              << "  partner selling:            " << onOff(cloud.cooperate_hsb_sell_status())
              << "\n"
              << "Partner\n"
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
        std::cout << (entry.name().empty() ? "  " + name + ": (none)\n" : describe(entry));
    }
    // The library keeps every entry; the queries answer with the first of the five names.
    std::set<std::string> answered;
    cloud.application_hash_traverse([&](const PRuntimeCloudApplicationHash& entry) {
        const std::string name = entry.name().toStdString();
        if (hashQuery(name) == nullptr) {
            std::cout << "  other entry " << (name.empty() ? "(no name)" : "\"" + name + "\"")
                      << ": no query asks for it\n";
        } else if (!answered.insert(name).second) {
            std::cout << "  another \"" << name << "\" entry: the query answers with the first\n";
        }
    });

    printPlugins("Developer plug-ins", cloud, &PRuntimeCloud::device_plugins_traverse);
    printPlugins("Developer plug-ins (RVQ)", cloud, &PRuntimeCloud::device_plugins_rvq_traverse);
    std::cout << "Drivers\n"
              << "  driver version:             " << orNone(cloud.device_drive_version()) << "\n"
              << "  iTunes, 32-bit:             " << orNone(cloud.device_drive_itunes_32()) << "\n"
              << "  iTunes, 64-bit:             " << orNone(cloud.device_drive_itunes_64()) << "\n";
    printRules("Plug-in process rules", cloud, &PRuntimeCloud::device_process_plugins_traverse);
    printRules("Application process rules", cloud,
               &PRuntimeCloud::device_process_application_traverse);
}

// One query's answer: shown as text, or gathered under `key` of the JSON document.
struct Answers {
    bool json = false;
    bool allFound = true;
    nlohmann::ordered_json document = nlohmann::ordered_json::object();

    void add(const char* key, const std::string& query, const nlohmann::ordered_json& answer,
             const std::string& text, const std::string& missed) {
        allFound = allFound && !answer.is_null();
        if (json) {
            document[key] = {{"query", query}, {"found", !answer.is_null()}, {"answer", answer}};
        } else if (answer.is_null()) {
            reportError(missed);
        } else {
            std::cout << text;
        }
    }
};

void answerHash(Answers& answers, const PRuntimeCloud& cloud, const std::string& name) {
    const PRuntimeCloudApplicationHash entry = (cloud.*hashQuery(name))();
    answers.add("hash", name, entry.name().empty() ? nullptr : toJson(entry),
                "reference file\n" + describe(entry),
                "reference file " + name + ": not in the document");
}

void answerPlugin(Answers& answers, const PRuntimeCloud& cloud, const std::string& version,
                  bool rvq) {
    const PRuntimeCloudDevicePluginsItem item =
        rvq ? cloud.device_plugins_find_by_rvq(version) : cloud.device_plugins_find(version);
    const std::string kind = rvq ? "developer plug-in (RVQ)" : "developer plug-in";
    answers.add(rvq ? "pluginRvq" : "plugin", version,
                item.version().empty() ? nullptr : toJson(item), kind + "\n" + describe(item),
                kind + " \"" + version + "\": not in the document");
}

void answerProcess(Answers& answers, const PRuntimeCloud& cloud, const std::string& name,
                   bool plugins) {
    nlohmann::ordered_json rule = nullptr;
    std::string text;
    const auto record = [&](const PRuntimeCloudDeviceProcessItem& found) {
        rule = toJson(found);
        text = describe(found);
    };
    if (plugins) {
        cloud.device_process_plugins_find(name, record);
    } else {
        cloud.device_process_application_find(name, record);
    }
    const std::string kind =
        std::string(plugins ? "plug-in" : "application") + " process \"" + name + "\": ";
    answers.add(plugins ? "pluginProcess" : "process", name, rule, kind + text + "\n",
                kind + "no rule holds");
}

void runCloud(const CloudOptions& options) {
    if (options.given("--hash") && hashQuery(options.hash) == nullptr) {
        failUsage("--hash: unknown reference file '" + options.hash + "' (one of " +
                  joined(hashNames()) + ")" + didYouMean(options.hash, hashNames()));
    }
    const auto requireVersion = [&options](const char* option, const std::string& version) {
        if (options.given(option) && version.empty()) {
            failUsage(std::string(option) + ": the library never looks up an empty version");
        }
    };
    requireVersion("--plugin", options.plugin);
    requireVersion("--plugin-rvq", options.pluginRvq);
    requireFileKind(options.file, check::FileKind::Cloud);
    PRuntimeCloud cloud;
    if (!cloud.format(NString(options.file))) {
        failUnreadable(options.file + ": the library could not read the document");
    }

    const bool anyQuery = options.given("--hash") || options.given("--plugin") ||
                          options.given("--plugin-rvq") || options.given("--process") ||
                          options.given("--plugin-process");
    if (!anyQuery) {
        options.json ? printOverviewJson(cloud) : printOverview(options, cloud);
        return;
    }
    Answers answers;
    answers.json = options.json;
    if (options.given("--hash")) {
        answerHash(answers, cloud, options.hash);
    }
    if (options.given("--plugin")) {
        answerPlugin(answers, cloud, options.plugin, false);
    }
    if (options.given("--plugin-rvq")) {
        answerPlugin(answers, cloud, options.pluginRvq, true);
    }
    if (options.given("--process")) {
        answerProcess(answers, cloud, options.process, false);
    }
    if (options.given("--plugin-process")) {
        answerProcess(answers, cloud, options.pluginProcess, true);
    }
    if (options.json) {
        printJson(answers.document);
    }
    exitStatus() = answers.allFound ? kSuccess : kNotFound;
}

} // namespace

void registerCloudCommands(CLI::App& app) {
    auto options = std::make_shared<CloudOptions>();
    CLI::App* cloud = app.add_subcommand(
        "cloud", "Read a cloud document: its switches, reference files, plug-in packages, "
                 "driver versions and process rules, or answer queries against it");
    options->command = cloud;
    cloud->add_option("FILE", options->file, "The cloud document")->required();
    cloud->add_option("--hash", options->hash, "Reference file entry: " + joined(hashNames()));
    cloud->add_option("--plugin", options->plugin, "Developer plug-in package of a version");
    cloud->add_option("--plugin-rvq", options->pluginRvq,
                      "Developer plug-in package of a version, RVQ list");
    cloud->add_option("--process", options->process,
                      "Program name to match against the application process rules");
    cloud->add_option("--plugin-process", options->pluginProcess,
                      "Program name to match against the plug-in process rules");
    addJsonFlag(*cloud, options->json);
    endHelp(*cloud,
            "With --json and no query:\n"
            "  {\"advertisement\": {\"popup\", \"autoInstall\"}, \"verifyGuide\": {\"status\", "
            "\"pixmap\"},\n"
            "   \"partner\": {\"sellStatus\", \"deviceInfoText\", \"deviceVerifyText\", "
            "\"authorizeAddress\", \"authorizePort\"},\n"
            "   \"referenceFiles\": [ENTRY] (every entry, in document order),\n"
            "   \"developerPlugins\", \"developerPluginsRvq\": [PACKAGE] (by version),\n"
            "   \"drivers\": {\"version\", \"itunes32\", \"itunes64\"},\n"
            "   \"pluginProcessRules\", \"applicationProcessRules\": [RULE] (in document "
            "order)}\n"
            "With --json and queries, one member for each query asked (\"hash\", \"plugin\", "
            "\"pluginRvq\",\n"
            "\"process\", \"pluginProcess\"): {\"query\": TEXT, \"found\": BOOL, \"answer\": "
            "ENTRY, PACKAGE, RULE or null}\n"
            "where ENTRY is {\"name\", \"hash\", \"url\"}, PACKAGE {\"version\", \"hash\", "
            "\"url\"},\n"
            "RULE {\"startsWith\", \"contains\", \"endsWith\", \"name\"}.\n"
            "Exit status: 0 the document was read and every query answered; 1 a query found "
            "nothing;\n"
            "2 a usage error or a document that cannot be read.",
            "pallix cloud samples/cloud.xml --hash CPID --plugin-process DeviceAgentTool");
    cloud->callback([options] { runCloud(*options); });
}

} // namespace pallix::tool
