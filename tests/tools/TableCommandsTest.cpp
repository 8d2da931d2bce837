#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <string>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

std::string sample(const std::string& name) {
    return std::string(PALLIX_SAMPLES_DIR) + "/" + name;
}

std::string data(const std::string& name) {
    return std::string(PALLIX_TEST_DATA_DIR) + "/tables/" + name;
}

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(ToolCpid, PrintsTheBoardSpecificRowOfChip8101) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x8101", "0x0C"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "CPID:    8101\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "BDID:    0C\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "MODE:    iPhone 12 Pro\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "PRODUCT: iPhone13,3\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "SUPPORT: yes\n")) << result.output;
    EXPECT_FALSE(contains(result.output, "default row")) << result.output;
}

TEST(ToolCpid, FallsBackToTheBoard00RowAndSaysSo) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x8101", "0x3E"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "BDID:    00\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "MODE:    iPhone 12\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "default row")) << result.output;
}

TEST(ToolCpid, AcceptsDecimalChipAndBoard) {
    // 33025 is 0x8101, 12 is 0x0C.
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "33025", "12"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "MODE:    iPhone 12 Pro\n")) << result.output;
}

TEST(ToolCpid, PrintsTheFoldedModeName) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x8020", "0x18"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "MODE:    iPhone XS Max\n")) << result.output;
}

TEST(ToolCpid, ChipAboveFFFFIsLookedUpWithAllItsDigits) {
    const ToolResult result = runTool({"cpid", data("cpid-edges.xml"), "0x10000", "5"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "CPID:    10000\n")) << result.output;
}

TEST(ToolCpid, SaysThatNoRowMatchedAndExitsWith1) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x1234", "0x02"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, "no row matched chip 1234 board 02")) << result.output;
    EXPECT_FALSE(contains(result.output, "MODE:")) << result.output;
}

TEST(ToolCpid, MissingTableIsReportedWithExit2) {
    const ToolResult result = runTool({"cpid", data("no-such-table.xml"), "0x8020", "0x0C"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "no-such-table.xml: no such file")) << result.errors;
    EXPECT_TRUE(result.output.empty()) << result.output;
}

TEST(ToolCpid, MalformedTableIsReportedWithLineAndColumn) {
    const ToolResult result = runTool({"cpid", data("malformed.xml"), "0x8020", "0x0C"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "malformed.xml:4:35: not well-formed XML"))
        << result.errors;
}

TEST(ToolCpid, EmptyFileIsReportedAsNotWellFormed) {
    const ToolResult result = runTool({"cpid", data("empty.xml"), "0x8020", "0x0C"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "empty.xml:1:1: not well-formed XML")) << result.errors;
}

TEST(ToolCpid, WrongRootIsReportedWithExit2) {
    const ToolResult result = runTool({"cpid", data("cpid-wrong-root.xml"), "0x8020", "0x0C"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "the root element is <DEVICES>, expected <DEVICE>"))
        << result.errors;
}

TEST(ToolCpid, DirectoryIsReportedWithExit2) {
    const ToolResult result = runTool({"cpid", PALLIX_TEST_DATA_DIR, "0x8020", "0x0C"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "is a directory")) << result.errors;
}

TEST(ToolCpid, UnreadableNumbersAreRejectedWithExit2) {
    ToolResult result = runTool({"cpid", sample("cpid.xml"), "8101h", "0x0C"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "CHIP: expected")) << result.errors;
    result = runTool({"cpid", sample("cpid.xml"), "0x8101", "0x"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "BOARD: expected")) << result.errors;
    result = runTool({"cpid", sample("cpid.xml"), "0x100000000", "0"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "CHIP: expected")) << result.errors;
}

TEST(ToolCrash, PrintsTheFirstRowWhoseKeyTheTextContains) {
    const ToolResult result =
        runTool({"crash", sample("crash.xml"), "amrestore failed with status 14"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "KEY:      AMRestore\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "REASON:   The restore process was interrupted by the "
                                        "device.\n"))
        << result.output;
    EXPECT_TRUE(contains(result.output, "SOLUTION: Check the cable")) << result.output;
}

TEST(ToolCrash, MatchesNonAsciiKeysIgnoringCase) {
    const ToolResult result = runTool({"crash", sample("crash.xml"), "ОШИБКА ВОССТАНОВЛЕНИЯ 9"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "KEY:      Ошибка восстановления\n")) << result.output;
}

TEST(ToolCrash, SaysThatNoRowMatchedAndExitsWith1) {
    const ToolResult result = runTool({"crash", sample("crash.xml"), "all good"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, "no row matched the text \"all good\"")) << result.output;
}

TEST(ToolCrash, EmptyTextMatchesNothing) {
    const ToolResult result = runTool({"crash", data("crash-empty-key-first.xml"), ""});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, "no row matched")) << result.output;
}

TEST(ToolCrash, MissingMalformedAndWrongRootTablesExitWith2) {
    ToolResult result = runTool({"crash", data("no-such-table.xml"), "x"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "no such file")) << result.errors;
    result = runTool({"crash", data("malformed.xml"), "x"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "malformed.xml:4:35:")) << result.errors;
    result = runTool({"crash", data("crash-wrong-root.xml"), "AMRestore"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "the root element is <APPLE>, expected <CRASH>"))
        << result.errors;
}

