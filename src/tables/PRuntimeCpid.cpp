#include "PRuntimeCpid.h"

#include "CpidIndexes.h"
#include "Operation.h"
#include "TableFormats.h"
#include "TableRows.h"

#include <new>
#include <utility>

namespace format = pallix::format::cpid;
using pallix::tables::CpidIndex;
using pallix::tables::CpidIndexes;

namespace {

// The attributes of a row, in the order of the row's constructor and of the files.
constexpr const char* kAttributes[] = {format::kChip,    format::kBoard,   format::kModel,
                                       format::kNetwork, format::kProduct, format::kSupport};
enum Attribute : std::size_t { kChip, kBoard, kModel, kNetwork, kProduct, kSupport };

// Three hardware variants are listed under their own names in the table but shown as their
// base model. Only these exact texts are folded; anything else is kept as written. Decided on
// the parser's text, so that the row's text is made once.
const char* normalisedMode(const char* mode) {
    static const char* const replacements[][2] = {
        {"iPhone XS Max(China)", "iPhone XS Max"},
        {"iPad 2(32NM)", "iPad 2"},
        {"iPhone 4(Rev A)", "iPhone 4"},
    };
    for (const auto& replacement : replacements) {
        if (pallix::tables::sameText(mode, replacement[0])) {
            return replacement[1];
        }
    }
    return mode;
}

// Hands the row's constructor arguments to `make`: the parser's texts ("" for a missing
// attribute), each made into a string once, to be moved from there.
template <typename Make> void withRow(const pugi::xml_node& item, Make&& make) {
    const char* texts[kSupport] = {"", "", "", "", ""};
    bool support = false;
    pallix::tables::readAttributes(item, kAttributes,
                                   [&](std::size_t name, const pugi::xml_attribute& value) {
                                       if (name == kSupport) {
                                           support = value.as_bool();
                                       } else {
                                           texts[name] = value.as_string();
                                       }
                                   });
    make(NString(texts[kChip]), NString(texts[kBoard]), NString(normalisedMode(texts[kModel])),
         NString(texts[kNetwork]), NString(texts[kProduct]), support);
}

} // namespace

PRuntimeCpid::PRuntimeCpid() noexcept = default;

PRuntimeCpid::~PRuntimeCpid() {
    CpidIndexes::forget(this);
}

bool PRuntimeCpid::format(const NString& path) {
    return pallix::operation([&] {
        CpidIndex& index = CpidIndexes::of(this);
        pugi::xml_document document;
        if (!pallix::tables::hasNoOverrides(*this)) {
            m_rows.clear();
            index.reset(0);
            if (!pallix::tables::loadTableFile(document, path)) {
                return false;
            }
            // Only elements are rows; text between them is not.
            const pugi::xml_node root = document.child(format::kRoot);
            pallix::tables::forEachRow(root, [&](const pugi::xml_node& item) {
                withRow(item, [this](auto&&... values) {
                    append(PRuntimeInfoCpid(std::forward<decltype(values)>(values)...));
                });
            });
            return true;
        }
        // What the appends would do, without copying each row: the rows are built in their
        // place, and filed once they are all there, in a pass that has the cache to itself.
        const bool loaded = pallix::tables::loadTableFile(document, path);
        m_rows.clear();
        if (!loaded) {
            index.reset(0);
            return false;
        }
        const pugi::xml_node root = document.child(format::kRoot);
        m_rows.reserve(pallix::tables::rowCount(root));
        pallix::tables::forEachRow(root, [&](const pugi::xml_node& item) {
            withRow(item, [this](auto&&... values) {
                m_rows.emplace_back(std::forward<decltype(values)>(values)...);
            });
        });
        index.reset(m_rows.size());
        for (const PRuntimeInfoCpid& row : m_rows) {
            index.add(row.cpid(), row.bdid());
        }
        return true;
    });
}

void PRuntimeCpid::append(const PRuntimeInfoCpid& row) {
    pallix::operation([&] {
        m_rows.push_back(row);
        // The stored copy is filed, not the caller's row, whose accessors a subclass of the row
        // may have overridden: lookups compare the stored texts.
        const PRuntimeInfoCpid& stored = m_rows.back();
        CpidIndexes::of(this).add(stored.cpid(), stored.bdid());
    });
}

namespace {

// The earliest row of the pair, or else the earliest board "00" row of the chip.
const PRuntimeInfoCpid* locate(const PRuntimeCpid* table, const std::vector<PRuntimeInfoCpid>& rows,
                               const NDeviceInfoRecovery& device) {
    const CpidIndex* index = CpidIndexes::find(table);
    if (index == nullptr) {
        return nullptr;
    }
    const std::size_t position = index->find(device.cpid(), device.bdid());
    return position != CpidIndex::npos ? &rows[position] : nullptr;
}

} // namespace

bool PRuntimeCpid::find(const NDeviceInfoRecovery& device,
                        const std::function<void(const PRuntimeInfoCpid&)>& callback) const {
    return pallix::operation([&] {
        if (!callback) {
            return false;
        }
        const PRuntimeInfoCpid* row = locate(this, m_rows, device);
        if (row == nullptr) {
            return false;
        }
        callback(*row);
        return true;
    });
}

bool PRuntimeCpid::find(const NDeviceInfoRecovery& device, PRuntimeInfoCpid& out) const {
    return pallix::operation([&] {
        const PRuntimeInfoCpid* row = locate(this, m_rows, device);
        if (row == nullptr) {
            return false;
        }
        // Copied aside first: a failed copy must leave `out` as it was.
        PRuntimeInfoCpid copy(*row);
        out = std::move(copy);
        return true;
    });
}
