#include "LocationReference.h"
#include "RegionSpy.h"
#include "VirtualSlot.h"

#include "PRuntime.h"
#include "PRuntimeLocation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <type_traits>
#include <vector>

using pallix::test::RegionSpy;
using pallix::test::virtualSlot;

namespace {

const double notANumber = std::numeric_limits<double>::quiet_NaN();
const double infinity = std::numeric_limits<double>::infinity();

// Bit for bit, except that any NaN matches any NaN (the sign of a computed NaN is not fixed).
bool same(double a, double b) {
    if (std::isnan(a) || std::isnan(b)) {
        return std::isnan(a) && std::isnan(b);
    }
    return std::memcmp(&a, &b, sizeof a) == 0;
}

// Inside and outside the rectangle, on and next to its bounds, and the special values.
std::vector<double> gridLongitudes() {
    return {
        -180.0, -73.9,  -0.0,       0.0,      2.35,     60.0,  73.66,  std::nextafter(73.66, 100.0),
        80.0,   100.25, 105.0,      116.4,    121.47,   126.5, 135.05, std::nextafter(135.05, 0.0),
        140.0,  180.0,  notANumber, infinity, -infinity};
}

std::vector<double> gridLatitudes() {
    return {-90.0,      -33.9,    0.0,      3.86,  std::nextafter(3.86, 10.0), 10.0, 22.3,
            31.23,      35.0,     39.9,     53.55, std::nextafter(53.55, 0.0), 60.0, 90.0,
            notANumber, infinity, -infinity};
}

using Conversion = void (PRuntimeLocation::*)(double*, double*) const;

class LocationTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }

    template <typename Expected>
    void checkGrid(Conversion conversion, Expected expected, const char* name) {
        int checked = 0;
        for (double lng : gridLongitudes()) {
            for (double lat : gridLatitudes()) {
                double outLng = lng;
                double outLat = lat;
                (location.*conversion)(&outLng, &outLat);
                const reference::Point want = expected(lng, lat);
                EXPECT_TRUE(same(outLng, want.lng) && same(outLat, want.lat))
                    << name << "(" << lng << ", " << lat << ") gave (" << outLng << ", " << outLat
                    << "), expected (" << want.lng << ", " << want.lat << ")";
                ++checked;
            }
        }
        EXPECT_EQ(checked, 21 * 17);
    }

    PRuntimeLocation location;
};

} // namespace

TEST(LocationSlots, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeLocation::isChina), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeLocation::BD09_TO_GCJ02), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeLocation::GCJ02_TO_BD09), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeLocation::GCJ02_TO_WGS84), 6u);
    EXPECT_EQ(virtualSlot(&PRuntimeLocation::WGS84_TO_GCJ02), 7u);
}

TEST(LocationCopies, CopyConstructionAndAssignmentExistAndCopyNothing) {
    static_assert(std::is_copy_constructible_v<PRuntimeLocation>);
    static_assert(std::is_copy_assignable_v<PRuntimeLocation>);
    const PRuntimeLocation original;
    PRuntimeLocation copy(original);
    PRuntimeLocation assigned;
    assigned = original;
    double lng = 116.4;
    double lat = 39.9;
    copy.WGS84_TO_GCJ02(&lng, &lat);
    const reference::Point want = reference::wgsToGcj(116.4, 39.9);
    EXPECT_TRUE(same(lng, want.lng) && same(lat, want.lat));
    EXPECT_FALSE(assigned.isChina(116.4, 39.9));
    EXPECT_EQ(sizeof(PRuntimeLocation), sizeof(void*));
}

TEST_F(LocationTest, RootHandsOutTheComponent) {
    PRuntimeLocation* fromRoot = PRuntime::getInstance()->location();
    ASSERT_NE(fromRoot, nullptr);
    EXPECT_TRUE(fromRoot->isChina(2.35, 48.85));
}

// --- the rectangle ------------------------------------------------------------------------

TEST_F(LocationTest, IsChinaIsFalseInsideTheRectangle) {
    EXPECT_FALSE(location.isChina(116.4, 39.9));
    EXPECT_FALSE(location.isChina(121.47, 31.23));
}

TEST_F(LocationTest, IsChinaIsTrueOutsideTheRectangle) {
    EXPECT_TRUE(location.isChina(2.35, 48.85));
    EXPECT_TRUE(location.isChina(-73.9, 40.7));
    EXPECT_TRUE(location.isChina(116.4, -39.9));
}

TEST_F(LocationTest, IsChinaExcludesEveryBound) {
    EXPECT_TRUE(location.isChina(73.66, 39.9));
    EXPECT_TRUE(location.isChina(135.05, 39.9));
    EXPECT_TRUE(location.isChina(100.0, 3.86));
    EXPECT_TRUE(location.isChina(100.0, 53.55));
    EXPECT_FALSE(location.isChina(std::nextafter(73.66, 100.0), 39.9));
    EXPECT_FALSE(location.isChina(std::nextafter(135.05, 0.0), 39.9));
    EXPECT_FALSE(location.isChina(100.0, std::nextafter(3.86, 10.0)));
    EXPECT_FALSE(location.isChina(100.0, std::nextafter(53.55, 0.0)));
}

