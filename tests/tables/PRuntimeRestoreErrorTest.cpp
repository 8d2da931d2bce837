#include "TableFiles.h"
#include "VirtualSlot.h"

#include "PRuntimeInfoRestoreError.h"
#include "PRuntimeRestoreError.h"

#include <gtest/gtest.h>

#include <climits>
#include <string>
#include <vector>

using pallix::test::missingTable;
using pallix::test::sampleTable;
using pallix::test::tableData;
using pallix::test::virtualSlot;

namespace {

using Callback = std::function<void(const PRuntimeInfoRestoreError&)>;

std::vector<PRuntimeInfoRestoreError> found(const PRuntimeRestoreError& table, long long code) {
    std::vector<PRuntimeInfoRestoreError> rows;
    table.find(code, [&rows](const PRuntimeInfoRestoreError& row) { rows.push_back(row); });
    return rows;
}

// The description of the row of the code, or "<none>".
std::string describeOf(const PRuntimeRestoreError& table, long long code) {
    const auto rows = found(table, code);
    EXPECT_LE(rows.size(), 1u);
    if (rows.empty()) {
        return "<none>";
    }
    EXPECT_EQ(rows.front().code(), code);
    return rows.front().describe().toStdString();
}

class RestoreErrorTable : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(table.format(tableData("restore-edges.xml").c_str())); }
    PRuntimeRestoreError table;
};

} // namespace

TEST_F(RestoreErrorTable, OfTwoRowsWithCodeMinusOneTheFirstIsReported) {
    const auto rows = found(table, -1);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].describe(), "First minus one.");
    EXPECT_EQ(rows[0].solution(), "First solution.");
}

TEST_F(RestoreErrorTable, HexadecimalCodeIsReadWithItsPrefix) {
    EXPECT_EQ(describeOf(table, 16), "Hexadecimal sixteen.");
}

TEST_F(RestoreErrorTable, NegativeHexadecimalCodeIsRead) {
    EXPECT_EQ(describeOf(table, -35), "Negative hexadecimal.");
}

TEST_F(RestoreErrorTable, LargestSigned64BitCodeIsRead) {
    EXPECT_EQ(describeOf(table, 9223372036854775807LL), "Largest code.");
}

TEST_F(RestoreErrorTable, SmallestSigned64BitCodeIsRead) {
    EXPECT_EQ(describeOf(table, LLONG_MIN), "Smallest code.");
}

TEST_F(RestoreErrorTable, CodeWrittenAsTextIsStoredUnderZero) {
    EXPECT_EQ(describeOf(table, 0), "Text code.");
}

TEST_F(RestoreErrorTable, MissingCodeLandsOnZeroWhereTheFirstRowStays) {
    PRuntimeRestoreError other;
    ASSERT_TRUE(other.format(tableData("restore-missing-code-first.xml").c_str()));
    const auto rows = found(other, 0);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].describe(), "Missing code.");
}

TEST_F(RestoreErrorTable, EveryChildElementIsARowWhateverItsName) {
    EXPECT_EQ(describeOf(table, 4013), "Any element name.");
}

TEST_F(RestoreErrorTable, RowWithOnlyACodeHasEmptyTexts) {
    const auto rows = found(table, 21);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_TRUE(rows[0].describe().empty());
    EXPECT_TRUE(rows[0].solution().empty());
}

TEST_F(RestoreErrorTable, UnknownCodeDoesNotCallTheCallback) {
    EXPECT_TRUE(found(table, 4014).empty());
    EXPECT_TRUE(found(table, 1).empty());
}

TEST_F(RestoreErrorTable, AppendOfAPresentCodeLeavesTheOldRow) {
    table.append(PRuntimeInfoRestoreError(-1, "Appended minus one.", "Appended solution."));
    EXPECT_EQ(describeOf(table, -1), "First minus one.");
}

TEST_F(RestoreErrorTable, AppendOfANewCodeAddsACopy) {
    PRuntimeInfoRestoreError row(4014, "Did not restart.", "Restore again.");
    table.append(row);
    row = PRuntimeInfoRestoreError();
    EXPECT_EQ(describeOf(table, 4014), "Did not restart.");
}

// The code exists, so only the callback's emptiness keeps the call from being made.
TEST_F(RestoreErrorTable, FindWithAnEmptyCallbackDoesNothing) {
    ASSERT_EQ(describeOf(table, -1), "First minus one.");
    table.find(-1, Callback());
    table.find(-1, nullptr);
    EXPECT_EQ(describeOf(table, -1), "First minus one.");
}

