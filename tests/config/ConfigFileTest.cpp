// The current configuration file: what save() writes and what load_new() reads back.

#include "ConfigTestSupport.h"
#include "RecordText.h"
#include "ToolRunner.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <limits>

using namespace pallix::test;

namespace {

class ConfigFileTest : public ConfigTest {
protected:
    // What a fresh process reads from the configuration directory with load_new().
    std::string readInFreshProcess() const {
        const ToolResult result = runProgram(PALLIX_CONFIG_RECORD_DUMP,
                                             {configDirectory(), resourcesDirectory(), "load_new"});
        EXPECT_EQ(result.status, 0) << result.errors;
        return result.output;
    }

    // Fills every field of the record with a value other than its default.
    void fillEveryField() {
        _PALLIX_RUNTIME_CONFIG& r = record();
        r.newInstall = false;
        r.newUpdate = false;
        r.lastVersion = "5.2.1";
        r.popupTimeADAPP = 18446744073709551615ull;
        r.sameTimeDownloadNumber = -7;
        r.downloadMaxSpeed = -2147483648ll;
        r.lastSkin = "1A2B3C";
        r.lastLanguage = EPALLIX_RUNTIME_LANGUAGE(12);
        r.restoreCore = EPALLIX_RUNTIME_RESTORE_CORE(-3);
        r.status.emplace("ApplicationAutorun", true);
        r.status.emplace("RESTORE_FACTORY", false);
        r.status.emplace("Zeichen äöü & <quote>\"", true);
        r.autoImport.emplace("Ringtone", false);
        r.directory.emplace("Backup", "/Volumes/Backup Disk/Mobile Sync");
        r.directory.emplace("Data", "/Users/李雷/TolVane Data");
        r.directory.emplace("", "");
        r.tools.emplace("Flash Tool", false);
        r.tools.emplace("Écran", true);
        r.customBackup.emplace_back("/Users/me/Backups 2024");
        r.customBackup.emplace_back("/Users/me/バックアップ");
        r.customBackup.emplace_back("");
        _PALLIX_RUNTIME_CONFIG_FC favourite;
        favourite.Path = "/Users/me/Documents/report final.pdf";
        favourite.Root = true;
        r.fileFavorites.push_back(favourite);
        favourite.Path = "/Users/me/Música";
        favourite.Root = false;
        r.fileFavorites.push_back(favourite);
        _PALLIX_RUNTIME_CONFIG_VL place;
        place.X = 0.1;
        place.Y = -33.868820099999999;
        place.Location = "Sydney Opera House";
        r.virtualLocation.push_back(place);
        place.X = 1e-300;
        place.Y = 123456789.123456789;
        place.Location = "北京 天安门";
        r.virtualLocation.push_back(place);
        place.X = 48.858370;
        place.Y = 2.294481;
        place.Location = "Tour Eiffel";
        r.locationFavorites.push_back(place);
    }
};

} // namespace

TEST_F(ConfigFileTest, EveryFieldSurvivesSaveAndLoadInAFreshProcess) {
    fillEveryField();
    config()->save();
    const std::string written = recordText(record());
    EXPECT_EQ(readInFreshProcess(), written);
}

TEST_F(ConfigFileTest, EmptyRecordSurvivesSaveAndLoadInAFreshProcess) {
    record().lastVersion = "5.0.0";
    record().sameTimeDownloadNumber = 3;
    record().directory.emplace("Backup", "/b");
    record().directory.emplace("Data", "/d");
    config()->save();
    EXPECT_EQ(readInFreshProcess(), recordText(record()));
}

TEST_F(ConfigFileTest, DeclarationComesFirstWithVersionThenEncoding) {
    config()->save();
    pugi::xml_document document;
    ASSERT_TRUE(
        document.load_file(currentFile().c_str(), pugi::parse_default | pugi::parse_declaration));
    const pugi::xml_node declaration = document.first_child();
    EXPECT_EQ(declaration.type(), pugi::node_declaration);
    EXPECT_EQ(attributeNames(declaration), (std::vector<std::string>{"version", "encoding"}));
    EXPECT_STREQ(declaration.attribute("version").value(), "1.0");
    EXPECT_STREQ(declaration.attribute("encoding").value(), "utf-8");
    EXPECT_STREQ(declaration.next_sibling().name(), "Nevor");
    EXPECT_FALSE(declaration.next_sibling().next_sibling());
}

