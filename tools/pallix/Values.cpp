#include "Values.h"

#include <cctype>
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace pallix::tool {

namespace {

// The code point of the UTF-8 sequence at `at`, advancing past it; -1 for malformed bytes.
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

std::string rangeText(long long minimum, long long maximum) {
    return "a whole number from " + std::to_string(minimum) + " to " + std::to_string(maximum);
}

struct Magnitude {
    bool negative = false;
    unsigned long long value = 0;
};

// The sign and magnitude of a whole number written as `digits` allows; nothing when the text
// holds anything else or the magnitude exceeds 64 bits.
std::optional<Magnitude> parseMagnitude(const std::string& text, Digits digits) {
    Magnitude result;
    std::size_t at = 0;
    if (digits != Digits::Hex && !text.empty() && text[0] == '-') {
        result.negative = true;
        at = 1;
    }
    const bool prefixed = digits != Digits::Decimal && text.compare(at, 2, "0x") == 0;
    const bool prefixedUpper = digits != Digits::Decimal && text.compare(at, 2, "0X") == 0;
    const bool hex = prefixed || prefixedUpper || digits == Digits::Hex;
    at += prefixed || prefixedUpper ? 2 : 0;
    const char* const allowed = hex ? "0123456789abcdefABCDEF" : "0123456789";
    if (at >= text.size() || text.find_first_not_of(allowed, at) != std::string::npos) {
        return std::nullopt;
    }
    errno = 0;
    result.value = std::strtoull(text.c_str() + at, nullptr, hex ? 16 : 10);
    if (errno == ERANGE) {
        return std::nullopt;
    }
    return result;
}

} // namespace

std::optional<long long> parseInteger(const std::string& text, long long minimum, long long maximum,
                                      Digits digits) {
    const std::optional<Magnitude> number = parseMagnitude(text, digits);
    if (!number) {
        return std::nullopt;
    }
    // Compared as magnitudes, so that the bounds never overflow.
    const unsigned long long limit =
        number->negative ? (minimum < 0 ? static_cast<unsigned long long>(-(minimum + 1)) + 1 : 0)
                         : (maximum < 0 ? 0 : static_cast<unsigned long long>(maximum));
    if (number->value > limit || (!number->negative && maximum < 0)) {
        return std::nullopt;
    }
    const long long value =
        number->negative ? (number->value == 0 ? 0 : -static_cast<long long>(number->value - 1) - 1)
                         : static_cast<long long>(number->value);
    if (value < minimum || value > maximum) {
        return std::nullopt;
    }
    return value;
}

std::optional<unsigned long long> parseUnsigned(const std::string& text, unsigned long long maximum,
                                                Digits digits) {
    const std::optional<Magnitude> number = parseMagnitude(text, digits);
    if (!number || number->negative || number->value > maximum) {
        return std::nullopt;
    }
    return number->value;
}

std::optional<double> parseFiniteNumber(const std::string& text) {
    if (text.empty() || std::isspace(static_cast<unsigned char>(text[0]))) {
        return std::nullopt;
    }
    char* end = nullptr;
    const double value = std::strtod(text.c_str(), &end);
    if (*end != '\0' || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

std::string xmlTextProblem(const std::string& text) {
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t start = at;
        const long point = decodeUtf8(text, at);
        if (point < 0) {
            return "byte " + std::to_string(start + 1) + " is not UTF-8";
        }
        const bool allowedControl = point == '\t' || point == '\n' || point == '\r';
        if ((point < 0x20 && !allowedControl) || point == 0xFFFE || point == 0xFFFF) {
            char name[16];
            std::snprintf(name, sizeof name, "U+%04lX", static_cast<unsigned long>(point));
            return std::string("character ") + name + " which an XML 1.0 file cannot carry";
        }
    }
    return std::string();
}

CLI::Validator IntegerIn(long long minimum, long long maximum) {
    return CLI::Validator(
        [minimum, maximum](std::string& text) -> std::string {
            return parseInteger(text, minimum, maximum)
                       ? std::string()
                       : "'" + text + "' is not " + rangeText(minimum, maximum);
        },
        "INT in [" + std::to_string(minimum) + " - " + std::to_string(maximum) + "]");
}

CLI::Validator UnsignedUpTo(unsigned long long maximum) {
    return CLI::Validator(
        [maximum](std::string& text) -> std::string {
            return parseUnsigned(text, maximum)
                       ? std::string()
                       : "'" + text + "' is not a whole number from 0 to " +
                             std::to_string(maximum);
        },
        "UINT in [0 - " + std::to_string(maximum) + "]");
}

CLI::Validator FiniteNumber() {
    return CLI::Validator(
        [](std::string& text) -> std::string {
            return parseFiniteNumber(text) ? std::string()
                                           : "'" + text + "' is not a finite number";
        },
        "NUMBER");
}

CLI::Validator XmlText() {
    return CLI::Validator(
        [](std::string& text) -> std::string {
            const std::string problem = xmlTextProblem(text);
            return problem;
        },
        "");
}

} // namespace pallix::tool
