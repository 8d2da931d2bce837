#pragma once

#include "NevorCoreExport.h"

#include <cstddef>
#include <string>

// The framework's UTF-8 text. Comparison is byte-wise on the UTF-8 encoding, which orders
// text by code point; the case-insensitive forms fold letters as NString::foldCase does.
class NEVORCORE_EXPORT NString {
public:
    enum CaseSensitivity { CaseSensitive, CaseInsensitive };

    NString() = default;
    NString(const char* text);
    NString(const char* text, std::size_t size);
    NString(std::string text) noexcept;

    // printf-style construction: NString::format("%016llX", id).
    static NString format(const char* pattern, ...)
#if defined(__GNUC__)
        __attribute__((format(printf, 1, 2)))
#endif
        ;

    const char* data() const noexcept {
        return m_text.c_str();
    }
    std::size_t size() const noexcept {
        return m_text.size();
    }
    bool exist() const noexcept {
        return !m_text.empty();
    }
    bool empty() const noexcept {
        return m_text.empty();
    }
    const std::string& toStdString() const noexcept {
        return m_text;
    }

    bool startsWith(const NString& prefix, CaseSensitivity cs = CaseSensitive) const;
    bool endsWith(const NString& suffix, CaseSensitivity cs = CaseSensitive) const;
    bool contains(const NString& part, CaseSensitivity cs = CaseSensitive) const;

    // Simple case folding of the letters of Latin, Greek and Cyrillic scripts; other text is
    // kept as it is. Invalid UTF-8 bytes are kept unchanged.
    NString foldCase() const;

    NString& operator+=(const NString& other);
    NString& operator+=(const char* other);

    friend bool operator==(const NString& a, const NString& b) noexcept {
        return a.m_text == b.m_text;
    }
    friend bool operator!=(const NString& a, const NString& b) noexcept {
        return !(a == b);
    }
    friend bool operator<(const NString& a, const NString& b) noexcept {
        return a.m_text < b.m_text;
    }
    friend bool operator==(const NString& a, const char* b) noexcept {
        return a.m_text == b;
    }
    friend bool operator!=(const NString& a, const char* b) noexcept {
        return !(a == b);
    }

private:
    std::string m_text;
};

// Declared outside the class so that they carry the library's export attribute; friend
// declarations alone would leave them hidden.
NEVORCORE_EXPORT NString operator+(const NString& a, const NString& b);
NEVORCORE_EXPORT NString operator+(const NString& a, const char* b);
NEVORCORE_EXPORT NString operator+(const char* a, const NString& b);
