#include "PRuntimePortbind.h"

#include "FileNames.h"
#include "NApplication.h"
#include "Operation.h"
#include "StoreFormats.h"
#include "XmlFile.h"

#include <utility>
#include <vector>

namespace format = pallix::format::portbind;

namespace {

NString filePath() {
    return NApplication::DirectoryConfig() + "/" + pallix::format::kPortbindFile;
}

} // namespace

PRuntimePortbind::PRuntimePortbind() noexcept = default;

PRuntimePortbind::~PRuntimePortbind() = default;

void PRuntimePortbind::_read() {
    pallix::operation([&] {
        pugi::xml_document document;
        if (!pallix::XmlFile::load(document, filePath())) {
            return;
        }
        const pugi::xml_node list = document.child(format::kRoot).child(format::kList);
        // The entries' own names play no part; empty texts from the file are taken as they
        // are, and the first binding of a source wins.
        for (pugi::xml_node node = list.first_child(); node; node = node.next_sibling()) {
            m_bindings.emplace(NString(node.attribute(format::kSource).as_string()),
                               NString(node.attribute(format::kTarget).as_string()));
        }
    });
}

void PRuntimePortbind::_write() {
    pallix::operation([&] {
        pugi::xml_document document;
        pallix::XmlFile::prependDeclaration(document, "UTF-8", true);
        pugi::xml_node list = document.append_child(format::kRoot).append_child(format::kList);
        for (const auto& binding : m_bindings) {
            pugi::xml_node node = list.append_child(format::kItem);
            node.append_attribute(format::kSource).set_value(binding.first.data());
            node.append_attribute(format::kTarget).set_value(binding.second.data());
        }
        pallix::XmlFile::replaceOrRemove(document, filePath());
    });
}

void PRuntimePortbind::_initialize() {
    pallix::operation([&] {
        if (!m_initialized) {
            _read();
            m_initialized = true;
        }
    });
}

void PRuntimePortbind::append(const NString& source, const NString& target) {
    pallix::operation([&] {
        if (source.empty() || target.empty()) {
            return;
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        _initialize();
        m_bindings.erase(source);
        m_bindings.emplace(source, target);
        _write();
    });
}

void PRuntimePortbind::remove(const NString& source) {
    pallix::operation([&] {
        if (source.empty()) {
            return;
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        _initialize();
        m_bindings.erase(source);
        _write();
    });
}

NString PRuntimePortbind::find(const NString& source) {
    return pallix::operation([&] {
        if (source.empty()) {
            return NString();
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        _initialize();
        const auto found = m_bindings.find(source);
        if (found == m_bindings.end()) {
            return NString();
        }

        return found->second;
    });
}

void PRuntimePortbind::traverse(const Visitor& fn) {
    pallix::operation([&] {
        std::vector<std::pair<NString, NString>> copy;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            _initialize();
            copy.assign(m_bindings.begin(), m_bindings.end());
        }
        if (!fn) {
            return;
        }
        for (const auto& binding : copy) {
            fn(binding.first, binding.second);
        }
    });
}

bool PRuntimePortbind::exist(const NString& source) {
    return pallix::operation([&] {
        if (source.empty()) {
            return false;
        }
        std::lock_guard<std::mutex> lock(m_mutex);
        _initialize();
        return m_bindings.count(source) != 0;
    });
}
