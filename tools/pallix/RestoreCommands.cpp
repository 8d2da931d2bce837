// "pallix factory" and "pallix ipsw": the factory information of devices ("/Factory.json") and
// the firmware files matched by hand to download addresses ("/RestoreIpsw.xml") of a
// configuration directory. Changes go through the library's stores; the listings also say
// what the silent stores skip in a file, and why.

#include "Commands.h"
#include "ToolOutput.h"

#include "NApplication.h"
#include "NFileSystem.h"
#include "NJsonObject.h"
#include "PRuntimeFactory.h"
#include "PRuntimeRestoreCustomFirmware.h"

#include <pugixml.hpp>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

// The configuration directory a subcommand works on: --config-dir, or the application's own.
struct ConfigDirectoryOption {
    std::string directory;

    void addTo(CLI::App* command) {
        command->add_option("--config-dir", directory,
                            "Configuration directory (default: the application's own)");
    }

    // Hands the directory to the library; false, with a message, when it is not a directory.
    bool apply() const {
        const std::string path =
            directory.empty() ? NApplication::DirectoryConfig().toStdString() : directory;
        std::error_code error;
        if (!std::filesystem::is_directory(path, error)) {
            reportError(path + ": no such directory");
            exitStatus() = 1;
            return false;
        }
        NApplication::setDirectoryConfig(NString(path));
        return true;
    }

    std::string file(const char* name) const {
        return NApplication::DirectoryConfig().toStdString() + name;
    }
};

void warn(const std::string& message) {
    reportError("warning: " + message);
}

void fail(const std::string& message) {
    reportError(message);
    exitStatus() = 1;
}

// ---------------------------------------------------------------------------------------------
// Factory information

// A device identifier as the user types it: 1 to 16 hexadecimal digits, with or without "0x".
bool parseDeviceId(const std::string& text, unsigned long long& id) {
    std::string digits = text;
    if (digits.size() > 2 && digits[0] == '0' && (digits[1] == 'x' || digits[1] == 'X')) {
        digits = digits.substr(2);
    }
    if (digits.empty() || digits.size() > 16 ||
        digits.find_first_not_of("0123456789abcdefABCDEF") != std::string::npos) {
        return false;
    }
    id = std::strtoull(digits.c_str(), nullptr, 16);
    return id != 0;
}

std::string deviceName(unsigned long long id) {
    return NString::format("%016llX", id).toStdString();
}

// Printable text as it is; anything else as "hex:" and two digits a byte.
std::string showBytes(const NByteArray& bytes) {
    const std::string& raw = bytes.toStdString();
    bool printable = true;
    for (const char c : raw) {
        const auto byte = static_cast<unsigned char>(c);
        printable = printable && byte >= 0x20 && byte < 0x7F;
    }
    if (printable) {
        return raw;
    }
    static const char digits[] = "0123456789abcdef";
    std::string text = "hex:";
    for (const char c : raw) {
        const auto byte = static_cast<unsigned char>(c);
        text += digits[byte >> 4];
        text += digits[byte & 0xF];
    }
    return text;
}

// Says which members of the factory file the store skips. False when the file is there but
// holds no JSON object at all.
bool checkFactoryFile(const std::string& path) {
    if (!std::filesystem::exists(path)) {
        return true;
    }
    const NJsonObject document(NFileSystem::file::toBytes(NString(path)));
    if (!document.exist()) {
        fail(path + ": not a JSON object; the store reads it as empty");
        return false;
    }
    std::vector<NString> names;
    document.traverse([&names](const NString& name) { names.push_back(name); });
    std::set<unsigned long long> seen;
    for (const NString& name : names) {
        const unsigned long long id = std::strtoull(name.data(), nullptr, 16);
        const std::string member = path + ": member \"" + name.toStdString() + "\"";
        const NJsonObject values = document.toObject(name);
        if (id == 0) {
            warn(member + " is not a device identifier; ignored");
        } else if (!values.exist()) {
            warn(member + " is not an object; ignored");
        } else if (values.size() == 0) {
            warn(member + " holds no values; ignored");
        } else if (!seen.insert(id).second) {
            warn(member + " names device " + deviceName(id) + " again; ignored");
        }
    }
    return true;
}

