#include "PRuntimeCrashCode.h"

#include "Operation.h"
#include "TableFormats.h"
#include "TableRows.h"

#include <iterator>
#include <new>
#include <utility>

namespace format = pallix::format::crash;

namespace {

// The attributes of a row, in the order of the row's constructor and of the files.
constexpr const char* kAttributes[] = {format::kKey, format::kReason, format::kSolution};
enum Attribute : std::size_t { kKey, kReason, kSolution };

// Hands the row's constructor arguments to `make`: the parser's texts ("" for a missing
// attribute), each made into a string once, to be moved from there.
template <typename Make> void withRow(const pugi::xml_node& item, Make&& make) {
    const char* texts[std::size(kAttributes)] = {"", "", ""};
    pallix::tables::readAttributes(item, kAttributes,
                                   [&texts](std::size_t name, const pugi::xml_attribute& value) {
                                       texts[name] = value.as_string();
                                   });
    make(NString(texts[kKey]), NString(texts[kReason]), NString(texts[kSolution]));
}

} // namespace

PRuntimeCrashCode::PRuntimeCrashCode() noexcept = default;

PRuntimeCrashCode::~PRuntimeCrashCode() = default;

bool PRuntimeCrashCode::format(const NString& path) {
    return pallix::operation([&] {
        pugi::xml_document document;
        if (!pallix::tables::hasNoOverrides(*this)) {
            m_rows.clear();
            if (!pallix::tables::loadTableFile(document, path)) {
                return false;
            }
            // Only elements are rows: stray text would otherwise become a row with an empty
            // key, which matches every query.
            const pugi::xml_node root = document.child(format::kRoot);
            pallix::tables::forEachRow(root, [&](const pugi::xml_node& item) {
                withRow(item, [this](auto&&... values) {
                    append(PRuntimeInfoCrash(std::forward<decltype(values)>(values)...));
                });
            });
            return true;
        }
        // What the appends would do, without copying each row: the rows are built in place.
        const bool loaded = pallix::tables::loadTableFile(document, path);
        m_rows.clear();
        if (!loaded) {
            return false;
        }
        const pugi::xml_node root = document.child(format::kRoot);
        m_rows.reserve(pallix::tables::rowCount(root));
        pallix::tables::forEachRow(root, [&](const pugi::xml_node& item) {
            withRow(item, [this](auto&&... values) {
                m_rows.emplace_back(std::forward<decltype(values)>(values)...);
            });
        });
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
