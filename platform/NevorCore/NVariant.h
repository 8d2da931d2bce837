#pragma once

#include "NByteArray.h"
#include "NString.h"
#include "NevorCoreExport.h"

#include <variant>

// A copyable tagged value. Two variants are equal when they hold the same kind and value.
class NEVORCORE_EXPORT NVariant {
public:
    enum Type { Null, Bool, Int, LongLong, ULongLong, Double, String, Bytes };

    NVariant() = default;
    NVariant(bool value) : m_value(value) {}
    NVariant(int value) : m_value(value) {}
    NVariant(long long value) : m_value(value) {}
    NVariant(unsigned long long value) : m_value(value) {}
    NVariant(double value) : m_value(value) {}
    NVariant(const char* value) : m_value(NString(value)) {}
    NVariant(const NString& value) : m_value(value) {}
    NVariant(const NByteArray& value) : m_value(value) {}

    Type type() const noexcept { return static_cast<Type>(m_value.index()); }
    bool isNull() const noexcept { return type() == Null; }

    // Conversions between the numeric kinds follow C++; other kinds give the default.
    bool toBool(bool defaultValue = false) const;
    int toInt(int defaultValue = 0) const;
    long long toLongLong(long long defaultValue = 0) const;
    unsigned long long toULongLong(unsigned long long defaultValue = 0) const;
    double toDouble(double defaultValue = 0.0) const;
    NString toString() const;
    NByteArray toBytes() const;

    friend bool operator==(const NVariant& a, const NVariant& b) { return a.m_value == b.m_value; }
    friend bool operator!=(const NVariant& a, const NVariant& b) { return !(a == b); }

private:
    std::variant<std::monostate, bool, int, long long, unsigned long long, double, NString,
                 NByteArray>
        m_value;
};
