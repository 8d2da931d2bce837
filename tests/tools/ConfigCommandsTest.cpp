// "pallix config": the configuration commands of the tool, run as a separate program. The
// refusals, the guard, the lock and the commands that change nothing are in
// ConfigChangesTest.cpp.

#include "ConfigToolFixture.h"
#include "ReadOnlyDirectory.h"

#include <nlohmann/json.hpp>

#include <iostream>

using pallix::test::contains;
using pallix::test::exists;
using pallix::test::runProgram;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

using ConfigCommandsTest = pallix::test::ConfigToolTest;

TEST_F(ConfigCommandsTest, ShowOnAnEmptyDirectoryPrintsTheStartUpConfiguration) {
    const ToolResult result = run({"show"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "Version:                 5.2.1\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "New installation:        yes\n"));
    EXPECT_TRUE(contains(result.output, "New update:              yes\n"));
    EXPECT_TRUE(contains(result.output, "  LastSkin                  236EE7\n"));
    EXPECT_TRUE(contains(result.output, "  SameTimeDownloadNumber    3\n"));
    EXPECT_TRUE(contains(result.output, "  ITunesAutorun             true\n"));
    EXPECT_TRUE(contains(result.output, "  RESTORE_FACTORY           false\n"));
    EXPECT_TRUE(
        contains(result.output, "  Data                      " + home() + "/TolVaneData\n"));
    EXPECT_TRUE(contains(result.output, "CustomBackup (0)\n"));
    EXPECT_TRUE(contains(result.output, "LocationFavorites (0)\n"));
}

TEST_F(ConfigCommandsTest, ShowDoesNotWriteTheConfiguration) {
    ASSERT_EQ(run({"show"}).status, 0);
    EXPECT_FALSE(exists(currentFile()));
    EXPECT_FALSE(exists(home() + "/TolVaneData"));
}

TEST_F(ConfigCommandsTest, ShowPrintsEverySectionOfAWrittenConfiguration) {
    writeCurrent("<Nevor><LastVersion Value=\"5.2.1\"/><LastSkin Value=\"ABCDEF\"/>"
                 "<Status><Item Name=\"CustomFlag\" Status=\"true\"/></Status>"
                 "<Directory><Item Name=\"Data\" Path=\"/srv/data\"/></Directory>"
                 "<Tools><Item Name=\"Cleaner\" Status=\"false\"/></Tools>"
                 "<CustomBackup><Item Path=\"/Volumes/B\"/></CustomBackup>"
                 "<FileFavorites><Item Path=\"/f\" Root=\"true\"/></FileFavorites>"
                 "<AutoImport><Item Name=\"Ringtone\" Status=\"false\"/></AutoImport>"
                 "<VirtualLocation><Item X=\"1.5\" Y=\"-2.25\" Location=\"Here\"/>"
                 "</VirtualLocation><LocationFavorites><Item X=\"3\" Y=\"4\" Location=\"There\"/>"
                 "</LocationFavorites></Nevor>");
    const ToolResult result = run({"show"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const std::string& out = result.output;
    EXPECT_TRUE(contains(out, "New installation:        no\n")) << out;
    EXPECT_TRUE(contains(out, "New update:              no\n"));
    EXPECT_TRUE(contains(out, "  LastSkin                  ABCDEF\n"));
    EXPECT_TRUE(contains(out, "  CustomFlag                true\n"));
    EXPECT_TRUE(contains(out, "Tools (1)\n  Cleaner                   not hot\n"));
    EXPECT_TRUE(contains(out, "  Ringtone                  false\n"));
    EXPECT_TRUE(contains(out, "  Data                      /srv/data\n"));
    EXPECT_TRUE(contains(out, "CustomBackup (1)\n  /Volumes/B\n"));
    EXPECT_TRUE(contains(out, "FileFavorites (1)\n  /f\troot\n"));
    EXPECT_TRUE(contains(out, "VirtualLocation (1)\n  1.5\t-2.25\tHere\n"));
    EXPECT_TRUE(contains(out, "LocationFavorites (1)\n  3\t4\tThere\n"));
}

TEST_F(ConfigCommandsTest, GetPrintsPreferencesAndStartUpFacts) {
    writeCurrent("<Nevor><LastVersion Value=\"5.1.0\"/><DownloadMaxSpeed Value=\"-42\"/></Nevor>");
    EXPECT_EQ(run({"get", "DownloadMaxSpeed"}).output, "-42\n");
    EXPECT_EQ(run({"get", "SameTimeDownloadNumber"}).output, "3\n");
    EXPECT_EQ(run({"get", "LastSkin"}).output, "236EE7\n");
    EXPECT_EQ(run({"get", "Version"}).output, "5.2.1\n");
    EXPECT_EQ(run({"get", "NewInstall"}).output, "false\n");
    EXPECT_EQ(run({"get", "NewUpdate"}).output, "true\n");
}

TEST_F(ConfigCommandsTest, GetPrintsTheKnownSettingsWithTheirDefaults) {
    EXPECT_EQ(run({"get", "Status/ITunesAutorun"}).output, "true\n");
    EXPECT_EQ(run({"get", "Status/RESTORE_FACTORY"}).output, "false\n");
    EXPECT_EQ(run({"get", "AutoImport/Ringtone"}).output, "true\n");
    EXPECT_EQ(run({"get", "Directory/Backup"}).output,
              home() + "/.local/share/MobileSync/Backup\n");
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigCommandsTest, GetOfANameTheConfigurationDoesNotHoldIsNotFound) {
    writeCurrent("<Nevor><Status><Item Name=\"CustomFlag\" Status=\"true\"/></Status>"
                 "<Tools><Item Name=\"Cleaner\" Status=\"false\"/></Tools></Nevor>");
    for (const char* key : {"Tools/Foo", "Status/NotASetting", "Directory/Music"}) {
        const ToolResult result = run({"get", key});
        EXPECT_EQ(result.status, 1) << key;
        EXPECT_EQ(result.output, "") << key;
        EXPECT_TRUE(contains(result.errors, std::string("pallix: ") + key + ": not found"))
            << result.errors;
    }
    EXPECT_EQ(run({"get", "Status/CustomFlag"}).output, "true\n");
    EXPECT_EQ(run({"get", "Tools/Cleaner"}).output, "false\n");
    const ToolResult typo = run({"get", "Tools/Claener"});
    EXPECT_EQ(typo.status, 1);
    EXPECT_TRUE(contains(typo.errors, "did you mean 'Tools/Cleaner'?")) << typo.errors;
    const ToolResult setting = run({"get", "Status/ITunesAutorn"});
    EXPECT_EQ(setting.status, 1);
    EXPECT_TRUE(contains(setting.errors, "did you mean 'Status/ITunesAutorun'?")) << setting.errors;
}

TEST_F(ConfigCommandsTest, ANameWithoutItsFamilyIsSuggestedWithIt) {
    for (const auto& [typed, meant] : std::vector<std::pair<std::string, std::string>>{
             {"ITunesAutorun", "Status/ITunesAutorun"},
             {"RESTORE_FACTRY", "Status/RESTORE_FACTORY"}}) {
        const ToolResult result = run({"get", typed});
        EXPECT_EQ(result.status, 2) << typed;
        EXPECT_TRUE(contains(result.errors, "did you mean '" + meant + "'?")) << result.errors;
    }
}

TEST_F(ConfigCommandsTest, ANewSettingWithinATypoOfAKnownOneIsRefused) {
    ToolResult result = run({"set", "Status/ITunesAutorn", "false"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(contains(result.errors, "pallix: 'ITunesAutorn' is not a setting that the "
                                        "application knows; did you mean "
                                        "'Status/ITunesAutorun'?"))
        << result.errors;
    EXPECT_FALSE(exists(currentFile()));
    // A name unlike any known one is a setting of its own.
    result = run({"set", "Status/MyOwnFlag", "true"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "Status/MyOwnFlag: true (new)\n");
    EXPECT_TRUE(contains(result.errors, "is not a setting that the application knows; it is kept "
                                        "beside them"))
        << result.errors;
}

TEST_F(ConfigCommandsTest, SetChangesAPreferenceAndSavesIt) {
    ToolResult result = run({"set", "SameTimeDownloadNumber", "-5"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(run({"get", "SameTimeDownloadNumber"}).output, "-5\n");
    result = run({"set", "PopupTimeADAPP", "18446744073709551615"});
    ASSERT_EQ(result.status, 0) << result.errors;
    ASSERT_EQ(run({"set", "LastSkin", "C0FFEE"}).status, 0);
    ASSERT_EQ(run({"set", "LastLanguage", "3"}).status, 0);
    ASSERT_EQ(run({"set", "RestoreCore", "2"}).status, 0);
    ASSERT_EQ(run({"set", "DownloadMaxSpeed", "1048576"}).status, 0);
    pugi::xml_document document;
    const pugi::xml_node root = written(document);
    EXPECT_STREQ(root.child("SameTimeDownloadNumber").attribute("Value").value(), "-5");
    EXPECT_STREQ(root.child("PopupTimeADAPP").attribute("Value").value(), "18446744073709551615");
    EXPECT_STREQ(root.child("LastSkin").attribute("Value").value(), "C0FFEE");
    EXPECT_STREQ(root.child("LastLanguage").attribute("Value").value(), "3");
    EXPECT_STREQ(root.child("RestoreCore").attribute("Value").value(), "2");
    EXPECT_STREQ(root.child("DownloadMaxSpeed").attribute("Value").value(), "1048576");
}

// An empty skin is stored, and read as the default: the tool says what the application will see.
TEST_F(ConfigCommandsTest, SetSaysWhatTheApplicationReads) {
    ASSERT_EQ(run({"set", "LastSkin", "C0FFEE"}).status, 0);
    const ToolResult result = run({"set", "LastSkin", ""});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "LastSkin: 236EE7 (was C0FFEE)\n");
    EXPECT_TRUE(contains(result.errors, "'' is stored, and the application reads it as '236EE7'"))
        << result.errors;
    pugi::xml_document document;
    EXPECT_STREQ(written(document).child("LastSkin").attribute("Value").value(), "");
    EXPECT_EQ(run({"get", "LastSkin"}).output, "236EE7\n");
}

TEST_F(ConfigCommandsTest, SetChangesFlagsAndDirectories) {
    ASSERT_EQ(run({"set", "Status/KeepFirmwareCache", "false"}).status, 0);
    ASSERT_EQ(run({"set", "Tools/Screen Recorder", "off"}).status, 0);
    ASSERT_EQ(run({"set", "AutoImport/Ringtone", "no"}).status, 0);
    ASSERT_EQ(run({"set", "Directory/Data", scratch("Données utilisateur")}).status, 0);
    EXPECT_EQ(run({"get", "Status/KeepFirmwareCache"}).output, "false\n");
    EXPECT_EQ(run({"get", "Tools/Screen Recorder"}).output, "false\n");
    EXPECT_EQ(run({"get", "AutoImport/Ringtone"}).output, "false\n");
    EXPECT_EQ(run({"get", "Directory/Data"}).output, scratch("Données utilisateur") + "\n");
    pugi::xml_document document;
    EXPECT_STREQ(written(document)
                     .child("Tools")
                     .find_child_by_attribute("Item", "Name", "Screen Recorder")
                     .attribute("Status")
                     .value(),
                 "false");
}

TEST_F(ConfigCommandsTest, OptionsMayFollowTheSubcommand) {
    const ToolResult result =
        runProgram(PALLIX_TOOL_PATH, {"config", "get", "LastSkin", "--config-dir", config()});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "236EE7\n");
}

TEST_F(ConfigCommandsTest, StartUpFactsCannotBeSet) {
    const ToolResult result = run({"set", "Version", "9.9.9"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "cannot be set")) << result.errors;
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigCommandsTest, BadValuesAreRefusedAndNothingIsSaved) {
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{"set", "Status/WiFiConnect", "maybe"},
                                               {"set", "SameTimeDownloadNumber", "3000000000"},
                                               {"set", "SameTimeDownloadNumber", "4x"},
                                               {"set", "PopupTimeADAPP", "-1"},
                                               {"set", "DownloadMaxSpeed", ""},
                                               {"set", "AutoImport/Other", "true"}}) {
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments[1] << " " << arguments[2];
        EXPECT_TRUE(contains(result.errors, "pallix: ")) << result.errors;
    }
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigCommandsTest, UnknownKeysAreRefused) {
    for (const char* key : {"Bogus", "Status/", "Colours/Red", "AutoImport/Video"}) {
        for (const char* command : {"get", "set"}) {
            std::vector<std::string> arguments{command, key};
            if (std::string(command) == "set") {
                arguments.emplace_back("true");
            }
            const ToolResult result = run(arguments);
            EXPECT_EQ(result.status, 2) << command << " " << key;
            EXPECT_TRUE(contains(result.errors, "unknown key")) << result.errors;
            EXPECT_TRUE(result.output.empty());
        }
    }
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigCommandsTest, MistypedKeysGetASuggestion) {
    ToolResult result = run({"get", "LastSkn"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "did you mean 'LastSkin'?")) << result.errors;
    result = run({"set", "Statsu/WiFiConnect", "true"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "did you mean 'Status'?")) << result.errors;
    result = run({"list", "VirtualLocations"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "did you mean 'VirtualLocation'?")) << result.errors;
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigCommandsTest, CustomBackupsAreAddedNormalisedListedAndRemoved) {
    ASSERT_EQ(run({"add", "CustomBackup", "/Volumes//Backups/daily/"}).status, 0);
    ASSERT_EQ(run({"add", "CustomBackup", "/Volumes/Time Machine/バックアップ"}).status, 0);
    EXPECT_EQ(run({"list", "CustomBackup"}).output,
              "/Volumes/Backups/daily\n/Volumes/Time Machine/バックアップ\n");
    ASSERT_EQ(run({"remove", "CustomBackup", "/Volumes/Backups/daily"}).status, 0);
    EXPECT_EQ(run({"list", "CustomBackup"}).output, "/Volumes/Time Machine/バックアップ\n");
}

TEST_F(ConfigCommandsTest, DuplicateAddIsReportedAndChangesNothing) {
    ToolResult result = run({"add", "CustomBackup", "/b"});
    ASSERT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "CustomBackup: added /b\n");
    result = run({"add", "CustomBackup", "/b/"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "CustomBackup: /b is already there; nothing changed\n");
    EXPECT_EQ(run({"list", "CustomBackup"}).output, "/b\n");
}

TEST_F(ConfigCommandsTest, RemovingAnAbsentEntryIsNotFound) {
    const ToolResult result = run({"remove", "VirtualLocation", "1", "2"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "VirtualLocation: 1 2 is not there")) << result.errors;
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigCommandsTest, FileFavouritesCarryTheirRootFlag) {
    ASSERT_EQ(run({"add", "FileFavorites", "/Users/me/Docs", "--root"}).status, 0);
    ASSERT_EQ(run({"add", "FileFavorites", "/Users/me/Music"}).status, 0);
    EXPECT_EQ(run({"list", "FileFavorites"}).output, "/Users/me/Docs\troot\n/Users/me/Music\t-\n");
    const ToolResult withoutRoot = run({"remove", "FileFavorites", "/Users/me/Docs"});
    EXPECT_EQ(withoutRoot.status, 1);
    EXPECT_TRUE(contains(withoutRoot.errors, "/Users/me/Docs is there with the root flag"))
        << withoutRoot.errors;
    EXPECT_TRUE(contains(withoutRoot.errors, "remove it with --root")) << withoutRoot.errors;
    EXPECT_EQ(run({"list", "FileFavorites"}).output, "/Users/me/Docs\troot\n/Users/me/Music\t-\n");
    ASSERT_EQ(run({"remove", "FileFavorites", "/Users/me/Docs", "--root"}).status, 0);
    EXPECT_EQ(run({"list", "FileFavorites"}).output, "/Users/me/Music\t-\n");
}

TEST_F(ConfigCommandsTest, PlacesAreAddedMovedRemovedAndCleared) {
    ASSERT_EQ(run({"add", "VirtualLocation", "1.5", "2.5", "A"}).status, 0);
    ASSERT_EQ(run({"add", "VirtualLocation", "-33.8688", "151.2093", "Sydney"}).status, 0);
    ASSERT_EQ(run({"add", "VirtualLocation", "1.5", "2.5", "C"}).status, 0);
    EXPECT_EQ(run({"list", "VirtualLocation"}).output, "-33.8688\t151.2093\tSydney\n1.5\t2.5\tC\n");
    ASSERT_EQ(run({"remove", "VirtualLocation", "-33.8688", "151.2093"}).status, 0);
    EXPECT_EQ(run({"list", "VirtualLocation"}).output, "1.5\t2.5\tC\n");
    ASSERT_EQ(run({"clear", "VirtualLocation"}).status, 0);
    EXPECT_EQ(run({"list", "VirtualLocation"}).output, "");
}

TEST_F(ConfigCommandsTest, FavouritePlacesAreAListOfTheirOwn) {
    ASSERT_EQ(run({"add", "LocationFavorites", "55.7558", "37.6173", "Москва"}).status, 0);
    EXPECT_EQ(run({"list", "LocationFavorites"}).output, "55.7558\t37.6173\tМосква\n");
    EXPECT_EQ(run({"list", "VirtualLocation"}).output, "");
    ASSERT_EQ(run({"clear", "LocationFavorites"}).status, 0);
    EXPECT_EQ(run({"list", "LocationFavorites"}).output, "");
    pugi::xml_document document;
    EXPECT_FALSE(written(document).child("LocationFavorites").first_child());
}

TEST_F(ConfigCommandsTest, PathListsCannotBeCleared) {
    const ToolResult result = run({"clear", "CustomBackup"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "cannot be cleared")) << result.errors;
}

TEST_F(ConfigCommandsTest, ListArgumentsAreChecked) {
    EXPECT_EQ(run({"list", "Favourites"}).status, 2);
    EXPECT_EQ(run({"add", "VirtualLocation", "1", "2"}).status, 2);
    EXPECT_EQ(run({"add", "CustomBackup", "/a", "/b"}).status, 2);
    const ToolResult result = run({"add", "LocationFavorites", "north", "2", "X"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "'north' is not a finite number")) << result.errors;
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigCommandsTest, DirsPrintsAndCreatesTheWorkingDirectories) {
    const std::string data = scratch("data root ü");
    ASSERT_EQ(run({"set", "Directory/Data", data}).status, 0);
    const ToolResult result = run({"dirs"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "  Data                      " + data + "\n"));
    EXPECT_TRUE(contains(result.output, "  localDownload             " + data + "/Download\n"));
    EXPECT_TRUE(contains(result.output,
                         "  localRestoreVersion       " + data + "/IpswCache/version.xml\n"));
    EXPECT_TRUE(
        contains(result.output, "  localNormalBottomBackup   " + data + "/Normal/Bottom\n"));
    EXPECT_TRUE(exists(data + "/Normal/Bottom"));
    EXPECT_TRUE(exists(data + "/PicturePreview"));
    EXPECT_FALSE(exists(data + "/IpswCache/version.xml"));
}

TEST_F(ConfigCommandsTest, MissingConfigurationDirectoryIsAnError) {
    const ToolResult result =
        runProgram(PALLIX_TOOL_PATH, {"config", "--config-dir", scratch("nowhere"), "show"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "no such configuration directory")) << result.errors;
    EXPECT_FALSE(exists(scratch("nowhere")));
}

TEST_F(ConfigCommandsTest, AFileGivenAsTheConfigurationDirectoryIsAnError) {
    TemporaryDirectory::write(scratch("file"), "x");
    const ToolResult result = runPlain({"config", "show", "--config-dir", scratch("file")});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, scratch("file") + ": is not a directory")) << result.errors;
}

TEST_F(ConfigCommandsTest, AnUnreadableConfigurationDirectoryIsAnError) {
    const std::string locked = scratch("locked");
    std::filesystem::create_directories(locked);
    ASSERT_EQ(::chmod(locked.c_str(), 0), 0);
    // File modes do not stop root: the tool runs as a user whom they do stop.
    const std::string parent = std::filesystem::path(locked).parent_path().string();
    const int status = pallix::test::runWithReadOnlyDirectory(parent, [&] {
        const ToolResult result = runPlain({"config", "--config-dir", locked, "show"});
        const bool refused =
            result.status == 2 &&
            contains(result.errors, locked + ": the configuration directory cannot be read");
        if (!refused) {
            std::cerr << result.status << " " << result.errors;
        }
        return refused;
    });
    ::chmod(locked.c_str(), 0755);
    EXPECT_EQ(status, 0);
}

TEST_F(ConfigCommandsTest, ConfigurationDirectoryDefaultsToTheApplicationsOwn) {
    ToolResult result = runPlain({"config", "set", "LastSkin", "ABCDEF"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(exists(home() + "/.config/TolVane/configure.xml"));
    result = runPlain({"config", "get", "LastSkin"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "ABCDEF\n");
}

TEST_F(ConfigCommandsTest, DirectoryOptionsMayComeBeforeOrAfterTheAction) {
    ASSERT_EQ(runPlain({"config", "--config-dir", config(), "set", "LastSkin", "ABCDEF"}).status,
              0);
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"config", "--config-dir", config(), "show"},
             {"config", "show", "--config-dir", config()},
             {"config", "--resources-dir", resources(), "show", "--config-dir", config()}}) {
        const ToolResult result = runPlain(arguments);
        EXPECT_EQ(result.status, 0) << result.errors;
        EXPECT_TRUE(contains(result.output, "Configuration directory: " + config() + "\n"))
            << result.output;
        EXPECT_TRUE(contains(result.output, "  LastSkin                  ABCDEF\n"));
    }
}

TEST_F(ConfigCommandsTest, MalformedConfigurationIsRefusedByReadingCommandsUnlessForced) {
    writeCurrent("<Nevor>\n  <LastSkin Value=\"ABCDEF\">\n</Nevor>\n");
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"get", "LastSkin"}, {"show"}, {"list", "CustomBackup"}, {"dirs"}}) {
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments[0];
        EXPECT_EQ(result.output, "") << arguments[0];
        EXPECT_TRUE(contains(result.errors, currentFile() + ": not well-formed XML"))
            << result.errors;
        EXPECT_TRUE(contains(result.errors, "pallix check " + currentFile())) << result.errors;
    }
    const ToolResult forced = run({"get", "LastSkin", "--force"});
    EXPECT_EQ(forced.status, 0);
    EXPECT_EQ(forced.output, "236EE7\n");
    EXPECT_TRUE(contains(forced.errors, "warning: " + currentFile())) << forced.errors;
    EXPECT_TRUE(contains(forced.errors, "start-up values")) << forced.errors;
}

