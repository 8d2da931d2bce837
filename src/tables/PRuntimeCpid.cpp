#include "PRuntimeCpid.h"

#include "Conversions.h"
#include "NFileSystem.h"
#include "Operation.h"
#include "TableFormats.h"
#include "XmlFile.h"

#include <new>
#include <utility>

namespace format = pallix::format::cpid;

namespace {

// Three hardware variants are listed under their own names in the table but shown as their
// base model. Only these exact texts are folded; anything else is kept as written.
NString normalisedMode(const char* mode) {
    static const char* const replacements[][2] = {
        {"iPhone XS Max(China)", "iPhone XS Max"},
        {"iPad 2(32NM)", "iPad 2"},
        {"iPhone 4(Rev A)", "iPhone 4"},
    };
    const NString text(mode);
    for (const auto& replacement : replacements) {
        if (text == replacement[0]) {
            return NString(replacement[1]);
        }
    }
    return text;
}

// The earliest row of the pair, or else the earliest board "00" row of the chip.
const PRuntimeInfoCpid* locate(const std::vector<PRuntimeInfoCpid>& rows,
                               const NDeviceInfoRecovery& device) {
    const NString chip(pallix::format::chipText(device.cpid()));
    const NString board(pallix::format::boardText(device.bdid()));
    for (const PRuntimeInfoCpid& row : rows) {
        if (row.isMatch(chip, board)) {
            return &row;
        }
    }
    const NString fallback(pallix::format::boardText(pallix::format::kFallbackBoard));
    for (const PRuntimeInfoCpid& row : rows) {
        if (row.isMatch(chip, fallback)) {
            return &row;
        }
    }
    return nullptr;
}

} // namespace

PRuntimeCpid::PRuntimeCpid() noexcept = default;

PRuntimeCpid::~PRuntimeCpid() = default;

bool PRuntimeCpid::format(const NString& path) {
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
            // Only elements are rows; text between them is not.
            if (item.type() != pugi::node_element) {
                continue;
            }
            const PRuntimeInfoCpid row(item.attribute(format::kChip).as_string(),
                                       item.attribute(format::kBoard).as_string(),
                                       normalisedMode(item.attribute(format::kModel).as_string()),
                                       item.attribute(format::kNetwork).as_string(),
                                       item.attribute(format::kProduct).as_string(),
                                       item.attribute(format::kSupport).as_bool());
            append(row);
        }
        return true;
    });
}

void PRuntimeCpid::append(const PRuntimeInfoCpid& row) {
    pallix::operation([&] { m_rows.push_back(row); });
}

bool PRuntimeCpid::find(const NDeviceInfoRecovery& device,
                        const std::function<void(const PRuntimeInfoCpid&)>& callback) const {
    return pallix::operation([&] {
        if (!callback) {
            return false;
        }
        const PRuntimeInfoCpid* row = nullptr;
        row = locate(m_rows, device);
        if (row == nullptr) {
            return false;
        }
        callback(*row);
        return true;
    });
}

bool PRuntimeCpid::find(const NDeviceInfoRecovery& device, PRuntimeInfoCpid& out) const {
    return pallix::operation([&] {
        const PRuntimeInfoCpid* row = locate(m_rows, device);
        if (row == nullptr) {
            return false;
        }
        // Copied aside first: a failed copy must leave `out` as it was.
        PRuntimeInfoCpid copy(*row);
        out = std::move(copy);
        return true;
    });
}
