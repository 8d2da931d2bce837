#pragma once

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

} // namespace pallix::config
