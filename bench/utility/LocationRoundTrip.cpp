// How far the two inverses of WGS84_TO_GCJ02 land from where a round trip started, in metres,
// over a grid of mainland China:
//
//   location_round_trip [STEP_DEGREES]      (default 0.05)
//
// Every WGS-84 point w of the grid (longitude 73.5 to 135, latitude 18 to 53.5, only points
// inside the region) goes to GCJ-02 and back through GCJ02_TO_WGS84 (the single step) and
// GCJ02_TO_WGS84_EXACT; the distance from w is the haversine distance on a sphere of the mean
// Earth radius, 6371008.8 m. Points whose GCJ-02 image leaves the region (a thin band at the
// eastern and northern edges, where neither inverse shifts back) are counted and left out.
// No timing here: the costs are in location_bench.

#include "PRuntime.h"
#include "PRuntimeLocation.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>

namespace {

constexpr double earthRadius = 6371008.8;
constexpr double radiansPerDegree = 3.14159265358979323846 / 180.0;

double haversineMetres(double lng1, double lat1, double lng2, double lat2) {
    const double phi1 = lat1 * radiansPerDegree;
    const double phi2 = lat2 * radiansPerDegree;
    const double halfDeltaPhi = (lat2 - lat1) * radiansPerDegree / 2.0;
    const double halfDeltaLambda = (lng2 - lng1) * radiansPerDegree / 2.0;
    const double a =
        std::sin(halfDeltaPhi) * std::sin(halfDeltaPhi) +
        std::cos(phi1) * std::cos(phi2) * std::sin(halfDeltaLambda) * std::sin(halfDeltaLambda);
    return 2.0 * earthRadius * std::asin(std::sqrt(a));
}

struct Errors {
    double largest = 0.0;
    double sum = 0.0;
    double largestLongitude = 0.0;
    double largestLatitude = 0.0;
    double largestDegrees = 0.0;

    void add(double lng, double lat, double backLng, double backLat) {
        const double metres = haversineMetres(lng, lat, backLng, backLat);
        sum += metres;
        if (metres > largest) {
            largest = metres;
            largestLongitude = lng;
            largestLatitude = lat;
        }
        const double degrees = std::fmax(std::fabs(backLng - lng), std::fabs(backLat - lat));
        largestDegrees = std::fmax(largestDegrees, degrees);
    }
};

void print(const char* name, const Errors& errors, long points) {
    std::printf("%-22s %14.6g %14.6g %14.3g   (%.2f, %.2f)\n", name, errors.largest,
                errors.sum / static_cast<double>(points), errors.largestDegrees,
                errors.largestLongitude, errors.largestLatitude);
}

} // namespace

int main(int argc, char** argv) {
    const double step = argc > 1 ? std::atof(argv[1]) : 0.05;
    if (!(step >= 0.001 && step <= 10.0)) {
        std::fprintf(stderr, "usage: location_round_trip [STEP_DEGREES between 0.001 and 10]\n");
        return 2;
    }
    const PRuntimeLocation* location = PRuntime::getInstance()->location();
    if (location == nullptr) {
        return 1;
    }

    Errors oneStep;
    Errors exact;
    long points = 0;
    long leftTheRegion = 0;
    const long lngSteps = std::lround((135.0 - 73.5) / step);
    const long latSteps = std::lround((53.5 - 18.0) / step);
    for (long i = 0; i <= lngSteps; ++i) {
        for (long j = 0; j <= latSteps; ++j) {
            const double lng = 73.5 + static_cast<double>(i) * step;
            const double lat = 18.0 + static_cast<double>(j) * step;
            if (location->isChina(lng, lat)) {
                continue;
            }
            double gcjLng = lng;
            double gcjLat = lat;
            location->WGS84_TO_GCJ02(&gcjLng, &gcjLat);
            if (location->isChina(gcjLng, gcjLat)) {
                ++leftTheRegion;
                continue;
            }
            double oneStepLng = gcjLng;
            double oneStepLat = gcjLat;
            location->GCJ02_TO_WGS84(&oneStepLng, &oneStepLat);
            double exactLng = gcjLng;
            double exactLat = gcjLat;
            location->GCJ02_TO_WGS84_EXACT(&exactLng, &exactLat);
            oneStep.add(lng, lat, oneStepLng, oneStepLat);
            exact.add(lng, lat, exactLng, exactLat);
            ++points;
        }
    }

    std::printf("Round trip WGS-84 -> GCJ-02 -> WGS-84 over mainland China\n");
    std::printf("grid: longitude 73.5..135, latitude 18..53.5, step %g degrees; %ld points inside "
                "the region (%ld more whose GCJ-02 image leaves it, left out)\n",
                step, points, leftTheRegion);
    std::printf("distance: haversine on a sphere of radius %.1f m\n\n", earthRadius);
    std::printf("%-22s %14s %14s %14s   %s\n", "inverse", "largest (m)", "mean (m)",
                "largest (deg)", "largest at (lng, lat)");
    print("GCJ02_TO_WGS84", oneStep, points);
    print("GCJ02_TO_WGS84_EXACT", exact, points);
    PRuntime::freeInstance();
    return points > 0 ? 0 : 1;
}