void registerFactory(CLI::App& app) {
    CLI::App* factory =
        app.add_subcommand("factory", "Factory information of devices kept in \"/Factory.json\"");
    factory->require_subcommand(1);

    auto listDirectory = std::make_shared<ConfigDirectoryOption>();
    CLI::App* list = factory->add_subcommand("list", "List every device and its values");
    listDirectory->addTo(list);
    list->callback([listDirectory] {
        if (!listDirectory->apply() || !checkFactoryFile(listDirectory->file("/Factory.json"))) {
            return;
        }
        PRuntimeFactory store;
        store.traverse([](unsigned long long id, const NDeviceInfoFactory& info) {
            std::cout << deviceName(id) << '\n';
            info.traverse([](const NString& key, const NByteArray& value) {
                std::cout << '\t' << key.toStdString() << ": " << showBytes(value) << '\n';
            });
        });
    });

    struct AddArguments {
        ConfigDirectoryOption directory;
        std::string id;
        std::vector<std::string> values;
    };
    auto add = std::make_shared<AddArguments>();
    CLI::App* addCommand =
        factory->add_subcommand("add", "Keep the values of a device, replacing any kept before");
    add->directory.addTo(addCommand);
    addCommand->add_option("id", add->id, "Device identifier, hexadecimal")->required();
    addCommand->add_option("values", add->values, "Values as KEY=VALUE")->required();
    addCommand->callback([add] {
        unsigned long long id = 0;
        if (!parseDeviceId(add->id, id)) {
            fail(add->id + ": not a device identifier (1 to 16 hexadecimal digits, not 0)");
            return;
        }
        NDeviceInfoFactory info;
        for (const std::string& pair : add->values) {
            const auto equals = pair.find('=');
            if (equals == std::string::npos || equals == 0) {
                fail(pair + ": not KEY=VALUE");
                return;
            }
            info.append(NString(pair.substr(0, equals)), NByteArray(pair.substr(equals + 1)));
        }
        if (!add->directory.apply()) {
            return;
        }
        PRuntimeFactory store;
        store.append(id, info);
        PRuntimeFactory reloaded;
        bool written = false;
        reloaded.traverse([&](unsigned long long seen, const NDeviceInfoFactory& kept) {
            written = written || (seen == id && kept == info);
        });
        if (!written) {
            fail(add->directory.file("/Factory.json") + ": could not be written");
        }
    });

    struct RemoveArguments {
        ConfigDirectoryOption directory;
        std::string id;
    };
    auto remove = std::make_shared<RemoveArguments>();
    CLI::App* removeCommand =
        factory->add_subcommand("remove", "Forget the factory information of a device");
    remove->directory.addTo(removeCommand);
    removeCommand->add_option("id", remove->id, "Device identifier, hexadecimal")->required();
    removeCommand->callback([remove] {
        unsigned long long id = 0;
        if (!parseDeviceId(remove->id, id)) {
            fail(remove->id + ": not a device identifier (1 to 16 hexadecimal digits, not 0)");
            return;
        }
        if (!remove->directory.apply()) {
            return;
        }
        PRuntimeFactory store;
        if (!store.find(id)) {
            fail("no factory information for device " + deviceName(id));
            return;
        }
        store.remove(id);
        PRuntimeFactory reloaded;
        if (reloaded.find(id)) {
            fail(remove->directory.file("/Factory.json") + ": could not be written");
        }
    });
}

// ---------------------------------------------------------------------------------------------
// Custom firmware matches

struct IpswEntry {
    std::string url;
    std::string local;
};

// The entries of the file in document order, with a word about every one the store skips.
// False when the file is there but cannot be used at all.
bool readIpswFile(const std::string& path, std::vector<IpswEntry>& entries) {
    if (!std::filesystem::exists(path)) {
        return true;
    }
    const std::string problem = describeXmlProblem(path);
    if (!problem.empty()) {
        fail(problem + "; the store reads it as empty");
        return false;
    }
    pugi::xml_document document;
    document.load_file(path.c_str(), pugi::parse_default, pugi::encoding_utf8);
    const pugi::xml_node container = document.child("Rilo").child("MATCH");
    if (!container) {
        fail(path + ": no <Rilo><MATCH> container; the store reads it as empty");
        return false;
    }
    std::set<std::string> urls;
    for (pugi::xml_node node = container.first_child(); node; node = node.next_sibling()) {
        const IpswEntry entry{node.attribute("URL").as_string(),
                              node.attribute("LOCAL").as_string()};
        if (!NFileSystem::path::exist(NString(entry.local))) {
            warn(entry.url + ": local file \"" + entry.local +
                 "\" is gone; dropped at the next change");
        } else if (!urls.insert(entry.url).second) {
            warn(entry.url + ": matched again to \"" + entry.local + "\"; ignored");
        } else {
            entries.push_back(entry);
        }
    }
    return true;
}

