// The four user lists: custom backups, file favourites, virtual locations and favourite places.

#include "ConfigTestSupport.h"

#include <cmath>
#include <limits>

using namespace pallix::test;

namespace {

class ConfigListsTest : public ConfigTest {
protected:
    void SetUp() override {
        ConfigTest::SetUp();
        config()->initialize();
    }
    CountingConfig counting;
};

using Favourites = std::vector<std::pair<std::string, bool>>;

} // namespace

TEST_F(ConfigListsTest, AppendingOneDirectoryTwiceKeepsOneEntryAndSavesOnce) {
    counting.customBackupAppend("/Volumes/Backups");
    counting.customBackupAppend("/Volumes/Backups");
    EXPECT_EQ(customBackups(counting), std::vector<std::string>{"/Volumes/Backups"});
    EXPECT_EQ(counting.saves, 1);
}

TEST_F(ConfigListsTest, DirectoriesAreStoredNormalised) {
    counting.customBackupAppend("/Volumes//Backups/./daily/");
    EXPECT_EQ(customBackups(counting), std::vector<std::string>{"/Volumes/Backups/daily"});
}

TEST_F(ConfigListsTest, TwoSpellingsOfOneDirectoryCountAsOne) {
    counting.customBackupAppend("/Volumes/Backups");
    counting.customBackupAppend("/Volumes/x/../Backups/");
    EXPECT_EQ(customBackups(counting).size(), 1u);
    EXPECT_EQ(counting.saves, 1);
}

TEST_F(ConfigListsTest, DirectoryComparisonIsCaseSensitive) {
    counting.customBackupAppend("/Backups");
    counting.customBackupAppend("/backups");
    EXPECT_EQ(customBackups(counting), (std::vector<std::string>{"/Backups", "/backups"}));
}

TEST_F(ConfigListsTest, DirectoriesKeepTheirInsertionOrder) {
    counting.customBackupAppend("/c");
    counting.customBackupAppend("/a");
    counting.customBackupAppend("/b");
    EXPECT_EQ(customBackups(counting), (std::vector<std::string>{"/c", "/a", "/b"}));
}

TEST_F(ConfigListsTest, EmptyDirectoryIsStoredLikeAnyOther) {
    counting.customBackupAppend("");
    EXPECT_EQ(customBackups(counting), std::vector<std::string>{""});
    EXPECT_EQ(counting.saves, 1);
}

TEST_F(ConfigListsTest, RemovingADirectoryMatchesItsNormalisedForm) {
    counting.customBackupAppend("/a/b");
    counting.customBackupRemove("/a//b/");
    EXPECT_TRUE(customBackups(counting).empty());
}

TEST_F(ConfigListsTest, RemovingDropsOnlyTheFirstMatch) {
    record().customBackup.emplace_back("/dup");
    record().customBackup.emplace_back("/dup");
    counting.customBackupRemove("/dup");
    EXPECT_EQ(customBackups(counting), std::vector<std::string>{"/dup"});
}

TEST_F(ConfigListsTest, RemovingAnAbsentDirectorySavesAnyway) {
    counting.customBackupRemove("/never/added");
    EXPECT_EQ(counting.saves, 1);
    EXPECT_TRUE(exists(currentFile()));
}

TEST_F(ConfigListsTest, CustomBackupTraversalSkipsAnEmptyCallback) {
    counting.customBackupAppend("/a");
    counting.customBackupTraverse(nullptr);
    counting.customBackupTraverse(std::function<void(const NString&)>());
    EXPECT_EQ(customBackups(counting).size(), 1u);
}

TEST_F(ConfigListsTest, FileFavouriteKeepsTheRootFlagItFirstCameWith) {
    counting.fileCollectAppend("/Users/me/Docs", false);
    counting.fileCollectAppend("/Users/me/Docs", true);
    EXPECT_EQ(fileFavourites(counting), (Favourites{{"/Users/me/Docs", false}}));
    EXPECT_EQ(counting.saves, 1);
}

TEST_F(ConfigListsTest, FileFavouriteIsRemovedOnlyWithItsRootFlag) {
    counting.fileCollectAppend("/Users/me/Docs", false);
    counting.fileCollectRemove("/Users/me/Docs", true);
    EXPECT_EQ(fileFavourites(counting).size(), 1u);
    counting.fileCollectRemove("/Users/me/Docs", false);
    EXPECT_TRUE(fileFavourites(counting).empty());
    EXPECT_EQ(counting.saves, 3);
}

