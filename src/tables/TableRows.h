#pragma once

#include "NString.h"

#include <pugixml.hpp>

#include <cstddef>
#include <typeinfo>

// What the four table loads share: reading the file and a row's attributes, counting the rows,
// and knowing when a load may build its rows in place.
namespace pallix::tables {

// Loads a table's file: false when nothing exists at the path or the file does not load.
bool loadTableFile(pugi::xml_document& document, const NString& path);

// Names are a handful of letters: comparing them here costs less than a call to strcmp.
inline bool sameText(const char* a, const char* b) noexcept {
    for (; *a == *b; ++a, ++b) {
        if (*a == '\0') {
            return true;
        }
    }
    return false;
}

// Hands each attribute that a row needs to `take`, with the index of its name, in one pass over
// the row's attributes, instead of asking the node for each name in turn, which walks the list
// once per name. Only the first attribute of a name is taken, as the parser's lookup by name
// takes it, so a row with a repeated attribute reads the same; `take` is not called for a name
// that the row lacks.
template <std::size_t N, typename Take>
void readAttributes(const pugi::xml_node& row, const char* const (&names)[N], Take&& take) {
    static_assert(N < sizeof(unsigned) * 8, "one bit per name");
    const unsigned all = (1u << N) - 1;
    unsigned seen = 0;
    // Files write the attributes in one order; trying first the name after the last one found
    // matches each attribute at the first comparison.
    std::size_t next = 0;
    for (pugi::xml_attribute attribute = row.first_attribute(); attribute && seen != all;
         attribute = attribute.next_attribute()) {
        const char* name = attribute.name();
        for (std::size_t tried = 0, i = next; tried < N; ++tried, i = i + 1 == N ? 0 : i + 1) {
            if (sameText(name, names[i])) {
                const unsigned bit = 1u << i;
                if ((seen & bit) == 0) {
                    seen |= bit;
                    take(i, attribute);
                }
                next = i + 1 == N ? 0 : i + 1;
                break;
            }
        }
    }
}

// Hands each row below a table's root to `take`: its child elements, whatever their names.
// Text, comments and the like between them are not rows.
template <typename Take> void forEachRow(const pugi::xml_node& root, Take&& take) {
    for (pugi::xml_node item = root.first_child(); item; item = item.next_sibling()) {
        if (item.type() == pugi::node_element) {
            take(item);
        }
    }
}

inline std::size_t rowCount(const pugi::xml_node& root) {
    std::size_t count = 0;
    forEachRow(root, [&count](const pugi::xml_node&) { ++count; });
    return count;
}

// Whether the table is an object of exactly its own class. A load hands every row to the
// table's virtual append, where a subclass may watch or change what is stored, and may look at
// the table meanwhile; only when the table is no subclass can no override be there, and the
// load may build the rows in place, and may empty the table once the file is parsed rather
// than first: nothing sees the table before the load returns. The old rows' memory, freed just
// before the new rows ask for the same sizes, then comes straight back, rather than being
// merged by the parser's large allocations in between.
template <typename Table> bool hasNoOverrides(const Table& table) {
    return typeid(table) == typeid(Table);
}

} // namespace pallix::tables