TEST_F(ConfigFileTest, RootHoldsEveryElementInItsOrder) {
    config()->save();
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    const std::vector<std::string> expected{"LastVersion",
                                            "PopupTimeADAPP",
                                            "SameTimeDownloadNumber",
                                            "DownloadMaxSpeed",
                                            "LastSkin",
                                            "LastLanguage",
                                            "RestoreCore",
                                            "Status",
                                            "Directory",
                                            "Tools",
                                            "CustomBackup",
                                            "FileFavorites",
                                            "AutoImport",
                                            "VirtualLocation",
                                            "LocationFavorites"};
    EXPECT_EQ(childNames(root), expected);
    for (const char* scalar : {"LastVersion", "PopupTimeADAPP", "SameTimeDownloadNumber",
                               "DownloadMaxSpeed", "LastSkin", "LastLanguage", "RestoreCore"}) {
        EXPECT_EQ(attributeNames(root.child(scalar)), std::vector<std::string>{"Value"}) << scalar;
        EXPECT_FALSE(root.child(scalar).first_child()) << scalar;
    }
    for (const char* list : {"Status", "Directory", "Tools", "CustomBackup", "FileFavorites",
                             "AutoImport", "VirtualLocation", "LocationFavorites"}) {
        EXPECT_TRUE(attributeNames(root.child(list)).empty()) << list;
        EXPECT_FALSE(root.child(list).first_child()) << list;
    }
}

TEST_F(ConfigFileTest, ItemsCarryTheirAttributesInOrder) {
    fillEveryField();
    config()->save();
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    const std::vector<std::pair<const char*, std::vector<std::string>>> lists{
        {"Status", {"Name", "Status"}},
        {"Directory", {"Name", "Path"}},
        {"Tools", {"Name", "Status"}},
        {"CustomBackup", {"Path"}},
        {"FileFavorites", {"Path", "Root"}},
        {"AutoImport", {"Name", "Status"}},
        {"VirtualLocation", {"X", "Y", "Location"}},
        {"LocationFavorites", {"X", "Y", "Location"}}};
    for (const auto& list : lists) {
        const pugi::xml_node element = root.child(list.first);
        ASSERT_TRUE(element.first_child()) << list.first;
        for (pugi::xml_node item = element.first_child(); item; item = item.next_sibling()) {
            EXPECT_STREQ(item.name(), "Item") << list.first;
            EXPECT_EQ(attributeNames(item), list.second) << list.first;
        }
    }
}

TEST_F(ConfigFileTest, ValuesAreWrittenInTheirEncodings) {
    fillEveryField();
    config()->save();
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_STREQ(root.child("LastVersion").attribute("Value").value(), "5.2.1");
    EXPECT_STREQ(root.child("PopupTimeADAPP").attribute("Value").value(), "18446744073709551615");
    EXPECT_STREQ(root.child("SameTimeDownloadNumber").attribute("Value").value(), "-7");
    EXPECT_STREQ(root.child("DownloadMaxSpeed").attribute("Value").value(), "-2147483648");
    EXPECT_STREQ(root.child("LastSkin").attribute("Value").value(), "1A2B3C");
    EXPECT_STREQ(root.child("LastLanguage").attribute("Value").value(), "12");
    EXPECT_STREQ(root.child("RestoreCore").attribute("Value").value(), "-3");
    const pugi::xml_node status = root.child("Status").first_child();
    EXPECT_STREQ(status.attribute("Name").value(), "ApplicationAutorun");
    EXPECT_STREQ(status.attribute("Status").value(), "true");
    EXPECT_STREQ(status.next_sibling().attribute("Status").value(), "false");
    EXPECT_STREQ(root.child("FileFavorites").first_child().attribute("Root").value(), "true");
}

