// The conversions give exactly the bits of the published formulas. The library evaluates the
// terms the two polynomials share once, takes a sine and the cosine of the same angle in one
// call and is compiled without errno-setting math functions; none of that may change a single
// bit of a result, the sign and payload of a NaN included. The reference (LocationReference.h)
// makes every call as the formulas write it and is compiled with this test's ordinary flags.

#include "DoubleBits.h"
#include "LocationReference.h"

#include "PRuntimeLocation.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <sstream>
#include <string>
#include <vector>

using pallix::test::bits;
using pallix::test::fromBits;
using pallix::test::infinity;
using pallix::test::notANumber;

namespace {

// A value, one step below it and one step above it.
void around(std::vector<double>& values, double value) {
    values.push_back(std::nextafter(value, -infinity));
    values.push_back(value);
    values.push_back(std::nextafter(value, infinity));
}

// Zeros and NaNs of both signs, a NaN with a payload, the infinities, the largest and the
// smallest values: each must pass the conversions that leave it alone with its bits.
void specials(std::vector<double>& values) {
    for (double value :
         {0.0, -0.0, notANumber, -notANumber, fromBits(0x7ff8'0000'0000'beefULL), infinity,
          -infinity, std::numeric_limits<double>::max(), std::numeric_limits<double>::lowest(),
          std::numeric_limits<double>::denorm_min()}) {
        values.push_back(value);
    }
}

// Each bound of the rectangle exactly, one step inside and one step outside; 105 where the
// root of |x| has its kink; far points; and a sweep across and beyond the rectangle at a step
// that does not divide the bounds.
std::vector<double> longitudes() {
    std::vector<double> values;
    specials(values);
    for (double value : {73.66, 135.05, 105.0}) {
        around(values, value);
    }
    for (double value : {-180.0, -73.9, 2.35, 60.0, 180.0, 1e300}) {
        values.push_back(value);
    }
    for (double value = 72.9; value < 136.0; value += 0.437) {
        values.push_back(value);
    }
    return values;
}

// The same for latitude; 35 is where y is zero.
std::vector<double> latitudes() {
    std::vector<double> values;
    specials(values);
    for (double value : {3.86, 53.55, 35.0}) {
        around(values, value);
    }
    for (double value : {-90.0, -33.9, 60.0, 89.999999, 90.0}) {
        values.push_back(value);
    }
    for (double value = 3.1; value < 54.5; value += 0.373) {
        values.push_back(value);
    }
    return values;
}

using Conversion = void (PRuntimeLocation::*)(double*, double*) const;
using Expected = reference::Point (*)(double, double, bool);

// A region that takes in the whole world, so that the formulas themselves meet every value,
// the poles, the infinities and the NaNs included.
class Everywhere : public PRuntimeLocation {
public:
    bool isChina(double, double) const override { return false; }
};

// Every bit must match, with one exception: a NaN that the arithmetic makes (from a NaN or an
// infinity that went through the formulas). When both operands of an operation are NaN, the
// processor returns one of them by its position (x86 returns the first), and which operand of
// an addition or product comes first is the compiler's choice, not the formulas': the sign and
// payload of such a NaN differ between two compilations of the same expression. A NaN that a
// conversion passes through untouched is compared bit for bit like any other value.
bool sameBits(double result, double expected, bool computed) {
    if (bits(result) == bits(expected)) {
        return true;
    }
    return computed && std::isnan(result) && std::isnan(expected);
}

// Counts the points whose result differs, and describes the first few.
class BitComparison {
public:
    BitComparison(const PRuntimeLocation& location, Conversion conversion, Expected expected,
                  bool hasRegion, bool testRegion)
        : location_(location), conversion_(conversion), expected_(expected),
          regionApplies_(hasRegion && testRegion), testRegion_(testRegion) {}

    void check(double lng, double lat) {
        double outLng = lng;
        double outLat = lat;
        (location_.*conversion_)(&outLng, &outLat);
        const reference::Point want = expected_(lng, lat, testRegion_);
        ++checked_;
        const bool computed = !(regionApplies_ && reference::outside(lng, lat));
        if (sameBits(outLng, want.lng, computed) && sameBits(outLat, want.lat, computed)) {
            return;
        }
        if (++differing_ <= 10) {
            std::ostringstream line;
            line.precision(17);
            line << std::hex << "(" << lng << ", " << lat << ") [" << bits(lng) << ", " << bits(lat)
                 << "] gave [" << bits(outLng) << ", " << bits(outLat) << "], the formulas give ["
                 << bits(want.lng) << ", " << bits(want.lat) << "]\n";
            report_ += line.str();
        }
    }

    int checked() const { return checked_; }
    int differing() const { return differing_; }
    const std::string& report() const { return report_; }

private:
    const PRuntimeLocation& location_;
    Conversion conversion_;
    Expected expected_;
    bool regionApplies_;
    bool testRegion_;
    int checked_ = 0;
    int differing_ = 0;
    std::string report_;
};

struct Case {
    const char* name;
    Conversion conversion;
    Expected expected;
    // False for the one conversion that shifts every point.
    bool hasRegion;
};

const Case cases[] = {
    {"WGS84_TO_GCJ02", &PRuntimeLocation::WGS84_TO_GCJ02, reference::wgsToGcj, true},
    {"GCJ02_TO_WGS84", &PRuntimeLocation::GCJ02_TO_WGS84, reference::gcjToWgs, true},
    {"GCJ02_TO_BD09", &PRuntimeLocation::GCJ02_TO_BD09,
     [](double lng, double lat, bool) { return reference::gcjToBd(lng, lat); }, false},
    {"BD09_TO_GCJ02", &PRuntimeLocation::BD09_TO_GCJ02, reference::bdToGcj, true},
};

void checkGrid(const PRuntimeLocation& location, bool testRegion) {
    const std::vector<double> lngs = longitudes();
    const std::vector<double> lats = latitudes();
    for (const Case& c : cases) {
        BitComparison comparison(location, c.conversion, c.expected, c.hasRegion, testRegion);
        for (double lng : lngs) {
            for (double lat : lats) {
                comparison.check(lng, lat);
            }
        }
        EXPECT_EQ(comparison.checked(), static_cast<int>(lngs.size() * lats.size()));
        EXPECT_EQ(comparison.differing(), 0) << c.name << ":\n" << comparison.report();
    }
}

// Uniform points, the same every run. A change in the order of two additions shows in only a
// few points in a million, hence the count.
void checkRandom(const PRuntimeLocation& location, bool testRegion, int count, double lngFrom,
                 double lngTo, double latFrom, double latTo) {
    for (const Case& c : cases) {
        std::mt19937_64 generator(20240613);
        std::uniform_real_distribution<double> lngs(lngFrom, lngTo);
        std::uniform_real_distribution<double> lats(latFrom, latTo);
        BitComparison comparison(location, c.conversion, c.expected, c.hasRegion, testRegion);
        for (int i = 0; i < count; ++i) {
            const double lng = lngs(generator);
            comparison.check(lng, lats(generator));
        }
        EXPECT_EQ(comparison.differing(), 0) << c.name << ":\n" << comparison.report();
    }
}

} // namespace

TEST(LocationBits, ConversionsGiveTheFormulasBitsOnTheGrid) {
    const PRuntimeLocation location;
    checkGrid(location, true);
}

TEST(LocationBits, ConversionsGiveTheFormulasBitsOnRandomPoints) {
    const PRuntimeLocation location;
    checkRandom(location, true, 1000000, 70.0, 140.0, 0.0, 58.0);
}

TEST(LocationBits, FormulasGiveTheirBitsEverywhereWhenTheRegionTakesEverything) {
    const Everywhere location;
    checkGrid(location, false);
    checkRandom(location, false, 200000, -180.0, 180.0, -90.0, 90.0);
}

TEST(LocationBits, TheGridCoversTheBoundsFromBothSides) {
    // The comparisons above mean little unless the grid holds both sides of every bound.
    const PRuntimeLocation location;
    const std::vector<double> lngs = longitudes();
    const std::vector<double> lats = latitudes();
    int inside = 0;
    int outside = 0;
    for (double lng : lngs) {
        for (double lat : lats) {
            (location.isChina(lng, lat) ? outside : inside) += 1;
        }
    }
    EXPECT_GT(inside, 10000);
    EXPECT_GT(outside, 5000);
    for (double bound : {73.66, 135.05}) {
        EXPECT_TRUE(location.isChina(bound, 30.0));
        EXPECT_NE(location.isChina(std::nextafter(bound, 0.0), 30.0),
                  location.isChina(std::nextafter(bound, 200.0), 30.0));
    }
    for (double bound : {3.86, 53.55}) {
        EXPECT_TRUE(location.isChina(100.0, bound));
        EXPECT_NE(location.isChina(100.0, std::nextafter(bound, 0.0)),
                  location.isChina(100.0, std::nextafter(bound, 90.0)));
    }
}
