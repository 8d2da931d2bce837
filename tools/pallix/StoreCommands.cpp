// "pallix notify" and "pallix portbind": list and edit the notification and port binding
// stores of a configuration directory through the library.

#include "Commands.h"
#include "ToolOutput.h"

#include "NApplication.h"
#include "PRuntime.h"
#include "PRuntimeNotify.h"
#include "PRuntimePortbind.h"

#include <pugixml.hpp>

#include <sys/stat.h>

#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

bool isDirectory(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode);
}

bool exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

// Makes `directory` the application's configuration directory, or the platform default when it
// is empty. Returns the directory in use, or an empty text after reporting why it cannot be.
std::string useConfigDirectory(const std::string& directory) {
    if (!directory.empty()) {
        NApplication::setDirectoryConfig(NString(directory));
    }
    const std::string used = NApplication::DirectoryConfig().toStdString();
    if (!isDirectory(used)) {
        reportError(used + ": no such directory");
        return std::string();
    }
    return used;
}

// The library reads a file it cannot use as an empty store, silently. The tool says why, so
// that nobody takes a broken file for an empty one, and refuses to overwrite it.
bool checkStoreFile(const std::string& path, const char* root, const char* list) {
    if (!exists(path)) {
        return true;
    }
    const std::string problem = describeXmlProblem(path);
    if (!problem.empty()) {
        reportError(problem);
        return false;
    }
    pugi::xml_document document;
    document.load_file(path.c_str(), pugi::parse_default, pugi::encoding_utf8);
    if (!document.child(root).child(list)) {
        reportError(path + ": no <" + root + "><" + list + "> element");
        return false;
    }
    return true;
}

void fail() {
    exitStatus() = 1;
}

// Notifications.

struct NotifyOptions {
    std::string configDirectory;
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
    std::string flags;
    const auto add = [&](bool set, const char* name) {
        if (set) {
            flags += flags.empty() ? name : std::string(",") + name;
        }
    };
    add(item.isPopup(), "popup");
    add(item.isAlreadyRead(), "read");
    add(item.isAlreadyPopup(), "shown");
    add(item.isRemove(), "removed");
    return flags.empty() ? "-" : flags;
}

// Opens the store of the directory; when that imported the old layout, writes the imported
// notifications at once, since the old directory is gone from now on.
PRuntimeNotify* openNotify(const NotifyOptions& options, bool forChange) {
    const std::string directory = useConfigDirectory(options.configDirectory);
    if (directory.empty()) {
        return nullptr;
    }
    const std::string file = directory + "/notify.xml";
    const std::string old = directory + "/Notify";
    const bool importing = isDirectory(old);
    if (!importing && !checkStoreFile(file, "Nevor", "Notify")) {
        if (forChange) {
            reportError("not changing " + file);
        }
        return nullptr;
    }
    PRuntimeNotify* store = PRuntime::getInstance()->notify();
    if (store == nullptr) {
        reportError("the notification store could not be created");
        return nullptr;
    }
    if (importing) {
        std::vector<std::pair<unsigned long long, PRuntimeNotifyItem>> imported;
        store->traverse([&](unsigned long long id, const PRuntimeNotifyItem& item) {
            imported.emplace_back(id, item);
        });
        if (!imported.empty() && !forChange) {
            store->append(imported.front().first, imported.front().second);
        }
        std::cerr << "pallix: imported " << imported.size() << " notification"
                  << (imported.size() == 1 ? "" : "s") << " from " << old << " into " << file
                  << '\n';
    }
    return store;
}

void notifyList(const NotifyOptions& options) {
    PRuntimeNotify* store = openNotify(options, false);
    if (store == nullptr) {
        return fail();
    }
    store->traverse([](unsigned long long id, const PRuntimeNotifyItem& item) {
        std::cout << id << '\t' << item.userID() << '\t' << item.timestamp() << '\t'
                  << flagsOf(item) << '\t' << item.title().data() << '\t' << item.url().data()
                  << '\n';
    });
}

void notifyAdd(const NotifyOptions& options) {
    PRuntimeNotify* store = openNotify(options, true);
    if (store == nullptr) {
        return fail();
    }
    PRuntimeNotifyItem item;
    item.setID(options.id);
    item.setTitle(NString(options.title));
    item.setURL(NString(options.url));
    item.setUserID(options.user);
    item.setTimestamp(options.time);
    item.setIsPopup(options.popup);
    item.setAlreadyRead(options.read);
    item.setAlreadyPopup(options.shown);
    const bool replacing = store->exist(options.id);
    store->append(options.id, item);
    // The library does not report a failed write: read the file back to know.
    PRuntimeNotify written;
    if (!written.exist(options.id) || written.find(options.id).title() != item.title()) {
        reportError("could not write " + NApplication::DirectoryConfig().toStdString() +
                    "/notify.xml");
        return fail();
    }
    std::cout << (replacing ? "replaced" : "added") << " notification " << options.id << '\n';
}

void notifyRemove(const NotifyOptions& options) {
    PRuntimeNotify* store = openNotify(options, true);
    if (store == nullptr) {
        return fail();
    }
    if (!store->exist(options.id)) {
        reportError("no notification " + std::to_string(options.id));
        return fail();
    }
    store->remove(options.id);
    PRuntimeNotify written;
    if (!written.find(options.id).isRemove()) {
        reportError("could not write " + NApplication::DirectoryConfig().toStdString() +
                    "/notify.xml");
        return fail();
    }
    std::cout << "marked notification " << options.id << " removed\n";
}

