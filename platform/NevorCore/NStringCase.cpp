// Case folding for NString's case-insensitive comparisons. The framework's folding covers the
// alphabets that the application's texts use (Latin, Greek, Cyrillic); characters of other
// scripts have no case and stay as they are.

#include "NString.h"

#include <cstdint>
#include <utility>

namespace {

// Decodes one UTF-8 sequence at text[i]; returns the code point and advances i. An invalid
// or truncated sequence yields the lead byte as its own value with `valid` false.
char32_t decode(const std::string& text, std::size_t& i, bool& valid) {
    const auto lead = static_cast<unsigned char>(text[i]);
    std::size_t length = 0;
    char32_t cp = 0;
    if (lead < 0x80) {
        valid = true;
        ++i;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2;
        cp = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        cp = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        cp = lead & 0x07;
    }
    if (length == 0 || i + length > text.size()) {
        valid = false;
        ++i;
        return lead;
    }
    for (std::size_t k = 1; k < length; ++k) {
        const auto next = static_cast<unsigned char>(text[i + k]);
        if ((next & 0xC0) != 0x80) {
            valid = false;
            ++i;
            return lead;
        }
        cp = (cp << 6) | (next & 0x3F);
    }
    valid = true;
    i += length;
    return cp;
}

void encode(char32_t cp, std::string& out) {
    if (cp < 0x80) {
        out += static_cast<char>(cp);
    } else if (cp < 0x800) {
        out += static_cast<char>(0xC0 | (cp >> 6));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else if (cp < 0x10000) {
        out += static_cast<char>(0xE0 | (cp >> 12));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    } else {
        out += static_cast<char>(0xF0 | (cp >> 18));
        out += static_cast<char>(0x80 | ((cp >> 12) & 0x3F));
        out += static_cast<char>(0x80 | ((cp >> 6) & 0x3F));
        out += static_cast<char>(0x80 | (cp & 0x3F));
    }
}

char32_t fold(char32_t cp) {
    if (cp >= 'A' && cp <= 'Z') {
        return cp + 0x20;
    }
    if (cp < 0xC0) {
        return cp;
    }
    // Latin-1 Supplement, except the multiplication sign.
    if (cp <= 0xDE && cp != 0xD7) {
        return cp + 0x20;
    }
    // Latin Extended-A: upper case at even code points, except the ranges with odd pairing.
    if (cp >= 0x100 && cp <= 0x137) {
        return cp | 1;
    }
    if ((cp >= 0x139 && cp <= 0x148) || (cp >= 0x179 && cp <= 0x17E)) {
        return (cp & 1) ? cp + 1 : cp;
    }
    if (cp >= 0x14A && cp <= 0x177) {
        return cp | 1;
    }
    if (cp == 0x178) {
        return 0xFF;
    }
    // Greek capitals (the gap at U+03A2 has no letter).
    if (cp >= 0x391 && cp <= 0x3AB && cp != 0x3A2) {
        return cp + 0x20;
    }
    // Cyrillic capitals.
    if (cp >= 0x400 && cp <= 0x40F) {
        return cp + 0x50;
    }
    if (cp >= 0x410 && cp <= 0x42F) {
        return cp + 0x20;
    }
    return cp;
}

} // namespace

NString NString::foldCase() const {
    std::string folded;
    folded.reserve(m_text.size());
    std::size_t i = 0;
    while (i < m_text.size()) {
        bool valid = false;
        const std::size_t start = i;
        const char32_t cp = decode(m_text, i, valid);
        if (valid) {
            encode(fold(cp), folded);
        } else {
            folded += m_text[start];
        }
    }
    return NString(std::move(folded));
}