void registerIpsw(CLI::App& app) {
    CLI::App* ipsw = app.add_subcommand(
        "ipsw", "Firmware files matched to download addresses, kept in \"/RestoreIpsw.xml\"");
    ipsw->require_subcommand(1);

    auto listDirectory = std::make_shared<ConfigDirectoryOption>();
    CLI::App* list = ipsw->add_subcommand("list", "List every address and its local file");
    listDirectory->addTo(list);
    list->callback([listDirectory] {
        std::vector<IpswEntry> entries;
        if (!listDirectory->apply() ||
            !readIpswFile(listDirectory->file("/RestoreIpsw.xml"), entries)) {
            return;
        }
        // Ask the store itself, so that the listing is what the application gets.
        PRuntimeRestoreCustomFirmware store;
        for (const IpswEntry& entry : entries) {
            NString local;
            if (store.find(NString(entry.url), local)) {
                std::cout << entry.url << " -> " << local.toStdString() << '\n';
            }
        }
    });

    struct FindArguments {
        ConfigDirectoryOption directory;
        std::string url;
    };
    auto find = std::make_shared<FindArguments>();
    CLI::App* findCommand = ipsw->add_subcommand("find", "Show the local file of an address");
    find->directory.addTo(findCommand);
    findCommand->add_option("url", find->url, "Firmware download address")->required();
    findCommand->callback([find] {
        if (!find->directory.apply()) {
            return;
        }
        PRuntimeRestoreCustomFirmware store;
        NString local;
        if (!store.find(NString(find->url), local)) {
            fail(find->url + ": no local file matched");
            return;
        }
        std::cout << local.toStdString() << '\n';
    });

    struct AddArguments {
        ConfigDirectoryOption directory;
        std::string url;
        std::string local;
    };
    auto add = std::make_shared<AddArguments>();
    CLI::App* addCommand = ipsw->add_subcommand(
        "add", "Match a local firmware file to an address, replacing an earlier match");
    add->directory.addTo(addCommand);
    addCommand->add_option("url", add->url, "Firmware download address")->required();
    addCommand->add_option("local", add->local, "Local firmware file (kept as an absolute path)")
        ->required();
    addCommand->callback([add] {
        std::error_code error;
        const std::string local =
            std::filesystem::absolute(add->local, error).lexically_normal().string();
        if (error || !std::filesystem::exists(local)) {
            fail(add->local + ": no such file; the store keeps a match only while its file exists");
            return;
        }
        if (!add->directory.apply()) {
            return;
        }
        PRuntimeRestoreCustomFirmware store;
        store.append(NString(add->url), NString(local));
        if (store.find(NString(add->url)).toStdString() != local) {
            fail(add->directory.file("/RestoreIpsw.xml") + ": could not be written");
        }
    });

    struct RemoveArguments {
        ConfigDirectoryOption directory;
        std::string url;
    };
    auto remove = std::make_shared<RemoveArguments>();
    CLI::App* removeCommand = ipsw->add_subcommand("remove", "Forget the match of an address");
    remove->directory.addTo(removeCommand);
    removeCommand->add_option("url", remove->url, "Firmware download address")->required();
    removeCommand->callback([remove] {
        if (!remove->directory.apply()) {
            return;
        }
        PRuntimeRestoreCustomFirmware store;
        if (!store.find(NString(remove->url), nullptr)) {
            fail(remove->url + ": no local file matched");
            return;
        }
        store.remove(NString(remove->url));
        if (!std::filesystem::exists(remove->directory.file("/RestoreIpsw.xml")) ||
            store.find(NString(remove->url), nullptr)) {
            fail(remove->directory.file("/RestoreIpsw.xml") + ": could not be written");
        }
    });
}

} // namespace

void registerRestoreCommands(CLI::App& app) {
    registerFactory(app);
    registerIpsw(app);
}

} // namespace pallix::tool
