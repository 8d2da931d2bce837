#include "TableFiles.h"
#include "VirtualSlot.h"

#include "PRuntime.h"
#include "PRuntimeCrashCode.h"
#include "PRuntimeInfoCrash.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using pallix::test::missingTable;
using pallix::test::sampleTable;
using pallix::test::tableData;
using pallix::test::virtualSlot;

namespace {

using Callback = std::function<void(const PRuntimeInfoCrash&)>;

// Every row that find hands to its callback (at most one is expected).
std::vector<PRuntimeInfoCrash> found(const PRuntimeCrashCode& table, const NString& key) {
    std::vector<PRuntimeInfoCrash> rows;
    table.find(key, [&rows](const PRuntimeInfoCrash& row) { rows.push_back(row); });
    return rows;
}

// The reason of the row found, or "<none>".
std::string reasonFor(const PRuntimeCrashCode& table, const NString& key) {
    const auto rows = found(table, key);
    EXPECT_LE(rows.size(), 1u);
    return rows.empty() ? std::string("<none>") : rows.front().reason().toStdString();
}

std::vector<std::string> keys(const PRuntimeCrashCode& table) {
    std::vector<std::string> all;
    table.traverse(
        [&all](const PRuntimeInfoCrash& row) { all.push_back(row.key().toStdString()); });
    return all;
}

class CrashTable : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(table.format(tableData("crash-edges.xml").c_str())); }
    PRuntimeCrashCode table;
};

} // namespace

TEST_F(CrashTable, LongFailureTextMatchesTheRowWhoseKeyItContainsIgnoringCase) {
    EXPECT_EQ(reasonFor(table, "amrestore failed"), "The restore process was interrupted.");
}

TEST_F(CrashTable, ShortQueryMatchesTheFirstRowWhoseKeyContainsIt) {
    // "store" is part of AMRestore and of Restore; AMRestore comes first.
    EXPECT_EQ(reasonFor(table, "store"), "The restore process was interrupted.");
}

TEST_F(CrashTable, QueryMatchingOnlyALaterRowFindsThatRow) {
    EXPECT_EQ(reasonFor(table, "The RESTORE of the device failed"), "General restore failure.");
}

TEST_F(CrashTable, EmptyQueryMatchesNothingEvenARowWithAnEmptyKey) {
    EXPECT_TRUE(found(table, "").empty());
    PRuntimeCrashCode catchAll;
    ASSERT_TRUE(catchAll.format(tableData("crash-empty-key-first.xml").c_str()));
    EXPECT_TRUE(found(catchAll, "").empty());
    EXPECT_TRUE(found(catchAll, NString()).empty());
}

TEST_F(CrashTable, RowWithAnEmptyKeyPlacedFirstCatchesEveryNonEmptyQuery) {
    PRuntimeCrashCode catchAll;
    ASSERT_TRUE(catchAll.format(tableData("crash-empty-key-first.xml").c_str()));
    EXPECT_EQ(reasonFor(catchAll, "AMRestore"), "Catches everything.");
    EXPECT_EQ(reasonFor(catchAll, "x"), "Catches everything.");
    EXPECT_EQ(reasonFor(catchAll, "анything ü"), "Catches everything.");
}

TEST_F(CrashTable, RowWithoutAKeyCatchesQueriesThatNoEarlierRowMatches) {
    EXPECT_EQ(reasonFor(table, "something else entirely"), "Row without a key.");
}

TEST_F(CrashTable, FirstMatchingRowWinsAndTheCallbackRunsOnce) {
    const auto rows = found(table, "kAMRMuxError: device vanished");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].reason(), "Connection lost.");
    EXPECT_EQ(rows[0].solution(), "Reconnect the device.");
}

TEST_F(CrashTable, EveryChildElementIsARowWhateverItsName) {
    EXPECT_EQ(reasonFor(table, "KAMRMUXERROR"), "Connection lost.");
}

TEST_F(CrashTable, TextBetweenRowsIsNotARow) {
    const auto all = keys(table);
    ASSERT_EQ(all.size(), 10u);
    EXPECT_EQ(all[2], "kAMRMuxError");
}

