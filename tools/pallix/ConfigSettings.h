#pragma once

#include <nlohmann/json.hpp>

#include <functional>
#include <optional>
#include <string>
#include <vector>

class PRuntimeConfig;

// The values of "pallix config get/set/show": preferences by name ("LastSkin"), the facts that
// start-up finds ("Version"), and the entries of the named families ("Status/NAME",
// "Tools/NAME", "AutoImport/Ringtone", "Directory/NAME").
namespace pallix::tool::config {

// One value that a key names, resolved against the configuration.
struct Setting {
    std::string key;
    // What the configuration holds; nothing when the key names an entry that is not there.
    std::optional<nlohmann::json> current;
    // Reads a typed value; fails (status 2) with a message that says what the file keeps.
    std::function<nlohmann::json(const std::string&)> parse;
    // Stores the value through the library's setter, which saves; empty for the start-up facts.
    std::function<void(const nlohmann::json&)> store;
    // The names that the key's family holds, for suggestions when the key is not there.
    std::vector<std::string> neighbours;
};

// An unknown key fails (status 2) with a suggestion; an unknown name in a known family does
// not (it is a Setting without a current value). Without a configuration only the key and the
// parser are filled in, so that a command can check its arguments before it starts one.
Setting resolveSetting(PRuntimeConfig* config, const std::string& key);

// A value as "get" prints it: text without quotes, numbers and booleans as JSON writes them.
std::string plainText(const nlohmann::json& value);

// The preferences that can be set, in the order "show" prints them, with their values.
std::vector<std::pair<std::string, nlohmann::json>> preferences(PRuntimeConfig& config);

// The settings that the application knows, each with a default that getSettingStatus()
// answers even when the configuration never stored it.
const std::vector<std::string>& knownSettings();

} // namespace pallix::tool::config
