// "pallix portbind" and "pallix ipsw": the two stores of a configuration directory that map a
// text to a text (a port to its binding, a firmware address to its local file). Their commands
// have one shape, each store's own words, and go through the library's stores only.

#include "Commands.h"

#include "Failure.h"
#include "FileGuard.h"
#include "FileNames.h"
#include "PRuntimePortbind.h"
#include "PRuntimeRestoreCustomFirmware.h"
#include "StoreCommon.h"
#include "ToolOutput.h"
#include "Values.h"

#include <sys/stat.h>

#include <filesystem>
#include <iostream>
#include <memory>
#include <optional>
#include <string>

namespace pallix::tool {

namespace {

// What one store is called in its commands.
struct PairWords {
    const char* command;     // "portbind"
    const char* description; // of the group
    const char* file;        // the store's file in the configuration directory
    check::FileKind kind;
    const char* key; // the names of the two texts, as arguments and in JSON
    const char* value;
    const char* keyHelp;
    const char* valueHelp;
    const char* verb;      // "bound": "bound KEY to VALUE", "rebound ...", "already bound to"
    const char* unmatched; // completes "KEY" when the store has no pair for it
    const char* removed;   // precedes "KEY" when its pair is gone
    const char* example;   // a key, for the help's examples
    const char* exampleValue;
};

struct PairOptions {
    std::string configDirectory;
    bool json = false;
    bool force = false;
    std::string key;
    std::string value;
};

// The value of a key, as each store answers for it.
std::optional<std::string> valueOf(PRuntimePortbind& store, const std::string& key) {
    return store.exist(NString(key)) ? std::optional(store.find(NString(key)).toStdString())
                                     : std::nullopt;
}
std::optional<std::string> valueOf(PRuntimeRestoreCustomFirmware& store, const std::string& key) {
    NString local;
    return store.find(NString(key), local) ? std::optional(local.toStdString()) : std::nullopt;
}

// What a store takes, checked before anything is read: a binding needs both texts; a firmware
// file is kept by its absolute path, and only while it exists.
std::string acceptedValue(PRuntimePortbind*, const PairOptions& options) {
    if (options.key.empty() || options.value.empty()) {
        failUsage("a binding needs a non-empty source and target");
    }
    return options.value;
}
std::string acceptedValue(PRuntimeRestoreCustomFirmware*, const PairOptions& options) {
    if (options.key.empty() || options.value.empty()) {
        failUsage(options.key.empty() ? "the download address is empty"
                                      : "the local file is empty");
    }
    // A ".." after a symbolic link leads to where the link points, so the directory is resolved
    // as the system resolves it; the file keeps its own name, a link included.
    std::error_code error;
    const std::filesystem::path given = std::filesystem::absolute(options.value, error);
    const std::string local =
        (std::filesystem::weakly_canonical(given.parent_path(), error) / given.filename()).string();
    struct stat info {};
    // The store drops a match whose file is gone the next time it reads the file.
    if (error || ::stat(local.c_str(), &info) != 0) {
        failUnreadable(options.value + ": no such file; the store keeps a match only while its "
                                       "file exists");
    }
    if (!S_ISREG(info.st_mode)) {
        failUnreadable(options.value + ": is not a regular file; a firmware file is expected");
    }
    return local;
}

template <typename Store> void list(const PairWords& words, const PairOptions& options) {
    readableStoreFile(options.configDirectory, std::string("/") + words.file, words.kind);
    Store store;
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    store.traverse([&](const NString& key, const NString& value) {
        if (options.json) {
            list.push_back({{words.key, key.toStdString()}, {words.value, value.toStdString()}});
        } else {
            printFields({key.toStdString(), value.toStdString()});
        }
    });
    if (options.json) {
        printJson(list);
    }
}

// A key that no pair can have: the stores never keep an empty one.
void requireKey(const PairWords& words, const PairOptions& options) {
    if (options.key.empty()) {
        failUsage(std::string("the ") + words.key + " is empty");
    }
}

template <typename Store> void find(const PairWords& words, const PairOptions& options) {
    requireKey(words, options);
    readableStoreFile(options.configDirectory, std::string("/") + words.file, words.kind);
    Store store;
    const std::optional<std::string> value = valueOf(store, options.key);
    if (!value) {
        failNotFound(escapeField(options.key) + words.unmatched);
    }
    printAnswer(options.json, {{words.key, options.key}, {words.value, *value}},
                escapeField(*value));
}

template <typename Store> void add(const PairWords& words, const PairOptions& options) {
    const std::string value = acceptedValue(static_cast<Store*>(nullptr), options);
    const StoreChange session(options.configDirectory, std::string("/") + words.file);
    session.guard(words.kind, options.force);
    Store store;
    const std::optional<std::string> earlier = valueOf(store, options.key);
    // Said as the listing shows them, so that a tab or a line break in them stays visible.
    const std::string key = escapeField(options.key);
    if (earlier == value) {
        reportNote(key + " is already " + words.verb + " to " + escapeField(value) + "; unchanged");
        return;
    }
    store.append(NString(options.key), NString(value));
    session.requireWritten();
    std::cout << (earlier ? "re" : "") << words.verb << ' ' << key << " to " << escapeField(value)
              << (earlier ? " (was " + escapeField(*earlier) + ")" : "") << '\n';
}

template <typename Store> void remove(const PairWords& words, const PairOptions& options) {
    requireKey(words, options);
    const StoreChange session(options.configDirectory, std::string("/") + words.file);
    session.guard(words.kind, options.force);
    Store store;
    if (!valueOf(store, options.key)) {
        failNotFound(escapeField(options.key) + words.unmatched);
    }
    store.remove(NString(options.key));
    session.requireWritten();
    std::cout << words.removed << escapeField(options.key) << '\n';
}

template <typename Store> void registerPairStore(CLI::App& app, const PairWords& words) {
    auto options = std::make_shared<PairOptions>();
    const std::string key = words.key;
    const std::string value = words.value;
    CLI::App* group =
        app.add_subcommand(words.command, words.description + std::string(" (") + words.file + ")");
    group->require_subcommand(1);

    CLI::App* listing = group->add_subcommand(
        "list", "One line per pair, by " + key + ": " + key + " and " + value +
                    ", tab-separated. With --json: an array of {" + key + ", " + value + "}");
    addJsonFlag(*listing, options->json);
    listing->callback([&words, options] { list<Store>(words, *options); });

    CLI::App* finding = group->add_subcommand(
        "find", "The " + value + " of a " + key + ". With --json: {" + key + ", " + value + "}");
    finding->add_option(key, options->key, words.keyHelp)->required();
    addJsonFlag(*finding, options->json);
    finding->callback([&words, options] { find<Store>(words, *options); });

    CLI::App* adding = group->add_subcommand("add", "Pair a " + key + " with a " + value +
                                                        ", replacing its "
                                                        "earlier pair");
    adding->add_option(key, options->key, words.keyHelp)->required()->check(XmlText());
    adding->add_option(value, options->value, words.valueHelp)->required()->check(XmlText());
    addForceFlag(*adding, options->force);
    adding->callback([&words, options] { add<Store>(words, *options); });

    CLI::App* removing = group->add_subcommand("remove", "Forget the pair of a " + key);
    removing->add_option(key, options->key, words.keyHelp)->required();
    addForceFlag(*removing, options->force);
    removing->callback([&words, options] { remove<Store>(words, *options); });

    shareConfigDirectory(*group, options->configDirectory);
    const std::string pallix = std::string("pallix ") + words.command;
    const std::string unreadable = "2 usage error or unreadable file";
    finishHelp(*group, "0 done; 1 not found or not written; " + unreadable,
               pallix + " --config-dir " + kOwnConfigDirectory + " list --json");
    finishHelp(*listing, "0 listed; 2 the file cannot be read", pallix + " list");
    finishHelp(*finding, "0 found; 1 not " + std::string(words.verb) + "; " + unreadable,
               pallix + " find " + words.example + " --json");
    finishHelp(*adding,
               "0 " + std::string(words.verb) + ", re" + words.verb + " or already " + words.verb +
                   "; 1 not written; " + unreadable,
               pallix + " add " + words.example + " " + words.exampleValue);
    finishHelp(*removing,
               "0 forgotten; 1 not " + std::string(words.verb) + " or not written; " + unreadable,
               pallix + " remove " + words.example);
}

const PairWords kPortbindWords{"portbind",
                               "List, add or remove the port bindings of a configuration directory",
                               format::kPortbindFile,
                               check::FileKind::Portbind,
                               "source",
                               "target",
                               "Source",
                               "Target",
                               "bound",
                               " is not bound",
                               "unbound ",
                               "usb-1",
                               "tcp:62078"};

const PairWords kIpswWords{
    "ipsw",
    "Firmware files matched to download addresses, kept in the configuration directory",
    format::kCustomFirmwareFile,
    check::FileKind::Ipsw,
    "url",
    "local",
    "Firmware download address",
    "Local firmware file (kept as an absolute path; the store drops a match whose file is gone, "
    "and so does its list)",
    "matched",
    ": no local file matched (a match whose file is gone is not read, and goes at the next change)",
    "forgot the match of ",
    "https://updates.example.com/ipsw/iPhone15,2_17.1_Restore.ipsw",
    "~/Downloads/iPhone15,2_17.1_Restore.ipsw"};

} // namespace

void registerPortbindCommands(CLI::App& app) {
    registerPairStore<PRuntimePortbind>(app, kPortbindWords);
}

void registerIpswCommands(CLI::App& app) {
    registerPairStore<PRuntimeRestoreCustomFirmware>(app, kIpswWords);
}

} // namespace pallix::tool
