#pragma once

#include "NevorCoreExport.h"

#include <cstddef>
#include <string>

// A byte buffer; it may hold any bytes, NUL included.
class NEVORCORE_EXPORT NByteArray {
public:
    NByteArray() = default;
    NByteArray(const char* data, std::size_t size);
    explicit NByteArray(std::string bytes) noexcept;

    const char* data() const noexcept { return m_bytes.data(); }
    std::size_t size() const noexcept { return m_bytes.size(); }
    bool empty() const noexcept { return m_bytes.empty(); }
    const std::string& toStdString() const noexcept { return m_bytes; }

    friend bool operator==(const NByteArray& a, const NByteArray& b) noexcept {
        return a.m_bytes == b.m_bytes;
    }
    friend bool operator!=(const NByteArray& a, const NByteArray& b) noexcept { return !(a == b); }

private:
    std::string m_bytes;
};
