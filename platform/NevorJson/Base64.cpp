#include "Base64.h"

#include <array>

namespace nevor::json {

namespace {

constexpr char kAlphabet[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

int valueOf(char c) {
    if (c >= 'A' && c <= 'Z') {
        return c - 'A';
    }
    if (c >= 'a' && c <= 'z') {
        return c - 'a' + 26;
    }
    if (c >= '0' && c <= '9') {
        return c - '0' + 52;
    }
    if (c == '+') {
        return 62;
    }
    if (c == '/') {
        return 63;
    }
    return -1;
}

} // namespace

std::string encodeBase64(const std::string& bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    std::size_t i = 0;
    for (; i + 2 < bytes.size(); i += 3) {
        const unsigned int n = (static_cast<unsigned char>(bytes[i]) << 16) |
                               (static_cast<unsigned char>(bytes[i + 1]) << 8) |
                               static_cast<unsigned char>(bytes[i + 2]);
        text += kAlphabet[(n >> 18) & 63];
        text += kAlphabet[(n >> 12) & 63];
        text += kAlphabet[(n >> 6) & 63];
        text += kAlphabet[n & 63];
    }
    const std::size_t rest = bytes.size() - i;
    if (rest > 0) {
        unsigned int n = static_cast<unsigned char>(bytes[i]) << 16;
        if (rest == 2) {
            n |= static_cast<unsigned char>(bytes[i + 1]) << 8;
        }
        text += kAlphabet[(n >> 18) & 63];
        text += kAlphabet[(n >> 12) & 63];
        text += rest == 2 ? kAlphabet[(n >> 6) & 63] : '=';
        text += '=';
    }
    return text;
}

std::optional<std::string> decodeBase64(const std::string& text) {
    if (text.size() % 4 != 0) {
        return std::nullopt;
    }
    std::string bytes;
    bytes.reserve(text.size() / 4 * 3);
    for (std::size_t i = 0; i < text.size(); i += 4) {
        std::array<int, 4> v{};
        int padding = 0;
        for (int k = 0; k < 4; ++k) {
            const char c = text[i + static_cast<std::size_t>(k)];
            if (c == '=' && i + 4 == text.size() && k >= 2) {
                v[static_cast<std::size_t>(k)] = 0;
                ++padding;
            } else if (padding > 0 || (v[static_cast<std::size_t>(k)] = valueOf(c)) < 0) {
                return std::nullopt;
            }
        }
        const unsigned int n =
            (static_cast<unsigned int>(v[0]) << 18) | (static_cast<unsigned int>(v[1]) << 12) |
            (static_cast<unsigned int>(v[2]) << 6) | static_cast<unsigned int>(v[3]);
        bytes += static_cast<char>((n >> 16) & 0xFF);
        if (padding < 2) {
            bytes += static_cast<char>((n >> 8) & 0xFF);
        }
        if (padding < 1) {
            bytes += static_cast<char>(n & 0xFF);
        }
    }
    return bytes;
}

} // namespace nevor::json
