#include "PRuntimeRestoreCustomFirmware.h"

#include "FileNames.h"
#include "NApplication.h"
#include "NFileSystem.h"
#include "Operation.h"
#include "StoreFormats.h"
#include "XmlFile.h"

namespace format = pallix::format::custom_firmware;

namespace {

NString customFirmwarePath() {
    return NApplication::DirectoryConfig() + "/" + pallix::format::kCustomFirmwareFile;
}

} // namespace

PRuntimeRestoreCustomFirmware::PRuntimeRestoreCustomFirmware() noexcept
    : m_mutex(NMutex::Recursive) {
    // The member stays false on purpose; reading it keeps compilers from calling it unused.
    (void)m_loaded;
}

PRuntimeRestoreCustomFirmware::~PRuntimeRestoreCustomFirmware() = default;

void PRuntimeRestoreCustomFirmware::_read() {
    pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        m_matches.clear();
        pugi::xml_document document;
        if (!pallix::XmlFile::load(document, customFirmwarePath())) {
            return;
        }
        const pugi::xml_node container = document.child(format::kRoot).child(format::kList);
        if (!container) {
            return;
        }
        for (pugi::xml_node entry = container.first_child(); entry; entry = entry.next_sibling()) {
            const NString url(entry.attribute(format::kAddress).as_string());
            const NString local(entry.attribute(format::kLocal).as_string());
            if (NFileSystem::path::exist(local)) {
                // emplace keeps the entry already there: the first live match of a url wins.
                m_matches.emplace(url, local);
            }
        }
    });
}

void PRuntimeRestoreCustomFirmware::_write() {
    pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        pugi::xml_document document;
        pallix::XmlFile::prependDeclaration(document, "UTF-8", true);
        pugi::xml_node container = document.append_child(format::kRoot).append_child(format::kList);
        for (const auto& [url, local] : m_matches) {
            pugi::xml_node entry = container.append_child(format::kItem);
            entry.append_attribute(format::kAddress).set_value(url.data());
            entry.append_attribute(format::kLocal).set_value(local.data());
        }
        pallix::XmlFile::replaceOrRemove(document, customFirmwarePath());
    });
}

void PRuntimeRestoreCustomFirmware::append(const NString& url, const NString& local) {
    pallix::operation([&] {
        _read();
        NMutexAuto guard(m_mutex);
        m_matches.insert_or_assign(url, local);
        _write();
    });
}

void PRuntimeRestoreCustomFirmware::remove(const NString& url) {
    pallix::operation([&] {
        _read();
        NMutexAuto guard(m_mutex);
        m_matches.erase(url);
        _write();
    });
}

bool PRuntimeRestoreCustomFirmware::find(const NString& url, const Visitor& visit) {
    return pallix::operation([&] {
        _read();
        NMutexAuto guard(m_mutex);
        NString local;
        const auto found = m_matches.find(url);
        if (found == m_matches.end()) {
            return false;
        }
        // A copy: the callback may use the store, whose next operation rebuilds the table.
        local = found->second;
        if (visit) {
            visit(local);
        }
        return true;
    });
}

bool PRuntimeRestoreCustomFirmware::find(const NString& url, NString& local) {
    return pallix::operation([&] {
        _read();
        NMutexAuto guard(m_mutex);
        const auto found = m_matches.find(url);
        if (found == m_matches.end()) {
            return false;
        }

        local = found->second;
        return true;
    });
}

NString PRuntimeRestoreCustomFirmware::find(const NString& url) {
    return pallix::operation([&] {
        _read();
        NMutexAuto guard(m_mutex);
        const auto found = m_matches.find(url);
        if (found == m_matches.end()) {
            return NString();
        }

        return found->second;
    });
}

void PRuntimeRestoreCustomFirmware::traverse(
    const std::function<void(const NString& url, const NString& local)>& visit) {
    pallix::operation([&] {
        _read();
        // A copy, as in find(): the visitor may use the store, which rebuilds the table.
        std::map<NString, NString> matches;
        {
            NMutexAuto guard(m_mutex);
            matches = m_matches;
        }
        for (const auto& [url, local] : matches) {
            visit(url, local);
        }
    });
}