TEST_F(ConfigListsTest, FileFavouritesAreStoredNormalised) {
    counting.fileCollectAppend("/Users/me/./Docs//", true);
    counting.fileCollectAppend("/Users/me/Docs", false);
    EXPECT_EQ(fileFavourites(counting), (Favourites{{"/Users/me/Docs", true}}));
    counting.fileCollectRemove("/Users//me/Docs/", true);
    EXPECT_TRUE(fileFavourites(counting).empty());
}

TEST_F(ConfigListsTest, FileFavouriteTraversalStopsAtTheFirstFalse) {
    counting.fileCollectAppend("/one", true);
    counting.fileCollectAppend("/two", false);
    counting.fileCollectAppend("/three", true);
    int visits = 0;
    counting.fileCollectTraverse([&visits](const NString&, bool) {
        ++visits;
        return false;
    });
    EXPECT_EQ(visits, 1);
    std::vector<std::string> seen;
    counting.fileCollectTraverse([&seen](const NString& path, bool) {
        seen.emplace_back(path.data());
        return seen.size() < 2;
    });
    EXPECT_EQ(seen, (std::vector<std::string>{"/one", "/two"}));
}

TEST_F(ConfigListsTest, FileFavouriteTraversalWithAnEmptyCallbackReturns) {
    counting.fileCollectAppend("/one", true);
    counting.fileCollectTraverse(std::function<bool(const NString&, bool)>());
    EXPECT_EQ(fileFavourites(counting).size(), 1u);
}

TEST_F(ConfigListsTest, PlaceAddedAgainMovesToTheEndUnderItsNewName) {
    counting.virtualLocationAppend(1.5, 2.5, "A");
    counting.virtualLocationAppend(3, 4, "B");
    counting.virtualLocationAppend(1.5, 2.5, "C");
    EXPECT_EQ(virtualLocations(counting), (std::vector<Place>{{3, 4, "B"}, {1.5, 2.5, "C"}}));
    EXPECT_EQ(counting.saves, 3);
}

TEST_F(ConfigListsTest, PlacesAreComparedExactly) {
    counting.virtualLocationAppend(1.5, 2.5, "A");
    counting.virtualLocationRemove(1.5000000001, 2.5);
    EXPECT_EQ(virtualLocations(counting).size(), 1u);
    counting.virtualLocationRemove(1.5, 2.5000000001);
    EXPECT_EQ(virtualLocations(counting).size(), 1u);
    counting.virtualLocationRemove(1.5, 2.5);
    EXPECT_TRUE(virtualLocations(counting).empty());
}

TEST_F(ConfigListsTest, PlacesNeedBothCoordinatesToMatch) {
    counting.virtualLocationAppend(1, 2, "A");
    counting.virtualLocationAppend(2, 1, "B");
    counting.virtualLocationAppend(1, 2, "C");
    EXPECT_EQ(virtualLocations(counting), (std::vector<Place>{{2, 1, "B"}, {1, 2, "C"}}));
}

TEST_F(ConfigListsTest, NanCoordinatesNeverMatchAndAccumulate) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    counting.locationCollectAppend(nan, 1, "first");
    counting.locationCollectAppend(nan, 1, "second");
    counting.locationCollectRemove(nan, 1);
    EXPECT_EQ(locationFavourites(counting).size(), 2u);
}

TEST_F(ConfigListsTest, CoordinatesAreStoredWithoutRounding) {
    counting.locationCollectAppend(39.908722999999999, 116.39740000000001, "Beijing");
    const std::vector<Place> places = locationFavourites(counting);
    ASSERT_EQ(places.size(), 1u);
    EXPECT_EQ(places[0].x, 39.908722999999999);
    EXPECT_EQ(places[0].y, 116.39740000000001);
}

TEST_F(ConfigListsTest, RemovingAPlaceDropsOnlyTheFirstMatch) {
    _PALLIX_RUNTIME_CONFIG_VL place;
    place.X = 5;
    place.Y = 6;
    place.Location = "first";
    record().locationFavorites.push_back(place);
    place.Location = "second";
    record().locationFavorites.push_back(place);
    counting.locationCollectRemove(5, 6);
    EXPECT_EQ(locationFavourites(counting), (std::vector<Place>{{5, 6, "second"}}));
}

TEST_F(ConfigListsTest, FavouritePlacesBehaveLikeTheHistory) {
    counting.locationCollectAppend(1.5, 2.5, "A");
    counting.locationCollectAppend(3, 4, "B");
    counting.locationCollectAppend(1.5, 2.5, "C");
    EXPECT_EQ(locationFavourites(counting), (std::vector<Place>{{3, 4, "B"}, {1.5, 2.5, "C"}}));
    EXPECT_TRUE(virtualLocations(counting).empty());
}

