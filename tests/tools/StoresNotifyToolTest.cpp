// "pallix notify" and "pallix portbind" on configuration directories made up by the tests.

#include "NonRegularFiles.h"
#include "ReadOnlyDirectory.h"
#include "StoreFileState.h"
#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

using pallix::test::ageFile;
using pallix::test::runTool;
using pallix::test::stateOf;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

bool exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

class StoreToolTest : public ::testing::Test {
protected:
    ToolResult notify(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"notify", "--config-dir", directory.path()});
        return runTool(arguments);
    }
    ToolResult portbind(std::vector<std::string> arguments) const {
        arguments.insert(arguments.begin(), {"portbind", "--config-dir", directory.path()});
        return runTool(arguments);
    }
    std::string notifyFile() const { return directory.file("notify.xml"); }
    // The old layout: one file per notification in this directory.
    std::string oldDirectory() const { return directory.file("Notify"); }
    void writeOld(const std::string& name, const std::string& text) const {
        std::filesystem::create_directories(oldDirectory());
        TemporaryDirectory::write(oldDirectory() + "/" + name, text);
    }
    std::string bindFile() const { return directory.file("PortBind.xml"); }

    TemporaryDirectory directory{"pallix-tool-stores"};
};

} // namespace

// Notifications.

TEST_F(StoreToolTest, NotifyListOfAnEmptyDirectoryPrintsNothing) {
    const ToolResult result = notify({"list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
    EXPECT_FALSE(exists(notifyFile()));
    EXPECT_EQ(notify({"list", "--json"}).output, "[]\n");
}

TEST_F(StoreToolTest, NotifyAddWritesEveryFieldAndListShowsThem) {
    const ToolResult added = notify({"add", "1001", "--title", "Firmware 17.4 & more", "--url",
                                     "https://example.invalid/n?a=1", "--user", "73", "--time",
                                     "-1709251200", "--popup", "--read"});
    EXPECT_EQ(added.status, 0) << added.errors;
    EXPECT_EQ(added.output, "added notification 1001\n");
    const std::string file = TemporaryDirectory::read(notifyFile());
    EXPECT_TRUE(contains(file, "<Title VALUE=\"Firmware 17.4 &amp; more\" />")) << file;

    const ToolResult listed = notify({"list"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_EQ(listed.output, "1001\t73\t-1709251200\tpopup,read,shown\tFirmware 17.4 & more\t"
                             "https://example.invalid/n?a=1\n");
}

// CLI11 reads a leading 0 as octal; the numbers of a notification are decimal.
TEST_F(StoreToolTest, NotifyNumbersWithLeadingZerosAreDecimal) {
    const ToolResult added = notify({"add", "010", "--user", "073", "--time", "-010"});
    EXPECT_EQ(added.status, 0) << added.errors;
    EXPECT_EQ(added.output, "added notification 10\n");
    EXPECT_EQ(notify({"list"}).output, "10\t73\t-10\t-\t\t\n");
}

TEST_F(StoreToolTest, NotifyListGoesByIdAndShowsTheDash) {
    ASSERT_EQ(notify({"add", "20", "--title", "twenty"}).status, 0);
    ASSERT_EQ(notify({"add", "3", "--title", "three"}).status, 0);
    const ToolResult listed = notify({"list"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_EQ(listed.output, "3\t0\t0\t-\tthree\t\n20\t0\t0\t-\ttwenty\t\n");
}

TEST_F(StoreToolTest, NotifyListAsJsonGivesEveryField) {
    ASSERT_EQ(notify({"add", "18446744073709551615", "--title", "last", "--url", "u", "--user",
                      "18446744073709551615", "--time", "-9223372036854775808", "--read"})
                  .status,
              0);
    const ToolResult listed = notify({"list", "--json"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    const nlohmann::json expected = nlohmann::json::parse(R"([{
        "id": 18446744073709551615, "userId": 18446744073709551615,
        "timestamp": -9223372036854775808, "title": "last", "url": "u", "popup": false,
        "read": true, "shown": true, "removed": false}])");
    EXPECT_EQ(nlohmann::json::parse(listed.output), expected) << listed.output;
}

TEST_F(StoreToolTest, NotifyTitleWithATabAndALineFeedIsKeptAndListedEscaped) {
    ASSERT_EQ(
        notify({"add", "4", "--title", "two\tcolumns\nand a line", "--url", "back\\slash"}).status,
        0);
    EXPECT_EQ(notify({"list"}).output, "4\t0\t0\t-\ttwo\\tcolumns\\nand a line\tback\\\\slash\n");
    const nlohmann::json listed = nlohmann::json::parse(notify({"list", "--json"}).output);
    EXPECT_EQ(listed.at(0).at("title"), "two\tcolumns\nand a line");
}

TEST_F(StoreToolTest, NotifyAddOfAnExistingIdReplacesIt) {
    ASSERT_EQ(notify({"add", "7", "--title", "old"}).status, 0);
    const ToolResult replaced = notify({"add", "7", "--title", "new"});
    EXPECT_EQ(replaced.status, 0) << replaced.errors;
    EXPECT_EQ(replaced.output, "replaced notification 7\n");
    EXPECT_EQ(notify({"list"}).output, "7\t0\t0\t-\tnew\t\n");
}

TEST_F(StoreToolTest, NotifyAddOfTheSameNotificationWritesNothing) {
    ASSERT_EQ(notify({"add", "7", "--title", "same", "--read", "--shown"}).status, 0);
    const auto before = ageFile(notifyFile());
    const ToolResult again = notify({"add", "7", "--title", "same", "--read"});
    EXPECT_EQ(again.status, 0) << again.errors;
    EXPECT_EQ(again.output, "");
    EXPECT_EQ(again.errors,
              "pallix: note: notification 7 is already there with these values; unchanged\n");
    EXPECT_EQ(stateOf(notifyFile()), before);
}

TEST_F(StoreToolTest, NotifyAddRefusesShownWithoutRead) {
    const ToolResult result = notify({"add", "3", "--shown"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "--shown cannot be kept without --read")) << result.errors;
    EXPECT_FALSE(exists(notifyFile()));
}

TEST_F(StoreToolTest, NotifyRemoveMarksTheNotificationAndKeepsIt) {
    ASSERT_EQ(notify({"add", "9", "--title", "nine"}).status, 0);
    const ToolResult removed = notify({"remove", "9"});
    EXPECT_EQ(removed.status, 0) << removed.errors;
    EXPECT_EQ(removed.output, "marked notification 9 removed\n");
    EXPECT_EQ(notify({"list"}).output, "9\t0\t0\tremoved\tnine\t\n");
    EXPECT_TRUE(contains(TemporaryDirectory::read(notifyFile()), "<Remove VALUE=\"true\" />"));

    const auto before = ageFile(notifyFile());
    const ToolResult again = notify({"remove", "9"});
    EXPECT_EQ(again.status, 0) << again.errors;
    EXPECT_EQ(again.errors, "pallix: note: notification 9 is already marked removed; unchanged\n");
    EXPECT_EQ(stateOf(notifyFile()), before);
}

TEST_F(StoreToolTest, NotifyRemoveOfAnUnknownIdFailsAndWritesNothing) {
    ASSERT_EQ(notify({"add", "1", "--title", "one"}).status, 0);
    const auto before = ageFile(notifyFile());
    const ToolResult removed = notify({"remove", "2"});
    EXPECT_EQ(removed.status, 1);
    EXPECT_EQ(removed.errors, "pallix: no notification 2\n");
    EXPECT_EQ(stateOf(notifyFile()), before);
}

TEST_F(StoreToolTest, NotifyRefusesNumbersTheFileCannotHold) {
    const std::vector<std::vector<std::string>> refused = {
        {"add", "--", "-1"},
        {"add", "18446744073709551616"},
        {"add", "twelve"},
        {"add", "+1"},
        {"add", "1.0"},
        {"add", "1", "--user", "-1"},
        {"add", "1", "--user", "18446744073709551616"},
        {"add", "1", "--time", "9223372036854775808"},
        {"add", "1", "--time", "-9223372036854775809"},
        {"add", "1", "--time", "1e3"},
        {"remove", "--", "-1"},
    };
    for (const auto& arguments : refused) {
        const ToolResult result = notify(arguments);
        EXPECT_EQ(result.status, 2) << arguments.back();
        EXPECT_TRUE(contains(result.errors, "is not a whole number")) << result.errors;
    }
    EXPECT_FALSE(exists(notifyFile()));
}

TEST_F(StoreToolTest, NotifyRefusesTextsThatXmlCannotCarry) {
    for (const std::string& text :
         {std::string("bell\a"), std::string("\xff\xfe"), std::string("\xef\xbf\xbf")}) {
        for (const char* option : {"--title", "--url"}) {
            const ToolResult result = notify({"add", "1", option, text});
            EXPECT_EQ(result.status, 2) << option;
            EXPECT_TRUE(contains(result.errors, option)) << result.errors;
        }
    }
    EXPECT_FALSE(exists(notifyFile()));
}

TEST_F(StoreToolTest, NotifyListOfAMalformedFileFailsWith2AndNamesIt) {
    TemporaryDirectory::write(notifyFile(),
                              "<?xml version=\"1.0\"?>\n<Nevor>\n  <Notify>\n</Nevor>\n");
    const ToolResult result = notify({"list"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.output, "");
    EXPECT_TRUE(contains(result.errors, notifyFile() + ":")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "not well-formed XML")) << result.errors;
    // Said once, in the parser's words.
    EXPECT_TRUE(contains(result.errors, "the library reads nothing from this file (run"))
        << result.errors;
    EXPECT_FALSE(contains(result.errors, "reads it as empty")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "pallix check " + notifyFile())) << result.errors;
}

TEST_F(StoreToolTest, NotifyListOfAFileOfAnotherKindFailsWith2) {
    TemporaryDirectory::write(notifyFile(), "<Rilo><BIND/></Rilo>");
    const ToolResult result = notify({"list"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors,
                         notifyFile() + ": is a port binding store, not a notification store"))
        << result.errors;
}

TEST_F(StoreToolTest, NotifyAddRefusesToReplaceATruncatedFileUnlessForced) {
    const std::string truncated = "<Nevor><Notify><Item><ID VALUE=\"1\"/></Item>";
    TemporaryDirectory::write(notifyFile(), truncated);
    const ToolResult refused = notify({"add", "2", "--title", "two"});
    EXPECT_EQ(refused.status, 2);
    EXPECT_TRUE(contains(refused.errors, notifyFile())) << refused.errors;
    EXPECT_TRUE(contains(refused.errors, "pallix check")) << refused.errors;
    EXPECT_EQ(TemporaryDirectory::read(notifyFile()), truncated);

    const ToolResult forced = notify({"add", "2", "--title", "two", "--force"});
    EXPECT_EQ(forced.status, 0) << forced.errors;
    EXPECT_TRUE(contains(forced.errors, "warning")) << forced.errors;
    EXPECT_EQ(notify({"list"}).output, "2\t0\t0\t-\ttwo\t\n");
}

TEST_F(StoreToolTest, NotifyNeverReplacesSomethingThatIsNotAFile) {
    ASSERT_TRUE(pallix::test::makeFifo(notifyFile()));
    const pallix::test::BlockingAlarm alarm;
    EXPECT_EQ(notify({"list"}).status, 2);
    const ToolResult forced = notify({"add", "2", "--force"});
    EXPECT_EQ(forced.status, 2);
    EXPECT_TRUE(contains(forced.errors, notifyFile() + ": is not a regular file")) << forced.errors;
    EXPECT_TRUE(pallix::test::isFifo(notifyFile()));
}

TEST_F(StoreToolTest, NotifyListImportsTheOldDirectoryAndKeepsItsNotifications) {
    const std::string old = oldDirectory();
    writeOld("41.xml", "<ROOT><ID VALUE=\"41\"/><Title VALUE=\"old one\"/>"
                       "<Time VALUE=\"5\"/><UserID VALUE=\"2\"/></ROOT>");
    const ToolResult listed = notify({"list"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_EQ(listed.output, "41\t2\t5\t-\told one\t\n");
    EXPECT_EQ(listed.errors,
              "pallix: note: imported 1 notification from " + old + " into " + notifyFile() + "\n");
    EXPECT_FALSE(exists(old));
    // Written at once, so the next run finds it in the current file.
    const ToolResult again = notify({"list"});
    EXPECT_EQ(again.output, "41\t2\t5\t-\told one\t\n");
    EXPECT_EQ(again.errors, "");
}

TEST_F(StoreToolTest, NotifyDoesNotImportWhatTheImportWouldLoseUnlessForced) {
    // The library deletes the old directory whole and replaces the current file with what it
    // imported: each of these would be lost.
    const std::string old = oldDirectory();
    const std::string good = "<ROOT><ID VALUE=\"41\"/><Title VALUE=\"old one\"/></ROOT>";
    struct Case {
        std::string name;
        std::string text;
        std::string blamed;
    };
    const std::vector<Case> cases{
        {"broken.xml", "<ROOT>", old + "/broken.xml:1:6: not well-formed XML"},
        {"readme.txt", "not a notification",
         old + "/readme.txt: is no notification the import reads, and goes with the directory"},
        {"9.xml", "<ROOT><ID VALUE=\"9\"/><UserID VALUE=\"-5\"/></ROOT>", old + "/9.xml:1:"},
        {"", "", notifyFile() + ": what it holds is replaced by the import"}};
    for (const Case& lossy : cases) {
        std::filesystem::remove_all(old);
        std::filesystem::remove(notifyFile());
        if (lossy.name.empty()) {
            ASSERT_EQ(notify({"add", "7", "--title", "current"}).status, 0);
        }
        writeOld("41.xml", good);
        if (!lossy.name.empty()) {
            writeOld(lossy.name, lossy.text);
        }
        const std::string before =
            exists(notifyFile()) ? TemporaryDirectory::read(notifyFile()) : "";
        for (const std::vector<std::string>& command :
             {std::vector<std::string>{"list"}, std::vector<std::string>{"add", "8"},
              std::vector<std::string>{"remove", "41"}}) {
            const ToolResult result = notify(command);
            EXPECT_EQ(result.status, 2) << lossy.name << " " << command.front();
            EXPECT_EQ(result.output, "");
            EXPECT_TRUE(contains(result.errors, "pallix: " + lossy.blamed)) << result.errors;
            EXPECT_TRUE(contains(result.errors, "nothing is imported (run 'pallix check "
                                                "--config-dir " +
                                                    directory.path() + "'"))
                << result.errors;
            EXPECT_TRUE(exists(old + "/41.xml")) << lossy.name;
            EXPECT_EQ(exists(notifyFile()) ? TemporaryDirectory::read(notifyFile()) : "", before);
        }
        const ToolResult forced = notify({"list", "--force"});
        EXPECT_EQ(forced.status, 0) << forced.errors;
        EXPECT_TRUE(contains(forced.errors, "pallix: warning: " + lossy.blamed)) << forced.errors;
        EXPECT_TRUE(contains(forced.output, "old one")) << forced.output;
        EXPECT_FALSE(exists(old));
    }
}

TEST_F(StoreToolTest, NotifyImportsWhenTheDirectoryIsGivenWithATrailingSlash) {
    const std::string old = oldDirectory();
    writeOld("41.xml", "<ROOT><ID VALUE=\"41\"/><Title VALUE=\"old\"/></ROOT>");
    const ToolResult listed = runTool({"notify", "list", "--config-dir", directory.path() + "/"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_EQ(listed.output, "41\t0\t0\t-\told\t\n");
    EXPECT_FALSE(exists(old));
}

TEST_F(StoreToolTest, NotifyDoesNotImportTheOldDirectoryIntoWhatCannotBeReplaced) {
    // The library deletes the old directory whether or not the import could be written.
    const std::string old = oldDirectory();
    writeOld("42.xml", "<ROOT><ID VALUE=\"42\"/><Title VALUE=\"kept\"/></ROOT>");
    ASSERT_EQ(::mkdir(notifyFile().c_str(), 0755), 0);
    for (const std::vector<std::string>& command :
         {std::vector<std::string>{"list"}, std::vector<std::string>{"add", "7"}}) {
        const ToolResult result = notify(command);
        EXPECT_EQ(result.status, 2) << command.front();
        EXPECT_EQ(result.errors, "pallix: " + notifyFile() +
                                     ": is not a regular file, so the import of " + old +
                                     " could not be written and it would be lost\n");
        EXPECT_EQ(TemporaryDirectory::read(old + "/42.xml"),
                  "<ROOT><ID VALUE=\"42\"/><Title VALUE=\"kept\"/></ROOT>");
    }
}

TEST_F(StoreToolTest, NotifyReadsTheCurrentFileWhenTheOldDirectoryHeldNothing) {
    ASSERT_EQ(notify({"add", "1", "--title", "current"}).status, 0);
    const std::string old = oldDirectory();
    ASSERT_EQ(::mkdir(old.c_str(), 0755), 0);
    const ToolResult added = notify({"add", "2", "--title", "new"});
    EXPECT_EQ(added.status, 0) << added.errors;
    EXPECT_TRUE(contains(added.errors, "imported no notifications from " + old)) << added.errors;
    EXPECT_EQ(notify({"list"}).output, "1\t0\t0\t-\tcurrent\t\n2\t0\t0\t-\tnew\t\n");
}

TEST_F(StoreToolTest, NotifyWithAMissingConfigurationDirectoryIsAUsageError) {
    const std::string missing = directory.file("missing");
    const ToolResult result = runTool({"notify", "--config-dir", missing, "list"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, missing + ": no such configuration directory"))
        << result.errors;
    EXPECT_FALSE(exists(missing));
}

// Port bindings.

TEST_F(StoreToolTest, PortbindListOfAnEmptyDirectoryPrintsNothing) {
    const ToolResult result = portbind({"list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_FALSE(exists(bindFile()));
    EXPECT_EQ(portbind({"list", "--json"}).output, "[]\n");
}

TEST_F(StoreToolTest, PortbindAddListAndRemove) {
    const ToolResult first = portbind({"add", "usb-2", "tcp:62078"});
    EXPECT_EQ(first.status, 0) << first.errors;
    EXPECT_EQ(first.output, "bound usb-2 to tcp:62078\n");
    ASSERT_EQ(portbind({"add", "usb-1", "tcp:5555"}).status, 0);
    EXPECT_EQ(portbind({"list"}).output, "usb-1\ttcp:5555\nusb-2\ttcp:62078\n");
    EXPECT_TRUE(contains(TemporaryDirectory::read(bindFile()),
                         "<Item SOURCE=\"usb-1\" TARGET=\"tcp:5555\" />"));

    const ToolResult removed = portbind({"remove", "usb-2"});
    EXPECT_EQ(removed.status, 0) << removed.errors;
    EXPECT_EQ(removed.output, "unbound usb-2\n");
    EXPECT_EQ(portbind({"list"}).output, "usb-1\ttcp:5555\n");
}

TEST_F(StoreToolTest, PortbindListAndFindAsJson) {
    ASSERT_EQ(portbind({"add", "usb\t1", "tcp:1\n"}).status, 0);
    EXPECT_EQ(portbind({"list"}).output, "usb\\t1\ttcp:1\\n\n");
    EXPECT_EQ(nlohmann::json::parse(portbind({"list", "--json"}).output),
              nlohmann::json::parse(R"([{"source": "usb\t1", "target": "tcp:1\n"}])"));
    const ToolResult found = portbind({"find", "usb\t1", "--json"});
    EXPECT_EQ(found.status, 0) << found.errors;
    EXPECT_EQ(nlohmann::json::parse(found.output),
              nlohmann::json::parse(R"({"source": "usb\t1", "target": "tcp:1\n"})"));
    EXPECT_EQ(portbind({"find", "usb\t1"}).output, "tcp:1\\n\n");
}

TEST_F(StoreToolTest, PortbindFindOfAnUnboundSourceIsNotFound) {
    const ToolResult result = portbind({"find", "usb-9", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "pallix: usb-9 is not bound\n");
}

TEST_F(StoreToolTest, PortbindAddOfABoundSourceReplacesItsTarget) {
    ASSERT_EQ(portbind({"add", "A", "X"}).status, 0);
    const ToolResult result = portbind({"add", "A", "Y"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "rebound A to Y (was X)\n");
    EXPECT_EQ(portbind({"list"}).output, "A\tY\n");
}

TEST_F(StoreToolTest, PortbindAddOfTheSameBindingWritesNothing) {
    ASSERT_EQ(portbind({"add", "A", "X"}).status, 0);
    const auto before = ageFile(bindFile());
    const ToolResult result = portbind({"add", "A", "X"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "pallix: note: A is already bound to X; unchanged\n");
    EXPECT_EQ(stateOf(bindFile()), before);
}

TEST_F(StoreToolTest, PortbindRefusesEmptyTextsAndTextsXmlCannotCarry) {
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{"add", "A", ""}, {"add", "", "X"}}) {
        const ToolResult result = portbind(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.errors, "pallix: a binding needs a non-empty source and target\n");
    }
    for (const auto& arguments : std::vector<std::vector<std::string>>{
             {"add", "A\x1b", "X"}, {"add", "A", "\xc0\xaf"}, {"add", "A", "X\xef\xbf\xbe"}}) {
        const ToolResult result = portbind(arguments);
        EXPECT_EQ(result.status, 2) << result.errors;
        EXPECT_TRUE(contains(result.errors, "XML 1.0") || contains(result.errors, "UTF-8"))
            << result.errors;
    }
    EXPECT_FALSE(exists(bindFile()));
}

TEST_F(StoreToolTest, PortbindRemoveOfAnUnboundSourceFailsAndWritesNothing) {
    ASSERT_EQ(portbind({"add", "A", "X"}).status, 0);
    const auto before = ageFile(bindFile());
    const ToolResult result = portbind({"remove", "B"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "pallix: B is not bound\n");
    EXPECT_EQ(stateOf(bindFile()), before);
}

TEST_F(StoreToolTest, PortbindLeavesMalformedAndForeignFiles) {
    const std::string malformed = "<Rilo><BIND><Item SOURCE=\"a\"></BIND></Rilo>";
    TemporaryDirectory::write(bindFile(), malformed);
    const ToolResult added = portbind({"add", "b", "c"});
    EXPECT_EQ(added.status, 2);
    EXPECT_TRUE(contains(added.errors, bindFile() + ": not well-formed XML")) << added.errors;
    EXPECT_TRUE(contains(added.errors, "pallix check " + bindFile())) << added.errors;
    EXPECT_EQ(TemporaryDirectory::read(bindFile()), malformed);

    TemporaryDirectory::write(bindFile(), "<Nevor><Notify/></Nevor>");
    const ToolResult foreign = portbind({"list"});
    EXPECT_EQ(foreign.status, 2);
    EXPECT_TRUE(contains(foreign.errors,
                         bindFile() + ": is a notification store, not a port binding store"))
        << foreign.errors;
    EXPECT_EQ(portbind({"remove", "a"}).status, 2);
    EXPECT_EQ(TemporaryDirectory::read(bindFile()), "<Nevor><Notify/></Nevor>");
}