TEST_F(RestoreErrorTable, FormatOnAMissingFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(missingTable().c_str()));
    EXPECT_TRUE(found(table, -1).empty());
    EXPECT_TRUE(found(table, 0).empty());
}

TEST_F(RestoreErrorTable, FormatOnAMalformedFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(tableData("malformed.xml").c_str()));
    EXPECT_TRUE(found(table, -1).empty());
}

TEST_F(RestoreErrorTable, FormatOnAnEmptyFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(tableData("empty.xml").c_str()));
    EXPECT_TRUE(found(table, -1).empty());
}

TEST_F(RestoreErrorTable, FormatOnADirectoryEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(PALLIX_TEST_DATA_DIR));
    EXPECT_TRUE(found(table, -1).empty());
}

TEST_F(RestoreErrorTable, FormatWithoutTheRootReturnsTrueAndLeavesTheTableEmpty) {
    EXPECT_TRUE(table.format(tableData("restore-wrong-root.xml").c_str()));
    EXPECT_TRUE(found(table, -1).empty());
}

TEST_F(RestoreErrorTable, ReloadReplacesTheEarlierRows) {
    ASSERT_TRUE(table.format(tableData("restore-reload.xml").c_str()));
    EXPECT_TRUE(found(table, -1).empty());
    EXPECT_TRUE(found(table, 16).empty());
    EXPECT_EQ(describeOf(table, 14), "Damaged firmware file.");
}

TEST(RestoreError, EmptyTableFindsNothing) {
    PRuntimeRestoreError table;
    EXPECT_TRUE(found(table, 0).empty());
}

TEST(RestoreError, SampleTableHasNegativeAndPositiveCodes) {
    PRuntimeRestoreError table;
    ASSERT_TRUE(table.format(sampleTable("restore-error.xml").c_str()));
    EXPECT_EQ(describeOf(table, -1), "Unknown restore error.");
    EXPECT_EQ(describeOf(table, -35), "The restore was cancelled.");
    EXPECT_EQ(describeOf(table, 4013),
              "The device disconnected while the firmware was being installed.");
    EXPECT_EQ(describeOf(table, 0xFA1), "The restore needs more battery charge.");
    EXPECT_TRUE(found(table, 0).empty());
}

TEST(RestoreError, FormatGoesThroughTheVirtualAppend) {
    class Counting : public PRuntimeRestoreError {
    public:
        void append(const PRuntimeInfoRestoreError& row) override {
            ++appended;
            PRuntimeRestoreError::append(row);
        }
        int appended = 0;
    };
    Counting table;
    ASSERT_TRUE(table.format(tableData("restore-edges.xml").c_str()));
    // Every row is offered, the duplicates included.
    EXPECT_EQ(table.appended, 12);
}

TEST(InfoRestoreError, IsMatchComparesTheCode) {
    const PRuntimeInfoRestoreError row(-1, "d", "s");
    EXPECT_TRUE(row.isMatch(-1));
    EXPECT_FALSE(row.isMatch(1));
    EXPECT_FALSE(row.isMatch(0));
    EXPECT_TRUE(PRuntimeInfoRestoreError().isMatch(0));
}

TEST(InfoRestoreError, DefaultRowAndConstructorOrder) {
    const PRuntimeInfoRestoreError empty;
    EXPECT_EQ(empty.code(), 0);
    EXPECT_TRUE(empty.describe().empty());
    EXPECT_TRUE(empty.solution().empty());
    const PRuntimeInfoRestoreError row(LLONG_MAX, "d", "s");
    EXPECT_EQ(row.code(), LLONG_MAX);
    EXPECT_EQ(row.describe(), "d");
    EXPECT_EQ(row.solution(), "s");
    PRuntimeInfoRestoreError assigned;
    assigned = row;
    EXPECT_EQ(assigned.code(), LLONG_MAX);
    EXPECT_EQ(assigned.solution(), "s");
}

TEST(InfoRestoreError, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeInfoRestoreError::isMatch), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoRestoreError::code), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoRestoreError::describe), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoRestoreError::solution), 6u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeInfoRestoreError>);
}

TEST(RestoreError, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreError::format), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreError::append), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreError::find), 5u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeRestoreError>);
}