TEST_F(ConfigListsTest, ClearingEmptiesTheListAndSaves) {
    counting.virtualLocationAppend(1, 1, "a");
    counting.virtualLocationAppend(2, 2, "b");
    counting.locationCollectAppend(3, 3, "c");
    counting.saves = 0;
    counting.virtualLocationClear();
    EXPECT_TRUE(virtualLocations(counting).empty());
    EXPECT_EQ(locationFavourites(counting).size(), 1u);
    counting.locationCollectClear();
    EXPECT_TRUE(locationFavourites(counting).empty());
    EXPECT_EQ(counting.saves, 2);
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_FALSE(root.child("VirtualLocation").first_child());
    EXPECT_FALSE(root.child("LocationFavorites").first_child());
}

TEST_F(ConfigListsTest, EveryRemoveAndClearSavesEvenOnAnEmptyList) {
    counting.customBackupRemove("/x");
    counting.fileCollectRemove("/x", true);
    counting.virtualLocationRemove(1, 1);
    counting.virtualLocationClear();
    counting.locationCollectRemove(1, 1);
    counting.locationCollectClear();
    EXPECT_EQ(counting.saves, 6);
}

TEST_F(ConfigListsTest, DuplicateAppendsDoNotSave) {
    counting.customBackupAppend("/x");
    counting.fileCollectAppend("/y", true);
    counting.saves = 0;
    counting.customBackupAppend("/x");
    counting.fileCollectAppend("/y", false);
    EXPECT_EQ(counting.saves, 0);
}

TEST_F(ConfigListsTest, PlaceAppendsAlwaysSave) {
    counting.virtualLocationAppend(1, 1, "a");
    counting.virtualLocationAppend(1, 1, "a");
    counting.locationCollectAppend(1, 1, "a");
    counting.locationCollectAppend(1, 1, "a");
    EXPECT_EQ(counting.saves, 4);
}

TEST_F(ConfigListsTest, TraversalsNeverSave) {
    counting.customBackupAppend("/x");
    counting.saves = 0;
    customBackups(counting);
    fileFavourites(counting);
    virtualLocations(counting);
    locationFavourites(counting);
    EXPECT_EQ(counting.saves, 0);
}

TEST_F(ConfigListsTest, PlaceTraversalsSkipAnEmptyCallback) {
    counting.virtualLocationAppend(1, 1, "a");
    counting.locationCollectAppend(1, 1, "a");
    counting.virtualLocationTraverse(nullptr);
    counting.locationCollectTraverse(nullptr);
    EXPECT_EQ(virtualLocations(counting).size(), 1u);
    EXPECT_EQ(locationFavourites(counting).size(), 1u);
}

TEST_F(ConfigListsTest, ChangesReachTheFileAtOnce) {
    counting.customBackupAppend("/Volumes/Time Machine/バックアップ");
    counting.fileCollectAppend("/Users/me/Préférences", true);
    counting.virtualLocationAppend(-33.8688, 151.2093, "Sydney");
    counting.locationCollectAppend(55.7558, 37.6173, "Москва");
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_STREQ(root.child("CustomBackup").first_child().attribute("Path").value(),
                 "/Volumes/Time Machine/バックアップ");
    EXPECT_STREQ(root.child("FileFavorites").first_child().attribute("Path").value(),
                 "/Users/me/Préférences");
    EXPECT_STREQ(root.child("FileFavorites").first_child().attribute("Root").value(), "true");
    EXPECT_EQ(root.child("VirtualLocation").first_child().attribute("X").as_double(), -33.8688);
    EXPECT_EQ(root.child("VirtualLocation").first_child().attribute("Y").as_double(), 151.2093);
    EXPECT_STREQ(root.child("LocationFavorites").first_child().attribute("Location").value(),
                 "Москва");
}

TEST_F(ConfigListsTest, ListsSurviveAReload) {
    counting.customBackupAppend("/b 1");
    counting.fileCollectAppend("/f ü", false);
    counting.virtualLocationAppend(0.1, 0.2, "v");
    counting.locationCollectAppend(-0.3, 0.4, "l");
    record().customBackup.clear();
    record().fileFavorites.clear();
    record().virtualLocation.clear();
    record().locationFavorites.clear();
    counting.load_new();
    EXPECT_EQ(customBackups(counting), std::vector<std::string>{"/b 1"});
    EXPECT_EQ(fileFavourites(counting), (Favourites{{"/f ü", false}}));
    EXPECT_EQ(virtualLocations(counting), (std::vector<Place>{{0.1, 0.2, "v"}}));
    EXPECT_EQ(locationFavourites(counting), (std::vector<Place>{{-0.3, 0.4, "l"}}));
}
