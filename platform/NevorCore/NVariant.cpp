#include "NVariant.h"

#include <type_traits>

namespace {

template <typename Target, typename Value> Target numeric(const Value& value, Target defaultValue) {
    return std::visit(
        [defaultValue](const auto& held) -> Target {
            using Held = std::decay_t<decltype(held)>;
            if constexpr (std::is_arithmetic_v<Held>) {
                return static_cast<Target>(held);
            } else {
                return defaultValue;
            }
        },
        value);
}

} // namespace

bool NVariant::toBool(bool defaultValue) const {
    return numeric<bool>(m_value, defaultValue);
}

int NVariant::toInt(int defaultValue) const {
    return numeric<int>(m_value, defaultValue);
}

long long NVariant::toLongLong(long long defaultValue) const {
    return numeric<long long>(m_value, defaultValue);
}

unsigned long long NVariant::toULongLong(unsigned long long defaultValue) const {
    return numeric<unsigned long long>(m_value, defaultValue);
}

double NVariant::toDouble(double defaultValue) const {
    return numeric<double>(m_value, defaultValue);
}

NString NVariant::toString() const {
    if (const auto* text = std::get_if<NString>(&m_value)) {
        return *text;
    }
    if (const auto* bytes = std::get_if<NByteArray>(&m_value)) {
        return NString(bytes->data(), bytes->size());
    }
    return NString();
}

NByteArray NVariant::toBytes() const {
    if (const auto* bytes = std::get_if<NByteArray>(&m_value)) {
        return *bytes;
    }
    if (const auto* text = std::get_if<NString>(&m_value)) {
        return NByteArray(text->data(), text->size());
    }
    return NByteArray();
}
