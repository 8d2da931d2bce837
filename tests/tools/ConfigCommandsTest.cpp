// "pallix config": the configuration commands of the tool, run as a separate program.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

using pallix::test::runProgram;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

class ConfigCommandsTest : public ::testing::Test {
protected:
    void SetUp() override {
        std::filesystem::create_directories(config());
        std::filesystem::create_directories(resources());
        std::filesystem::create_directories(m_root.file("home"));
        std::filesystem::copy_file(std::string(PALLIX_SAMPLES_DIR) + "/UpdateCfg.xml",
                                   resources() + "/UpdateCfg.xml");
    }

    std::string config() const { return m_root.file("config"); }
    std::string resources() const { return m_root.file("resources"); }
    std::string home() const { return m_root.file("home"); }
    std::string scratch(const std::string& name) const { return m_root.file(name); }
    std::string currentFile() const { return config() + "/configure.xml"; }

    // Runs "pallix config --config-dir <config> --resources-dir <resources> ARGS..." with the
    // home and data directories inside the test's folder, so that defaults land there.
    ToolResult run(const std::vector<std::string>& arguments) const {
        std::vector<std::string> command{
            "HOME=" + home(),  "XDG_DATA_HOME=" + home() + "/.local/share",
            PALLIX_TOOL_PATH,  "config",
            "--config-dir",    config(),
            "--resources-dir", resources()};
        command.insert(command.end(), arguments.begin(), arguments.end());
        return runProgram("env", command);
    }

    // The written configuration, parsed.
    pugi::xml_node written(pugi::xml_document& document) const {
        EXPECT_TRUE(document.load_file(currentFile().c_str()));
        return document.child("Nevor");
    }

    void writeCurrent(const std::string& xml) const {
        TemporaryDirectory::write(currentFile(), xml);
    }

private:
    TemporaryDirectory m_root{"pallix-tool-config"};
};

bool exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

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

TEST_F(ConfigCommandsTest, GetPrintsFlagsWithTheirDefaults) {
    EXPECT_EQ(run({"get", "Status/ITunesAutorun"}).output, "true\n");
    EXPECT_EQ(run({"get", "Status/NotASetting"}).output, "false\n");
    EXPECT_EQ(run({"get", "Tools/Anything"}).output, "true\n");
    EXPECT_EQ(run({"get", "AutoImport/Ringtone"}).output, "true\n");
    EXPECT_EQ(run({"get", "Directory/Backup"}).output,
              home() + "/.local/share/MobileSync/Backup\n");
    EXPECT_FALSE(exists(currentFile()));
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
        const ToolResult result = run({"get", key});
        EXPECT_EQ(result.status, 2) << key;
        EXPECT_TRUE(contains(result.errors, "unknown key")) << result.errors;
        EXPECT_TRUE(result.output.empty());
    }
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
    ASSERT_EQ(run({"add", "CustomBackup", "/b"}).status, 0);
    const ToolResult result = run({"add", "CustomBackup", "/b/"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(contains(result.errors, "already in CustomBackup")) << result.errors;
    EXPECT_EQ(run({"list", "CustomBackup"}).output, "/b\n");
}

TEST_F(ConfigCommandsTest, RemovingAnAbsentEntryIsReported) {
    const ToolResult result = run({"remove", "VirtualLocation", "1", "2"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(contains(result.errors, "no such entry")) << result.errors;
    EXPECT_TRUE(exists(currentFile()));
}

TEST_F(ConfigCommandsTest, FileFavouritesCarryTheirRootFlag) {
    ASSERT_EQ(run({"add", "FileFavorites", "/Users/me/Docs", "--root"}).status, 0);
    ASSERT_EQ(run({"add", "FileFavorites", "/Users/me/Music"}).status, 0);
    EXPECT_EQ(run({"list", "FileFavorites"}).output, "/Users/me/Docs\troot\n/Users/me/Music\t-\n");
    ASSERT_EQ(run({"remove", "FileFavorites", "/Users/me/Docs"}).status, 0);
    EXPECT_EQ(run({"list", "FileFavorites"}).output.size(),
              std::string("/Users/me/Docs\troot\n/Users/me/Music\t-\n").size());
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
    EXPECT_TRUE(contains(result.errors, "'north' is not a number")) << result.errors;
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
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "no such configuration directory")) << result.errors;
    EXPECT_FALSE(exists(scratch("nowhere")));
}

TEST_F(ConfigCommandsTest, ConfigurationDirectoryIsRequired) {
    const ToolResult result = runProgram(PALLIX_TOOL_PATH, {"config", "show"});
    EXPECT_NE(result.status, 0);
    EXPECT_TRUE(contains(result.errors, "--config-dir")) << result.errors;
}

TEST_F(ConfigCommandsTest, MalformedConfigurationIsDiagnosedWithItsPosition) {
    writeCurrent("<Nevor>\n  <LastSkin Value=\"ABCDEF\">\n</Nevor>\n");
    const ToolResult result = run({"get", "LastSkin"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "236EE7\n");
    EXPECT_TRUE(contains(result.errors, currentFile() + ":3:")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "start-up values")) << result.errors;
}

TEST_F(ConfigCommandsTest, ConfigurationWithAnotherRootIsDiagnosed) {
    writeCurrent("<Settings/>");
    const ToolResult result = run({"show"});
    EXPECT_EQ(result.status, 0);
    EXPECT_TRUE(contains(result.errors, "has no \"Nevor\" root element")) << result.errors;
}

TEST_F(ConfigCommandsTest, MissingVersionFileIsDiagnosed) {
    std::filesystem::remove(resources() + "/UpdateCfg.xml");
    const ToolResult result = run({"get", "Version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "5.0.0\n");
    EXPECT_TRUE(contains(result.errors, "no such file")) << result.errors;
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
