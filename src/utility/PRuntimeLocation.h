#pragma once

#include "PallixRuntimeExport.h"

// Conversion of map coordinates between the WGS-84 (GPS), GCJ-02 (Chinese map services) and
// BD-09 datums. Every pair is (longitude, latitude) in decimal degrees, longitude first.
//
// The shifts that involve GCJ-02 apply only inside a rectangle around mainland China; other
// points pass unchanged. isChina() answers true for a point OUTSIDE that rectangle: the name
// is kept for the host's sake, and the conversions read a true result as "leave it alone".
// They ask it through the virtual table, so a subclass can change the region.
//
// A conversion reads both values before it writes both, so the two pointers must not alias;
// a null pointer makes it a no-op. The object holds no state: copies copy nothing.
//
// The order of the virtual operations is part of the binary interface.
class PALLIX_RUNTIME_EXPORT PRuntimeLocation {
public:
    PRuntimeLocation() noexcept;
    PRuntimeLocation(const PRuntimeLocation& other) noexcept;
    PRuntimeLocation& operator=(const PRuntimeLocation& other) noexcept;
    virtual ~PRuntimeLocation();

    virtual bool isChina(double longitude, double latitude) const;
    virtual void BD09_TO_GCJ02(double* longitude, double* latitude) const;
    // Always shifts: there is no rectangle test on this way.
    virtual void GCJ02_TO_BD09(double* longitude, double* latitude) const;
    // A single-step inverse of WGS84_TO_GCJ02, close to but not exactly the starting point.
    virtual void GCJ02_TO_WGS84(double* longitude, double* latitude) const;
    virtual void WGS84_TO_GCJ02(double* longitude, double* latitude) const;

    // The exact inverse of WGS84_TO_GCJ02, beside the single-step GCJ02_TO_WGS84 (which stays as
    // it is): the WGS-84 point whose GCJ-02 image is the given point, to within 1e-12 degrees.
    // It iterates the offset formula, a few steps each about as costly as WGS84_TO_GCJ02. The
    // region rule is GCJ02_TO_WGS84's: isChina() is asked, through the virtual table, about the
    // GCJ-02 input, and a point it calls outside passes unchanged, so NaNs and infinities do.
    // Near the rectangle's edge the point found may lie just outside it, where WGS84_TO_GCJ02
    // itself would not shift it: the inverse is that of the offset formula. No allocation; a
    // null pointer makes it a no-op. Not virtual: it was added without touching the virtual table.
    void GCJ02_TO_WGS84_EXACT(double* longitude, double* latitude) const;
};
