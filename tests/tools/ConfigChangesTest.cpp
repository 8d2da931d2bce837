// "pallix config" changing the configuration: what it refuses, the guard against replacing a
// file it could not read, the lock that orders parallel changes, the changes that write nothing
// and the write that does not reach the disk.

#include "ConfigToolFixture.h"
#include "ConfigurationFormat.h"

#include <unistd.h>

#include <thread>

using pallix::test::contains;
using pallix::test::exists;
using pallix::test::FileState;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

class ConfigChangesTest : public pallix::test::ConfigToolTest {
protected:
    // A configuration file written by the library, to compare with after a command.
    FileState writtenFile() const {
        EXPECT_EQ(run({"set", "LastSkin", "ABCDEF"}).status, 0);
        return FileState::of(currentFile());
    }
};

// Every command that changes the configuration, with arguments it accepts.
const std::vector<std::vector<std::string>>& changingCommands() {
    static const std::vector<std::vector<std::string>> commands{{"set", "LastSkin", "C0FFEE"},
                                                                {"add", "CustomBackup", "/b"},
                                                                {"remove", "CustomBackup", "/b"},
                                                                {"clear", "VirtualLocation"}};
    return commands;
}

} // namespace

// ---- values the file cannot keep -------------------------------------------------------------

TEST_F(ConfigChangesTest, NumbersBeyondWhatTheReaderKeepsAreRefused) {
    const FileState before = writtenFile();
    for (const char* name :
         {"DownloadMaxSpeed", "SameTimeDownloadNumber", "LastLanguage", "RestoreCore"}) {
        for (const char* value : {"5000000000", "2147483648", "-2147483649"}) {
            const ToolResult result = run({"set", name, value});
            EXPECT_EQ(result.status, 2) << name << " " << value;
            EXPECT_TRUE(contains(result.errors, "from -2147483648 to 2147483647")) << result.errors;
            EXPECT_TRUE(contains(result.errors, "read back as a 32-bit number")) << result.errors;
        }
    }
    const ToolResult popup = run({"set", "PopupTimeADAPP", "18446744073709551616"});
    EXPECT_EQ(popup.status, 2);
    EXPECT_TRUE(contains(popup.errors, "from 0 to 18446744073709551615")) << popup.errors;
    EXPECT_TRUE(FileState::of(currentFile()) == before);

    ASSERT_EQ(run({"set", "DownloadMaxSpeed", "2147483647"}).status, 0);
    ASSERT_EQ(run({"set", "SameTimeDownloadNumber", "-2147483648"}).status, 0);
    EXPECT_EQ(run({"get", "DownloadMaxSpeed"}).output, "2147483647\n");
    EXPECT_EQ(run({"get", "SameTimeDownloadNumber"}).output, "-2147483648\n");
    const ToolResult check = runPlain({"check", currentFile()});
    EXPECT_EQ(check.status, 0) << check.output << check.errors;
}

// The ranges follow the table that the readers take their widths from: each preference takes
// the extremes of its width, reads them back after a restart, and refuses one beyond.
TEST_F(ConfigChangesTest, EveryPreferenceTakesTheNumbersItsReaderKeeps) {
    namespace cfg = pallix::format::configuration;
    for (const cfg::Preference& preference : cfg::kPreferences) {
        if (preference.width == cfg::Width::Text) {
            continue;
        }
        const bool wide = preference.width == cfg::Width::UInt64;
        for (const auto& [kept, beyond] : std::vector<std::pair<std::string, std::string>>{
                 {wide ? "18446744073709551615" : "2147483647",
                  wide ? "18446744073709551616" : "2147483648"},
                 {wide ? "0" : "-2147483648", wide ? "-1" : "-2147483649"}}) {
            EXPECT_EQ(run({"set", preference.element, kept}).status, 0) << preference.element;
            EXPECT_EQ(run({"get", preference.element}).output, kept + "\n") << preference.element;
            EXPECT_EQ(run({"set", preference.element, beyond}).status, 2) << preference.element;
        }
    }
}

