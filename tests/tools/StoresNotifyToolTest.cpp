// "pallix notify" and "pallix portbind" on configuration directories made up by the tests.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <string>
#include <vector>

using pallix::test::runProgram;
using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

bool exists(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0;
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
}

TEST_F(StoreToolTest, NotifyAddWritesEveryFieldAndListShowsThem) {
    const ToolResult added = notify({"add", "1001", "--title", "Firmware 17.4 & more", "--url",
                                     "https://example.invalid/n?a=1", "--user", "73", "--time",
                                     "-1709251200", "--popup", "--read"});
    EXPECT_EQ(added.status, 0) << added.errors;
    EXPECT_EQ(added.output, "added notification 1001\n");
    ASSERT_TRUE(exists(notifyFile()));
    const std::string file = TemporaryDirectory::read(notifyFile());
    EXPECT_NE(file.find("<Title VALUE=\"Firmware 17.4 &amp; more\" />"), std::string::npos);

    const ToolResult listed = notify({"list"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    // "shown" comes from the read flag once the notification has been through the file.
    EXPECT_EQ(listed.output, "1001\t73\t-1709251200\tpopup,read,shown\tFirmware 17.4 & more\t"
                             "https://example.invalid/n?a=1\n");
}

TEST_F(StoreToolTest, NotifyListGoesByIdAndShowsTheDash) {
    ASSERT_EQ(notify({"add", "20", "--title", "twenty"}).status, 0);
    ASSERT_EQ(notify({"add", "3", "--title", "three", "--shown"}).status, 0);
    const ToolResult listed = notify({"list"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_EQ(listed.output, "3\t0\t0\t-\tthree\t\n20\t0\t0\t-\ttwenty\t\n");
}

TEST_F(StoreToolTest, NotifyAddOfAnExistingIdReplacesIt) {
    ASSERT_EQ(notify({"add", "7", "--title", "old"}).status, 0);
    const ToolResult replaced = notify({"add", "7", "--title", "new"});
    EXPECT_EQ(replaced.status, 0) << replaced.errors;
    EXPECT_EQ(replaced.output, "replaced notification 7\n");
    EXPECT_EQ(notify({"list"}).output, "7\t0\t0\t-\tnew\t\n");
}

TEST_F(StoreToolTest, NotifyRemoveMarksTheNotificationAndKeepsIt) {
    ASSERT_EQ(notify({"add", "9", "--title", "nine"}).status, 0);
    const ToolResult removed = notify({"remove", "9"});
    EXPECT_EQ(removed.status, 0) << removed.errors;
    EXPECT_EQ(removed.output, "marked notification 9 removed\n");
    EXPECT_EQ(notify({"list"}).output, "9\t0\t0\tremoved\tnine\t\n");
    EXPECT_NE(TemporaryDirectory::read(notifyFile()).find("<Remove VALUE=\"true\" />"),
              std::string::npos);
}

TEST_F(StoreToolTest, NotifyRemoveOfAnUnknownIdFailsAndWritesNothing) {
    ASSERT_EQ(notify({"add", "1", "--title", "one"}).status, 0);
    const std::string before = TemporaryDirectory::read(notifyFile());
    const ToolResult removed = notify({"remove", "2"});
    EXPECT_EQ(removed.status, 1);
    EXPECT_EQ(removed.errors, "pallix: no notification 2\n");
    EXPECT_EQ(TemporaryDirectory::read(notifyFile()), before);
}

TEST_F(StoreToolTest, NotifyRejectsAnIdThatIsNotANumber) {
    const ToolResult result = notify({"add", "twelve"});
    EXPECT_NE(result.status, 0);
    EXPECT_FALSE(exists(notifyFile()));
}

TEST_F(StoreToolTest, NotifyListReportsAMalformedFileWithItsLineAndColumn) {
    TemporaryDirectory::write(notifyFile(),
                              "<?xml version=\"1.0\"?>\n<Nevor>\n  <Notify>\n</Nevor>\n");
    const ToolResult result = notify({"list"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "");
    EXPECT_NE(result.errors.find(notifyFile() + ":4:"), std::string::npos) << result.errors;
    EXPECT_NE(result.errors.find("not well-formed XML"), std::string::npos) << result.errors;
}

TEST_F(StoreToolTest, NotifyAddRefusesToOverwriteAFileItCannotRead) {
    const std::string broken = "<Nevor><Notify><Item><ID VALUE=\"1\"/></Item>";
    TemporaryDirectory::write(notifyFile(), broken);
    const ToolResult result = notify({"add", "2", "--title", "two"});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.errors.find("not changing " + notifyFile()), std::string::npos)
        << result.errors;
    EXPECT_EQ(TemporaryDirectory::read(notifyFile()), broken);
}

TEST_F(StoreToolTest, NotifyListReportsAFileOfAnotherKind) {
    TemporaryDirectory::write(notifyFile(), "<Rilo><BIND/></Rilo>");
    const ToolResult result = notify({"list"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "pallix: " + notifyFile() + ": no <Nevor><Notify> element\n");
}

TEST_F(StoreToolTest, NotifyListImportsTheOldDirectoryAndKeepsItsNotifications) {
    const std::string old = directory.file("Notify");
    ASSERT_EQ(::mkdir(old.c_str(), 0755), 0);
    TemporaryDirectory::write(old + "/41.xml", "<ROOT><ID VALUE=\"41\"/><Title VALUE=\"old one\"/>"
                                               "<Time VALUE=\"5\"/><UserID VALUE=\"2\"/></ROOT>");
    TemporaryDirectory::write(old + "/broken.xml", "<ROOT>");
    const ToolResult listed = notify({"list"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_EQ(listed.output, "41\t2\t5\t-\told one\t\n");
    EXPECT_EQ(listed.errors,
              "pallix: imported 1 notification from " + old + " into " + notifyFile() + "\n");
    EXPECT_FALSE(exists(old));
    // Written at once, so the next run finds it in the current file.
    const ToolResult again = notify({"list"});
    EXPECT_EQ(again.output, "41\t2\t5\t-\told one\t\n");
    EXPECT_EQ(again.errors, "");
}

TEST_F(StoreToolTest, NotifyWithAMissingConfigurationDirectoryFails) {
    const std::string missing = directory.file("missing");
    const ToolResult result = runTool({"notify", "--config-dir", missing, "list"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "pallix: " + missing + ": no such directory\n");
    EXPECT_FALSE(exists(missing));
}

TEST_F(StoreToolTest, NotifyAddInAReadOnlyDirectoryReportsTheFailedWrite) {
    ASSERT_EQ(::chmod(directory.path().c_str(), 0555), 0);
    std::vector<std::string> arguments{"notify",  "--config-dir", directory.path(), "add", "1",
                                       "--title", "one"};
    ToolResult result;
    if (::geteuid() == 0) {
        // Permissions do not bind the superuser: run the tool as an ordinary user.
        arguments.insert(arguments.begin(),
                         {"--reuid=65534", "--regid=65534", "--clear-groups", PALLIX_TOOL_PATH});
        result = runProgram("setpriv", arguments);
    } else {
        result = runTool(arguments);
    }
    EXPECT_EQ(result.status, 1) << result.errors;
    EXPECT_EQ(result.errors, "pallix: could not write " + notifyFile() + "\n");
    EXPECT_FALSE(exists(notifyFile()));
}

// Port bindings.

TEST_F(StoreToolTest, PortbindListOfAnEmptyDirectoryPrintsNothing) {
    const ToolResult result = portbind({"list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_FALSE(exists(bindFile()));
}

TEST_F(StoreToolTest, PortbindAddListAndRemove) {
    const ToolResult first = portbind({"add", "usb-2", "tcp:62078"});
    EXPECT_EQ(first.status, 0) << first.errors;
    EXPECT_EQ(first.output, "bound usb-2 to tcp:62078\n");
    ASSERT_EQ(portbind({"add", "usb-1", "tcp:5555"}).status, 0);
    EXPECT_EQ(portbind({"list"}).output, "usb-1\ttcp:5555\nusb-2\ttcp:62078\n");
    EXPECT_NE(
        TemporaryDirectory::read(bindFile()).find("<Item SOURCE=\"usb-1\" TARGET=\"tcp:5555\" />"),
        std::string::npos);

    const ToolResult removed = portbind({"remove", "usb-2"});
    EXPECT_EQ(removed.status, 0) << removed.errors;
    EXPECT_EQ(removed.output, "unbound usb-2\n");
    EXPECT_EQ(portbind({"list"}).output, "usb-1\ttcp:5555\n");
}

TEST_F(StoreToolTest, PortbindAddOfABoundSourceReplacesItsTarget) {
    ASSERT_EQ(portbind({"add", "A", "X"}).status, 0);
    const ToolResult result = portbind({"add", "A", "Y"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "rebound A to Y\n");
    EXPECT_EQ(portbind({"list"}).output, "A\tY\n");
}

TEST_F(StoreToolTest, PortbindRefusesEmptyTexts) {
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{"add", "A", ""}, {"add", "", "X"}}) {
        const ToolResult result = portbind(arguments);
        EXPECT_EQ(result.status, 1);
        EXPECT_EQ(result.errors, "pallix: a binding needs a non-empty source and target\n");
    }
    EXPECT_FALSE(exists(bindFile()));
}

TEST_F(StoreToolTest, PortbindRemoveOfAnUnboundSourceFailsAndWritesNothing) {
    ASSERT_EQ(portbind({"add", "A", "X"}).status, 0);
    const std::string before = TemporaryDirectory::read(bindFile());
    const ToolResult result = portbind({"remove", "B"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "pallix: B is not bound\n");
    EXPECT_EQ(TemporaryDirectory::read(bindFile()), before);
}

TEST_F(StoreToolTest, PortbindReportsMalformedAndForeignFilesAndLeavesThem) {
    TemporaryDirectory::write(bindFile(), "<Rilo><BIND><Item SOURCE=\"a\"></BIND></Rilo>");
    const ToolResult malformed = portbind({"add", "b", "c"});
    EXPECT_EQ(malformed.status, 1);
    EXPECT_NE(malformed.errors.find(bindFile() + ":1:"), std::string::npos) << malformed.errors;
    EXPECT_NE(malformed.errors.find("not changing " + bindFile()), std::string::npos);

    TemporaryDirectory::write(bindFile(), "<Nevor><Notify/></Nevor>");
    const ToolResult foreign = portbind({"list"});
    EXPECT_EQ(foreign.status, 1);
    EXPECT_EQ(foreign.errors, "pallix: " + bindFile() + ": no <Rilo><BIND> element\n");
    EXPECT_EQ(TemporaryDirectory::read(bindFile()), "<Nevor><Notify/></Nevor>");
}

TEST_F(StoreToolTest, TheConfigurationDirectoryMayFollowTheAction) {
    const ToolResult added =
        runTool({"portbind", "add", "usb-1", "tcp:1", "--config-dir", directory.path()});
    EXPECT_EQ(added.status, 0) << added.errors;
    const ToolResult listed = runTool({"notify", "list", "--config-dir", directory.path()});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_TRUE(exists(bindFile()));
}

TEST_F(StoreToolTest, BothCommandsRequireAnAction) {
    EXPECT_NE(runTool({"notify", "--config-dir", directory.path()}).status, 0);
    EXPECT_NE(runTool({"portbind", "--config-dir", directory.path()}).status, 0);
}
