#include "ConfigLists.h"

#include "ConfigurationFormat.h"
#include "Failure.h"
#include "Suggestion.h"
#include "ToolOutput.h"
#include "Values.h"

#include "NFileSystem.h"
#include "PRuntimeConfig.h"

#include <charconv>
#include <functional>
#include <iostream>
#include <optional>

namespace pallix::tool::config {

namespace {

namespace cfg = format::configuration;
using json = nlohmann::ordered_json;
using C = PRuntimeConfig;

// The fields of an entry, named after the file's attributes.
const std::string kPath = lowerCamel(cfg::kPath);
const std::string kRoot = lowerCamel(cfg::kRootFlag);
const std::string kX = lowerCamel(cfg::kX);
const std::string kY = lowerCamel(cfg::kY);
const std::string kLocation = lowerCamel(cfg::kLocation);

json place(double x, double y, const std::string& location) {
    return {{kX, x}, {kY, y}, {kLocation, location}};
}

NString text(const json& entry, const std::string& field) {
    return NString(entry.at(field).get<std::string>());
}

// A list, and the library's operations on its entries, which are the objects "list --json"
// prints.
struct List {
    const char* name;
    std::function<void(C&, json&)> read;
    std::function<void(C&, const json&)> append;
    std::function<void(C&, const json&)> remove;
    void (C::*clear)() = nullptr; // only the place lists can be cleared
    bool places = false;          // X Y NAME; the others hold paths
    bool rooted = false;          // paths with a root flag
};

// The two place lists have the same operations under other names.
List placeList(const char* name,
               void (C::*traverse)(const std::function<void(double, double, const NString&)>&),
               void (C::*append)(double, double, const NString&), void (C::*remove)(double, double),
               void (C::*clear)()) {
    return {name,
            [traverse](C& c, json& entries) {
                (c.*traverse)([&entries](double x, double y, const NString& location) {
                    entries.push_back(place(x, y, location.toStdString()));
                });
            },
            [append](C& c, const json& e) {
                (c.*append)(e.at(kX).get<double>(), e.at(kY).get<double>(), text(e, kLocation));
            },
            [remove](C& c, const json& e) {
                (c.*remove)(e.at(kX).get<double>(), e.at(kY).get<double>());
            },
            clear,
            true};
}

const std::vector<List>& lists() {
    static const std::vector<List> table{
        {cfg::kCustomBackup,
         [](C& c, json& entries) {
             c.customBackupTraverse([&entries](const NString& path) {
                 entries.push_back({{kPath, path.data()}});
             });
         },
         [](C& c, const json& e) { c.customBackupAppend(text(e, kPath)); },
         [](C& c, const json& e) { c.customBackupRemove(text(e, kPath)); }},
        {cfg::kFileFavorites,
         [](C& c, json& entries) {
             c.fileCollectTraverse([&entries](const NString& path, bool root) {
                 entries.push_back({{kPath, path.data()}, {kRoot, root}});
                 return true;
             });
         },
         [](C& c, const json& e) { c.fileCollectAppend(text(e, kPath), e.at(kRoot).get<bool>()); },
         [](C& c, const json& e) { c.fileCollectRemove(text(e, kPath), e.at(kRoot).get<bool>()); },
         nullptr, false, true},
        placeList(cfg::kVirtualLocation, &C::virtualLocationTraverse, &C::virtualLocationAppend,
                  &C::virtualLocationRemove, &C::virtualLocationClear),
        placeList(cfg::kLocationFavorites, &C::locationCollectTraverse, &C::locationCollectAppend,
                  &C::locationCollectRemove, &C::locationCollectClear)};
    return table;
}

json entriesOf(C& config, const List& list) {
    json entries = json::array();
    list.read(config, entries);
    return entries;
}

std::vector<std::string> listNames(bool clearable) {
    std::vector<std::string> names;
    for (const List& list : lists()) {
        if (!clearable || list.clear != nullptr) {
            names.emplace_back(list.name);
        }
    }
    return names;
}

const List& parseList(const std::string& name) {
    for (const List& list : lists()) {
        if (name == list.name) {
            return list;
        }
    }
    failUsage("unknown list '" + name + "' (" + joined(listNames(false), "or") + ")" +
              didYouMean(name, listNames(false)));
}

std::string usage(const List& list, bool withLocation) {
    return list.places   ? (withLocation ? "X Y NAME" : "X Y")
           : list.rooted ? "PATH [--root]"
                         : "PATH";
}

// The shortest text that reads back as the same number, so that a listed place can be given
// back to "remove", which compares coordinates exactly.
std::string numberText(double value) {
    char buffer[32];
    return std::string(buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr);
}

double coordinate(const char* which, const std::string& text) {
    const std::optional<double> value = parseFiniteNumber(text);
    if (!value) {
        failUsage(std::string(which) + ": '" + text +
                  "' is not a finite number (a place's coordinates are compared exactly, and "
                  "NaN never matches)");
    }
    return *value;
}

// The entry that the command line names. The lists store and compare paths in the framework's
// normal form, so looking one up needs the same form.
json parseEntry(const List& list, const std::vector<std::string>& values, bool root,
                bool withLocation) {
    const std::size_t expected = list.places ? (withLocation ? 3 : 2) : 1;
    if (values.size() != expected) {
        failUsage(list.name + (" takes " + (list.places ? usage(list, withLocation) : "one PATH")) +
                  ", not " + std::to_string(values.size()) + " value" +
                  (values.size() == 1 ? "" : "s"));
    }
    if (root && !list.rooted) {
        failUsage(std::string("--root applies to ") + cfg::kFileFavorites + " only");
    }
    if (list.places) {
        return place(coordinate("X", values[0]), coordinate("Y", values[1]),
                     withLocation ? xmlText("the name", values[2]) : std::string());
    }
    // Most likely an unset variable in a script: no list of the application holds an empty path.
    if (values[0].empty()) {
        failUsage(list.name + std::string(": the path is empty"));
    }
    const NString path(xmlText("the path", values[0]));
    json entry{{kPath, NFileSystem::path::format(NFileSystem::path(path)).data().data()}};
    if (list.rooted) {
        entry[kRoot] = root;
    }
    return entry;
}

// How messages name an entry: its path, or its coordinates as "list" prints them.
std::string what(const json& entry) {
    return entry.contains(kPath) ? entry.at(kPath).get<std::string>()
                                 : numberText(entry.at(kX).get<double>()) + " " +
                                       numberText(entry.at(kY).get<double>());
}

// The first entry that the library's own lookup would find (the same normal path, or exactly
// the same coordinates), its position, and how many entries the list holds.
struct Match {
    std::optional<std::size_t> index;
    json entry;
    std::size_t size = 0;
};

Match findEntry(C& config, const List& list, const json& wanted) {
    const json entries = entriesOf(config, list);
    for (std::size_t i = 0; i < entries.size(); ++i) {
        const json& entry = entries[i];
        if (list.places ? entry.at(kX) == wanted.at(kX) && entry.at(kY) == wanted.at(kY)
                        : entry.at(kPath) == wanted.at(kPath)) {
            return {i, entry, entries.size()};
        }
    }
    return {std::nullopt, json(), entries.size()};
}

void report(const List& list, const std::string& message) {
    std::cout << list.name << ": " << message << '\n';
}

const char* with(bool root) {
    return root ? "with" : "without";
}

void addEntry(ConfigSession& session, const List& list, const json& entry) {
    const Match match = findEntry(session.config(), list, entry);
    const bool root = entry.value(kRoot, false);
    const std::string location = entry.value(kLocation, "");
    const std::string named = what(entry) + (list.places ? " '" + location + "'" : "");
    // A path that is there already stays as it is; a place is taken out and added at the end
    // under the new name, which changes nothing only for the last one under the same name.
    const bool last = match.index && *match.index + 1 == match.size;
    const bool renamed = match.index && match.entry.value(kLocation, "") != location;
    if (match.index && match.entry.value(kRoot, false) != root) {
        failRejected(list.name + (": " + what(entry)) + " is already there " +
                     with(match.entry.value(kRoot, false)) +
                     " the root flag, which adding does not change; nothing changed (remove "
                     "it, then add it again)");
    }
    if (match.index && (!list.places || (last && !renamed))) {
        report(list, named + " is already there" + (list.places ? ", the most recent" : "") +
                         "; nothing changed");
        return;
    }
    list.append(session.config(), entry);
    session.requireWritten();
    if (!match.index) {
        report(list, "added " + named + (root ? " (root)" : ""));
    } else if (renamed) {
        report(list, "renamed " + what(entry) + " from '" + match.entry.value(kLocation, "") +
                         "' to '" + location + "'" + (last ? "" : " and moved it to the end"));
    } else {
        report(list, "moved " + named + " to the end, the most recent");
    }
}

void removeEntry(ConfigSession& session, const List& list, const json& entry) {
    const Match match = findEntry(session.config(), list, entry);
    if (!match.index) {
        failNotFound(list.name + (": " + what(entry)) + " is not there; nothing changed");
    }
    const bool root = match.entry.value(kRoot, false);
    if (root != entry.value(kRoot, false)) {
        failNotFound(list.name + (": " + what(entry)) + " is there " + with(root) +
                     " the root flag; nothing changed (remove it " + with(root) + " --root)");
    }
    list.remove(session.config(), entry);
    session.requireWritten();
    report(list, "removed " + what(entry) +
                     (list.places ? " '" + match.entry.value(kLocation, "") + "'" : ""));
}

void clearList(ConfigSession& session, const List& list) {
    const std::size_t count = entriesOf(session.config(), list).size();
    if (count == 0) {
        report(list, "already empty; nothing changed");
        return;
    }
    (session.config().*list.clear)();
    session.requireWritten();
    report(list, "removed " + std::to_string(count) + (count == 1 ? " entry" : " entries"));
}

} // namespace

void addLists(PRuntimeConfig& config, nlohmann::ordered_json& document) {
    for (const List& list : lists()) {
        document[lowerCamel(list.name)] = entriesOf(config, list);
    }
}

std::vector<std::string> fieldsOf(const nlohmann::ordered_json& entry) {
    std::vector<std::string> fields;
    for (const auto& [name, value] : entry.items()) {
        fields.push_back(value.is_boolean()  ? (value.get<bool>() ? name : "-")
                         : value.is_number() ? numberText(value.get<double>())
                                             : value.get<std::string>());
    }
    return fields;
}

void addListActions(CLI::App& group, ConfigOptions& options) {
    static std::string name;
    static std::vector<std::string> values;
    static bool root = false;
    const std::string names = joined(listNames(false), "or");
    std::vector<std::string> adding;
    std::vector<std::string> removing;
    for (const List& list : lists()) {
        adding.push_back(list.name + (" " + usage(list, true)));
        removing.push_back(list.name + (" " + usage(list, false)));
    }

    CLI::App& listCommand = addConfigCommand(
        group, options, "list",
        "Print a list, one entry per line, its fields separated by a tab (a flag as its name or "
        "'-'). With --json: {\"list\": NAME, \"entries\": [...]}, each entry {\"" +
            kPath + "\"}, {\"" + kPath + "\", \"" + kRoot + "\"} or {\"" + kX + "\", \"" + kY +
            "\", \"" + kLocation + "\"}.",
        std::string("pallix config list ") + cfg::kVirtualLocation + " --json", "0 printed", true);
    listCommand.add_option("list", name, names)->required();
    listCommand.callback([&options] {
        const List& list = parseList(name);
        ConfigSession session(options, false);
        const json entries = entriesOf(session.config(), list);
        if (options.json) {
            printJson(json{{"list", list.name}, {"entries", entries}});
            return;
        }
        for (const json& entry : entries) {
            printFields(fieldsOf(entry));
        }
    });

    CLI::App& addCommand = addConfigCommand(
        group, options, "add",
        "Add to a list: " + joined(adding, "and") +
            ". A place that is there already (same X and Y) is renamed and moved to the end, as "
            "the application does; a path that is there already is left as it is, root flag "
            "included. Prints what happened.",
        std::string("pallix config add ") + cfg::kVirtualLocation + " 31.2304 121.4737 Shanghai",
        "0 added, renamed, moved, or already there (nothing written); 1 a file favourite there "
        "with the other root flag (nothing written), or a change that could not be written");
    CLI::App& removeCommand = addConfigCommand(
        group, options, "remove",
        "Remove from a list: " + joined(removing, "and") +
            ". The root flag must match; places are given exactly as 'list' prints them.",
        std::string("pallix config remove ") + cfg::kCustomBackup + " /Volumes/Backups",
        "0 removed; 1 not there (nothing written), or a change that could not be written");
    for (CLI::App* command : {&addCommand, &removeCommand}) {
        const bool adds = command == &addCommand;
        command->add_option("list", name, names)->required();
        command->add_option("values", values, "The entry")->required();
        command->add_flag("--root", root,
                          adds ? "Mark a file favourite as a root"
                               : "The file favourite is marked as a root");
        command->callback([&options, adds] {
            const List& list = parseList(name);
            const json entry = parseEntry(list, values, root, adds);
            ConfigSession session(options, true);
            (adds ? addEntry : removeEntry)(session, list, entry);
        });
    }

    CLI::App& clearCommand = addConfigCommand(
        group, options, "clear", "Empty a place list: " + joined(listNames(true), "or") + ".",
        std::string("pallix config clear ") + cfg::kVirtualLocation,
        "0 cleared, or already empty (nothing written); 1 a change that could not be written");
    clearCommand.add_option("list", name, joined(listNames(true), "or"))->required();
    clearCommand.callback([&options] {
        const List& list = parseList(name);
        if (list.clear == nullptr) {
            failUsage(list.name + std::string(" cannot be cleared; remove its entries one by one"));
        }
        ConfigSession session(options, true);
        clearList(session, list);
    });
}

} // namespace pallix::tool::config
