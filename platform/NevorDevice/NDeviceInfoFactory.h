#pragma once

#include "NByteArray.h"
#include "NString.h"
#include "NevorDeviceExport.h"

#include <functional>
#include <utility>
#include <vector>

// Factory information read from a device: named byte-array values in the order they were
// added. Adding a name that is already present replaces its value in place.
class NEVORDEVICE_EXPORT NDeviceInfoFactory {
public:
    using Visitor = std::function<void(const NString& key, const NByteArray& value)>;

    bool exist() const noexcept { return !m_values.empty(); }
    std::size_t size() const noexcept { return m_values.size(); }

    void append(const NString& key, const NByteArray& value);
    // The value of `key`; empty when absent.
    NByteArray value(const NString& key) const;
    void traverse(const Visitor& visit) const;

    friend bool operator==(const NDeviceInfoFactory& a, const NDeviceInfoFactory& b) {
        return a.m_values == b.m_values;
    }
    friend bool operator!=(const NDeviceInfoFactory& a, const NDeviceInfoFactory& b) {
        return !(a == b);
    }

private:
    std::vector<std::pair<NString, NByteArray>> m_values;
};
