// GCJ02_TO_WGS84_EXACT: the inverse of WGS84_TO_GCJ02 by iteration, beside the single-step
// GCJ02_TO_WGS84. Round trips come back within 1e-9 degrees, the iteration settles everywhere
// in the region, and the region rule, the special values and null pointers behave as in
// GCJ02_TO_WGS84.

#include "DoubleBits.h"
#include "LocationReference.h"
#include "RegionSpy.h"

#include "PRuntime.h"
#include "PRuntimeLocation.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

using pallix::test::RegionSpy;

using pallix::test::bits;
using pallix::test::fromBits;
using pallix::test::infinity;
using pallix::test::notANumber;

namespace {

reference::Point exact(const PRuntimeLocation& location, double lng, double lat) {
    location.GCJ02_TO_WGS84_EXACT(&lng, &lat);
    return {lng, lat};
}

// How far the GCJ-02 image of a WGS-84 point, by the formula itself (no region), is from a
// GCJ-02 point: what the iteration drives to zero.
double miss(const reference::Point& wgs, const reference::Point& gcj) {
    const reference::Point image = reference::wgsToGcj(wgs.lng, wgs.lat, false);
    return std::max(std::fabs(image.lng - gcj.lng), std::fabs(image.lat - gcj.lat));
}

struct RoundTrips {
    int checked = 0;
    int leftTheRegion = 0;
    int tooFar = 0;
    double largestError = 0.0;
};

// WGS-84 -> GCJ-02 -> WGS-84 over a grid. A point whose GCJ-02 image falls outside the
// rectangle (within about 0.01 degree of an edge) is not shifted back, by the region rule: those
// are counted apart, and must lie at the edge.
RoundTrips roundTrips(const PRuntimeLocation& location, double lngFrom, double lngTo,
                      double latFrom, double latTo, double step) {
    RoundTrips result;
    const int lngSteps = static_cast<int>((lngTo - lngFrom) / step);
    const int latSteps = static_cast<int>((latTo - latFrom) / step);
    for (int i = 0; i <= lngSteps; ++i) {
        for (int j = 0; j <= latSteps; ++j) {
            const double lng = lngFrom + i * step;
            const double lat = latFrom + j * step;
            if (location.isChina(lng, lat)) {
                continue;
            }
            double gcjLng = lng;
            double gcjLat = lat;
            location.WGS84_TO_GCJ02(&gcjLng, &gcjLat);
            if (location.isChina(gcjLng, gcjLat)) {
                ++result.leftTheRegion;
                EXPECT_TRUE(lng > 135.0 || lat < 3.9 || lat > 53.5) << lng << ", " << lat;
                continue;
            }
            const reference::Point back = exact(location, gcjLng, gcjLat);
            const double error = std::max(std::fabs(back.lng - lng), std::fabs(back.lat - lat));
            result.largestError = std::max(result.largestError, error);
            // Described for the first few only: a broken iteration would fail everywhere.
            if (!(error <= 1e-9) && ++result.tooFar <= 5) {
                ADD_FAILURE() << lng << ", " << lat << " came back as " << back.lng << ", "
                              << back.lat;
            }
            ++result.checked;
        }
    }
    return result;
}

class ExactInverseTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }

    PRuntimeLocation location;
};

} // namespace

TEST_F(ExactInverseTest, RoundTripOverMainlandChinaComesBackWithin1e9Degrees) {
    const RoundTrips trips = roundTrips(location, 73.7, 135.0, 18.0, 53.5, 0.1);
    EXPECT_GT(trips.checked, 600 * 350);
    EXPECT_EQ(trips.tooFar, 0);
    EXPECT_LE(trips.largestError, 1e-9);
}

TEST_F(ExactInverseTest, RoundTripOverTheWholeRegionComesBackWithin1e9Degrees) {
    const RoundTrips trips = roundTrips(location, 73.66, 135.05, 3.86, 53.55, 0.1);
    EXPECT_GT(trips.checked, 600 * 490);
    // Only a thin band along the eastern and northern edges leaves the rectangle.
    EXPECT_LT(trips.leftTheRegion, 200);
    EXPECT_EQ(trips.tooFar, 0);
    EXPECT_LE(trips.largestError, 1e-9);
}