TEST(ToolRestoreError, PrintsTheRowOfANegativeCode) {
    const ToolResult result = runTool({"restore-error", sample("restore-error.xml"), "-35"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "CODE:     -35\n")) << result.output;
    EXPECT_TRUE(contains(result.output, "DESCRIBE: The restore was cancelled.\n")) << result.output;
}

TEST(ToolRestoreError, PrintsTheRowOfAPositiveCode) {
    const ToolResult result = runTool({"restore-error", sample("restore-error.xml"), "4013"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "CODE:     4013\n")) << result.output;
}

TEST(ToolRestoreError, AcceptsHexadecimalCodes) {
    ToolResult result = runTool({"restore-error", sample("restore-error.xml"), "0xFA1"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "CODE:     4001\n")) << result.output;
    result = runTool({"restore-error", data("restore-edges.xml"), "-0x23"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "DESCRIBE: Negative hexadecimal.\n")) << result.output;
}

TEST(ToolRestoreError, FirstRowOfADuplicateCodeIsPrinted) {
    const ToolResult result = runTool({"restore-error", data("restore-edges.xml"), "-1"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "DESCRIBE: First minus one.\n")) << result.output;
}

TEST(ToolRestoreError, ExtremeCodesAreAccepted) {
    ToolResult result =
        runTool({"restore-error", data("restore-edges.xml"), "9223372036854775807"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "DESCRIBE: Largest code.\n")) << result.output;
    result = runTool({"restore-error", data("restore-edges.xml"), "-9223372036854775808"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "DESCRIBE: Smallest code.\n")) << result.output;
}

TEST(ToolRestoreError, CodeOutOfRangeOrTextIsRejectedWithExit2) {
    ToolResult result =
        runTool({"restore-error", sample("restore-error.xml"), "9223372036854775808"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "CODE: expected")) << result.errors;
    result = runTool({"restore-error", sample("restore-error.xml"), "abc"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "CODE: expected")) << result.errors;
}

TEST(ToolRestoreError, SaysThatNoRowMatchedAndExitsWith1) {
    const ToolResult result = runTool({"restore-error", sample("restore-error.xml"), "7"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, "no row matched code 7")) << result.output;
}

TEST(ToolRestoreError, MissingMalformedAndWrongRootTablesExitWith2) {
    ToolResult result = runTool({"restore-error", data("no-such-table.xml"), "1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "no such file")) << result.errors;
    result = runTool({"restore-error", data("malformed.xml"), "1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "malformed.xml:4:35:")) << result.errors;
    result = runTool({"restore-error", data("restore-wrong-root.xml"), "-1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "the root element is <CRASH>, expected <APPLE>"))
        << result.errors;
}

TEST(ToolMapping, PrintsTheMappedVersion) {
    const ToolResult result = runTool({"mapping", sample("plugin-mapping.xml"), "16.4.1"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "Version: 16.4.1\nMapping: 16.4\n");
}

TEST(ToolMapping, FirstOfDuplicateVersionsIsPrinted) {
    const ToolResult result = runTool({"mapping", data("mapping-edges.xml"), "16.4.1"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "Mapping: 16.4\n")) << result.output;
}

TEST(ToolMapping, IncompleteEntryIsNotFound) {
    const ToolResult result = runTool({"mapping", data("mapping-edges.xml"), "14.8"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, "no row matched version \"14.8\"")) << result.output;
}

TEST(ToolMapping, EmptyVersionIsNotFound) {
    const ToolResult result = runTool({"mapping", sample("plugin-mapping.xml"), ""});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, "no row matched")) << result.output;
}

TEST(ToolMapping, MissingMalformedAndWrongRootTablesExitWith2) {
    ToolResult result = runTool({"mapping", data("no-such-table.xml"), "16.4.1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "no such file")) << result.errors;
    result = runTool({"mapping", data("malformed.xml"), "16.4.1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "malformed.xml:4:35:")) << result.errors;
    result = runTool({"mapping", data("mapping-wrong-root.xml"), "16.4.1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "the root element is <DEVICE>, expected <Nevor>"))
        << result.errors;
}

TEST(ToolMapping, TableWrittenAtRunTimeIsRead) {
    TemporaryDirectory directory;
    const std::string path = directory.file("mapping.xml");
    TemporaryDirectory::write(path, "<Nevor><M Version=\"1.0\" Mapping=\"one\"/></Nevor>");
    const ToolResult result = runTool({"mapping", path, "1.0"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "Version: 1.0\nMapping: one\n");
}

TEST(ToolTables, MissingArgumentsAreRefused) {
    EXPECT_NE(runTool({"cpid", sample("cpid.xml"), "0x8101"}).status, 0);
    EXPECT_NE(runTool({"crash", sample("crash.xml")}).status, 0);
    EXPECT_NE(runTool({"restore-error", sample("restore-error.xml")}).status, 0);
    EXPECT_NE(runTool({"mapping"}).status, 0);
}