TEST_F(CrashTable, CyrillicKeyMatchesIgnoringCase) {
    EXPECT_EQ(reasonFor(table, "ошибка восстановления устройства"), "Russian restore failure.");
    EXPECT_EQ(reasonFor(table, "ВОССТАНОВ"), "Russian restore failure.");
}

TEST_F(CrashTable, AccentedLatinKeyMatchesIgnoringCase) {
    EXPECT_EQ(reasonFor(table, "échec de la mise à jour"), "French failure.");
}

TEST_F(CrashTable, GreekKeyMatchesIgnoringCase) {
    EXPECT_EQ(reasonFor(table, "σφαλμα"), "Greek failure.");
}

TEST_F(CrashTable, ChineseKeyMatchesByContainment) {
    EXPECT_EQ(reasonFor(table, "设备恢复失败，请重试"), "Chinese restore failure.");
    EXPECT_EQ(reasonFor(table, "失败"), "Chinese restore failure.");
}

TEST_F(CrashTable, NonAsciiTextKeepsItsBytesInTheRow) {
    const auto rows = found(table, "恢复失败");
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].key(), "恢复失败");
    EXPECT_EQ(rows[0].solution(), "请重试。");
}

// An empty callback is looked at before any row: a matching key raises nothing (the process
// would end if the wrapper's bad-call exception were raised inside the operation).
TEST_F(CrashTable, FindWithAnEmptyCallbackDoesNothingAndRaisesNothing) {
    ASSERT_FALSE(found(table, "AMRestore").empty());
    table.find("AMRestore", Callback());
    table.find("AMRestore", nullptr);
    EXPECT_EQ(keys(table).size(), 10u);
}

TEST_F(CrashTable, NoMatchDoesNotCallTheCallback) {
    PRuntimeCrashCode specific;
    specific.append(PRuntimeInfoCrash("AMRestore", "r", "s"));
    EXPECT_TRUE(found(specific, "baseband").empty());
}

TEST_F(CrashTable, TraverseVisitsEveryRowInFileOrder) {
    const std::vector<std::string> expected = {"AMRestore",
                                               "Restore",
                                               "kAMRMuxError",
                                               "kAMRMuxError",
                                               "Ошибка ВОССТАНОВЛЕНИЯ",
                                               "ÉCHEC",
                                               "恢复失败",
                                               "ΣΦΑΛΜΑ",
                                               "",
                                               "never reached"};
    EXPECT_EQ(keys(table), expected);
}

TEST_F(CrashTable, TraverseWithAnEmptyCallbackEndsTheProcess) {
    EXPECT_DEATH(table.traverse(Callback()), "");
}

TEST_F(CrashTable, FormatOnAMissingFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(missingTable().c_str()));
    EXPECT_TRUE(keys(table).empty());
    EXPECT_TRUE(found(table, "AMRestore").empty());
}

TEST_F(CrashTable, FormatOnAMalformedFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(tableData("malformed.xml").c_str()));
    EXPECT_TRUE(keys(table).empty());
}

TEST_F(CrashTable, FormatOnAnEmptyFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(tableData("empty.xml").c_str()));
    EXPECT_TRUE(keys(table).empty());
}

TEST_F(CrashTable, FormatOnADirectoryEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(PALLIX_TEST_DATA_DIR));
    EXPECT_TRUE(keys(table).empty());
}

TEST_F(CrashTable, FormatWithoutTheRootReturnsTrueAndLeavesTheTableEmpty) {
    EXPECT_TRUE(table.format(tableData("crash-wrong-root.xml").c_str()));
    EXPECT_TRUE(keys(table).empty());
}

TEST_F(CrashTable, ReloadReplacesTheEarlierRows) {
    ASSERT_TRUE(table.format(tableData("crash-reload.xml").c_str()));
    EXPECT_EQ(keys(table), std::vector<std::string>{"NAND"});
    EXPECT_TRUE(found(table, "AMRestore").empty());
}

TEST_F(CrashTable, AppendAddsACopyAtTheEnd) {
    PRuntimeInfoCrash row("baseband", "Baseband failure.", "Charge the battery.");
    table.append(row);
    row = PRuntimeInfoCrash();
    const auto all = keys(table);
    ASSERT_EQ(all.size(), 11u);
    EXPECT_EQ(all.back(), "baseband");
    // The key-less row stands before it and catches the query first.
    EXPECT_EQ(reasonFor(table, "baseband"), "Row without a key.");
}

