#include "PRuntimePluginMapping.h"

#include "NFileSystem.h"
#include "Operation.h"
#include "TableFormats.h"
#include "XmlFile.h"

#include <new>
#include <utility>

namespace format = pallix::format::plugin_mapping;

PRuntimePluginMapping::PRuntimePluginMapping() noexcept = default;

PRuntimePluginMapping::~PRuntimePluginMapping() = default;

bool PRuntimePluginMapping::format(const NString& path) {
    return pallix::operation([&] {
        m_mappings.clear();
        if (!NFileSystem::path::exist(NFileSystem::path(path))) {
            return false;
        }
        pugi::xml_document document;
        if (!pallix::XmlFile::load(document, path)) {
            return false;
        }
        const pugi::xml_node root = document.child(format::kRoot);
        for (pugi::xml_node item = root.first_child(); item; item = item.next_sibling()) {
            if (item.type() != pugi::node_element) {
                continue;
            }
            const char* version = item.attribute(format::kVersion).as_string();
            const char* mapping = item.attribute(format::kMapping).as_string();
            // A half-written entry would map a version to nothing; such entries are skipped.
            if (*version == '\0' || *mapping == '\0') {
                continue;
            }
            m_mappings.emplace(NString(version), NString(mapping));
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
