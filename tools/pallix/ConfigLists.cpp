#include "ConfigLists.h"

#include "ConfigSession.h"
#include "Failure.h"
#include "Suggestion.h"
#include "Values.h"

#include "NFileSystem.h"
#include "PRuntimeConfig.h"

#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <optional>

namespace pallix::tool::config {

namespace {

// The shortest text that reads back as the same number, so that a listed place can be given
// back to "remove", which compares coordinates exactly.
std::string numberText(double value) {
    char buffer[64];
    for (int precision = 1; precision <= 17; ++precision) {
        std::snprintf(buffer, sizeof buffer, "%.*g", precision, value);
        if (std::strtod(buffer, nullptr) == value) {
            break;
        }
    }
    return buffer;
}

std::string placeText(const Entry& place) {
    return numberText(place.x) + " " + numberText(place.y);
}

void checkText(const std::string& what, const std::string& text) {
    const std::string problem = xmlTextProblem(text);
    if (!problem.empty()) {
        failUsage(what + " has " + problem);
    }
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

// The lists store and compare paths in the framework's normal form; looking an entry up needs
// the same form.
std::string normalised(const std::string& path) {
    return NFileSystem::path::format(NFileSystem::path(NString(path))).data().toStdString();
}

// The first entry that the library's own lookup would find: the same normal path, or exactly
// the same coordinates. Its position, and how many entries the list holds.
struct Match {
    std::optional<std::size_t> index;
    Entry entry;
    std::size_t size = 0;
};

Match findEntry(PRuntimeConfig& config, List list, const Entry& wanted) {
    Match match;
    for (const Entry& entry : entries(config, list)) {
        const bool same = holdsPlaces(list) ? entry.x == wanted.x && entry.y == wanted.y
                                            : entry.path == wanted.path;
        if (same && !match.index) {
            match.index = match.size;
            match.entry = entry;
        }
        ++match.size;
    }
    return match;
}

void report(List list, const std::string& what) {
    std::cout << nameOf(list) << ": " << what << '\n';
}

} // namespace

const std::vector<std::string>& listNames() {
    static const std::vector<std::string> names{"CustomBackup", "FileFavorites", "VirtualLocation",
                                                "LocationFavorites"};
    return names;
}

List parseList(const std::string& name) {
    const std::vector<std::string>& names = listNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name) {
            return static_cast<List>(i);
        }
    }
    failUsage("unknown list '" + name +
              "' (CustomBackup, FileFavorites, VirtualLocation or LocationFavorites)" +
              didYouMean(name, names));
}

const std::string& nameOf(List list) {
    return listNames()[static_cast<std::size_t>(list)];
}

bool holdsPlaces(List list) {
    return list == List::VirtualLocation || list == List::LocationFavorites;
}

Entry parseEntry(List list, const std::vector<std::string>& values, bool root, bool withLocation) {
    const std::size_t expected = holdsPlaces(list) ? (withLocation ? 3 : 2) : 1;
    if (values.size() != expected) {
        failUsage(nameOf(list) + " takes " +
                  (holdsPlaces(list) ? (withLocation ? "X Y NAME" : "X Y") : "one PATH") +
                  ", not " + std::to_string(values.size()) + " value" +
                  (values.size() == 1 ? "" : "s"));
    }
    if (root && list != List::FileFavorites) {
        failUsage("--root applies to FileFavorites only");
    }
    Entry entry;
    if (!holdsPlaces(list)) {
        checkText("the path", values[0]);
        entry.path = normalised(values[0]);
        entry.root = root;
        return entry;
    }
    entry.x = coordinate("X", values[0]);
    entry.y = coordinate("Y", values[1]);
    if (withLocation) {
        checkText("the name", values[2]);
        entry.location = values[2];
    }
    return entry;
}

