#include "Values.h"

#include "Conversions.h"

#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstdlib>

namespace pallix::tool {

namespace {

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

// Accepts the text that `parse` reads, handing on the number in decimal.
template <typename Parse>
CLI::Validator numberValidator(Parse parse, const std::string& range, const std::string& why,
                               const std::string& description) {
    return CLI::Validator(
        [parse, range, why](std::string& text) -> std::string {
            const auto value = parse(text);
            if (!value) {
                return "'" + text + "' is not " + range + (why.empty() ? "" : " (" + why + ")");
            }
            text = std::to_string(*value);
            return std::string();
        },
        description);
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
    double value = 0;
    const char* end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end || !std::isfinite(value)) {
        return std::nullopt;
    }
    return value;
}

CLI::Validator IntegerIn(long long minimum, long long maximum, const std::string& why,
                         Digits digits) {
    return numberValidator(
        [=](const std::string& text) { return parseInteger(text, minimum, maximum, digits); },
        rangeText(minimum, maximum), why,
        "INT in [" + std::to_string(minimum) + " - " + std::to_string(maximum) + "]");
}

CLI::Validator UnsignedUpTo(unsigned long long maximum, const std::string& why) {
    return numberValidator([=](const std::string& text) { return parseUnsigned(text, maximum); },
                           "a whole number from 0 to " + std::to_string(maximum), why,
                           "UINT in [0 - " + std::to_string(maximum) + "]");
}

CLI::Validator XmlText() {
    return CLI::Validator(
        [](std::string& text) -> std::string {
            const std::string problem = format::xmlTextProblem(text);
            return problem.empty() ? problem : "the text has " + problem;
        },
        "");
}

CLI::Validator NonEmptyPath(const std::string& hint) {
    const std::string refusal = "the path is empty" + (hint.empty() ? "" : " (" + hint + ")");
    return CLI::Validator(
        [refusal](const std::string& path) { return path.empty() ? refusal : std::string(); }, "");
}

} // namespace pallix::tool
