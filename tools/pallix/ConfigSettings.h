#pragma once

#include "ConfigSession.h"

#include <nlohmann/json.hpp>

// The values of the configuration, by key: the preferences by the element that keeps each in
// the file ("LastSkin"), the facts that start-up finds ("Version"), and the entries of the
// named maps ("Status/NAME", "Tools/NAME", "AutoImport/Ringtone", "Directory/NAME").
namespace pallix::tool::config {

// Adds "get" and "set" to the group.
void addSettingActions(CLI::App& group, ConfigOptions& options);

// Adds every value to the document of "show": each start-up fact by its lowerCamel name, then
// "preferences", then each map by its lowerCamel name, as objects by name.
void addSettings(PRuntimeConfig& config, nlohmann::ordered_json& document);

// A value as "get" prints it: text without quotes, numbers and booleans as JSON writes them.
std::string plainText(const nlohmann::ordered_json& value);

} // namespace pallix::tool::config
