// "pallix factory": the factory information of devices kept in a configuration directory,
// listed and changed through the library's store.

#include "Commands.h"

#include "Conversions.h"
#include "Failure.h"
#include "FileGuard.h"
#include "FileNames.h"
#include "NJsonObject.h"
#include "PRuntimeFactory.h"
#include "StoreCommon.h"
#include "ToolOutput.h"
#include "Values.h"

#include <climits>
#include <iostream>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

// The stores' file names, as the library keeps them.
const std::string kFactoryFile = std::string("/") + format::kFactoryFile;

// How a value that is not plain text is shown and typed: its bytes in base64 after this prefix.
const std::string kBase64Prefix = "base64:";

struct FactoryOptions {
    std::string configDirectory;
    bool json = false;
    bool force = false;
    std::string id;
    std::vector<std::string> values;
};

// A device identifier as the user types it: 1 to 16 hexadecimal digits, with or without "0x",
// not 0 (the store drops id 0 when it reads the file).
unsigned long long parseDeviceId(const std::string& text) {
    const std::optional<unsigned long long> id = parseUnsigned(text, ULLONG_MAX, Digits::Hex);
    if (!id) {
        failUsage("'" + text + "' is not a device identifier (1 to 16 hexadecimal digits)");
    }
    if (*id == 0) {
        failUsage("'" + text + "' is device 0, which the store does not read back");
    }
    return *id;
}

// The store keeps a value as base64 text in its JSON object: ask the same object for the
// encoding, so that what the tool shows is what the file holds.
std::string toBase64(const NByteArray& bytes) {
    NJsonObject holder;
    holder.append(NString("value"), bytes);
    return holder.toText(NString("value")).toStdString();
}

// The bytes of base64 text as the store reads them back; nothing for text that it would read
// as other bytes (not base64) or write back differently.
std::optional<NByteArray> fromBase64(const std::string& text) {
    NJsonObject holder;
    holder.append(NString("value"), NString(text));
    NByteArray bytes = holder.toBytes(NString("value"));
    return toBase64(bytes) == text ? std::optional<NByteArray>(bytes) : std::nullopt;
}

// Plain text shows as it is; other bytes, and text that would read as base64, in base64.
std::string showValue(const NByteArray& bytes) {
    const std::string& raw = bytes.toStdString();
    const bool plain = format::xmlTextProblem(raw).empty() && raw.rfind(kBase64Prefix, 0) != 0;
    return plain ? raw : kBase64Prefix + toBase64(bytes);
}

bool isUtf8(const std::string& text) {
    try {
        (void)nlohmann::json(text).dump();
        return true;
    } catch (const nlohmann::json::type_error&) {
        return false;
    }
}

NDeviceInfoFactory parseValues(const std::vector<std::string>& pairs) {
    NDeviceInfoFactory info;
    std::set<std::string> keys;
    for (const std::string& pair : pairs) {
        const auto equals = pair.find('=');
        if (equals == std::string::npos || equals == 0) {
            failUsage("'" + pair + "' is not KEY=VALUE");
        }
        const std::string key = pair.substr(0, equals);
        std::string value = pair.substr(equals + 1);
        // The file is JSON, whose writer would replace bytes that are not UTF-8 in a name.
        if (!isUtf8(key)) {
            failUsage("the key of '" + pair + "' is not UTF-8 text, which the file cannot keep");
        }
        if (!keys.insert(key).second) {
            failUsage("the key '" + key + "' is given twice");
        }
        if (value.rfind(kBase64Prefix, 0) == 0) {
            const std::optional<NByteArray> bytes = fromBase64(value.substr(kBase64Prefix.size()));
            if (!bytes) {
                failUsage("the value of '" + key +
                          "' is not base64 as the file keeps it (groups "
                          "of four characters of A-Z a-z 0-9 + /, padded with =)");
            }
            value = bytes->toStdString();
        }
        info.append(NString(key), NByteArray(value));
    }
    return info;
}