TEST_F(ExactInverseTest, RoundTripOfRandomPointsComesBackWithin1e9Degrees) {
    std::mt19937_64 generator(15);
    std::uniform_real_distribution<double> lngs(73.7, 135.0);
    std::uniform_real_distribution<double> lats(3.9, 53.5);
    int checked = 0;
    for (int i = 0; i < 100000; ++i) {
        const double lng = lngs(generator);
        const double lat = lats(generator);
        double gcjLng = lng;
        double gcjLat = lat;
        location.WGS84_TO_GCJ02(&gcjLng, &gcjLat);
        if (location.isChina(gcjLng, gcjLat)) {
            continue;
        }
        const reference::Point back = exact(location, gcjLng, gcjLat);
        ASSERT_LE(std::fabs(back.lng - lng), 1e-9) << lng << ", " << lat;
        ASSERT_LE(std::fabs(back.lat - lat), 1e-9) << lng << ", " << lat;
        ++checked;
    }
    EXPECT_GT(checked, 99000);
}

TEST_F(ExactInverseTest, IterationSettlesForEveryGcjPointOfTheRegion) {
    // Every GCJ-02 point inside the rectangle, whether or not its WGS-84 point is: the image of
    // the point found misses it by no more than rounding. Longitude 105, where the root of |x|
    // has its kink, and the points around it are on the grid.
    std::vector<double> lngs;
    for (double lng = 73.67; lng < 135.05; lng += 0.05) {
        lngs.push_back(lng);
    }
    for (double lng : {73.66, 105.0, 135.05}) {
        lngs.push_back(std::nextafter(lng, 100.0));
    }
    for (double lng : {105.0, 105.006, 105.0065, 105.007}) {
        lngs.push_back(lng);
    }
    double largestMiss = 0.0;
    for (double lng : lngs) {
        for (double lat = 3.87; lat < 53.55; lat += 0.05) {
            const reference::Point wgs = exact(location, lng, lat);
            largestMiss = std::max(largestMiss, miss(wgs, {lng, lat}));
        }
        for (double lat : {3.86, 53.55}) {
            const double inside = std::nextafter(lat, 30.0);
            largestMiss = std::max(largestMiss, miss(exact(location, lng, inside), {lng, inside}));
        }
    }
    EXPECT_LE(largestMiss, 1e-11);
}

TEST_F(ExactInverseTest, IsCloserThanTheSingleStepInverseWhichStaysAsItIs) {
    double lng = 116.4;
    double lat = 39.9;
    location.WGS84_TO_GCJ02(&lng, &lat);
    double oneStepLng = lng;
    double oneStepLat = lat;
    location.GCJ02_TO_WGS84(&oneStepLng, &oneStepLat);
    const reference::Point oneStep = reference::gcjToWgs(lng, lat);
    EXPECT_EQ(bits(oneStepLng), bits(oneStep.lng));
    EXPECT_EQ(bits(oneStepLat), bits(oneStep.lat));

    const reference::Point back = exact(location, lng, lat);
    EXPECT_NEAR(back.lng, 116.4, 1e-9);
    EXPECT_NEAR(back.lat, 39.9, 1e-9);
    // The single step misses by about 1e-5 degrees there: metres, not nanodegrees.
    EXPECT_GT(std::fabs(oneStepLng - 116.4) + std::fabs(oneStepLat - 39.9), 1e-7);
}

TEST_F(ExactInverseTest, PointsOutsideTheRectanglePassBitForBit) {
    std::vector<reference::Point> points = {
        {2.35, 48.85},  {-73.9, 40.7},  {116.4, -39.9},  {0.0, 0.0},      {-0.0, -0.0},
        {-0.0, 39.9},   {116.4, -0.0},  {73.66, 39.9},   {135.05, 39.9},  {100.0, 3.86},
        {100.0, 53.55}, {180.0, 90.0},  {-180.0, -90.0}, {1e308, 1e-310}, {5e-324, -1e308},
        {73.66, 3.86},  {135.05, 53.55}};
    for (double bound : {73.66, 135.05}) {
        const double outside = std::nextafter(bound, bound < 100.0 ? 0.0 : 200.0);
        points.push_back({outside, 39.9});
    }
    for (double bound : {3.86, 53.55}) {
        const double outside = std::nextafter(bound, bound < 30.0 ? 0.0 : 90.0);
        points.push_back({100.0, outside});
    }
    for (const reference::Point& p : points) {
        const reference::Point out = exact(location, p.lng, p.lat);
        EXPECT_EQ(bits(out.lng), bits(p.lng)) << p.lng << ", " << p.lat;
        EXPECT_EQ(bits(out.lat), bits(p.lat)) << p.lng << ", " << p.lat;
    }
}