TEST_F(ConfigFileTest, MapsAreWrittenInKeyOrderAndListsInListOrder) {
    record().tools.emplace("b", true);
    record().tools.emplace("a", true);
    record().tools.emplace("C", true);
    record().customBackup.emplace_back("/z");
    record().customBackup.emplace_back("/a");
    config()->save();
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    std::vector<std::string> tools;
    for (pugi::xml_node item : root.child("Tools").children()) {
        tools.emplace_back(item.attribute("Name").value());
    }
    EXPECT_EQ(tools, (std::vector<std::string>{"C", "a", "b"}));
    std::vector<std::string> backups;
    for (pugi::xml_node item : root.child("CustomBackup").children()) {
        backups.emplace_back(item.attribute("Path").value());
    }
    EXPECT_EQ(backups, (std::vector<std::string>{"/z", "/a"}));
}

TEST_F(ConfigFileTest, FileIsIndentedWithTabsInUtf8) {
    record().lastSkin = "Grün";
    record().status.emplace("A", true);
    config()->save();
    const std::string text = readCurrent();
    EXPECT_EQ(text.rfind("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Nevor>\n", 0), 0u) << text;
    EXPECT_NE(text.find("\n\t<LastVersion Value="), std::string::npos) << text;
    EXPECT_NE(text.find("\n\t\t<Item Name=\"A\" Status=\"true\" />"), std::string::npos) << text;
    EXPECT_NE(text.find("Gr\xC3\xBCn"), std::string::npos);
    EXPECT_EQ(text.find("    "), std::string::npos);
}

TEST_F(ConfigFileTest, SaveLeavesNoTemporaryFileBehind) {
    config()->save();
    config()->save();
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(configDirectory())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(names, std::vector<std::string>{"configure.xml"});
}

TEST_F(ConfigFileTest, SaveRewritesTheWholeFileWithoutMerging) {
    writeCurrent("<Nevor><Tools><Item Name=\"Other\" Status=\"true\"/></Tools>"
                 "<Extra Value=\"1\"/></Nevor>");
    config()->save();
    const std::string text = readCurrent();
    EXPECT_EQ(text.find("Other"), std::string::npos);
    EXPECT_EQ(text.find("Extra"), std::string::npos);
}

TEST_F(ConfigFileTest, MissingFileIsANewInstallationWithStartUpValues) {
    config()->initialize();
    EXPECT_TRUE(config()->newInstall());
    EXPECT_EQ(config()->getSameTimeDownloadNumber(), 3);
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
    EXPECT_EQ(record().lastVersion, NString("5.0.0"));
    EXPECT_TRUE(record().status.empty());
}

TEST_F(ConfigFileTest, MalformedFileKeepsStartUpValuesAndIsReplacedByTheNextSave) {
    writeCurrent("<Nevor><LastSkin Value=\"ABCDEF\"/><SameTimeDownloadNumber Value=\"9\">");
    config()->initialize();
    EXPECT_FALSE(config()->newInstall());
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
    EXPECT_EQ(config()->getSameTimeDownloadNumber(), 3);
    config()->setDownloadMaxSpeed(512);
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_STREQ(root.child("DownloadMaxSpeed").attribute("Value").value(), "512");
    EXPECT_STREQ(root.child("LastSkin").attribute("Value").value(), "236EE7");
}

TEST_F(ConfigFileTest, FileWithAnotherRootIsIgnored) {
    writeCurrent("<Config><LastSkin Value=\"ABCDEF\"/></Config>");
    config()->initialize();
    EXPECT_FALSE(config()->newInstall());
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
    EXPECT_EQ(record().lastVersion, NString("5.0.0"));
}

TEST_F(ConfigFileTest, EmptyFileIsIgnoredButCountsAsExisting) {
    writeCurrent("");
    config()->initialize();
    EXPECT_FALSE(config()->newInstall());
    EXPECT_EQ(config()->getSameTimeDownloadNumber(), 3);
}

TEST_F(ConfigFileTest, MissingElementsTakeTheReadersDefaults) {
    writeCurrent("<Nevor/>");
    config()->initialize();
    EXPECT_EQ(config()->getSameTimeDownloadNumber(), 3);
    EXPECT_EQ(config()->getDownloadMaxSpeed(), 0);
    EXPECT_EQ(record().lastSkin, NString(""));
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
    // The recorded version became empty, so the running version counts as an update.
    EXPECT_TRUE(config()->newUpdate());
}

TEST_F(ConfigFileTest, MissingValueAttributeTakesTheReadersDefault) {
    writeCurrent("<Nevor><SameTimeDownloadNumber value=\"8\"/><LastVersion/></Nevor>");
    config()->load_new();
    EXPECT_EQ(record().sameTimeDownloadNumber, 3);
    EXPECT_EQ(record().lastVersion, NString(""));
}