std::vector<Entry> entries(PRuntimeConfig& config, List list) {
    std::vector<Entry> found;
    const auto place = [&found](double x, double y, const NString& location) {
        Entry entry;
        entry.x = x;
        entry.y = y;
        entry.location = location.toStdString();
        found.push_back(entry);
    };
    switch (list) {
    case List::CustomBackup:
        config.customBackupTraverse([&found](const NString& path) {
            Entry entry;
            entry.path = path.toStdString();
            found.push_back(entry);
        });
        break;
    case List::FileFavorites:
        config.fileCollectTraverse([&found](const NString& path, bool root) {
            Entry entry;
            entry.path = path.toStdString();
            entry.root = root;
            found.push_back(entry);
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
    return found;
}

std::vector<std::string> fieldsOf(List list, const Entry& entry) {
    if (holdsPlaces(list)) {
        return {numberText(entry.x), numberText(entry.y), entry.location};
    }
    if (list == List::FileFavorites) {
        return {entry.path, entry.root ? "root" : "-"};
    }
    return {entry.path};
}

nlohmann::ordered_json jsonOf(List list, const Entry& entry) {
    if (holdsPlaces(list)) {
        return {{"x", entry.x}, {"y", entry.y}, {"location", entry.location}};
    }
    if (list == List::FileFavorites) {
        return {{"path", entry.path}, {"root", entry.root}};
    }
    return {{"path", entry.path}};
}

void addEntry(ConfigSession& session, List list, const Entry& entry) {
    PRuntimeConfig& config = session.config();
    const Match match = findEntry(config, list, entry);
    if (!holdsPlaces(list)) {
        if (match.index && match.entry.root != entry.root) {
            failRejected(nameOf(list) + ": " + entry.path + " is already there " +
                         (match.entry.root ? "with" : "without") +
                         " the root flag, which adding does not change; nothing changed (remove "
                         "it, then add it again)");
        }
        if (match.index) {
            report(list, entry.path + " is already there; nothing changed");
            return;
        }
        if (list == List::CustomBackup) {
            config.customBackupAppend(NString(entry.path));
        } else {
            config.fileCollectAppend(NString(entry.path), entry.root);
        }
        session.requireWritten();
        report(list, "added " + entry.path + (entry.root ? " (root)" : ""));
        return;
    }

    // A place that is there already is taken out and added at the end under the new name.
    const bool last = match.index && *match.index + 1 == match.size;
    const bool renamed = match.index && match.entry.location != entry.location;
    if (last && !renamed) {
        report(list, placeText(entry) + " '" + entry.location +
                         "' is already there, the most recent; nothing changed");
        return;
    }
    if (list == List::VirtualLocation) {
        config.virtualLocationAppend(entry.x, entry.y, NString(entry.location));
    } else {
        config.locationCollectAppend(entry.x, entry.y, NString(entry.location));
    }
    session.requireWritten();
    if (!match.index) {
        report(list, "added " + placeText(entry) + " '" + entry.location + "'");
    } else if (renamed) {
        report(list, "renamed " + placeText(entry) + " from '" + match.entry.location + "' to '" +
                         entry.location + "'" + (last ? "" : " and moved it to the end"));
    } else {
        report(list, "moved " + placeText(entry) + " '" + entry.location +
                         "' to the end, the most recent");
    }
}

void removeEntry(ConfigSession& session, List list, const Entry& entry) {
    PRuntimeConfig& config = session.config();
    const Match match = findEntry(config, list, entry);
    const std::string what = holdsPlaces(list) ? placeText(entry) : entry.path;
    if (!match.index) {
        failNotFound(nameOf(list) + ": " + what + " is not there; nothing changed");
    }
    if (list == List::FileFavorites && match.entry.root != entry.root) {
        failNotFound(nameOf(list) + ": " + what + " is there " +
                     (match.entry.root ? "with" : "without") +
                     " the root flag; nothing changed (remove it " +
                     (match.entry.root ? "with" : "without") + " --root)");
    }
    switch (list) {
    case List::CustomBackup:
        config.customBackupRemove(NString(entry.path));
        break;
    case List::FileFavorites:
        config.fileCollectRemove(NString(entry.path), entry.root);
        break;
    case List::VirtualLocation:
        config.virtualLocationRemove(entry.x, entry.y);
        break;
    case List::LocationFavorites:
        config.locationCollectRemove(entry.x, entry.y);
        break;
    }
    session.requireWritten();
    report(list, "removed " + what +
                     (holdsPlaces(list) ? " '" + match.entry.location + "'" : std::string()));
}

void clearList(ConfigSession& session, List list) {
    PRuntimeConfig& config = session.config();
    const std::size_t count = entries(config, list).size();
    if (count == 0) {
        report(list, "already empty; nothing changed");
        return;
    }
    if (list == List::VirtualLocation) {
        config.virtualLocationClear();
    } else {
        config.locationCollectClear();
    }
    session.requireWritten();
    report(list, "removed " + std::to_string(count) + (count == 1 ? " entry" : " entries"));
}

} // namespace pallix::tool::config