TEST(CrashCode, EmptyTableFindsAndTraversesNothing) {
    PRuntimeCrashCode table;
    EXPECT_TRUE(found(table, "AMRestore").empty());
    EXPECT_TRUE(keys(table).empty());
}

TEST(CrashCode, SampleTableListsSpecificKeysBeforeGeneralOnes) {
    PRuntimeCrashCode table;
    ASSERT_TRUE(table.format(sampleTable("crash.xml").c_str()));
    EXPECT_EQ(reasonFor(table, "AMRestorePerformRecoveryModeRestore failed with 4013"),
              "The device left recovery mode while the firmware was being sent.");
    EXPECT_EQ(reasonFor(table, "restore"), "The device left recovery mode while the firmware was "
                                           "being sent.");
    EXPECT_EQ(reasonFor(table, "Restore of iPhone failed"),
              "The restore failed for an unknown reason.");
    EXPECT_EQ(reasonFor(table, "no space left on device (28)"), "The computer's disk is full.");
}

TEST(CrashCode, RootOwnsOneTable) {
    PRuntimeCrashCode* table = PRuntime::getInstance()->crashCode();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(PRuntime::getInstance()->crashCode(), table);
    ASSERT_TRUE(table->format(sampleTable("crash.xml").c_str()));
    EXPECT_EQ(reasonFor(*table, "NAND"), "The device's storage reported an error.");
    PRuntime::freeInstance();
}

TEST(CrashCode, FormatAndFindGoThroughTheVirtualOperations) {
    class Counting : public PRuntimeCrashCode {
    public:
        void append(const PRuntimeInfoCrash& row) override {
            ++appended;
            PRuntimeCrashCode::append(row);
        }
        int appended = 0;
    };
    Counting table;
    ASSERT_TRUE(table.format(tableData("crash-reload.xml").c_str()));
    EXPECT_EQ(table.appended, 1);
}

TEST(InfoCrash, IsMatchTestsContainmentInBothDirectionsIgnoringCase) {
    const PRuntimeInfoCrash row("AMRestore", "r", "s");
    EXPECT_TRUE(row.isMatch("AMRestore"));
    EXPECT_TRUE(row.isMatch("amrestore"));
    EXPECT_TRUE(row.isMatch("error in AMRESTORE: 14"));
    EXPECT_TRUE(row.isMatch("Rest"));
    EXPECT_TRUE(row.isMatch("AMRestorer"));
    EXPECT_FALSE(row.isMatch("AM Restore"));
    EXPECT_FALSE(row.isMatch("restore failed"));
    EXPECT_FALSE(row.isMatch(""));
}

TEST(InfoCrash, EmptyKeyMatchesEveryNonEmptyQueryButNotTheEmptyOne) {
    const PRuntimeInfoCrash row;
    EXPECT_TRUE(row.isMatch("anything"));
    EXPECT_FALSE(row.isMatch(""));
}

TEST(InfoCrash, DefaultRowIsEmptyAndTheConstructorTakesKeyReasonSolution) {
    const PRuntimeInfoCrash empty;
    EXPECT_TRUE(empty.key().empty());
    EXPECT_TRUE(empty.reason().empty());
    EXPECT_TRUE(empty.solution().empty());
    const PRuntimeInfoCrash row("k", "r", "s");
    EXPECT_EQ(row.key(), "k");
    EXPECT_EQ(row.reason(), "r");
    EXPECT_EQ(row.solution(), "s");
    PRuntimeInfoCrash copy(row);
    PRuntimeInfoCrash assigned;
    assigned = copy;
    EXPECT_EQ(assigned.solution(), "s");
}

TEST(InfoCrash, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCrash::isMatch), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCrash::key), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCrash::reason), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCrash::solution), 6u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeInfoCrash>);
}

TEST(CrashCode, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeCrashCode::format), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeCrashCode::append), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeCrashCode::traverse), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeCrashCode::find), 6u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeCrashCode>);
}