TEST_F(LocationTest, IsChinaCountsNanAndInfinityAsOutside) {
    EXPECT_TRUE(location.isChina(notANumber, 39.9));
    EXPECT_TRUE(location.isChina(116.4, notANumber));
    EXPECT_TRUE(location.isChina(infinity, 39.9));
    EXPECT_TRUE(location.isChina(116.4, -infinity));
}

TEST_F(LocationTest, IsChinaMatchesTheRectangleOnTheGrid) {
    for (double lng : gridLongitudes()) {
        for (double lat : gridLatitudes()) {
            EXPECT_EQ(location.isChina(lng, lat), reference::outside(lng, lat))
                << lng << ", " << lat;
        }
    }
}

// --- the conversions against the formulas --------------------------------------------------

TEST_F(LocationTest, WgsToGcjMatchesTheFormulasOnTheGrid) {
    checkGrid(
        &PRuntimeLocation::WGS84_TO_GCJ02,
        [](double lng, double lat) { return reference::wgsToGcj(lng, lat); }, "WGS84_TO_GCJ02");
}

TEST_F(LocationTest, GcjToWgsMatchesTheFormulasOnTheGrid) {
    checkGrid(
        &PRuntimeLocation::GCJ02_TO_WGS84,
        [](double lng, double lat) { return reference::gcjToWgs(lng, lat); }, "GCJ02_TO_WGS84");
}

TEST_F(LocationTest, GcjToBdMatchesTheFormulasOnTheGrid) {
    checkGrid(&PRuntimeLocation::GCJ02_TO_BD09, reference::gcjToBd, "GCJ02_TO_BD09");
}

TEST_F(LocationTest, BdToGcjMatchesTheFormulasOnTheGrid) {
    checkGrid(
        &PRuntimeLocation::BD09_TO_GCJ02,
        [](double lng, double lat) { return reference::bdToGcj(lng, lat); }, "BD09_TO_GCJ02");
}

TEST_F(LocationTest, WgsToGcjShiftsBeijingByHundredsOfMetres) {
    double lng = 116.4;
    double lat = 39.9;
    location.WGS84_TO_GCJ02(&lng, &lat);
    // Known size of the offset around Beijing: about +0.0062 degrees east, +0.0014 north.
    EXPECT_NEAR(lng - 116.4, 0.0062, 0.0005);
    EXPECT_NEAR(lat - 39.9, 0.0014, 0.0005);
}

// --- edge cases -----------------------------------------------------------------------------

TEST_F(LocationTest, WgsToGcjOutsideLeavesBothValuesBitForBit) {
    for (const reference::Point p :
         {reference::Point{2.35, 48.85}, reference::Point{-0.0, -0.0},
          reference::Point{73.66, 39.9}, reference::Point{1e-310, 1e308}}) {
        double lng = p.lng;
        double lat = p.lat;
        location.WGS84_TO_GCJ02(&lng, &lat);
        EXPECT_TRUE(same(lng, p.lng)) << p.lng;
        EXPECT_TRUE(same(lat, p.lat)) << p.lat;
    }
}

TEST_F(LocationTest, OutsidePointsPassEveryConversionButTheBaiduShiftUnchanged) {
    for (Conversion conversion :
         {&PRuntimeLocation::WGS84_TO_GCJ02, &PRuntimeLocation::GCJ02_TO_WGS84,
          &PRuntimeLocation::BD09_TO_GCJ02}) {
        double lng = -73.9;
        double lat = 40.7;
        (location.*conversion)(&lng, &lat);
        EXPECT_TRUE(same(lng, -73.9) && same(lat, 40.7));
    }
    double lng = -73.9;
    double lat = 40.7;
    location.GCJ02_TO_BD09(&lng, &lat);
    EXPECT_NE(lng, -73.9);
    EXPECT_NE(lat, 40.7);
}

TEST_F(LocationTest, GcjToBdOfTheOriginIsExactlyTheShift) {
    double lng = 0.0;
    double lat = 0.0;
    location.GCJ02_TO_BD09(&lng, &lat);
    EXPECT_EQ(lng, 0.0065);
    EXPECT_EQ(lat, 0.006);
}

TEST_F(LocationTest, BdToGcjOfTheShiftedOriginStaysBecauseItIsOutside) {
    double lng = 0.0065;
    double lat = 0.006;
    location.BD09_TO_GCJ02(&lng, &lat);
    EXPECT_EQ(lng, 0.0065);
    EXPECT_EQ(lat, 0.006);
}

