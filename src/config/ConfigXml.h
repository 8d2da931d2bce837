#pragma once

#include "ConfigurationFormat.h"
#include "Conversions.h"

#include <pugixml.hpp>

namespace pallix::config {

// Visits every child node of `parent` in document order, whatever its name or kind: list
// items are recognised by position, not by name, so files that named them differently still
// read. A null parent has no children.
template <typename Visit> void forEachChild(const pugi::xml_node& parent, Visit visit) {
    for (pugi::xml_node item = parent.first_child(); item; item = item.next_sibling()) {
        visit(item);
    }
}

// A numeric preference of `root` as both readers keep it: at the width that kPreferences gives
// its element, and that entry's default when the element or its value is missing.
template <typename Number>
Number readPreference(const pugi::xml_node& root, const char* element, const char* attribute) {
    namespace cfg = pallix::format::configuration;
    const cfg::Preference& preference = cfg::preference(element);
    const pugi::xml_attribute value = root.child(element).attribute(attribute);
    if (preference.width == cfg::Width::UInt64) {
        return static_cast<Number>(pallix::format::readUInt64(
            value, static_cast<unsigned long long>(preference.byDefault)));
    }
    return static_cast<Number>(
        pallix::format::readInt32(value, static_cast<int>(preference.byDefault)));
}

} // namespace pallix::config
