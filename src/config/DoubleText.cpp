#include "DoubleText.h"

#include <clocale>
#include <cstdint>
#include <cstring>
#include <string>
#include <unordered_map>

namespace pallix::config {

namespace {

// More distinct values than a configuration holds; a host that keeps writing new places (a
// simulated route, say) starts the texts over now and then instead of piling them up.
constexpr std::size_t kMostTexts = 1024;

// Per thread, like the locale the texts depend on; the configuration is saved from one thread,
// and no lock is needed either way.
struct Texts {
    std::string decimalPoint;
    std::unordered_map<std::uint64_t, std::string> byValue;
};

thread_local Texts texts;

std::uint64_t bitsOf(double value) {
    std::uint64_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

} // namespace

void setDouble(pugi::xml_attribute attribute, double value) {
    const char* decimalPoint = std::localeconv()->decimal_point;
    if (texts.decimalPoint != decimalPoint) {
        texts.byValue.clear();
        texts.decimalPoint = decimalPoint;
    }
    // Keyed by the bits, so that 0 and -0, and every NaN, keep texts of their own.
    const std::uint64_t bits = bitsOf(value);
    const auto kept = texts.byValue.find(bits);
    if (kept != texts.byValue.end()) {
        attribute.set_value(kept->second.c_str());
        return;
    }
    attribute.set_value(value);
    if (texts.byValue.size() >= kMostTexts) {
        texts.byValue.clear();
    }
    texts.byValue.emplace(bits, attribute.as_string());
}

} // namespace pallix::config