TEST_F(ConfigFileTest, LoadSetsNewInstallOnlyFromTheFilesExistence) {
    config()->load_new();
    EXPECT_TRUE(record().newInstall);
    writeCurrent("<Nevor/>");
    config()->load_new();
    EXPECT_FALSE(record().newInstall);
}

TEST_F(ConfigFileTest, FirstOfTwoStatusItemsWithOneNameWins) {
    writeCurrent("<Nevor><Status><Item Name=\"WiFiConnect\" Status=\"true\"/>"
                 "<Item Name=\"WiFiConnect\" Status=\"false\"/></Status></Nevor>");
    config()->load_new();
    EXPECT_EQ(record().status.size(), 1u);
    EXPECT_TRUE(config()->getSettingStatus("WiFiConnect"));
}

TEST_F(ConfigFileTest, FirstOfTwoDirectoryItemsWithOneNameWins) {
    writeCurrent("<Nevor><Directory><Item Name=\"Data\" Path=\"/first\"/>"
                 "<Item Name=\"Data\" Path=\"/second\"/></Directory></Nevor>");
    config()->load_new();
    EXPECT_EQ(config()->getConfigDirectory("Data"), NString("/first"));
}

TEST_F(ConfigFileTest, ItemsWithOtherNamesAreReadLikeItems) {
    writeCurrent("<Nevor><Status><Flag Name=\"RelationIpa\" Status=\"true\"/></Status>"
                 "<Tools><Tool Name=\"Cleaner\" Status=\"false\"/></Tools>"
                 "<CustomBackup><Entry Path=\"/b1\"/><Item Path=\"/b2\"/></CustomBackup>"
                 "<FileFavorites><File Path=\"/f\" Root=\"true\"/></FileFavorites>"
                 "<AutoImport><X Name=\"Ringtone\" Status=\"false\"/></AutoImport>"
                 "<VirtualLocation><Place X=\"1\" Y=\"2\" Location=\"P\"/></VirtualLocation>"
                 "<LocationFavorites><Fav X=\"3\" Y=\"4\" Location=\"Q\"/></LocationFavorites>"
                 "</Nevor>");
    config()->load_new();
    EXPECT_TRUE(config()->getSettingStatus("RelationIpa"));
    EXPECT_FALSE(config()->getToolsHot("Cleaner"));
    EXPECT_EQ(customBackups(*config()), (std::vector<std::string>{"/b1", "/b2"}));
    EXPECT_EQ(fileFavourites(*config()), (std::vector<std::pair<std::string, bool>>{{"/f", true}}));
    EXPECT_FALSE(config()->getAutoImportRingtone());
    EXPECT_EQ(virtualLocations(*config()), (std::vector<Place>{{1, 2, "P"}}));
    EXPECT_EQ(locationFavourites(*config()), (std::vector<Place>{{3, 4, "Q"}}));
}

TEST_F(ConfigFileTest, ItemAttributesMissingTakeTheirDefaults) {
    writeCurrent("<Nevor><Status><Item/></Status><Directory><Item Name=\"X\"/></Directory>"
                 "<CustomBackup><Item/></CustomBackup><FileFavorites><Item/></FileFavorites>"
                 "<VirtualLocation><Item/></VirtualLocation></Nevor>");
    config()->load_new();
    EXPECT_EQ(record().status.at(""), false);
    EXPECT_EQ(record().directory.at("X"), NString(""));
    EXPECT_EQ(customBackups(*config()), std::vector<std::string>{""});
    EXPECT_EQ(fileFavourites(*config()), (std::vector<std::pair<std::string, bool>>{{"", false}}));
    EXPECT_EQ(virtualLocations(*config()), (std::vector<Place>{{0, 0, ""}}));
}

TEST_F(ConfigFileTest, ListsKeepDuplicatesFromTheFile) {
    writeCurrent("<Nevor><CustomBackup><Item Path=\"/same\"/><Item Path=\"/same\"/>"
                 "</CustomBackup><LocationFavorites><Item X=\"1\" Y=\"1\" Location=\"a\"/>"
                 "<Item X=\"1\" Y=\"1\" Location=\"b\"/></LocationFavorites></Nevor>");
    config()->load_new();
    EXPECT_EQ(customBackups(*config()), (std::vector<std::string>{"/same", "/same"}));
    EXPECT_EQ(locationFavourites(*config()).size(), 2u);
}

