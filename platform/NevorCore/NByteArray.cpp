#include "NByteArray.h"

#include <utility>

NByteArray::NByteArray(const char* data, std::size_t size)
    : m_bytes(data != nullptr ? std::string(data, size) : std::string()) {}

NByteArray::NByteArray(std::string bytes) noexcept : m_bytes(std::move(bytes)) {}
