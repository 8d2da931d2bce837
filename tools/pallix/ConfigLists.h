#pragma once

#include "ConfigSession.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

// The lists of the configuration (CustomBackup, FileFavorites, VirtualLocation,
// LocationFavorites) and "pallix config list/add/remove/clear".
namespace pallix::tool::config {

// Adds "list", "add", "remove" and "clear" to the group.
void addListActions(CLI::App& group, ConfigOptions& options);

// Adds every list to the document of "show", by its lowerCamel name, as an array of the
// entries that "list --json" prints.
void addLists(PRuntimeConfig& config, nlohmann::ordered_json& document);

// The tab-separated fields of such an entry, as "list" prints them.
std::vector<std::string> fieldsOf(const nlohmann::ordered_json& entry);

} // namespace pallix::tool::config
