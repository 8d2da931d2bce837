#include "PRuntimeNotify.h"

#include "Conversions.h"
#include "FileNames.h"
#include "NApplication.h"
#include "NFileSystem.h"
#include "NotifyFileText.h"
#include "Operation.h"
#include "StoreFormats.h"
#include "WriteOutcome.h"
#include "XmlFile.h"

#include <string>
#include <utility>
#include <vector>

namespace format = pallix::format::notify;

namespace {

NString filePath() {
    return NApplication::DirectoryConfig() + "/" + pallix::format::kNotifyFile;
}

NString oldDirectoryPath() {
    return NApplication::DirectoryConfig() + "/" + pallix::format::kOldNotifyDirectory;
}

pugi::xml_attribute valueOf(const pugi::xml_node& parent, const char* element) {
    return parent.child(element).attribute(format::kValue);
}

// One notification from the children of `parent`, each value converted as format::kValues
// says. Both layouts share the element names except for the time, which the old one called
// format::kOldTimestamp. A missing element or attribute leaves the field at its default.
PRuntimeNotifyItem itemFrom(const pugi::xml_node& parent, const char* timeElement) {
    using pallix::format::ValueKind;
    static_assert(format::kindOf(format::kId) == ValueKind::UInt64 &&
                  format::kindOf(format::kUserId) == ValueKind::UInt64 &&
                  format::kindOf(format::kTimestamp) == ValueKind::Int64 &&
                  format::kindOf(format::kRead) == ValueKind::Boolean &&
                  format::kindOf(format::kPopup) == ValueKind::Boolean &&
                  format::kindOf(format::kAlreadyPopup) == ValueKind::Boolean &&
                  format::kindOf(format::kRemove) == ValueKind::Boolean);
    PRuntimeNotifyItem item;
    item.setID(pallix::format::readUInt64(valueOf(parent, format::kId), 0));
    item.setUserID(pallix::format::readUInt64(valueOf(parent, format::kUserId), 0));
    item.setTitle(NString(valueOf(parent, format::kTitle).as_string()));
    item.setTimestamp(pallix::format::readInt64(valueOf(parent, timeElement), 0));
    item.setURL(NString(valueOf(parent, format::kAddress).as_string()));
    item.setIsPopup(valueOf(parent, format::kPopup).as_bool());
    item.setAlreadyRead(valueOf(parent, format::kRead).as_bool());
    item.setAlreadyPopup(valueOf(parent, format::kAlreadyPopup).as_bool());
    item.setRemove(valueOf(parent, format::kRemove).as_bool());
    return item;
}

// The first notification of an id wins; later ones with the same id are dropped.
void keepFirst(std::map<unsigned long long, PRuntimeNotifyItem>& items,
               const PRuntimeNotifyItem& item) {
    items.emplace(item.id(), item);
}

} // namespace

PRuntimeNotify::PRuntimeNotify() noexcept {
    // The object is not shared yet, so loading takes no lock. The old layout is imported at
    // most once: its directory goes right after, and the imported notifications reach the
    // current file with the next change (whose write replaces whatever file is there).
    const NString oldDirectory = oldDirectoryPath();
    if (NFileSystem::directory::exist(oldDirectory)) {
        _read_old();
        NFileSystem::directory::remove(oldDirectory, NFileSystem::directory::Filter());
    } else {
        _read();
    }
}

PRuntimeNotify::~PRuntimeNotify() {
    pallix::operation([&] { pallix::notify::forgetFileText(this); });
}

void PRuntimeNotify::_read_old() {
    pallix::operation([&] {
        const NString oldDirectory = oldDirectoryPath();
        NFileSystem::directory::traverse(oldDirectory, [&](const NFileSystem::path& entry) {
            if (!NFileSystem::path::isFile(entry)) {
                return true;
            }
            // Whatever the entry's extension, the notification is read from "<name>.xml".
            const NString path =
                oldDirectory + "/" + entry.baseName() + pallix::format::kOldNotifyExtension;
            pugi::xml_document document;
            if (!pallix::XmlFile::load(document, path)) {
                return true;
            }
            const pugi::xml_node root = document.child(format::kOldRoot);
            if (root) {
                keepFirst(m_items, itemFrom(root, format::kOldTimestamp));
            }
            return true;
        });
    });
}

void PRuntimeNotify::_read() {
    pallix::operation([&] {
        pugi::xml_document document;
        if (!pallix::XmlFile::load(document, filePath())) {
            return;
        }
        const pugi::xml_node list = document.child(format::kRoot).child(format::kList);
        for (pugi::xml_node node = list.first_child(); node; node = node.next_sibling()) {
            keepFirst(m_items, itemFrom(node, format::kTimestamp));
        }
    });
}

void PRuntimeNotify::_write() const {
    pallix::operation([&] {
        std::string bytes;
        if (!pallix::notify::fileTextOf(this).render(m_items, bytes)) {
            pallix::recordWrite(false);
            return;
        }
        // A failed save leaves the previous file; the next successful one catches up.
        pallix::XmlFile::saveText(std::move(bytes), filePath());
    });
}

void PRuntimeNotify::traverse(const Visitor& fn) const {
    pallix::operation([&] {
        if (!fn) {
            return;
        }
        std::vector<std::pair<unsigned long long, PRuntimeNotifyItem>> copy;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            copy.assign(m_items.begin(), m_items.end());
        }
        for (const auto& entry : copy) {
            fn(entry.first, entry.second);
        }
    });
}

bool PRuntimeNotify::exist(unsigned long long id) const {
    return pallix::operation([&] {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_items.count(id) != 0;
    });
}

PRuntimeNotifyItem PRuntimeNotify::find(unsigned long long id) const {
    return pallix::operation([&] {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_items.find(id);
        return found == m_items.end() ? PRuntimeNotifyItem() : found->second;
    });
}

void PRuntimeNotify::append(unsigned long long id, const PRuntimeNotifyItem& item) {
    pallix::operation([&] {
        std::lock_guard<std::mutex> lock(m_mutex);
        pallix::notify::fileTextOf(this).changed(id);
        const auto found = m_items.find(id);
        if (found == m_items.end()) {
            m_items.emplace(id, item);
        } else {
            found->second = item;
        }

        _write();
    });
}

bool PRuntimeNotify::update(unsigned long long id, const PRuntimeNotifyItem& item) {
    return pallix::operation([&] {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_items.find(id);
        if (found == m_items.end()) {
            return false;
        }
        pallix::notify::fileTextOf(this).changed(id);
        found->second = item;
        _write();
        return true;
    });
}

void PRuntimeNotify::remove(unsigned long long id) {
    pallix::operation([&] {
        std::lock_guard<std::mutex> lock(m_mutex);
        const auto found = m_items.find(id);
        if (found == m_items.end()) {
            return;
        }
        pallix::notify::fileTextOf(this).changed(id);
        found->second.setRemove(true);
        _write();
    });
}