TEST_F(ExactInverseTest, NanAndInfinitiesPassBitForBitAsTheRegionRuleSays) {
    // A NaN or an infinity in either coordinate puts the point outside the rectangle.
    const double specials[] = {notANumber, -notANumber, fromBits(0x7ff8'0000'0000'beefULL),
                               infinity, -infinity};
    for (double special : specials) {
        for (const reference::Point& p :
             {reference::Point{special, 39.9}, reference::Point{116.4, special},
              reference::Point{special, special}}) {
            const reference::Point out = exact(location, p.lng, p.lat);
            EXPECT_EQ(bits(out.lng), bits(p.lng));
            EXPECT_EQ(bits(out.lat), bits(p.lat));
        }
    }
}

TEST_F(ExactInverseTest, NullPointerLeavesTheOtherCoordinateUntouched) {
    double lat = 39.9;
    location.GCJ02_TO_WGS84_EXACT(nullptr, &lat);
    EXPECT_EQ(bits(lat), bits(39.9));
    double lng = 116.4;
    location.GCJ02_TO_WGS84_EXACT(&lng, nullptr);
    EXPECT_EQ(bits(lng), bits(116.4));
    location.GCJ02_TO_WGS84_EXACT(nullptr, nullptr);
}

TEST_F(ExactInverseTest, AsksTheRegionThroughTheVirtualTableAboutTheGcjInput) {
    RegionSpy spy;
    double lng = 116.41;
    double lat = 39.91;
    spy.GCJ02_TO_WGS84_EXACT(&lng, &lat);
    EXPECT_EQ(spy.calls, 1);
    EXPECT_EQ(spy.lastLongitude, 116.41);
    EXPECT_EQ(spy.lastLatitude, 39.91);

    // A region that takes in Paris: the iteration runs there too and settles.
    spy.everywhereInside = true;
    lng = 2.35;
    lat = 48.85;
    spy.GCJ02_TO_WGS84_EXACT(&lng, &lat);
    EXPECT_EQ(spy.calls, 2);
    EXPECT_NE(lng, 2.35);
    EXPECT_LE(miss({lng, lat}, {2.35, 48.85}), 1e-11);
}

TEST_F(ExactInverseTest, RegionThatTakesInTheWorldGetsAnAnswerEverywhere) {
    // Near the poles the offset's scale grows without bound and the iteration cannot settle;
    // it ends after its fixed number of steps. A NaN or an infinity, admitted by the region,
    // gives no offset: the point passes unchanged.
    RegionSpy spy;
    spy.everywhereInside = true;
    for (double lat : {-90.0, -89.9999, 89.9999, 90.0}) {
        double lng = 105.0;
        double outLat = lat;
        spy.GCJ02_TO_WGS84_EXACT(&lng, &outLat);
    }
    for (double special : {notANumber, infinity, -infinity}) {
        double lng = special;
        double lat = 39.9;
        spy.GCJ02_TO_WGS84_EXACT(&lng, &lat);
        EXPECT_EQ(bits(lng), bits(special));
        EXPECT_EQ(bits(lat), bits(39.9));
        lng = 116.4;
        lat = special;
        spy.GCJ02_TO_WGS84_EXACT(&lng, &lat);
        EXPECT_EQ(bits(lng), bits(116.4));
        EXPECT_EQ(bits(lat), bits(special));
    }
}

TEST_F(ExactInverseTest, RootHandsOutAComponentThatHasIt) {
    const PRuntimeLocation* fromRoot = PRuntime::getInstance()->location();
    ASSERT_NE(fromRoot, nullptr);
    double lng = 116.4;
    double lat = 39.9;
    fromRoot->WGS84_TO_GCJ02(&lng, &lat);
    fromRoot->GCJ02_TO_WGS84_EXACT(&lng, &lat);
    EXPECT_NEAR(lng, 116.4, 1e-9);
    EXPECT_NEAR(lat, 39.9, 1e-9);
}
