#include "NDeviceInfoFactory.h"

void NDeviceInfoFactory::append(const NString& key, const NByteArray& value) {
    for (auto& entry : m_values) {
        if (entry.first == key) {
            entry.second = value;
            return;
        }
    }
    m_values.emplace_back(key, value);
}

NByteArray NDeviceInfoFactory::value(const NString& key) const {
    for (const auto& entry : m_values) {
        if (entry.first == key) {
            return entry.second;
        }
    }
    return NByteArray();
}

void NDeviceInfoFactory::traverse(const Visitor& visit) const {
    if (!visit) {
        return;
    }
    for (const auto& entry : m_values) {
        visit(entry.first, entry.second);
    }
}