TEST_F(ConfigChangesTest, TextThatXmlCannotCarryIsRefused) {
    const FileState before = writtenFile();
    const std::string control = "A\x01"
                                "B";
    const std::string notUtf8 = "A\xff";
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"set", "LastSkin", control},
             {"set", "Directory/Data", "/data/" + control},
             {"set", "Status/" + control, "true"},
             {"set", "Tools/" + control, "true"},
             {"set", "LastSkin", notUtf8},
             {"add", "CustomBackup", "/b/" + control},
             {"add", "FileFavorites", notUtf8},
             {"add", "VirtualLocation", "1", "2", control},
             {"add", "LocationFavorites", "1", "2", "\xef\xbf\xbf"}}) {
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments[0] << " " << arguments[1];
        EXPECT_TRUE(contains(result.errors, "U+0001") || contains(result.errors, "U+FFFF") ||
                    contains(result.errors, "not UTF-8"))
            << result.errors;
        EXPECT_TRUE(contains(result.errors, "XML") || contains(result.errors, "UTF-8"))
            << result.errors;
    }
    EXPECT_TRUE(FileState::of(currentFile()) == before);
}

TEST_F(ConfigChangesTest, AnEmptyPathIsRefused) {
    const FileState before = writtenFile();
    for (const char* list : {"CustomBackup", "FileFavorites"}) {
        const ToolResult result = run({"add", list, ""});
        EXPECT_EQ(result.status, 2) << list;
        EXPECT_TRUE(contains(result.errors, std::string(list) + ": the path is empty"))
            << result.errors;
    }
    EXPECT_TRUE(FileState::of(currentFile()) == before);
}

TEST_F(ConfigChangesTest, CoordinatesMustBeFinite) {
    const FileState before = writtenFile();
    for (const char* list : {"VirtualLocation", "LocationFavorites"}) {
        for (const char* number : {"nan", "NaN", "inf", "infinity", "1e999", "0x10", "+1"}) {
            ToolResult result = run({"add", list, number, "2", "X"});
            EXPECT_EQ(result.status, 2) << list << " " << number;
            EXPECT_TRUE(contains(result.errors, "is not a finite number")) << result.errors;
            result = run({"add", list, "1", number, "X"});
            EXPECT_EQ(result.status, 2) << list << " " << number;
            result = run({"remove", list, number, "2"});
            EXPECT_EQ(result.status, 2) << list << " " << number;
        }
    }
    EXPECT_TRUE(FileState::of(currentFile()) == before);
}

// ---- the guard -------------------------------------------------------------------------------

TEST_F(ConfigChangesTest, AFileThatCannotBeReadIsNotReplaced) {
    const std::vector<std::string> contents{
        "<?xml version=\"1.0\"?>\n<Nevor>\n\t<LastSkin Value=\"ABC", // truncated
        "<Nevor><LastSkin Value=\"ABCDEF\"></Nevor>",                // not well-formed
        "<Nevor><Notify/></Nevor>",                                  // another kind of file
        ""};
    for (const std::string& content : contents) {
        writeCurrent(content);
        const FileState before = FileState::of(currentFile());
        for (const auto& command : changingCommands()) {
            const ToolResult result = run(command);
            EXPECT_EQ(result.status, 2) << command[0] << " on: " << content;
            EXPECT_TRUE(contains(result.errors, currentFile() + ": ")) << result.errors;
            EXPECT_TRUE(contains(result.errors, "pallix check " + currentFile())) << result.errors;
            EXPECT_EQ(result.output, "");
        }
        EXPECT_TRUE(FileState::of(currentFile()) == before) << content;
    }
}

TEST_F(ConfigChangesTest, ForceReplacesAFileThatCannotBeRead) {
    writeCurrent("<Nevor><LastSkin Value=\"ABC");
    const ToolResult result = run({"set", "LastSkin", "C0FFEE", "--force"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.errors, "warning: " + currentFile())) << result.errors;
    pugi::xml_document document;
    EXPECT_STREQ(written(document).child("LastSkin").attribute("Value").value(), "C0FFEE");
}

TEST_F(ConfigChangesTest, AValueReadOtherwiseThanWrittenIsNotWrittenBackUnlessForced) {
    // The reader keeps 2147483647 of this speed: any change would write that back.
    writeCurrent("<Nevor>\n\t<LastVersion Value=\"5.0.0\" />\n"
                 "\t<DownloadMaxSpeed Value=\"3000000000\" />\n</Nevor>\n");
    const FileState before = FileState::of(currentFile());
    for (const auto& command : changingCommands()) {
        const ToolResult result = run(command);
        EXPECT_EQ(result.status, 2) << command[0];
        EXPECT_TRUE(contains(result.errors, currentFile() + ":3:")) << result.errors;
        EXPECT_TRUE(contains(result.errors, "would write back what the library read"))
            << result.errors;
    }
    EXPECT_TRUE(FileState::of(currentFile()) == before);

    const ToolResult forced = run({"set", "LastSkin", "C0FFEE", "--force"});
    EXPECT_EQ(forced.status, 0) << forced.errors;
    EXPECT_TRUE(contains(forced.errors, "warning: " + currentFile() + ":3:")) << forced.errors;
    pugi::xml_document document;
    EXPECT_STREQ(written(document).child("DownloadMaxSpeed").attribute("Value").value(),
                 "2147483647");
}

