#include "PRuntimeLocation.h"

#include "LocationFormulas.h"
#include "Operation.h"

#include <cmath>

// The literal values, not expressions: every build must produce the same bits.
const double PI = 3.141592653589793;
const double x_PI = 52.35987755982988;
const double _ValueA = 6378245.0;
const double ee = 0.006693421622965943;

// The terms are added in the published order (polynomial and root first, then the three sine
// groups); with floating point the order is part of the result.
double transformlat(double x, double y) noexcept {
    double result =
        -100.0 + 2.0 * x + 3.0 * y + 0.2 * y * y + 0.1 * x * y + 0.2 * std::sqrt(std::fabs(x));
    result += (20.0 * std::sin(6.0 * x * PI) + 20.0 * std::sin(2.0 * x * PI)) * 2.0 / 3.0;
    result += (20.0 * std::sin(y * PI) + 40.0 * std::sin(y * PI / 3.0)) * 2.0 / 3.0;
    result += (160.0 * std::sin(y * PI / 12.0) + 320.0 * std::sin(y * PI / 30.0)) * 2.0 / 3.0;
    return result;
}

double transformlng(double x, double y) noexcept {
    double result = 300.0 + x + 2.0 * y + 0.1 * x * x + 0.1 * x * y + 0.1 * std::sqrt(std::fabs(x));
    result += (20.0 * std::sin(6.0 * x * PI) + 20.0 * std::sin(2.0 * x * PI)) * 2.0 / 3.0;
    result += (20.0 * std::sin(x * PI) + 40.0 * std::sin(x * PI / 3.0)) * 2.0 / 3.0;
    result += (150.0 * std::sin(x * PI / 12.0) + 300.0 * std::sin(x * PI / 30.0)) * 2.0 / 3.0;
    return result;
}

namespace {

struct Offset {
    double longitude;
    double latitude;
};

// The GCJ-02 offset at a point: the polynomials scaled from the ellipsoid's radii of
// curvature at that latitude to degrees.
Offset gcjOffset(double longitude, double latitude) noexcept {
    double dLat = transformlat(longitude - 105.0, latitude - 35.0);
    double dLng = transformlng(longitude - 105.0, latitude - 35.0);
    const double radLat = latitude / 180.0 * PI;
    double magic = std::sin(radLat);
    magic = 1.0 - ee * magic * magic;
    const double sqrtMagic = std::sqrt(magic);
    dLat = dLat * 180.0 / ((_ValueA * (1.0 - ee)) / (magic * sqrtMagic) * PI);
    dLng = dLng * 180.0 / (_ValueA / sqrtMagic * std::cos(radLat) * PI);
    return {dLng, dLat};
}

} // namespace

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
    pallix::operation([&] {
        if (longitude == nullptr || latitude == nullptr) {
            return;
        }
        const double lng = *longitude;
        const double lat = *latitude;
        // Tested on the BD-09 input, unlike the opposite way, which always shifts.
        if (isChina(lng, lat)) {
            *longitude = lng;
            *latitude = lat;
            return;
        }
        const double x = lng - 0.0065;
        const double y = lat - 0.006;
        const double z = std::sqrt(x * x + y * y) - 0.00002 * std::sin(y * x_PI);
        const double theta = std::atan2(y, x) - 0.000003 * std::cos(x * x_PI);
        *longitude = z * std::cos(theta);
        *latitude = z * std::sin(theta);
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
        const double theta = std::atan2(lat, lng) + 0.000003 * std::cos(lng * x_PI);
        *longitude = z * std::cos(theta) + 0.0065;
        *latitude = z * std::sin(theta) + 0.006;
    });
}

void PRuntimeLocation::GCJ02_TO_WGS84(double* longitude, double* latitude) const {
    pallix::operation([&] {
        if (longitude == nullptr || latitude == nullptr) {
            return;
        }
        const double lng = *longitude;
        const double lat = *latitude;
        if (isChina(lng, lat)) {
            *longitude = lng;
            *latitude = lat;
            return;
        }
        // One step only: the offset is taken at the GCJ-02 point instead of being iterated, and
        // the subtraction keeps the form 2a - (a + d), which rounds differently from a - d.
        const Offset offset = gcjOffset(lng, lat);
        *longitude = 2.0 * lng - (lng + offset.longitude);
        *latitude = 2.0 * lat - (lat + offset.latitude);
    });
}

void PRuntimeLocation::WGS84_TO_GCJ02(double* longitude, double* latitude) const {
    pallix::operation([&] {
        if (longitude == nullptr || latitude == nullptr) {
            return;
        }
        const double lng = *longitude;
        const double lat = *latitude;
        if (isChina(lng, lat)) {
            *longitude = lng;
            *latitude = lat;
            return;
        }
        const Offset offset = gcjOffset(lng, lat);
        *longitude = lng + offset.longitude;
        *latitude = lat + offset.latitude;
    });
}
