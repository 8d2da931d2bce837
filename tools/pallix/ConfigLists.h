#pragma once

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

class PRuntimeConfig;

namespace pallix::tool {
class ConfigSession;
}

// The four lists of "pallix config list/add/remove/clear". Each change first looks the entry up
// and then calls the library's changing operation only when it would change something, so that
// a command that changes nothing writes nothing; it says on standard output what it did.
namespace pallix::tool::config {

enum class List { CustomBackup, FileFavorites, VirtualLocation, LocationFavorites };

const std::vector<std::string>& listNames();
// An unknown name fails (status 2) with a suggestion.
List parseList(const std::string& name);
const std::string& nameOf(List list);
bool holdsPlaces(List list);

// One entry: a path (with its root flag, for file favourites) or a place.
struct Entry {
    std::string path;
    bool root = false;
    double x = 0;
    double y = 0;
    std::string location;
};

// The entry that the command line names: PATH for the path lists, X Y [NAME] for the places
// (the name only where `withLocation`). Fails (status 2) on the wrong number of values, on
// numbers that are not finite and on text that the file cannot carry.
Entry parseEntry(List list, const std::vector<std::string>& values, bool root, bool withLocation);

std::vector<Entry> entries(PRuntimeConfig& config, List list);
// The tab-separated fields of "list", and the JSON object of "list --json" and "show --json".
std::vector<std::string> fieldsOf(List list, const Entry& entry);
nlohmann::ordered_json jsonOf(List list, const Entry& entry);

void addEntry(ConfigSession& session, List list, const Entry& entry);
void removeEntry(ConfigSession& session, List list, const Entry& entry);
// Only the place lists can be cleared.
void clearList(ConfigSession& session, List list);

} // namespace pallix::tool::config