TEST_F(ConfigChangesTest, SomethingOtherThanAFileIsNeverReplaced) {
    std::filesystem::create_directories(currentFile());
    for (const char* force : {"", "--force"}) {
        std::vector<std::string> arguments{"set", "LastSkin", "C0FFEE"};
        if (*force != '\0') {
            arguments.emplace_back(force);
        }
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(contains(result.errors, currentFile() + ": is not a regular file"))
            << result.errors;
    }
    EXPECT_TRUE(std::filesystem::is_directory(currentFile()));
    const ToolResult read = run({"get", "LastSkin"});
    EXPECT_EQ(read.status, 2);
    EXPECT_TRUE(contains(read.errors, ": is a directory")) << read.errors;
}

TEST_F(ConfigChangesTest, AMalformedLegacyFileIsNeitherImportedNorRemoved) {
    TemporaryDirectory::write(legacyFile(), "<Config><LastSkin Value=\"2E8B57\"");
    writeCurrent("<Nevor><LastSkin Value=\"ABCDEF\"/></Nevor>");
    // Start-up imports a legacy file for every command, the reading ones too.
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"get", "LastSkin"}, {"show"}, {"set", "LastSkin", "C0FFEE"}}) {
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments[0];
        EXPECT_TRUE(contains(result.errors, "pallix: " + legacyFile() + ":1:32: not well-formed"))
            << result.errors;
        EXPECT_TRUE(contains(result.errors, "would lose this and 1 more, so nothing is imported "
                                            "(run 'pallix check --config-dir " +
                                                config() + "'"))
            << result.errors;
    }
    EXPECT_EQ(TemporaryDirectory::read(legacyFile()), "<Config><LastSkin Value=\"2E8B57\"");
    EXPECT_EQ(TemporaryDirectory::read(currentFile()),
              "<Nevor><LastSkin Value=\"ABCDEF\"/></Nevor>");

    const ToolResult forced = run({"get", "LastSkin", "--force"});
    EXPECT_EQ(forced.status, 0) << forced.errors;
    EXPECT_TRUE(contains(forced.errors, "importing " + legacyFile() +
                                            " all the same, as --force asks (it loses this and "
                                            "1 more)"))
        << forced.errors;
    EXPECT_EQ(forced.output, "236EE7\n");
    EXPECT_FALSE(exists(legacyFile()));
}

TEST_F(ConfigChangesTest, ALegacyImportThatWouldLoseSomethingIsRefused) {
    // Well-formed, but the speed does not survive the import; and the import replaces the
    // current file, whatever it holds.
    std::filesystem::copy_file(
        std::string(PALLIX_TEST_DATA_DIR) + "/check/legacy-speed-beyond-32-bits.xml", legacyFile());
    ToolResult result = run({"show"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "pallix: " + legacyFile() + ":")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "2147483647")) << result.errors;
    EXPECT_TRUE(exists(legacyFile()));
    EXPECT_FALSE(exists(currentFile()));

    std::filesystem::remove(legacyFile());
    std::filesystem::copy_file(std::string(PALLIX_TEST_DATA_DIR) + "/config/Config.xml",
                               legacyFile());
    writeCurrent("<Nevor><LastSkin Value=\"ABCDEF\"/></Nevor>");
    result = run({"get", "LastSkin"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "pallix: " + currentFile() +
                                            ": what it holds is replaced by the import; the "
                                            "import of " +
                                            legacyFile() + " would lose this, so nothing"))
        << result.errors;
    EXPECT_EQ(TemporaryDirectory::read(currentFile()),
              "<Nevor><LastSkin Value=\"ABCDEF\"/></Nevor>");
    result = run({"get", "LastSkin", "--force"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "2E8B57\n");
}

TEST_F(ConfigChangesTest, ALegacyFileIsNotImportedWhereTheImportCannotBeWritten) {
    std::filesystem::copy_file(std::string(PALLIX_TEST_DATA_DIR) + "/config/Config.xml",
                               legacyFile());
    std::filesystem::create_directories(currentFile());
    for (const char* force : {"", "--force"}) {
        std::vector<std::string> arguments{"get", "LastSkin"};
        if (*force != '\0') {
            arguments.emplace_back(force);
        }
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_TRUE(contains(result.errors, currentFile() + ": is not a regular file"))
            << result.errors;
    }
    EXPECT_TRUE(std::filesystem::is_regular_file(legacyFile()));
}

