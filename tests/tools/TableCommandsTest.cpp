#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <climits>
#include <string>
#include <vector>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;
using Json = nlohmann::json;

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

TEST(ToolCpid, PrintsTheRowOfItsOwnBoardOfChip8101) {
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
    EXPECT_EQ(result.errors,
              "pallix: no row matched chip 1234 board 02, nor a board 00 row of the chip\n");
    EXPECT_TRUE(result.output.empty()) << result.output;
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

TEST(ToolCpid, UnknownRootIsReportedWithExit2) {
    const ToolResult result = runTool({"cpid", data("cpid-wrong-root.xml"), "0x8020", "0x0C"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(
        result.errors,
        "cpid-wrong-root.xml:2:1: the root element \"DEVICES\" is none that the library reads"))
        << result.errors;
    EXPECT_TRUE(contains(result.errors,
                         "(run 'pallix check --kind cpid " + data("cpid-wrong-root.xml") + "')"))
        << result.errors;
}

TEST(ToolCpid, DirectoryIsReportedWithExit2) {
    const ToolResult result = runTool({"cpid", PALLIX_TEST_DATA_DIR, "0x8020", "0x0C"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "is a directory")) << result.errors;
}

TEST(ToolCpid, NumbersOutsideTheLibrarysUnsignedIntAreRejectedWithExit2) {
    const std::vector<std::pair<std::string, std::string>> refused = {
        {"8101h", "0x0C"},   {"0x8101", "0x"},    {"0x100000000", "0"},      {"-1", "0"},
        {"4294967296", "0"}, {"0x8101", "-0x0C"}, {"+33025", "12"},          {" 33025", "12"},
        {"0x8101", "0x1G"},  {"", "0"},           {"0x8101", "99999999999"}, {"0x8101", "1.0"}};
    for (const auto& [chip, board] : refused) {
        const ToolResult result = runTool({"cpid", sample("cpid.xml"), chip, board});
        EXPECT_EQ(result.status, 2) << chip << " " << board;
        const std::string name = result.errors.find("CHIP") != std::string::npos ? chip : board;
        EXPECT_TRUE(contains(result.errors, "'" + name +
                                                "' is not a whole number from 0 to 4294967295 "
                                                "(decimal, or hexadecimal after 0x)"))
            << result.errors;
        EXPECT_TRUE(result.output.empty()) << result.output;
    }
}

TEST(ToolCpid, NumbersUpToTheLargestUnsignedIntAreLookedUp) {
    // FFFFFFFF has no row; board 100 falls back to the chip's board 00 row.
    EXPECT_EQ(runTool({"cpid", sample("cpid.xml"), "4294967295", "0xFFFFFFFF"}).status, 1);
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x8101", "0x100"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "(no row for board 100; this is the chip's default row)"))
        << result.output;
}

// CLI11 reads a leading 0 as octal; 010 is board ten (0A), not eight (08).
TEST(ToolCpid, LeadingZerosAreDecimal) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x8950", "010", "--json"});
    EXPECT_EQ(result.status, 0) << result.errors;
    const Json document = Json::parse(result.output);
    EXPECT_EQ(document["board"], 10);
    EXPECT_EQ(document["row"]["bdid"], "0A");
}

TEST(ToolCpid, NumbersAreCheckedBeforeTheTable) {
    const ToolResult result = runTool({"cpid", data("no-such-table.xml"), "x", "0"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "CHIP: 'x'")) << result.errors;
}

TEST(ToolCpid, JsonShowsTheRowFieldByField) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x8101", "0x3E", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.errors.empty()) << result.errors;
    const Json document = Json::parse(result.output);
    EXPECT_EQ(document.at("chip"), 0x8101);
    EXPECT_EQ(document.at("board"), 0x3E);
    EXPECT_EQ(document.at("found"), true);
    EXPECT_EQ(document.at("boardDefault"), true);
    const Json& row = document.at("row");
    EXPECT_EQ(row.at("cpid"), "8101");
    EXPECT_EQ(row.at("bdid"), "00");
    EXPECT_EQ(row.at("mode"), "iPhone 12");
    EXPECT_EQ(row.at("network"), "Global");
    EXPECT_EQ(row.at("product"), "iPhone13,2");
    EXPECT_EQ(row.at("support"), true);
}

TEST(ToolCpid, JsonOfABoardOfItsOwnIsNoDefault) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x8101", "0x0C", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json document = Json::parse(result.output);
    EXPECT_EQ(document.at("boardDefault"), false);
    EXPECT_EQ(document.at("row").at("bdid"), "0C");
}

