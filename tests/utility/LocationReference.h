#pragma once

// The published datum-shift formulas, written out here on their own so that the library is
// checked against them and not against itself. Terms are evaluated left to right in the
// published order, every call is made where the formulas write it, and this file is compiled
// with the test's ordinary flags (errno-setting math functions), not with the library's.

#include <cmath>

namespace reference {

// The math functions are called through pointers the optimiser cannot see through, so that it
// neither merges the sines the two polynomials repeat nor pairs a sine with the cosine of the
// same angle: the reference makes each call as written, and the library's sharing is checked
// against that, not against the same sharing done by the compiler.
namespace calls {
inline double sine(double a) {
    return std::sin(a);
}
inline double cosine(double a) {
    return std::cos(a);
}
inline double root(double a) {
    return std::sqrt(a);
}
inline double arcTangent(double y, double x) {
    return std::atan2(y, x);
}
inline double (*volatile sin)(double) = sine;
inline double (*volatile cos)(double) = cosine;
inline double (*volatile sqrt)(double) = root;
inline double (*volatile atan2)(double, double) = arcTangent;
} // namespace calls

inline const double pi = 3.141592653589793;
inline const double xPi = 52.35987755982988;
inline const double a = 6378245.0;
inline const double ee = 0.006693421622965943;

inline double latitudeOffset(double x, double y) {
    double r =
        -100.0 + 2.0 * x + 3.0 * y + 0.2 * y * y + 0.1 * x * y + 0.2 * calls::sqrt(std::fabs(x));
    r += (20.0 * calls::sin(6.0 * x * pi) + 20.0 * calls::sin(2.0 * x * pi)) * 2.0 / 3.0;
    r += (20.0 * calls::sin(y * pi) + 40.0 * calls::sin(y * pi / 3.0)) * 2.0 / 3.0;
    r += (160.0 * calls::sin(y * pi / 12.0) + 320.0 * calls::sin(y * pi / 30.0)) * 2.0 / 3.0;
    return r;
}

inline double longitudeOffset(double x, double y) {
    double r = 300.0 + x + 2.0 * y + 0.1 * x * x + 0.1 * x * y + 0.1 * calls::sqrt(std::fabs(x));
    r += (20.0 * calls::sin(6.0 * x * pi) + 20.0 * calls::sin(2.0 * x * pi)) * 2.0 / 3.0;
    r += (20.0 * calls::sin(x * pi) + 40.0 * calls::sin(x * pi / 3.0)) * 2.0 / 3.0;
    r += (150.0 * calls::sin(x * pi / 12.0) + 300.0 * calls::sin(x * pi / 30.0)) * 2.0 / 3.0;
    return r;
}

inline bool outside(double lng, double lat) {
    return !(lng > 73.66 && lng < 135.05 && lat > 3.86 && lat < 53.55);
}

struct Point {
    double lng;
    double lat;
};

inline Point offset(double lng, double lat) {
    const double rawLat = latitudeOffset(lng - 105.0, lat - 35.0);
    const double rawLng = longitudeOffset(lng - 105.0, lat - 35.0);
    const double radLat = lat / 180.0 * pi;
    double magic = calls::sin(radLat);
    magic = 1.0 - ee * magic * magic;
    const double sqrtMagic = calls::sqrt(magic);
    const double dLat = rawLat * 180.0 / ((a * (1.0 - ee)) / (magic * sqrtMagic) * pi);
    const double dLng = rawLng * 180.0 / (a / sqrtMagic * calls::cos(radLat) * pi);
    return {dLng, dLat};
}

inline Point wgsToGcj(double lng, double lat, bool testRegion = true) {
    if (testRegion && outside(lng, lat)) {
        return {lng, lat};
    }
    const Point d = offset(lng, lat);
    return {lng + d.lng, lat + d.lat};
}

inline Point gcjToWgs(double lng, double lat, bool testRegion = true) {
    if (testRegion && outside(lng, lat)) {
        return {lng, lat};
    }
    const Point d = offset(lng, lat);
    return {2.0 * lng - (lng + d.lng), 2.0 * lat - (lat + d.lat)};
}

inline Point gcjToBd(double lng, double lat) {
    const double z = calls::sqrt(lng * lng + lat * lat) + 0.00002 * calls::sin(lat * xPi);
    const double theta = calls::atan2(lat, lng) + 0.000003 * calls::cos(lng * xPi);
    return {z * calls::cos(theta) + 0.0065, z * calls::sin(theta) + 0.006};
}

inline Point bdToGcj(double lng, double lat, bool testRegion = true) {
    if (testRegion && outside(lng, lat)) {
        return {lng, lat};
    }
    const double x = lng - 0.0065;
    const double y = lat - 0.006;
    const double z = calls::sqrt(x * x + y * y) - 0.00002 * calls::sin(y * xPi);
    const double theta = calls::atan2(y, x) - 0.000003 * calls::cos(x * xPi);
    return {z * calls::cos(theta), z * calls::sin(theta)};
}

} // namespace reference