TEST_F(ConfigFileTest, LoadingDoesNotClearTheContainers) {
    record().status.emplace("WiFiConnect", false);
    record().customBackup.emplace_back("/before");
    writeCurrent("<Nevor><Status><Item Name=\"WiFiConnect\" Status=\"true\"/></Status>"
                 "<CustomBackup><Item Path=\"/after\"/></CustomBackup></Nevor>");
    config()->load_new();
    EXPECT_FALSE(record().status.at("WiFiConnect"));
    EXPECT_EQ(customBackups(*config()), (std::vector<std::string>{"/before", "/after"}));
}

TEST_F(ConfigFileTest, SpeedBeyondThirtyTwoBitsDoesNotReadBackUnchanged) {
    config()->setDownloadMaxSpeed(5000000000ll);
    EXPECT_NE(readCurrent().find("<DownloadMaxSpeed Value=\"5000000000\" />"), std::string::npos);
    record().downloadMaxSpeed = 0;
    config()->load_new();
    EXPECT_NE(config()->getDownloadMaxSpeed(), 5000000000ll);
    EXPECT_GE(config()->getDownloadMaxSpeed(), static_cast<long long>(INT_MIN));
    EXPECT_LE(config()->getDownloadMaxSpeed(), static_cast<long long>(INT_MAX));
}

TEST_F(ConfigFileTest, SpeedWithinThirtyTwoBitsReadsBack) {
    config()->setDownloadMaxSpeed(-2147483647ll);
    record().downloadMaxSpeed = 0;
    config()->load_new();
    EXPECT_EQ(config()->getDownloadMaxSpeed(), -2147483647ll);
}

TEST_F(ConfigFileTest, DownloadNumberIsReadAsAnInt) {
    writeCurrent("<Nevor><SameTimeDownloadNumber Value=\"4294967297\"/></Nevor>");
    config()->load_new();
    EXPECT_NE(record().sameTimeDownloadNumber, 4294967297ll);
    EXPECT_LE(record().sameTimeDownloadNumber, static_cast<long long>(INT_MAX));
}

TEST_F(ConfigFileTest, PopupTimeIsReadAsUnsignedSixtyFourBits) {
    writeCurrent("<Nevor><PopupTimeADAPP Value=\"18446744073709551615\"/></Nevor>");
    config()->load_new();
    EXPECT_EQ(config()->getPopupTimeADAPP(), 18446744073709551615ull);
}

TEST_F(ConfigFileTest, BooleansAreReadByTheParsersRule) {
    writeCurrent("<Nevor><Status><Item Name=\"a\" Status=\"1\"/><Item Name=\"b\" Status=\"Yes\"/>"
                 "<Item Name=\"c\" Status=\"no\"/><Item Name=\"d\" Status=\"TRUE\"/></Status>"
                 "</Nevor>");
    config()->load_new();
    EXPECT_TRUE(record().status.at("a"));
    EXPECT_TRUE(record().status.at("b"));
    EXPECT_FALSE(record().status.at("c"));
    EXPECT_TRUE(record().status.at("d"));
}

TEST_F(ConfigFileTest, UserDirGivesTheDataDirectoryAndIsDroppedByTheNextSave) {
    writeCurrent("<Nevor><UserDir Value=\"/Users/old/Data\"/></Nevor>");
    config()->initialize();
    EXPECT_EQ(config()->getConfigDirectory("Data"), NString("/Users/old/Data"));
    config()->save();
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_FALSE(root.child("UserDir"));
    EXPECT_STREQ(root.child("Directory")
                     .find_child_by_attribute("Item", "Name", "Data")
                     .attribute("Path")
                     .value(),
                 "/Users/old/Data");
}

TEST_F(ConfigFileTest, DirectoryItemDataWinsOverUserDir) {
    writeCurrent("<Nevor><UserDir Value=\"/old\"/><Directory><Item Name=\"Data\" Path=\"/new\"/>"
                 "</Directory></Nevor>");
    config()->load_new();
    EXPECT_EQ(config()->getConfigDirectory("Data"), NString("/new"));
}

