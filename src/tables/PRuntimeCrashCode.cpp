#include "PRuntimeCrashCode.h"

#include "NFileSystem.h"
#include "Operation.h"
#include "TableFormats.h"
#include "XmlFile.h"

#include <new>

namespace format = pallix::format::crash;

PRuntimeCrashCode::PRuntimeCrashCode() noexcept = default;

PRuntimeCrashCode::~PRuntimeCrashCode() = default;

bool PRuntimeCrashCode::format(const NString& path) {
    return pallix::operation([&] {
        m_rows.clear();
        if (!NFileSystem::path::exist(NFileSystem::path(path))) {
            return false;
        }
        pugi::xml_document document;
        if (!pallix::XmlFile::load(document, path)) {
            return false;
        }
        const pugi::xml_node root = document.child(format::kRoot);
        for (pugi::xml_node item = root.first_child(); item; item = item.next_sibling()) {
            // Only elements are rows: stray text would otherwise become a row with an empty
            // key, which matches every query.
            if (item.type() != pugi::node_element) {
                continue;
            }
            const PRuntimeInfoCrash row(item.attribute(format::kKey).as_string(),
                                        item.attribute(format::kReason).as_string(),
                                        item.attribute(format::kSolution).as_string());
            append(row);
        }
        return true;
    });
}

void PRuntimeCrashCode::append(const PRuntimeInfoCrash& row) {
    pallix::operation([&] { m_rows.push_back(row); });
}

void PRuntimeCrashCode::traverse(
    const std::function<void(const PRuntimeInfoCrash&)>& callback) const {
    pallix::operation([&] {
        for (const PRuntimeInfoCrash& row : m_rows) {
            callback(row);
        }
    });
}

void PRuntimeCrashCode::find(const NString& key,
                             const std::function<void(const PRuntimeInfoCrash&)>& callback) const {
    pallix::operation([&] {
        if (!callback) {
            return;
        }
        for (const PRuntimeInfoCrash& row : m_rows) {
            if (row.isMatch(key)) {
                callback(row);
                return;
            }
        }
    });
}
