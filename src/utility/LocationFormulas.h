#pragma once

// The constants and offset polynomials of the datum shifts. They are global names, but hidden
// and kept local by the version script: they are no part of the library's interface.

// pi, and pi * 3000 / 180, the angular factor of the BD-09 shift.
extern const double PI;
extern const double x_PI;
// Semi-major axis (metres) and first eccentricity squared of the Krasovsky 1940 ellipsoid.
extern const double _ValueA;
extern const double ee;

// The GCJ-02 offset polynomials, in metres-like units that the ellipsoid's radii of curvature
// turn into degrees; both take x = longitude - 105 and y = latitude - 35. The conversions do not
// call them one after the other: they evaluate both at once, taking the terms the two share
// (the root of |x|, the sines of 6x*pi and 2x*pi) once, with the same bits as these give.
double transformlat(double x, double y) noexcept;
double transformlng(double x, double y) noexcept;