// Port bindings.

struct PortbindOptions {
    std::string configDirectory;
    std::string source;
    std::string target;
};

PRuntimePortbind* openPortbind(const PortbindOptions& options, bool forChange) {
    const std::string directory = useConfigDirectory(options.configDirectory);
    if (directory.empty()) {
        return nullptr;
    }
    const std::string file = directory + "/PortBind.xml";
    if (!checkStoreFile(file, "Rilo", "BIND")) {
        if (forChange) {
            reportError("not changing " + file);
        }
        return nullptr;
    }
    PRuntimePortbind* store = PRuntime::getInstance()->portbind();
    if (store == nullptr) {
        reportError("the port binding store could not be created");
    }
    return store;
}

void portbindList(const PortbindOptions& options) {
    PRuntimePortbind* store = openPortbind(options, false);
    if (store == nullptr) {
        return fail();
    }
    store->traverse([](const NString& source, const NString& target) {
        std::cout << source.data() << '\t' << target.data() << '\n';
    });
}

void portbindAdd(const PortbindOptions& options) {
    if (options.source.empty() || options.target.empty()) {
        reportError("a binding needs a non-empty source and target");
        return fail();
    }
    PRuntimePortbind* store = openPortbind(options, true);
    if (store == nullptr) {
        return fail();
    }
    const NString source(options.source);
    const bool replacing = store->exist(source);
    store->append(source, NString(options.target));
    PRuntimePortbind written;
    if (written.find(source) != NString(options.target)) {
        reportError("could not write " + NApplication::DirectoryConfig().toStdString() +
                    "/PortBind.xml");
        return fail();
    }
    std::cout << (replacing ? "rebound " : "bound ") << options.source << " to " << options.target
              << '\n';
}

void portbindRemove(const PortbindOptions& options) {
    if (options.source.empty()) {
        reportError("a binding needs a non-empty source");
        return fail();
    }
    PRuntimePortbind* store = openPortbind(options, true);
    if (store == nullptr) {
        return fail();
    }
    const NString source(options.source);
    if (!store->exist(source)) {
        reportError(options.source + " is not bound");
        return fail();
    }
    store->remove(source);
    PRuntimePortbind written;
    if (written.exist(source) ||
        !exists(NApplication::DirectoryConfig().toStdString() + "/PortBind.xml")) {
        reportError("could not write " + NApplication::DirectoryConfig().toStdString() +
                    "/PortBind.xml");
        return fail();
    }
    std::cout << "unbound " << options.source << '\n';
}

// Runs an action, then lets the library go.
template <typename Options, typename Action>
std::function<void()> run(const std::shared_ptr<Options>& options, Action action) {
    return [options, action] {
        action(*options);
        PRuntime::freeInstance();
    };
}

void registerNotify(CLI::App& app) {
    auto options = std::make_shared<NotifyOptions>();
    CLI::App* notify =
        app.add_subcommand("notify", "List, add or remove the notifications of a configuration "
                                     "directory (\"/notify.xml\")");
    notify->add_option("--config-dir", options->configDirectory,
                       "Configuration directory (default: the application's)");
    notify->require_subcommand(1);
    // "pallix notify list --config-dir DIR" works as well as the option before "list".
    notify->fallthrough();

    CLI::App* list = notify->add_subcommand(
        "list", "One line per notification, by id: id, user, time, flags, title, address "
                "(tab-separated; flags are popup, read, shown, removed or -)");
    list->callback(run(options, notifyList));

    CLI::App* add = notify->add_subcommand("add", "Add a notification, or replace the one "
                                                  "with the same id");
    add->add_option("id", options->id, "Identifier")->required();
    add->add_option("--title", options->title, "Text shown to the user");
    add->add_option("--url", options->url, "Address the notification opens");
    add->add_option("--user", options->user, "User it is addressed to");
    add->add_option("--time", options->time, "Time of the notification");
    add->add_flag("--popup", options->popup, "To be shown as a pop-up");
    add->add_flag("--read", options->read, "Already read");
    add->add_flag("--shown", options->shown, "Already shown as a pop-up");
    add->callback(run(options, notifyAdd));

    CLI::App* remove =
        notify->add_subcommand("remove", "Mark a notification removed (it is kept, marked)");
    remove->add_option("id", options->id, "Identifier")->required();
    remove->callback(run(options, notifyRemove));
}

void registerPortbind(CLI::App& app) {
    auto options = std::make_shared<PortbindOptions>();
    CLI::App* portbind = app.add_subcommand(
        "portbind",
        "List, add or remove the port bindings of a configuration directory (\"/PortBind.xml\")");
    portbind->add_option("--config-dir", options->configDirectory,
                         "Configuration directory (default: the application's)");
    portbind->require_subcommand(1);
    portbind->fallthrough();

    CLI::App* list = portbind->add_subcommand(
        "list", "One line per binding, by source: source and target, tab-separated");
    list->callback(run(options, portbindList));

    CLI::App* add = portbind->add_subcommand("add", "Bind a source to a target, replacing its "
                                                    "earlier binding");
    add->add_option("source", options->source, "Source")->required();
    add->add_option("target", options->target, "Target")->required();
    add->callback(run(options, portbindAdd));

    CLI::App* remove = portbind->add_subcommand("remove", "Remove the binding of a source");
    remove->add_option("source", options->source, "Source")->required();
    remove->callback(run(options, portbindRemove));
}

} // namespace

void registerStoreCommands(CLI::App& app) {
    registerNotify(app);
    registerPortbind(app);
}

} // namespace pallix::tool
