#include "Conversions.h"

#include <cstdio>
#include <cstdlib>

namespace pallix::format {

long decodeUtf8(const std::string& text, std::size_t& at) {
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(at);
    int length = 0;
    long point = 0;
    if (lead < 0x80) {
        ++at;
        return lead;
    } else if ((lead & 0xE0) == 0xC0) {
        length = 2;
        point = lead & 0x1F;
    } else if ((lead & 0xF0) == 0xE0) {
        length = 3;
        point = lead & 0x0F;
    } else if ((lead & 0xF8) == 0xF0) {
        length = 4;
        point = lead & 0x07;
    } else {
        return -1;
    }
    if (at + length > text.size()) {
        return -1;
    }
    for (int i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) {
            return -1;
        }
        point = (point << 6) | (byte(at + i) & 0x3F);
    }
    static const long smallest[] = {0, 0, 0x80, 0x800, 0x10000};
    if (point < smallest[length] || point > 0x10FFFF || (point >= 0xD800 && point <= 0xDFFF)) {
        return -1;
    }
    at += length;
    return point;
}

int readInt32(const pugi::xml_attribute& attribute, int fallback) {
    return attribute.as_int(fallback);
}

unsigned long long readUInt64(const pugi::xml_attribute& attribute, unsigned long long fallback) {
    return attribute.as_ullong(fallback);
}

long long readInt64(const pugi::xml_attribute& attribute, long long fallback) {
    return attribute.as_llong(fallback);
}

std::uint16_t readPort(const pugi::xml_attribute& attribute) {
    return static_cast<std::uint16_t>(attribute.as_uint(0));
}

namespace {

std::string hexadecimal(unsigned long long value, int digits) {
    char text[24];
    std::snprintf(text, sizeof text, "%0*llX", digits, value);
    return text;
}

} // namespace

std::string chipText(unsigned chip) {
    return hexadecimal(chip, 4);
}

std::string boardText(unsigned board) {
    return hexadecimal(board, 2);
}

std::string deviceIdText(unsigned long long id) {
    return hexadecimal(id, 16);
}

unsigned long long readDeviceId(const char* name) {
    return std::strtoull(name, nullptr, 16);
}

bool isBase64(const std::string& text) {
    if (text.size() % 4 != 0) {
        return false;
    }
    const std::size_t padding = text.find_first_of('=');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                            (c >= '0' && c <= '9') || c == '+' || c == '/';
        if (i < padding ? !letter : (c != '=' || i + 2 < text.size())) {
            return false;
        }
    }
    return true;
}

std::string xmlTextProblem(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const long point = decodeUtf8(text, at);
        if (point < 0) {
            return "a byte that is not UTF-8 (byte " + std::to_string(start + 1) + ")";
        }
        if (!isXmlCharacter(static_cast<unsigned long long>(point))) {
            char name[16];
            std::snprintf(name, sizeof name, "U+%04X", static_cast<unsigned>(point));
            return std::string("character ") + name + ", which an XML 1.0 file cannot carry";
        }
    }
    return std::string();
}

} // namespace pallix::format