TEST(ToolCpid, JsonNotFoundHasANullRowAndExitsWith1) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x1234", "2", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.empty()) << result.errors;
    const Json document = Json::parse(result.output);
    EXPECT_EQ(document.at("chip"), 0x1234);
    EXPECT_EQ(document.at("found"), false);
    EXPECT_EQ(document.at("boardDefault"), false);
    EXPECT_TRUE(document.at("row").is_null());
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
    EXPECT_EQ(result.errors, "pallix: no row matched the text \"all good\"\n");
    EXPECT_TRUE(result.output.empty()) << result.output;
}

TEST(ToolCrash, EmptyTextIsRefusedAsItMatchesNoRow) {
    // Even the row with an empty key, which every other text matches.
    const ToolResult result = runTool({"crash", data("crash-empty-key-first.xml"), ""});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: TEXT: an empty text matches no row\n");
    EXPECT_EQ(runTool({"crash", data("crash-empty-key-first.xml"), "x"}).status, 0);
}

TEST(ToolCrash, JsonShowsTheRowFieldByField) {
    const ToolResult result = runTool({"crash", sample("crash.xml"), "--json", "AMRESTORE: 14"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json document = Json::parse(result.output);
    EXPECT_EQ(document.at("text"), "AMRESTORE: 14");
    EXPECT_EQ(document.at("found"), true);
    EXPECT_EQ(document.at("row").at("key"), "AMRestore");
    EXPECT_EQ(document.at("row").at("reason"),
              "The restore process was interrupted by the device.");
    EXPECT_TRUE(contains(document.at("row").at("solution").get<std::string>(), "Check the cable"));
    const ToolResult missing = runTool({"crash", sample("crash.xml"), "all good", "--json"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.errors.empty()) << missing.errors;
    EXPECT_EQ(Json::parse(missing.output).at("found"), false);
    EXPECT_TRUE(Json::parse(missing.output).at("row").is_null());
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
    EXPECT_EQ(result.errors, "pallix: " + data("crash-wrong-root.xml") +
                                 " is a restore error table, not a crash code table\n");
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

TEST(ToolRestoreError, ExtremeHexadecimalCodesAreAccepted) {
    const ToolResult result =
        runTool({"restore-error", data("restore-edges.xml"), "-0x8000000000000000"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(contains(result.output, "DESCRIBE: Smallest code.\n")) << result.output;
}

TEST(ToolRestoreError, CodeOutsideTheLibrarysLongLongOrTextIsRejectedWithExit2) {
    for (const char* code : {"9223372036854775808", "-9223372036854775809", "0x8000000000000000",
                             "-0x8000000000000001", "abc", "", "-", "0x", "1e3", "+1"}) {
        const ToolResult result = runTool({"restore-error", sample("restore-error.xml"), code});
        EXPECT_EQ(result.status, 2) << code;
        EXPECT_TRUE(
            contains(result.errors, "pallix: CODE: '" + std::string(code) +
                                        "' is not a whole number from -9223372036854775808 to "
                                        "9223372036854775807 (decimal, or hexadecimal after 0x)\n"))
            << code << ": " << result.errors;
    }
}

TEST(ToolRestoreError, SaysThatNoRowMatchedAndExitsWith1) {
    const ToolResult result = runTool({"restore-error", sample("restore-error.xml"), "7"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "pallix: no row matched code 7\n");
    EXPECT_TRUE(result.output.empty()) << result.output;
}

TEST(ToolRestoreError, JsonShowsTheRowFieldByField) {
    const ToolResult result =
        runTool({"restore-error", data("restore-edges.xml"), "-9223372036854775808", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json document = Json::parse(result.output);
    EXPECT_EQ(document.at("code").get<long long>(), LLONG_MIN);
    EXPECT_EQ(document.at("found"), true);
    EXPECT_EQ(document.at("row").at("code").get<long long>(), LLONG_MIN);
    EXPECT_EQ(document.at("row").at("describe"), "Smallest code.");
    EXPECT_EQ(document.at("row").at("solution"), "Min solution.");
    const ToolResult missing =
        runTool({"restore-error", sample("restore-error.xml"), "7", "--json"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.errors.empty()) << missing.errors;
    EXPECT_EQ(Json::parse(missing.output).at("code"), 7);
    EXPECT_EQ(Json::parse(missing.output).at("found"), false);
    EXPECT_TRUE(Json::parse(missing.output).at("row").is_null());
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
    EXPECT_EQ(result.errors, "pallix: " + data("restore-wrong-root.xml") +
                                 " is a crash code table, not a restore error table\n");
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
    EXPECT_EQ(result.errors, "pallix: no row matched version \"14.8\"\n");
    EXPECT_TRUE(result.output.empty()) << result.output;
}

TEST(ToolMapping, EmptyVersionIsRefusedAsTheLibraryNeverLooksItUp) {
    // The edge table maps the empty version to 12.0, which the library skips.
    const ToolResult result = runTool({"mapping", data("mapping-edges.xml"), ""});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: VERSION: the library never looks up an empty version\n");
}

TEST(ToolMapping, JsonShowsTheRowFieldByField) {
    const ToolResult result = runTool({"mapping", data("mapping-edges.xml"), "Beta 2", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json document = Json::parse(result.output);
    EXPECT_EQ(document.at("version"), "Beta 2");
    EXPECT_EQ(document.at("found"), true);
    EXPECT_EQ(document.at("row").at("version"), "Beta 2");
    EXPECT_EQ(document.at("row").at("mapping"), "ベータ");
    const ToolResult missing = runTool({"mapping", data("mapping-edges.xml"), "14.8", "--json"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_TRUE(missing.errors.empty()) << missing.errors;
    EXPECT_EQ(Json::parse(missing.output).at("found"), false);
    EXPECT_TRUE(Json::parse(missing.output).at("row").is_null());
}

TEST(ToolMapping, CloudDocumentIsNamedByItsKind) {
    const ToolResult result = runTool({"mapping", sample("cloud.xml"), "16.4.1"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: " + sample("cloud.xml") +
                                 " is a cloud document, not a plug-in mapping table\n");
    EXPECT_TRUE(result.output.empty()) << result.output;
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
    EXPECT_EQ(result.errors, "pallix: " + data("mapping-wrong-root.xml") +
                                 " is a chip table, not a plug-in mapping table\n");
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

TEST(ToolCpid, JsonKeepsTheQueryBeforeTheAnswer) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x7777", "1", "--json"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "{\n  \"chip\": 30583,\n  \"board\": 1,\n  \"boardDefault\": false,\n"
                             "  \"found\": false,\n  \"row\": null\n}\n");
}

TEST(ToolCpid, AMissOnBoard00IsSaidOnce) {
    const ToolResult result = runTool({"cpid", sample("cpid.xml"), "0x7777", "0"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "pallix: no row matched chip 7777 board 00\n");
    EXPECT_EQ(runTool({"cpid", sample("cpid.xml"), "0x7777", "1"}).errors,
              "pallix: no row matched chip 7777 board 01, nor a board 00 row of the chip\n");
}
