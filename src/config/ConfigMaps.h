#pragma once

#include <map>

namespace pallix::config {

// Setters replace a value by erasing the old entry and inserting a new one; the key keeps its
// place in the ordered map either way.
template <typename Key, typename Value>
void replaceEntry(std::map<Key, Value>& map, const Key& key, const Value& value) {
    const auto found = map.find(key);
    if (found != map.end()) {
        map.erase(found);
    }
    map.emplace(key, value);
}

// Readers keep the first entry of a repeated key.
template <typename Key, typename Value>
void insertIfAbsent(std::map<Key, Value>& map, const Key& key, const Value& value) {
    map.emplace(key, value);
}

} // namespace pallix::config
