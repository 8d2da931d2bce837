// The text and coordinate helpers as a host application subclasses them: overrides written
// from the documented signatures, without noexcept specifiers, are reached through the
// virtual table, and an override that throws inside one of the helpers ends the process.

#include "EndsTheProcess.h"

#include "PRuntime.h"
#include "PRuntimeLocation.h"
#include "PRuntimeString.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace {

// Sizes as the host's own style guide writes them.
class HostSizes : public PRuntimeString {
public:
    QString stringFromSize(unsigned long long bytes, int precision, bool spaced) override {
        ++calls;
        return QStringLiteral("%1 octets").arg(bytes) +
               (spaced ? QString() : PRuntimeString::stringFromSize(bytes, precision, spaced));
    }
    int calls = 0;
};

// A region test that cannot decide.
class UndecidedRegion : public PRuntimeLocation {
public:
    bool isChina(double, double) const override { throw std::logic_error("no region data"); }
};

} // namespace

TEST(UtilityHost, SizeTextComesFromTheOverride) {
    HostSizes host;
    PRuntimeString& strings = host;
    EXPECT_EQ(strings.stringFromSize(2048, 1, true), QStringLiteral("2048 octets"));
    EXPECT_EQ(strings.stringFromSize(2048, 1, false), QStringLiteral("2048 octets2.0KB"));
    EXPECT_EQ(host.calls, 2);
}

TEST(UtilityHost, RegionTestThatThrowsEndsTheProcessInsideTheConversion) {
    UndecidedRegion host;
    const PRuntimeLocation& location = host;
    double lng = 116.39;
    double lat = 39.91;
    EXPECT_ENDS_THE_PROCESS(location.WGS84_TO_GCJ02(&lng, &lat));
    EXPECT_ENDS_THE_PROCESS(location.GCJ02_TO_WGS84(&lng, &lat));
    EXPECT_ENDS_THE_PROCESS(location.BD09_TO_GCJ02(&lng, &lat));
    // The conversion that never asks for the region is not affected.
    location.GCJ02_TO_BD09(&lng, &lat);
    EXPECT_NE(lng, 116.39);
}
