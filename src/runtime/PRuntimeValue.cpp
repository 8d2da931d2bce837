#include "PRuntimeValue.h"

#include "Operation.h"

#include <utility>

PRuntimeValue::PRuntimeValue() noexcept = default;

PRuntimeValue::~PRuntimeValue() = default;

void PRuntimeValue::set(EPALLIX_RUNTIME_VALUE key, const NVariant& value) {
    pallix::operation([&] {
        auto found = m_values.find(key);
        if (found == m_values.end()) {
            m_values.emplace(key, value);
        } else {
            found->second = value;
        }
    });
}

const NVariant& PRuntimeValue::find(EPALLIX_RUNTIME_VALUE key, const NVariant& defaultValue) const {
    const auto found = m_values.find(key);
    return found == m_values.end() ? defaultValue : found->second;
}

NVariant PRuntimeValue::take(EPALLIX_RUNTIME_VALUE key, const NVariant& defaultValue) {
    return pallix::operation([&] {
        auto found = m_values.find(key);
        if (found == m_values.end()) {
            return defaultValue;
        }
        NVariant taken = std::move(found->second);
        m_values.erase(found);
        return taken;
    });
}

void PRuntimeValue::remove(EPALLIX_RUNTIME_VALUE key) {
    m_values.erase(key);
}