void factoryList(const FactoryOptions& options) {
    readableStoreFile(options.configDirectory, kFactoryFile, check::FileKind::Factory);
    PRuntimeFactory store;
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    store.traverse([&](unsigned long long id, const NDeviceInfoFactory& info) {
        nlohmann::ordered_json values = nlohmann::ordered_json::array();
        info.traverse([&](const NString& key, const NByteArray& value) {
            if (!options.json) {
                printFields({format::deviceIdText(id), key.toStdString(), showValue(value)});
                return;
            }
            const std::string& raw = value.toStdString();
            values.push_back(
                {{"key", key.toStdString()},
                 {"base64", toBase64(value)},
                 {"text",
                  format::xmlTextProblem(raw).empty() ? nlohmann::ordered_json(raw) : nullptr}});
        });
        if (options.json) {
            list.push_back({{"id", format::deviceIdText(id)}, {"values", values}});
        }
    });
    if (options.json) {
        printJson(list);
    }
}

void factoryAdd(const FactoryOptions& options) {
    const unsigned long long id = parseDeviceId(options.id);
    const NDeviceInfoFactory info = parseValues(options.values);
    const StoreChange session(options.configDirectory, kFactoryFile);
    session.guard(check::FileKind::Factory, options.force);
    PRuntimeFactory store;
    std::optional<NDeviceInfoFactory> kept;
    store.traverse([&](unsigned long long seen, const NDeviceInfoFactory& values) {
        if (seen == id) {
            kept = values;
        }
    });
    const std::string name = "device " + format::deviceIdText(id);
    if (kept && *kept == info) {
        reportNote(name + " already holds these values; unchanged");
        return;
    }
    store.append(id, info);
    session.requireWritten();
    std::cout << (kept ? "replaced the values of " : "added ") << name << '\n';
}

void factoryRemove(const FactoryOptions& options) {
    const unsigned long long id = parseDeviceId(options.id);
    const StoreChange session(options.configDirectory, kFactoryFile);
    session.guard(check::FileKind::Factory, options.force);
    PRuntimeFactory store;
    const std::string name = "device " + format::deviceIdText(id);
    if (!store.find(id)) {
        failNotFound("no factory information for " + name);
    }
    store.remove(id);
    session.requireWritten();
    std::cout << "removed " << name << '\n';
}

} // namespace

void registerFactoryCommands(CLI::App& app) {
    auto options = std::make_shared<FactoryOptions>();
    CLI::App* factory = app.add_subcommand(
        "factory", "Factory information of devices, kept in the configuration directory (" +
                       kFactoryFile.substr(1) + ")");
    factory->require_subcommand(1);

    CLI::App* list = factory->add_subcommand(
        "list", "One line per value, by device: device, key, value (tab-separated; a value "
                "that is not plain text shows as base64:BYTES). With --json: an array of {id, "
                "values: [{key, base64, text}]} (text null when the bytes are not text)");
    addJsonFlag(*list, options->json);
    list->callback([options] { factoryList(*options); });

    const char* const idHelp = "Device identifier, 1 to 16 hexadecimal digits";
    CLI::App* add =
        factory->add_subcommand("add", "Keep the values of a device, replacing any kept before");
    add->add_option("id", options->id, idHelp)->required();
    add->add_option("values", options->values,
                    "Values as KEY=VALUE; VALUE is text, or base64:BYTES for any bytes")
        ->required();
    addForceFlag(*add, options->force);
    add->callback([options] { factoryAdd(*options); });

    CLI::App* remove =
        factory->add_subcommand("remove", "Forget the factory information of a device");
    remove->add_option("id", options->id, idHelp)->required();
    addForceFlag(*remove, options->force);
    remove->callback([options] { factoryRemove(*options); });

    shareConfigDirectory(*factory, options->configDirectory);
    finishHelp(*factory, "0 done; 1 not found or not written; 2 usage error or unreadable file",
               "pallix factory --config-dir " + kOwnConfigDirectory + " list --json");
    finishHelp(*list, "0 listed; 2 the file cannot be read", "pallix factory list");
    finishHelp(*add,
               "0 added, replaced or already there; 1 not written; 2 usage error or "
               "unreadable file",
               "pallix factory add 8101 SerialNumber=DNPXK2ABHG7F Nonce=base64:AH//");
    finishHelp(*remove, "0 removed; 1 not found or not written; 2 usage error or unreadable file",
               "pallix factory remove 8101");
}

} // namespace pallix::tool
