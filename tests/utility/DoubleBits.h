#pragma once

#include <cstdint>
#include <cstring>
#include <limits>

// The bits of a double and back, for tests that compare conversions bit for bit.
namespace pallix::test {

inline const double notANumber = std::numeric_limits<double>::quiet_NaN();
inline const double infinity = std::numeric_limits<double>::infinity();

inline std::uint64_t bits(double value) {
    std::uint64_t result;
    std::memcpy(&result, &value, sizeof result);
    return result;
}

inline double fromBits(std::uint64_t value) {
    double result;
    std::memcpy(&result, &value, sizeof result);
    return result;
}

} // namespace pallix::test
