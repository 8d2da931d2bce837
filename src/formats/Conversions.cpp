#include "Conversions.h"

#include <cstdio>
#include <cstdlib>

namespace pallix::format {

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

} // namespace pallix::format