TEST_F(LocationTest, RoundTripWgsGcjWgsIsCloseButNotExact) {
    int inexact = 0;
    for (double lng = 75.0; lng < 135.0; lng += 7.5) {
        for (double lat = 5.0; lat < 53.0; lat += 6.0) {
            double outLng = lng;
            double outLat = lat;
            location.WGS84_TO_GCJ02(&outLng, &outLat);
            location.GCJ02_TO_WGS84(&outLng, &outLat);
            // The offset changes little over a few hundred metres: within 1e-4 degrees.
            EXPECT_NEAR(outLng, lng, 1e-4) << lng << ", " << lat;
            EXPECT_NEAR(outLat, lat, 1e-4) << lng << ", " << lat;
            if (outLng != lng || outLat != lat) {
                ++inexact;
            }
        }
    }
    EXPECT_GT(inexact, 0);

    double lng = 116.4;
    double lat = 39.9;
    location.WGS84_TO_GCJ02(&lng, &lat);
    location.GCJ02_TO_WGS84(&lng, &lat);
    EXPECT_NE(lng, 116.4);
    EXPECT_NEAR(lng, 116.4, 1e-5);
    EXPECT_NEAR(lat, 39.9, 1e-5);
}

TEST_F(LocationTest, RoundTripGcjBdGcjIsClose) {
    double lng = 116.4;
    double lat = 39.9;
    location.GCJ02_TO_BD09(&lng, &lat);
    location.BD09_TO_GCJ02(&lng, &lat);
    EXPECT_NEAR(lng, 116.4, 1e-5);
    EXPECT_NEAR(lat, 39.9, 1e-5);
}

TEST_F(LocationTest, NullPointerLeavesTheOtherCoordinateUntouched) {
    for (Conversion conversion :
         {&PRuntimeLocation::WGS84_TO_GCJ02, &PRuntimeLocation::GCJ02_TO_WGS84,
          &PRuntimeLocation::GCJ02_TO_BD09, &PRuntimeLocation::BD09_TO_GCJ02}) {
        double lat = 39.9;
        (location.*conversion)(nullptr, &lat);
        EXPECT_EQ(lat, 39.9);
        double lng = 116.4;
        (location.*conversion)(&lng, nullptr);
        EXPECT_EQ(lng, 116.4);
        (location.*conversion)(nullptr, nullptr);
    }
}

TEST_F(LocationTest, NanAndInfinityPassOrBecomeNan) {
    double lng = notANumber;
    double lat = 39.9;
    location.WGS84_TO_GCJ02(&lng, &lat);
    EXPECT_TRUE(std::isnan(lng));
    EXPECT_EQ(lat, 39.9);

    lng = infinity;
    lat = 39.9;
    location.GCJ02_TO_WGS84(&lng, &lat);
    EXPECT_EQ(lng, infinity);
    EXPECT_EQ(lat, 39.9);

    // No rectangle on the Baidu shift: the special values go through the arithmetic.
    lng = notANumber;
    lat = 0.0;
    location.GCJ02_TO_BD09(&lng, &lat);
    EXPECT_TRUE(std::isnan(lng));
    EXPECT_TRUE(std::isnan(lat));
    lng = infinity;
    lat = 0.0;
    location.GCJ02_TO_BD09(&lng, &lat);
    EXPECT_TRUE(std::isnan(lng));
    EXPECT_TRUE(std::isnan(lat));
}

// --- the region through the virtual table -------------------------------------------------

TEST_F(LocationTest, ConversionsAskTheRegionThroughTheVirtualTable) {
    RegionSpy spy;
    spy.everywhereInside = true;
    double lng = 2.35;
    double lat = 48.85;
    spy.WGS84_TO_GCJ02(&lng, &lat);
    EXPECT_EQ(spy.calls, 1);
    const reference::Point want = reference::wgsToGcj(2.35, 48.85, false);
    EXPECT_TRUE(same(lng, want.lng) && same(lat, want.lat));

    lng = 2.35;
    lat = 48.85;
    spy.GCJ02_TO_WGS84(&lng, &lat);
    EXPECT_EQ(spy.calls, 2);
    EXPECT_NE(lng, 2.35);
}

TEST_F(LocationTest, BaiduToGcjTestsTheBaiduInputAndTheOppositeWayTestsNothing) {
    RegionSpy spy;
    double lng = 116.41;
    double lat = 39.91;
    spy.GCJ02_TO_BD09(&lng, &lat);
    EXPECT_EQ(spy.calls, 0);

    const double bdLng = lng;
    const double bdLat = lat;
    spy.BD09_TO_GCJ02(&lng, &lat);
    EXPECT_EQ(spy.calls, 1);
    EXPECT_EQ(spy.lastLongitude, bdLng);
    EXPECT_EQ(spy.lastLatitude, bdLat);
}
