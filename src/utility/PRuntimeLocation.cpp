#include "PRuntimeLocation.h"

#include "LocationFormulas.h"
#include "Operation.h"

#include <cmath>
#include <limits>

// The literal values, not expressions: every build must produce the same bits.
const double PI = 3.141592653589793;
const double x_PI = 52.35987755982988;
const double _ValueA = 6378245.0;
const double ee = 0.006693421622965943;

namespace {

// The terms of the two polynomials that depend on x alone and are written the same in both: the
// root of |x| and the first sine group, sin(6x*pi) and sin(2x*pi). A conversion needs both
// polynomials at the same x, so it computes these once; each is the same expression on the same
// operands as in the polynomial, so sharing it changes no bit.
struct SharedTerms {
    double root;
    double firstSines;
};

SharedTerms sharedTerms(double x) noexcept {
    return {std::sqrt(std::fabs(x)),
            (20.0 * std::sin(6.0 * x * PI) + 20.0 * std::sin(2.0 * x * PI)) * 2.0 / 3.0};
}

// The terms are added in the published order (polynomial and root first, then the three sine
// groups); with floating point the order is part of the result.
double latitudePolynomial(double x, double y, const SharedTerms& shared) noexcept {
    double result = -100.0 + 2.0 * x + 3.0 * y + 0.2 * y * y + 0.1 * x * y + 0.2 * shared.root;
    result += shared.firstSines;
    result += (20.0 * std::sin(y * PI) + 40.0 * std::sin(y * PI / 3.0)) * 2.0 / 3.0;
    result += (160.0 * std::sin(y * PI / 12.0) + 320.0 * std::sin(y * PI / 30.0)) * 2.0 / 3.0;
    return result;
}

double longitudePolynomial(double x, double y, const SharedTerms& shared) noexcept {
    double result = 300.0 + x + 2.0 * y + 0.1 * x * x + 0.1 * x * y + 0.1 * shared.root;
    result += shared.firstSines;
    result += (20.0 * std::sin(x * PI) + 40.0 * std::sin(x * PI / 3.0)) * 2.0 / 3.0;
    result += (150.0 * std::sin(x * PI / 12.0) + 300.0 * std::sin(x * PI / 30.0)) * 2.0 / 3.0;
    return result;
}

struct SineCosine {
    double sine;
    double cosine;
};

// One argument reduction for both. glibc's sincos gives exactly the bits of its sin and cos
// (the test of the conversions holds it to that); elsewhere the two calls stay separate.
SineCosine sineCosine(double angle) noexcept {
#if defined(__GLIBC__)
    SineCosine result;
    ::sincos(angle, &result.sine, &result.cosine);
    return result;
#else
    return {std::sin(angle), std::cos(angle)};
#endif
}

struct Offset {
    double longitude;
    double latitude;
};

// The GCJ-02 offset at a point: the polynomials scaled to degrees by the ellipsoid's radii of
// curvature at that latitude (each times pi: the metres in 180 degrees along the meridian and
// along the parallel). The radii come first: their root and divisions form a long chain of
// latency that then overlaps the sines of the polynomials instead of waiting at the end. Only
// the order of independent work changes, never an operation or its operands.
Offset gcjOffset(double longitude, double latitude) noexcept {
    const SineCosine radLat = sineCosine(latitude / 180.0 * PI);
    const double magic = 1.0 - ee * radLat.sine * radLat.sine;
    const double sqrtMagic = std::sqrt(magic);
    const double meridianHalfCircle = (_ValueA * (1.0 - ee)) / (magic * sqrtMagic) * PI;
    const double parallelHalfCircle = _ValueA / sqrtMagic * radLat.cosine * PI;
    const double x = longitude - 105.0;
    const double y = latitude - 35.0;
    const SharedTerms shared = sharedTerms(x);
    const double dLat = latitudePolynomial(x, y, shared);
    const double dLng = longitudePolynomial(x, y, shared);
    return {dLng * 180.0 / parallelHalfCircle, dLat * 180.0 / meridianHalfCircle};
}

struct Point {
    double longitude;
    double latitude;
};

// The WGS-84 point w whose GCJ-02 image w + d(w) is g, by the fixed-point iteration
// w <- g - d(w), which starts at g (its first step is the single-step inverse, though not in
// that operation's rounding). Inside the rectangle the offset changes by less than 0.01 degree
// per degree (0.007 at most, near 53.5 degrees north), so each step gains at least two digits
// and a handful of steps reach the tolerance. The root of |x| is steeper than that only within
// about 1e-12 degrees of longitude 105, where it changes by less than the tolerance anyway.
//
// The change of a step, w_next - w = g - (w + d(w)), is also how far w's image misses g; so the
// iteration stops once a step changes less than the tolerance, taking the newer point, and
// otherwise (only where a subclass's region admits points where the iteration cannot settle,
// as near the poles) ends after a fixed number of steps with the point whose image came
// nearest. A point whose offset is not a number never comes nearest: g passes unchanged.
Point exactInverse(double longitude, double latitude) noexcept {
    constexpr double tolerance = 1e-12;
    constexpr int maximumSteps = 20;
    Point point{longitude, latitude};
    Point nearest = point;
    double nearestMiss = std::numeric_limits<double>::infinity();
    for (int step = 0; step < maximumSteps; ++step) {
        const Offset offset = gcjOffset(point.longitude, point.latitude);
        const Point next{longitude - offset.longitude, latitude - offset.latitude};
        const double missLongitude = std::fabs(next.longitude - point.longitude);
        const double missLatitude = std::fabs(next.latitude - point.latitude);
        if (missLongitude < tolerance && missLatitude < tolerance) {
            return next;
        }
        if (missLongitude + missLatitude < nearestMiss) {
            nearestMiss = missLongitude + missLatitude;
            nearest = point;
        }
        point = next;
    }
    return nearest;
}

// What the ways with a region rule share: a null pointer makes the call a no-op, and a point
// that isChina() (asked through the virtual table, so a host's override counts) calls outside
// passes unchanged. Otherwise `shift` gives the converted point.
template <typename Shift>
void shiftInsideRegion(const PRuntimeLocation& location, double* longitude, double* latitude,
                       Shift shift) {
    pallix::operation([&] {
        if (longitude == nullptr || latitude == nullptr ||
            location.isChina(*longitude, *latitude)) {
            return;
        }
        const Point shifted = shift(*longitude, *latitude);
        *longitude = shifted.longitude;
        *latitude = shifted.latitude;
    });
}

} // namespace

