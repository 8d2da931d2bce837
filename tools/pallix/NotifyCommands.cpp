// "pallix notify": lists and edits the notifications of a configuration directory through the
// library's store.

#include "Commands.h"

#include "ConfigDirectoryFiles.h"
#include "Failure.h"
#include "FileGuard.h"
#include "FileNames.h"
#include "PRuntimeNotify.h"
#include "SourceFile.h"
#include "StoreCommon.h"
#include "StoreFormats.h"
#include "ToolOutput.h"
#include "Values.h"

#include <climits>
#include <filesystem>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

// The stores' file names, as the library keeps them.
const std::string kNotifyFile = std::string("/") + format::kNotifyFile;
const std::string kOldNotifyDirectory = std::string("/") + format::kOldNotifyDirectory;

struct NotifyOptions {
    std::string configDirectory;
    bool json = false;
    bool force = false;
    unsigned long long id = 0;
    std::string title;
    std::string url;
    unsigned long long user = 0;
    long long time = 0;
    bool popup = false;
    bool read = false;
    bool shown = false;
};

std::string flagsOf(const PRuntimeNotifyItem& item) {
    const std::string flags =
        std::string(item.isPopup() ? ",popup" : "") + (item.isAlreadyRead() ? ",read" : "") +
        (item.isAlreadyPopup() ? ",shown" : "") + (item.isRemove() ? ",removed" : "");
    return flags.empty() ? "-" : flags.substr(1);
}

bool sameItem(const PRuntimeNotifyItem& a, const PRuntimeNotifyItem& b) {
    return a.id() == b.id() && a.title() == b.title() && a.url() == b.url() &&
           a.userID() == b.userID() && a.timestamp() == b.timestamp() &&
           a.isPopup() == b.isPopup() && a.isAlreadyRead() == b.isAlreadyRead() &&
           a.isAlreadyPopup() == b.isAlreadyPopup() && a.isRemove() == b.isRemove();
}

// What the import of the old layout would lose: whatever in the old directory it does not
// read, since the directory goes whole; what it reads otherwise than written; and, when it brings
// a notification, the current file's, which it replaces. Each is a path and why.
std::vector<std::string> importLosses(const StoreChange& session, const std::string& old) {
    // By name: the directory may be spelled with a trailing '/', which the listing drops.
    std::set<std::filesystem::path> notifications;
    for (const check::DirectoryFile& file : check::configDirectoryFiles(session.directory())) {
        if (file.kind == check::FileKind::OldNotify) {
            notifications.insert(std::filesystem::path(file.path).filename());
        }
    }
    std::vector<std::string> losses;
    std::error_code error;
    std::set<std::filesystem::path> entries;
    for (const auto& entry : std::filesystem::directory_iterator(old, error)) {
        entries.insert(entry.path());
    }
    if (error) {
        losses.push_back(old + ": cannot be read (" + error.message() + ")");
    }
    bool brings = false;
    for (const std::filesystem::path& entry : entries) {
        if (notifications.count(entry.filename()) == 0) {
            losses.push_back(entry.string() +
                             ": is no notification the import reads, and goes with the directory");
            continue;
        }
        check::SourceFile file(entry.string());
        if (std::string problem = firstError(file, check::FileKind::OldNotify); !problem.empty()) {
            losses.push_back(std::move(problem));
        }
        brings = brings || (file.wellFormed() && file.document().child(format::notify::kOldRoot));
    }
    check::SourceFile current(session.file());
    if (brings && !current.text().empty() &&
        (!current.parseXml() || current.document()
                                    .child(format::notify::kRoot)
                                    .child(format::notify::kList)
                                    .child(format::notify::kItem))) {
        losses.insert(losses.begin(), session.file() + ": what it holds is replaced by the import");
    }
    return losses;
}

// The store of a configuration directory whose lock the caller holds. When the directory still
// has the old one-file-per-notification layout, the library imports it and deletes it without
// writing anything: the imported notifications are written at once, or they would go with this
// process. The library does not read the current file in that case; when the import brought
// nothing, the store is opened again so that it does.
std::unique_ptr<PRuntimeNotify> openNotify(const StoreChange& session, bool forChange, bool force) {
    const std::string old = session.directory() + kOldNotifyDirectory;
    std::error_code ignored;
    if (std::filesystem::is_directory(old, ignored)) {
        // The directory goes as soon as the library opens the store.
        guardImport(session.file(), old);
        guardImportLosses(importLosses(session, old), old, session.directory(), force);
        auto store = std::make_unique<PRuntimeNotify>();
        std::vector<unsigned long long> ids;
        store->traverse(
            [&](unsigned long long id, const PRuntimeNotifyItem&) { ids.push_back(id); });
        if (!ids.empty()) {
            store->update(ids.front(), store->find(ids.front()));
            session.requireWritten();
            reportNote("imported " + std::to_string(ids.size()) + " notification" +
                       (ids.size() == 1 ? "" : "s") + " from " + old + " into " + session.file() +
                       (session.existed() ? ", in place of what it held" : ""));
            return store;
        }
        reportNote("imported no notifications from " + old);
    }
    if (forChange) {
        session.guard(check::FileKind::Notify, force);
    } else {
        guardReading(session.file(), check::FileKind::Notify);
    }
    return std::make_unique<PRuntimeNotify>();
}

