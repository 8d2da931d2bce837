#pragma once

#include "PRuntimeLocation.h"

namespace pallix::test {

// A location whose region question is counted and remembered, and which can take in the whole
// world: through it the tests see which point each conversion asks about.
class RegionSpy : public PRuntimeLocation {
public:
    bool isChina(double longitude, double latitude) const override {
        ++calls;
        lastLongitude = longitude;
        lastLatitude = latitude;
        return everywhereInside ? false : PRuntimeLocation::isChina(longitude, latitude);
    }
    bool everywhereInside = false;
    mutable int calls = 0;
    mutable double lastLongitude = 0.0;
    mutable double lastLatitude = 0.0;
};

} // namespace pallix::test
