#include "NString.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

NString::NString(const char* text) : m_text(text != nullptr ? text : "") {}

NString::NString(const char* text, std::size_t size)
    : m_text(text != nullptr ? std::string(text, size) : std::string()) {}

NString::NString(std::string text) noexcept : m_text(std::move(text)) {}

NString NString::format(const char* pattern, ...) {
    if (pattern == nullptr) {
        return NString();
    }
    va_list args;
    va_start(args, pattern);
    va_list measure;
    va_copy(measure, args);
    const int length = std::vsnprintf(nullptr, 0, pattern, measure);
    va_end(measure);
    std::string text;
    if (length > 0) {
        text.resize(static_cast<std::size_t>(length) + 1);
        std::vsnprintf(&text[0], text.size(), pattern, args);
        text.resize(static_cast<std::size_t>(length));
    }
    va_end(args);
    return NString(std::move(text));
}

bool NString::startsWith(const NString& prefix, CaseSensitivity cs) const {
    if (cs == CaseInsensitive) {
        return foldCase().startsWith(prefix.foldCase());
    }
    return m_text.compare(0, prefix.m_text.size(), prefix.m_text) == 0;
}

bool NString::endsWith(const NString& suffix, CaseSensitivity cs) const {
    if (cs == CaseInsensitive) {
        return foldCase().endsWith(suffix.foldCase());
    }
    return m_text.size() >= suffix.m_text.size() &&
           m_text.compare(m_text.size() - suffix.m_text.size(), suffix.m_text.size(),
                          suffix.m_text) == 0;
}

bool NString::contains(const NString& part, CaseSensitivity cs) const {
    if (cs == CaseInsensitive) {
        return foldCase().contains(part.foldCase());
    }
    return m_text.find(part.m_text) != std::string::npos;
}

NString& NString::operator+=(const NString& other) {
    m_text += other.m_text;
    return *this;
}

NString& NString::operator+=(const char* other) {
    if (other != nullptr) {
        m_text += other;
    }
    return *this;
}

NString operator+(const NString& a, const NString& b) {
    NString result(a);
    result += b;
    return result;
}

NString operator+(const NString& a, const char* b) {
    NString result(a);
    result += b;
    return result;
}

NString operator+(const char* a, const NString& b) {
    return NString(a) + b;
}
