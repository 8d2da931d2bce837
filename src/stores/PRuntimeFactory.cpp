#include "PRuntimeFactory.h"

#include "Conversions.h"
#include "FileNames.h"
#include "NApplication.h"
#include "NFileSystem.h"
#include "NJsonObject.h"
#include "Operation.h"
#include "WriteOutcome.h"

#include <cstdlib>
#include <vector>

namespace {

NString factoryPath() {
    return NApplication::DirectoryConfig() + "/" + pallix::format::kFactoryFile;
}

} // namespace

PRuntimeFactory::PRuntimeFactory() noexcept : m_mutex(NMutex::Recursive) {}

PRuntimeFactory::~PRuntimeFactory() = default;

void PRuntimeFactory::_read() {
    pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        const NJsonObject document(NFileSystem::file::toBytes(factoryPath()));
        if (!document.exist()) {
            return;
        }
        std::vector<NString> names;
        document.traverse([&names](const NString& name) { names.push_back(name); });
        for (const NString& name : names) {
            const unsigned long long id = pallix::format::readDeviceId(name.data());
            const NJsonObject values = document.toObject(name);
            if (!values.exist()) {
                continue;
            }
            NDeviceInfoFactory info;
            values.traverse(
                [&info, &values](const NString& key) { info.append(key, values.toBytes(key)); });
            if (info.exist() && id != 0) {
                // emplace keeps the record already there: of two names for one device
                // ("1a2b" and "0000000000001A2B") the first read wins.
                m_devices.emplace(id, std::move(info));
            }
        }
    });
}

void PRuntimeFactory::_write() {
    pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        NJsonObject document;
        for (const auto& [id, info] : m_devices) {
            if (!info.exist()) {
                continue;
            }
            NJsonObject values;
            info.traverse([&values](const NString& key, const NByteArray& value) {
                values.append(key, value);
            });
            document.append(NString(pallix::format::deviceIdText(id)), values);
        }
        const NString text = document.toString();
        pallix::recordWrite(
            NFileSystem::file::fromBytes(factoryPath(), NByteArray(text.toStdString())));
    });
}

void PRuntimeFactory::initialize() {
    pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        if (!m_initialized) {
            // Set first: a file that cannot be read is not retried on every operation.
            m_initialized = true;
            _read();
        }
    });
}

bool PRuntimeFactory::empty() {
    return pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        initialize();
        return m_devices.empty();
    });
}

bool PRuntimeFactory::exist() {
    return pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        initialize();
        return !m_devices.empty();
    });
}

void PRuntimeFactory::append(unsigned long long id, const NDeviceInfoFactory& info) {
    pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        initialize();
        m_devices.insert_or_assign(id, info);
        _write();
    });
}

bool PRuntimeFactory::find(unsigned long long id) {
    return pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        initialize();
        return m_devices.count(id) != 0;
    });
}

void PRuntimeFactory::remove(unsigned long long id) {
    pallix::operation([&] {
        NMutexAuto guard(m_mutex);
        initialize();
        m_devices.erase(id);
        _write();
    });
}

void PRuntimeFactory::traverse(const Visitor& visit) {
    pallix::operation([&] {
        std::map<unsigned long long, NDeviceInfoFactory> copy;
        {
            NMutexAuto guard(m_mutex);
            initialize();
            copy = m_devices;
        }
        if (!visit) {
            return;
        }
        for (const auto& [id, info] : copy) {
            visit(id, info);
        }
    });
}