TEST_F(ConfigChangesTest, AWellFormedLegacyFileIsImportedBeforeAChange) {
    std::filesystem::copy_file(std::string(PALLIX_TEST_DATA_DIR) + "/config/Config.xml",
                               legacyFile());
    const ToolResult result = run({"add", "CustomBackup", "/new"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_FALSE(exists(legacyFile()));
    EXPECT_EQ(run({"get", "LastSkin"}).output, "2E8B57\n");
    EXPECT_TRUE(contains(run({"list", "CustomBackup"}).output, "/new\n"));
}

// ---- parallel changes ------------------------------------------------------------------------

TEST_F(ConfigChangesTest, ParallelAddsKeepEveryEntry) {
    constexpr int kCount = 10;
    std::vector<ToolResult> results(kCount);
    std::vector<std::thread> threads;
    for (int i = 0; i < kCount; ++i) {
        threads.emplace_back([this, i, &results] {
            results[i] = run({"add", "CustomBackup", "/backups/" + std::to_string(i)});
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    for (int i = 0; i < kCount; ++i) {
        EXPECT_EQ(results[i].status, 0) << i << ": " << results[i].errors;
    }
    const ToolResult list = run({"list", "CustomBackup"});
    ASSERT_EQ(list.status, 0) << list.errors;
    for (int i = 0; i < kCount; ++i) {
        EXPECT_TRUE(contains(list.output, "/backups/" + std::to_string(i) + "\n"))
            << i << " missing from:\n"
            << list.output;
    }
    EXPECT_EQ(std::count(list.output.begin(), list.output.end(), '\n'), kCount);
}

// ---- changes that change nothing -------------------------------------------------------------

TEST_F(ConfigChangesTest, ACommandThatChangesNothingWritesNothing) {
    ASSERT_EQ(run({"add", "CustomBackup", "/b"}).status, 0);
    ASSERT_EQ(run({"add", "FileFavorites", "/f", "--root"}).status, 0);
    ASSERT_EQ(run({"add", "VirtualLocation", "1", "2", "A"}).status, 0);
    ASSERT_EQ(run({"set", "Tools/Cleaner", "false"}).status, 0);
    ASSERT_EQ(run({"set", "DownloadMaxSpeed", "1000"}).status, 0);
    const FileState before = FileState::of(currentFile());
    const std::vector<std::pair<std::vector<std::string>, int>> commands{
        {{"set", "DownloadMaxSpeed", "1000"}, 0},
        {{"set", "LastSkin", "236EE7"}, 0},
        {{"set", "Tools/Cleaner", "off"}, 0},
        {{"set", "Status/ITunesAutorun", "true"}, 0},
        {{"set", "AutoImport/Ringtone", "true"}, 0},
        {{"set", "Directory/Data", home() + "/TolVaneData"}, 0},
        {{"add", "CustomBackup", "/b/"}, 0},
        {{"add", "FileFavorites", "/f", "--root"}, 0},
        {{"add", "FileFavorites", "/f"}, 1},
        {{"add", "VirtualLocation", "1", "2", "A"}, 0},
        {{"clear", "LocationFavorites"}, 0},
        {{"remove", "CustomBackup", "/c"}, 1},
        {{"remove", "FileFavorites", "/f"}, 1},
        {{"remove", "VirtualLocation", "1", "2.5"}, 1},
        {{"remove", "LocationFavorites", "1", "2"}, 1}};
    for (const auto& [arguments, status] : commands) {
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.status, status)
            << arguments[0] << " " << arguments[1] << ": " << result.errors;
        EXPECT_TRUE(contains(result.output + result.errors, "nothing changed"))
            << arguments[0] << " " << arguments[1] << ": " << result.output << result.errors;
    }
    EXPECT_TRUE(FileState::of(currentFile()) == before);
}

TEST_F(ConfigChangesTest, AppendsSayWhatTheyDid) {
    ToolResult result = run({"add", "VirtualLocation", "1.5", "2.5", "A"});
    EXPECT_EQ(result.output, "VirtualLocation: added 1.5 2.5 'A'\n");
    ASSERT_EQ(run({"add", "VirtualLocation", "3", "4", "B"}).status, 0);
    result = run({"add", "VirtualLocation", "1.5", "2.5", "C"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output,
              "VirtualLocation: renamed 1.5 2.5 from 'A' to 'C' and moved it to the end\n");
    result = run({"add", "VirtualLocation", "1.5", "2.5", "D"});
    EXPECT_EQ(result.output, "VirtualLocation: renamed 1.5 2.5 from 'C' to 'D'\n");
    result = run({"add", "VirtualLocation", "3", "4", "B"});
    EXPECT_EQ(result.output, "VirtualLocation: moved 3 4 'B' to the end, the most recent\n");
    EXPECT_EQ(run({"list", "VirtualLocation"}).output, "1.5\t2.5\tD\n3\t4\tB\n");
    result = run({"add", "FileFavorites", "/f"});
    EXPECT_EQ(result.output, "FileFavorites: added /f\n");
    result = run({"add", "FileFavorites", "/f", "--root"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "/f is already there without the root flag"))
        << result.errors;
    result = run({"remove", "VirtualLocation", "3", "4"});
    EXPECT_EQ(result.output, "VirtualLocation: removed 3 4 'B'\n");
    result = run({"clear", "VirtualLocation"});
    EXPECT_EQ(result.output, "VirtualLocation: removed 1 entry\n");
    result = run({"set", "LastSkin", "C0FFEE"});
    EXPECT_EQ(result.output, "LastSkin: C0FFEE (was 236EE7)\n");
}

// ---- a write that does not reach the disk ----------------------------------------------------

TEST_F(ConfigChangesTest, AChangeThatRecordsAnUpdateSaysSo) {
    writeCurrent("<Nevor><LastVersion Value=\"5.1.0\"/></Nevor>");
    ToolResult result = run({"set", "LastSkin", "C0FFEE"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.errors, "pallix: note: " + currentFile() +
                                            ": version 5.2.1 starts here for the first time, so "
                                            "the file now also records it as LastVersion and sets "
                                            "Status/KeepFirmwareCache to true"))
        << result.errors;
    pugi::xml_document document;
    EXPECT_STREQ(written(document).child("LastVersion").attribute("Value").value(), "5.2.1");

    // Once recorded, a change is only itself; a new file says nothing of an update either.
    result = run({"set", "LastSkin", "ABCDEF"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
    std::filesystem::remove(currentFile());
    result = run({"set", "LastSkin", "C0FFEE"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.errors, "");
}

TEST_F(ConfigChangesTest, AWriteThatFailsIsRejected) {
    // The configuration file is a link into a directory that does not exist: the library reads
    // it as absent and cannot write through it.
    ASSERT_EQ(::symlink((config() + "/missing/configure.xml").c_str(), currentFile().c_str()), 0);
    for (const auto& command : std::vector<std::vector<std::string>>{
             {"set", "LastSkin", "C0FFEE"}, {"add", "CustomBackup", "/b"}}) {
        const ToolResult result = run(command);
        EXPECT_EQ(result.status, 1) << command[0];
        EXPECT_TRUE(contains(result.errors, currentFile() + ": the change could not be written"))
            << result.errors;
        EXPECT_EQ(result.output, "");
    }
    EXPECT_FALSE(exists(config() + "/missing"));
}

TEST_F(ConfigChangesTest, AnEmptyDirectoryPathIsRefused) {
    // Start-up puts the default back in place of an empty path: every run would change it again.
    const FileState before = writtenFile();
    for (const char* key : {"Directory/Data", "Directory/Backup", "Directory/Mine"}) {
        const ToolResult result = run({"set", key, ""});
        EXPECT_EQ(result.status, 2) << key;
        EXPECT_EQ(result.errors, std::string("pallix: ") + key + ": the path is empty\n");
    }
    EXPECT_TRUE(FileState::of(currentFile()) == before);
}

TEST_F(ConfigChangesTest, AnEmptyConfigurationDirectoryIsRefused) {
    // An unset variable in a script must not reach the application's own configuration.
    for (const char* option : {"--config-dir", "--resources-dir"}) {
        const ToolResult result =
            pallix::test::runTool({"config", "set", option, "", "LastSkin", "C0FFEE"});
        EXPECT_EQ(result.status, 2) << option;
        EXPECT_NE(result.errors.find(std::string(option) + ": the path is empty"),
                  std::string::npos)
            << result.errors;
    }
    for (const char* group : {"notify", "portbind", "factory", "ipsw"}) {
        const ToolResult result = pallix::test::runTool({group, "list", "--config-dir", ""});
        EXPECT_EQ(result.status, 2) << group;
    }
}