TEST_F(ConfigFileTest, ReadingFillsDataAndBackupRightAfterTheDirectories) {
    writeCurrent("<Nevor/>");
    config()->load_new();
    EXPECT_EQ(record().directory.at("Data"), NString(""));
    EXPECT_EQ(record().directory.at("Backup"), NString(backupDirectory()));
}

TEST_F(ConfigFileTest, FileWithoutRootGetsNoDirectoryFallbacks) {
    writeCurrent("<Other/>");
    config()->load_new();
    EXPECT_TRUE(record().directory.empty());
}

TEST_F(ConfigFileTest, EmptyStatusWritesAnEmptyElementThatReadsBackEmpty) {
    config()->save();
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    ASSERT_TRUE(root.child("Status"));
    EXPECT_FALSE(root.child("Status").first_child());
    config()->load_new();
    EXPECT_TRUE(record().status.empty());
}

TEST_F(ConfigFileTest, DoublesReadBackExactly) {
    const std::vector<double> values{
        0.1,        -0.0,       1e-300, 4.9406564584124654e-324, 1.7976931348623157e308,
        39.9087243, 116.3952859};
    for (double value : values) {
        record().virtualLocation.clear();
        _PALLIX_RUNTIME_CONFIG_VL place;
        place.X = value;
        place.Y = -value;
        place.Location = "p";
        record().virtualLocation.push_back(place);
        config()->save();
        record().virtualLocation.clear();
        config()->load_new();
        ASSERT_EQ(record().virtualLocation.size(), 1u);
        EXPECT_EQ(record().virtualLocation.front().X, value);
        EXPECT_EQ(record().virtualLocation.front().Y, -value);
    }
}

TEST_F(ConfigFileTest, TextIsEscapedAndReadBack) {
    record().lastSkin = "<&\"'>";
    record().customBackup.emplace_back("/a & b/<c>");
    config()->save();
    record().customBackup.clear();
    config()->load_new();
    EXPECT_EQ(record().lastSkin, NString("<&\"'>"));
    EXPECT_EQ(customBackups(*config()), std::vector<std::string>{"/a & b/<c>"});
}

TEST_F(ConfigFileTest, ConfigurationDirectoryWithSpacesAndNonAsciiCharacters) {
    const std::string directory = scratch("Application Support/Tol Vane ü 設定");
    std::filesystem::create_directories(directory);
    useConfigDirectory(directory);
    config()->initialize();
    config()->setLastSkin("C0FFEE");
    config()->customBackupAppend(NString(directory + "/Backups/ä ö"));
    record().lastSkin = NString();
    record().customBackup.clear();
    config()->load_new();
    EXPECT_FALSE(record().newInstall);
    EXPECT_EQ(config()->getLastSkin(), NString("C0FFEE"));
    EXPECT_EQ(customBackups(*config()), std::vector<std::string>{directory + "/Backups/ä ö"});
}

TEST_F(ConfigFileTest, MissingConfigurationDirectoryKeepsValuesInMemory) {
    useConfigDirectory(scratch("not there"));
    config()->initialize();
    EXPECT_TRUE(config()->newInstall());
    config()->setLastSkin("ABCDEF");
    config()->setSettingStatus("WiFiConnect", true);
    config()->virtualLocationAppend(1, 2, "here");
    config()->release();
    EXPECT_EQ(config()->getLastSkin(), NString("ABCDEF"));
    EXPECT_TRUE(config()->getSettingStatus("WiFiConnect"));
    EXPECT_EQ(virtualLocations(*config()).size(), 1u);
    EXPECT_FALSE(exists(scratch("not there")));
}

TEST_F(ConfigFileTest, ConfigurationPathThatIsAFileKeepsValuesInMemory) {
    const std::string blocker = scratch("plain file");
    TemporaryDirectory::write(blocker, "not a directory");
    useConfigDirectory(blocker);
    config()->initialize();
    config()->setSameTimeDownloadNumber(11);
    config()->customBackupAppend("/x");
    EXPECT_EQ(config()->getSameTimeDownloadNumber(), 11);
    EXPECT_EQ(customBackups(*config()), std::vector<std::string>{"/x"});
    EXPECT_EQ(TemporaryDirectory::read(blocker), "not a directory");
}