TEST_F(ConfigCommandsTest, ConfigurationWithAnotherRootIsRefused) {
    writeCurrent("<Settings/>");
    const ToolResult result = run({"show"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, currentFile())) << result.errors;
    EXPECT_TRUE(contains(result.errors, "\"Settings\"")) << result.errors;
}

TEST_F(ConfigCommandsTest, MissingVersionFileIsDiagnosed) {
    std::filesystem::remove(resources() + "/UpdateCfg.xml");
    const ToolResult result = run({"get", "Version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "5.0.0\n");
    EXPECT_TRUE(contains(result.errors, "no such file")) << result.errors;
}

TEST_F(ConfigCommandsTest, AVersionFileReadOtherwiseIsDiagnosed) {
    // Well-formed, but with no version in it: the running version is empty, and a write records
    // that as the last version.
    std::filesystem::copy_file(std::string(PALLIX_TEST_DATA_DIR) + "/check/version-empty.xml",
                               resources() + "/UpdateCfg.xml",
                               std::filesystem::copy_options::overwrite_existing);
    const ToolResult result = run({"set", "LastSkin", "C0FFEE"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.errors, "pallix: warning: " + resources() +
                                            "/UpdateCfg.xml:4:3: no \"Version\" element with a "
                                            "VALUE: the running version is empty"))
        << result.errors;
    EXPECT_TRUE(contains(result.errors, "(run 'pallix check " + resources() + "/UpdateCfg.xml')"))
        << result.errors;
}

TEST_F(ConfigCommandsTest, EachDirectoryIsGivenOnce) {
    for (const char* option : {"--config-dir", "--resources-dir"}) {
        const ToolResult result =
            runPlain({"config", option, scratch("a"), "get", "LastSkin", option, scratch("b")});
        EXPECT_EQ(result.status, 2) << option;
        EXPECT_TRUE(contains(result.errors,
                             std::string("pallix: ") + option + ": is given twice; give it once"))
            << result.errors;
    }
}

TEST_F(ConfigCommandsTest, LegacyConfigurationIsImportedOnce) {
    std::filesystem::copy_file(std::string(PALLIX_TEST_DATA_DIR) + "/config/Config.xml",
                               config() + "/Config.xml");
    ToolResult result = run({"get", "LastSkin"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "2E8B57\n");
    EXPECT_TRUE(contains(result.errors, "importing the legacy")) << result.errors;
    EXPECT_FALSE(exists(config() + "/Config.xml"));
    EXPECT_TRUE(exists(currentFile()));
    result = run({"list", "VirtualLocation"});
    EXPECT_EQ(result.output, "40.758\t-73.9855\tTimes Square\n35.6595\t139.7005\t渋谷\n");
    EXPECT_TRUE(result.errors.empty()) << result.errors;
}

TEST_F(ConfigCommandsTest, ConfigurationDirectoryWithSpacesAndNonAsciiCharacters) {
    const std::string directory = scratch("Réglages de l’app 設定");
    std::filesystem::create_directories(directory);
    ToolResult result = runProgram(PALLIX_TOOL_PATH, {"config", "--config-dir", directory, "set",
                                                      "Status/WindowAnimation", "true"});
    ASSERT_EQ(result.status, 0) << result.errors;
    result = runProgram(PALLIX_TOOL_PATH,
                        {"config", "--config-dir", directory, "get", "Status/WindowAnimation"});
    EXPECT_EQ(result.output, "true\n");
    EXPECT_TRUE(exists(directory + "/configure.xml"));
}

TEST_F(ConfigCommandsTest, HelpListsTheCommands) {
    const ToolResult result = runProgram(PALLIX_TOOL_PATH, {"config", "--help"});
    EXPECT_EQ(result.status, 0);
    for (const char* command : {"show", "get", "set", "list", "add", "remove", "clear", "dirs"}) {
        EXPECT_TRUE(contains(result.output, std::string("  ") + command + " ")) << command;
    }
}

TEST_F(ConfigCommandsTest, EveryHelpGivesTheExitStatusesAndEndsWithAnExample) {
    for (const char* command :
         {"", "show", "get", "set", "list", "add", "remove", "clear", "dirs"}) {
        std::vector<std::string> arguments{"config"};
        if (*command != '\0') {
            arguments.emplace_back(command);
        }
        arguments.emplace_back("--help");
        const ToolResult result = runPlain(arguments);
        EXPECT_EQ(result.status, 0) << command;
        const auto example = result.output.find("\nExample");
        const auto statuses = result.output.find("\nExit status: 0 ");
        EXPECT_NE(example, std::string::npos) << command << ":\n" << result.output;
        EXPECT_NE(statuses, std::string::npos) << command << ":\n" << result.output;
        EXPECT_LT(statuses, example) << command;
        EXPECT_TRUE(contains(result.output.substr(example), "pallix config")) << command;
    }
}

TEST_F(ConfigCommandsTest, HelpCommandDescribesAnAction) {
    const ToolResult result = runPlain({"help", "config", "set"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "Usage: pallix config set [OPTIONS] key value"))
        << result.output;
    EXPECT_TRUE(contains(result.output, "32 bits")) << result.output;
}

// ---- --json ----------------------------------------------------------------------------------

TEST_F(ConfigCommandsTest, ShowAsJson) {
    ASSERT_EQ(run({"add", "VirtualLocation", "1.5", "-2.25", "Here"}).status, 0);
    ASSERT_EQ(run({"add", "FileFavorites", "/f", "--root"}).status, 0);
    ASSERT_EQ(run({"set", "Tools/Cleaner", "false"}).status, 0);
    const ToolResult result = run({"show", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const auto document = nlohmann::json::parse(result.output);
    EXPECT_EQ(document["configDirectory"], config());
    EXPECT_EQ(document["configFile"], currentFile());
    EXPECT_EQ(document["version"], "5.2.1");
    EXPECT_EQ(document["newInstall"], false);
    EXPECT_EQ(document["preferences"]["LastSkin"], "236EE7");
    EXPECT_EQ(document["preferences"]["SameTimeDownloadNumber"], 3);
    EXPECT_EQ(document["status"]["ITunesAutorun"], true);
    EXPECT_EQ(document["tools"]["Cleaner"], false);
    EXPECT_EQ(document["autoImport"]["Ringtone"], true);
    EXPECT_EQ(document["directory"]["Data"], home() + "/TolVaneData");
    EXPECT_EQ(document["customBackup"], nlohmann::json::array());
    EXPECT_EQ(document["fileFavorites"][0]["path"], "/f");
    EXPECT_EQ(document["fileFavorites"][0]["root"], true);
    EXPECT_EQ(document["virtualLocation"][0]["x"], 1.5);
    EXPECT_EQ(document["virtualLocation"][0]["y"], -2.25);
    EXPECT_EQ(document["virtualLocation"][0]["location"], "Here");
    EXPECT_EQ(document["locationFavorites"], nlohmann::json::array());
}

TEST_F(ConfigCommandsTest, ShowTellsANewInstallationFromTheLibrary) {
    ToolResult result = run({"show"});
    EXPECT_TRUE(contains(result.output, currentFile() + " (not written yet)\n")) << result.output;
    ASSERT_EQ(run({"set", "LastSkin", "ABCDEF"}).status, 0);
    result = run({"show"});
    EXPECT_TRUE(contains(result.output, "Configuration file:      " + currentFile() + "\n"))
        << result.output;
}

TEST_F(ConfigCommandsTest, GetAndListAsJson) {
    ASSERT_EQ(run({"add", "CustomBackup", "/a\tb"}).status, 0);
    auto value = [this](const std::string& key) {
        const ToolResult result = run({"get", key, "--json"});
        EXPECT_EQ(result.status, 0) << result.errors;
        const auto document = nlohmann::json::parse(result.output);
        EXPECT_EQ(document["key"], key);
        return document["value"];
    };
    EXPECT_EQ(value("SameTimeDownloadNumber"), 3);
    EXPECT_EQ(value("LastSkin"), "236EE7");
    EXPECT_EQ(value("Status/ITunesAutorun"), true);
    EXPECT_EQ(value("NewInstall"), false);
    EXPECT_EQ(value("Version"), "5.2.1");
    const ToolResult list = run({"list", "CustomBackup", "--json"});
    ASSERT_EQ(list.status, 0) << list.errors;
    const auto document = nlohmann::json::parse(list.output);
    EXPECT_EQ(document["list"], "CustomBackup");
    ASSERT_EQ(document["entries"].size(), 1U);
    EXPECT_EQ(document["entries"][0]["path"], "/a\tb");
    // The text form keeps one entry per line.
    EXPECT_EQ(run({"list", "CustomBackup"}).output, "/a\\tb\n");
}

TEST_F(ConfigCommandsTest, DirsAsJson) {
    const ToolResult result = run({"dirs", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const auto document = nlohmann::json::parse(result.output);
    EXPECT_EQ(document["directory"]["Data"], home() + "/TolVaneData");
    EXPECT_EQ(document["working"]["localDownload"], home() + "/TolVaneData/Download");
    EXPECT_EQ(document["working"]["localRestoreVersion"],
              home() + "/TolVaneData/IpswCache/version.xml");
}
