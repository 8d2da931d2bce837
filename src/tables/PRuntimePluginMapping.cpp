#include "PRuntimePluginMapping.h"

#include "Operation.h"
#include "TableFormats.h"
#include "TableRows.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <new>
#include <utility>
#include <vector>

namespace format = pallix::format::plugin_mapping;

namespace {

constexpr const char* kAttributes[] = {format::kVersion, format::kMapping};
enum Attribute : std::size_t { kVersion, kMapping };

// A complete child of the file: the parser's texts, the version's length measured once.
struct Entry {
    const char* version;
    std::size_t size;
    const char* mapping;
};

// The order of the map's keys: the bytes compared as unsigned values, then the shorter first,
// as the string's less-than orders them.
bool before(const Entry& a, const Entry& b) noexcept {
    const std::size_t common = a.size < b.size ? a.size : b.size;
    for (std::size_t i = 0; i < common; ++i) {
        if (a.version[i] != b.version[i]) {
            return static_cast<unsigned char>(a.version[i]) <
                   static_cast<unsigned char>(b.version[i]);
        }
    }
    return a.size < b.size;
}

} // namespace

PRuntimePluginMapping::PRuntimePluginMapping() noexcept = default;

PRuntimePluginMapping::~PRuntimePluginMapping() = default;

bool PRuntimePluginMapping::format(const NString& path) {
    return pallix::operation([&] {
        // Emptied once the file is parsed: nothing sees the table before the load returns, and
        // the old mappings' memory, freed just before the new ones ask for the same sizes,
        // comes straight back, rather than being merged by the parser's large allocations.
        pugi::xml_document document;
        const bool loaded = pallix::tables::loadTableFile(document, path);
        m_mappings.clear();
        if (!loaded) {
            return false;
        }
        const pugi::xml_node root = document.child(format::kRoot);
        std::vector<Entry> entries;
        entries.reserve(pallix::tables::rowCount(root));
        pallix::tables::forEachRow(root, [&entries](const pugi::xml_node& item) {
            const char* texts[std::size(kAttributes)] = {"", ""};
            pallix::tables::readAttributes(
                item, kAttributes, [&texts](std::size_t name, const pugi::xml_attribute& value) {
                    texts[name] = value.as_string();
                });
            // A half-written entry would map a version to nothing; such entries are skipped.
            if (*texts[kVersion] != '\0' && *texts[kMapping] != '\0') {
                entries.push_back({texts[kVersion], std::strlen(texts[kVersion]), texts[kMapping]});
            }
        });
        // Sorted into the map's order, the file's order kept among equal versions so that the
        // first one stays: each mapping then goes in at the end without a search, and the sort
        // compares in place what the map's search would compare through calls.
        std::stable_sort(entries.begin(), entries.end(), before);
        for (const Entry& entry : entries) {
            m_mappings.try_emplace(m_mappings.end(), NString(entry.version, entry.size),
                                   entry.mapping);
        }
        return true;
    });
}

bool PRuntimePluginMapping::find(const NString& version,
                                 const std::function<void(const NString&)>& callback) const {
    return pallix::operation([&] {
        if (version.empty() || !callback) {
            return false;
        }
        const auto found = m_mappings.find(version);
        if (found == m_mappings.end()) {
            return false;
        }
        callback(found->second);
        return true;
    });
}

bool PRuntimePluginMapping::find(const NString& version, NString& out) const {
    return pallix::operation([&] {
        if (version.empty()) {
            return false;
        }
        const auto found = m_mappings.find(version);
        if (found == m_mappings.end()) {
            return false;
        }

        // Copied aside first: a failed copy must leave `out` as it was.
        NString copy(found->second);
        out = std::move(copy);
        return true;
    });
}
