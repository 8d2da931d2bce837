#include "PRuntimeRestoreError.h"

#include "Conversions.h"
#include "NFileSystem.h"
#include "Operation.h"
#include "TableFormats.h"
#include "XmlFile.h"

#include <new>

namespace format = pallix::format::restore_error;

PRuntimeRestoreError::PRuntimeRestoreError() noexcept = default;

PRuntimeRestoreError::~PRuntimeRestoreError() = default;

bool PRuntimeRestoreError::format(const NString& path) {
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
            if (item.type() != pugi::node_element) {
                continue;
            }
            // The code is read as format::kCodeKind: decimal, 0x hexadecimal and a leading
            // minus; anything it cannot read lands on code 0.
            static_assert(format::kCodeKind == pallix::format::ValueKind::Int64);
            const PRuntimeInfoRestoreError row(
                pallix::format::readInt64(item.attribute(format::kCode), 0),
                item.attribute(format::kDescription).as_string(),
                item.attribute(format::kSolution).as_string());
            append(row);
        }
        return true;
    });
}

void PRuntimeRestoreError::append(const PRuntimeInfoRestoreError& row) {
    pallix::operation([&] { m_rows.emplace(row.code(), row); });
}

void PRuntimeRestoreError::find(
    long long code, const std::function<void(const PRuntimeInfoRestoreError&)>& callback) const {
    pallix::operation([&] {
        if (!callback) {
            return;
        }
        const auto found = m_rows.find(code);
        if (found != m_rows.end()) {
            callback(found->second);
        }
    });
}