double transformlat(double x, double y) noexcept {
    return latitudePolynomial(x, y, sharedTerms(x));
}

double transformlng(double x, double y) noexcept {
    return longitudePolynomial(x, y, sharedTerms(x));
}

PRuntimeLocation::PRuntimeLocation() noexcept = default;

PRuntimeLocation::PRuntimeLocation(const PRuntimeLocation& /*other*/) noexcept {}

PRuntimeLocation& PRuntimeLocation::operator=(const PRuntimeLocation& /*other*/) noexcept {
    return *this;
}

PRuntimeLocation::~PRuntimeLocation() = default;

bool PRuntimeLocation::isChina(double longitude, double latitude) const {
    // Strict bounds; a NaN fails every comparison and so counts as outside.
    const bool inside =
        longitude > 73.66 && longitude < 135.05 && latitude > 3.86 && latitude < 53.55;
    return !inside;
}

void PRuntimeLocation::BD09_TO_GCJ02(double* longitude, double* latitude) const {
    // Tested on the BD-09 input, unlike the opposite way, which always shifts.
    shiftInsideRegion(*this, longitude, latitude, [](double lng, double lat) {
        const double x = lng - 0.0065;
        const double y = lat - 0.006;
        const double z = std::sqrt(x * x + y * y) - 0.00002 * std::sin(y * x_PI);
        const SineCosine theta = sineCosine(std::atan2(y, x) - 0.000003 * std::cos(x * x_PI));
        return Point{z * theta.cosine, z * theta.sine};
    });
}

void PRuntimeLocation::GCJ02_TO_BD09(double* longitude, double* latitude) const {
    pallix::operation([&] {
        if (longitude == nullptr || latitude == nullptr) {
            return;
        }
        const double lng = *longitude;
        const double lat = *latitude;
        const double z = std::sqrt(lng * lng + lat * lat) + 0.00002 * std::sin(lat * x_PI);
        const SineCosine theta = sineCosine(std::atan2(lat, lng) + 0.000003 * std::cos(lng * x_PI));
        *longitude = z * theta.cosine + 0.0065;
        *latitude = z * theta.sine + 0.006;
    });
}

void PRuntimeLocation::GCJ02_TO_WGS84(double* longitude, double* latitude) const {
    shiftInsideRegion(*this, longitude, latitude, [](double lng, double lat) {
        // One step only: the offset is taken at the GCJ-02 point instead of being iterated, and
        // the subtraction keeps the form 2a - (a + d), which rounds differently from a - d.
        const Offset offset = gcjOffset(lng, lat);
        return Point{2.0 * lng - (lng + offset.longitude), 2.0 * lat - (lat + offset.latitude)};
    });
}

void PRuntimeLocation::GCJ02_TO_WGS84_EXACT(double* longitude, double* latitude) const {
    shiftInsideRegion(*this, longitude, latitude, exactInverse);
}

void PRuntimeLocation::WGS84_TO_GCJ02(double* longitude, double* latitude) const {
    shiftInsideRegion(*this, longitude, latitude, [](double lng, double lat) {
        const Offset offset = gcjOffset(lng, lat);
        return Point{lng + offset.longitude, lat + offset.latitude};
    });
}