void notifyList(const NotifyOptions& options) {
    // Locked as for a change: opening may import the old layout and write it.
    const StoreChange session(options.configDirectory, kNotifyFile);
    const auto store = openNotify(session, false, options.force);
    nlohmann::ordered_json list = nlohmann::ordered_json::array();
    store->traverse([&](unsigned long long id, const PRuntimeNotifyItem& item) {
        if (options.json) {
            list.push_back({{"id", id},
                            {"userId", item.userID()},
                            {"timestamp", item.timestamp()},
                            {"title", item.title().toStdString()},
                            {"url", item.url().toStdString()},
                            {"popup", item.isPopup()},
                            {"read", item.isAlreadyRead()},
                            {"shown", item.isAlreadyPopup()},
                            {"removed", item.isRemove()}});
        } else {
            printFields({std::to_string(id), std::to_string(item.userID()),
                         std::to_string(item.timestamp()), flagsOf(item),
                         item.title().toStdString(), item.url().toStdString()});
        }
    });
    if (options.json) {
        printJson(list);
    }
}

void notifyAdd(const NotifyOptions& options) {
    if (options.shown && !options.read) {
        failUsage("--shown cannot be kept without --read: the file records a notification as "
                  "shown exactly when it is read");
    }
    PRuntimeNotifyItem item;
    item.setID(options.id);
    item.setTitle(NString(options.title));
    item.setURL(NString(options.url));
    item.setUserID(options.user);
    item.setTimestamp(options.time);
    item.setIsPopup(options.popup);
    item.setAlreadyRead(options.read);
    item.setAlreadyPopup(options.read);

    const StoreChange session(options.configDirectory, kNotifyFile);
    const auto store = openNotify(session, true, options.force);
    const std::string name = "notification " + std::to_string(options.id);
    const bool replacing = store->exist(options.id);
    if (replacing && sameItem(store->find(options.id), item)) {
        reportNote(name + " is already there with these values; unchanged");
        return;
    }
    store->append(options.id, item);
    session.requireWritten();
    std::cout << (replacing ? "replaced " : "added ") << name << '\n';
}

void notifyRemove(const NotifyOptions& options) {
    const StoreChange session(options.configDirectory, kNotifyFile);
    const auto store = openNotify(session, true, options.force);
    const std::string name = "notification " + std::to_string(options.id);
    if (!store->exist(options.id)) {
        failNotFound("no " + name);
    }
    if (store->find(options.id).isRemove()) {
        reportNote(name + " is already marked removed; unchanged");
        return;
    }
    store->remove(options.id);
    session.requireWritten();
    std::cout << "marked " << name << " removed\n";
}

} // namespace

void registerNotifyCommands(CLI::App& app) {
    auto options = std::make_shared<NotifyOptions>();
    CLI::App* notify =
        app.add_subcommand("notify", "List, add or remove the notifications of a configuration "
                                     "directory (" +
                                         kNotifyFile.substr(1) + ")");
    notify->require_subcommand(1);

    CLI::App* list = notify->add_subcommand(
        "list", "One line per notification, by id: id, user, time, flags, title, address "
                "(tab-separated; flags are popup, read, shown, removed or -). With --json: an "
                "array of {id, userId, timestamp, title, url, popup, read, shown, removed}");
    addJsonFlag(*list, options->json);
    list->add_flag("--force", options->force,
                   "Import an old " + kOldNotifyDirectory.substr(1) +
                       " directory even when the import would lose something");
    list->callback([options] { notifyList(*options); });

    CLI::App* add = notify->add_subcommand("add", "Add a notification, or replace the one "
                                                  "with the same id");
    add->add_option("id", options->id, "Identifier")
        ->required()
        ->transform(UnsignedUpTo(ULLONG_MAX));
    add->add_option("--title", options->title, "Text shown to the user")->check(XmlText());
    add->add_option("--url", options->url, "Address the notification opens")->check(XmlText());
    add->add_option("--user", options->user, "User it is addressed to")
        ->transform(UnsignedUpTo(ULLONG_MAX));
    add->add_option("--time", options->time, "Time of the notification, a count kept as given")
        ->transform(IntegerIn(LLONG_MIN, LLONG_MAX));
    add->add_flag("--popup", options->popup, "To be shown as a pop-up");
    add->add_flag("--read", options->read, "Already read (and so already shown)");
    add->add_flag("--shown", options->shown, "Already shown as a pop-up (only with --read)");
    addForceFlag(*add, options->force);
    add->callback([options] { notifyAdd(*options); });

    CLI::App* remove =
        notify->add_subcommand("remove", "Mark a notification removed (it is kept, marked)");
    remove->add_option("id", options->id, "Identifier")
        ->required()
        ->transform(UnsignedUpTo(ULLONG_MAX));
    addForceFlag(*remove, options->force);
    remove->callback([options] { notifyRemove(*options); });

    shareConfigDirectory(*notify, options->configDirectory);
    finishHelp(*notify, "0 done; 1 not found or not written; 2 usage error or unreadable file",
               "pallix notify --config-dir " + kOwnConfigDirectory + " list --json");
    finishHelp(*list, "0 listed; 2 the file cannot be read", "pallix notify list --json");
    finishHelp(*add,
               "0 added, replaced or already there; 1 not written; 2 usage error or "
               "unreadable file",
               "pallix notify add 1001 --title 'Firmware 17.4 is out' --url "
               "https://example.invalid/n --user 73 --time 1709251200 --popup");
    finishHelp(*remove,
               "0 marked removed (or already); 1 not found or not written; 2 usage "
               "error or unreadable file",
               "pallix notify remove 1001");
}

} // namespace pallix::tool
