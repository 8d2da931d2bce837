#include "PRuntimeConfig.h"

#include "NormalisedPath.h"
#include "Operation.h"
#include "_PALLIX_RUNTIME_CONFIG.h"

// The four user lists. Paths are stored and compared in normalised form; places are compared
// by exact coordinates (no tolerance, so NaN never matches). Appends that find a duplicate do
// not save; every other change saves, even when it changed nothing.

using pallix::config::normalisedPath;

namespace {

using Places = std::list<_PALLIX_RUNTIME_CONFIG_VL>;

void eraseFirstPlace(Places& places, double x, double y) {
    for (auto place = places.begin(); place != places.end(); ++place) {
        if (place->X == x && place->Y == y) {
            places.erase(place);
            return;
        }
    }
}

// A place already in the list moves to the end under its new name: most recent last.
void appendPlace(Places& places, double x, double y, const NString& location) {
    eraseFirstPlace(places, x, y);
    _PALLIX_RUNTIME_CONFIG_VL place;
    place.X = x;
    place.Y = y;
    place.Location = location;
    places.push_back(place);
}

void clearPlaces(Places& places) {
    while (!places.empty()) {
        places.pop_front();
    }
}

void visitPlaces(const Places& places,
                 const std::function<void(double, double, const NString&)>& visit) {
    for (const _PALLIX_RUNTIME_CONFIG_VL& place : places) {
        if (visit) {
            visit(place.X, place.Y, place.Location);
        }
    }
}

} // namespace

void PRuntimeConfig::customBackupAppend(const NString& directory) {
    pallix::operation([&] {
        const NString path = normalisedPath(directory);
        std::list<NString>& backups = _globalFrameworkConfig.customBackup;
        for (const NString& backup : backups) {
            if (backup == path) {
                return;
            }
        }
        backups.push_back(path);
        save();
    });
}

void PRuntimeConfig::customBackupRemove(const NString& directory) {
    pallix::operation([&] {
        const NString path = normalisedPath(directory);
        std::list<NString>& backups = _globalFrameworkConfig.customBackup;
        for (auto backup = backups.begin(); backup != backups.end(); ++backup) {
            if (*backup == path) {
                backups.erase(backup);
                break;
            }
        }
        save();
    });
}

void PRuntimeConfig::customBackupTraverse(std::function<void(const NString&)> visit) {
    pallix::operation([&] {
        for (const NString& backup : _globalFrameworkConfig.customBackup) {
            if (visit) {
                visit(backup);
            }
        }
    });
}

// The root flag is not compared: a path is a favourite once, with the flag it first came with.
void PRuntimeConfig::fileCollectAppend(const NString& path, bool root) {
    pallix::operation([&] {
        _PALLIX_RUNTIME_CONFIG_FC favourite;
        favourite.Path = normalisedPath(path);
        favourite.Root = root;
        std::list<_PALLIX_RUNTIME_CONFIG_FC>& favourites = _globalFrameworkConfig.fileFavorites;
        for (const _PALLIX_RUNTIME_CONFIG_FC& existing : favourites) {
            if (existing.Path == favourite.Path) {
                return;
            }
        }
        favourites.push_back(favourite);
        save();
    });
}

// Here the root flag must match as well.
void PRuntimeConfig::fileCollectRemove(const NString& path, bool root) {
    pallix::operation([&] {
        const NString normalised = normalisedPath(path);
        std::list<_PALLIX_RUNTIME_CONFIG_FC>& favourites = _globalFrameworkConfig.fileFavorites;
        for (auto favourite = favourites.begin(); favourite != favourites.end(); ++favourite) {
            if (favourite->Path == normalised && favourite->Root == root) {
                favourites.erase(favourite);
                break;
            }
        }
        save();
    });
}

void PRuntimeConfig::fileCollectTraverse(const std::function<bool(const NString&, bool)>& visit) {
    pallix::operation([&] {
        if (!visit) {
            return;
        }

        for (const _PALLIX_RUNTIME_CONFIG_FC& favourite : _globalFrameworkConfig.fileFavorites) {
            if (!visit(favourite.Path, favourite.Root)) {
                return;
            }
        }
    });
}

void PRuntimeConfig::virtualLocationAppend(double x, double y, const NString& location) {
    pallix::operation([&] {
        appendPlace(_globalFrameworkConfig.virtualLocation, x, y, location);
        save();
    });
}

void PRuntimeConfig::virtualLocationRemove(double x, double y) {
    pallix::operation([&] {
        eraseFirstPlace(_globalFrameworkConfig.virtualLocation, x, y);
        save();
    });
}

void PRuntimeConfig::virtualLocationClear() {
    pallix::operation([&] {
        clearPlaces(_globalFrameworkConfig.virtualLocation);
        save();
    });
}

void PRuntimeConfig::virtualLocationTraverse(
    const std::function<void(double, double, const NString&)>& visit) {
    pallix::operation([&] { visitPlaces(_globalFrameworkConfig.virtualLocation, visit); });
}

void PRuntimeConfig::locationCollectAppend(double x, double y, const NString& location) {
    pallix::operation([&] {
        appendPlace(_globalFrameworkConfig.locationFavorites, x, y, location);
        save();
    });
}

void PRuntimeConfig::locationCollectRemove(double x, double y) {
    pallix::operation([&] {
        eraseFirstPlace(_globalFrameworkConfig.locationFavorites, x, y);
        save();
    });
}

void PRuntimeConfig::locationCollectClear() {
    pallix::operation([&] {
        clearPlaces(_globalFrameworkConfig.locationFavorites);
        save();
    });
}

void PRuntimeConfig::locationCollectTraverse(
    const std::function<void(double, double, const NString&)>& visit) {
    pallix::operation([&] { visitPlaces(_globalFrameworkConfig.locationFavorites, visit); });
}
