#include "PRuntimeRestoreError.h"

#include "Conversions.h"
#include "Operation.h"
#include "TableFormats.h"
#include "TableRows.h"

#include <iterator>
#include <new>
#include <utility>

namespace format = pallix::format::restore_error;

namespace {

// The attributes of a row, in the order of the row's constructor and of the files.
constexpr const char* kAttributes[] = {format::kCode, format::kDescription, format::kSolution};
enum Attribute : std::size_t { kCode, kDescription, kSolution };

// Hands the row's constructor arguments to `make`: the code, and the parser's texts ("" for a
// missing attribute), each made into a string once, to be moved from there.
template <typename Make> void withRow(const pugi::xml_node& item, Make&& make) {
    // The code is read as format::kCodeKind: decimal, 0x hexadecimal and a leading minus;
    // anything it cannot read, a missing code included, lands on code 0.
    static_assert(format::kCodeKind == pallix::format::ValueKind::Int64);
    long long code = 0;
    const char* texts[std::size(kAttributes)] = {"", "", ""};
    pallix::tables::readAttributes(item, kAttributes,
                                   [&](std::size_t name, const pugi::xml_attribute& value) {
                                       if (name == kCode) {
                                           code = pallix::format::readInt64(value, 0);
                                       } else {
                                           texts[name] = value.as_string();
                                       }
                                   });
    make(code, NString(texts[kDescription]), NString(texts[kSolution]));
}

} // namespace

PRuntimeRestoreError::PRuntimeRestoreError() noexcept = default;

PRuntimeRestoreError::~PRuntimeRestoreError() = default;

bool PRuntimeRestoreError::format(const NString& path) {
    return pallix::operation([&] {
        pugi::xml_document document;
        if (!pallix::tables::hasNoOverrides(*this)) {
            m_rows.clear();
            if (!pallix::tables::loadTableFile(document, path)) {
                return false;
            }
            const pugi::xml_node root = document.child(format::kRoot);
            pallix::tables::forEachRow(root, [&](const pugi::xml_node& item) {
                withRow(item, [this](long long code, NString&& describe, NString&& solution) {
                    append(
                        PRuntimeInfoRestoreError(code, std::move(describe), std::move(solution)));
                });
            });
            return true;
        }
        // What the appends would do, without copying each row: a row is built in its node,
        // and only when its code is new; a table written in ascending order, as tables are,
        // goes in at the end without a search.
        const bool loaded = pallix::tables::loadTableFile(document, path);
        m_rows.clear();
        if (!loaded) {
            return false;
        }
        const pugi::xml_node root = document.child(format::kRoot);
        pallix::tables::forEachRow(root, [&](const pugi::xml_node& item) {
            withRow(item, [this](long long code, NString&& describe, NString&& solution) {
                m_rows.try_emplace(m_rows.end(), code, code, std::move(describe),
                                   std::move(solution));
            });
        });
        return true;
    });
}

void PRuntimeRestoreError::append(const PRuntimeInfoRestoreError& row) {
    // A present code keeps its row, and the row is not even copied then.
    pallix::operation([&] { m_rows.try_emplace(row.code(), row); });
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
