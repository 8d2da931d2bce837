#include "TableFiles.h"
#include "TemporaryDirectory.h"
#include "VirtualSlot.h"

#include "PRuntime.h"
#include "PRuntimeCpid.h"
#include "PRuntimeInfoCpid.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using pallix::test::missingTable;
using pallix::test::sampleTable;
using pallix::test::tableData;
using pallix::test::TemporaryDirectory;
using pallix::test::virtualSlot;

namespace {

using Callback = std::function<void(const PRuntimeInfoCpid&)>;

// The rows that the callback form hands over, so that a test can also see how often it ran.
std::vector<PRuntimeInfoCpid> found(const PRuntimeCpid& table, unsigned int chip,
                                    unsigned int board, bool* result = nullptr) {
    std::vector<PRuntimeInfoCpid> rows;
    const bool matched = table.find(NDeviceInfoRecovery(chip, board),
                                    [&rows](const PRuntimeInfoCpid& row) { rows.push_back(row); });
    if (result != nullptr) {
        *result = matched;
    }
    return rows;
}

PRuntimeInfoCpid lookup(const PRuntimeCpid& table, unsigned int chip, unsigned int board) {
    PRuntimeInfoCpid row;
    EXPECT_TRUE(table.find(NDeviceInfoRecovery(chip, board), row))
        << std::hex << "chip " << chip << " board " << board;
    return row;
}

bool anyRow(const PRuntimeCpid& table, unsigned int chip, unsigned int board) {
    PRuntimeInfoCpid row;
    return table.find(NDeviceInfoRecovery(chip, board), row);
}

class CpidTable : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(table.format(tableData("cpid-edges.xml").c_str())); }
    PRuntimeCpid table;
};

} // namespace

TEST_F(CpidTable, FindsTheRowOfTheExactChipAndBoard) {
    const PRuntimeInfoCpid row = lookup(table, 0x8020, 0x0C);
    EXPECT_EQ(row.cpid(), "8020");
    EXPECT_EQ(row.bdid(), "0C");
    EXPECT_EQ(row.mode(), "iPhone XR");
    EXPECT_EQ(row.network(), "Global");
    EXPECT_EQ(row.product(), "iPhone11,8");
    EXPECT_TRUE(row.support());
}

TEST_F(CpidTable, LowerCaseAndShortBoardTextsAreNeverFound) {
    // The file has 8020/0c and 8020/C before 8020/0C; only the upper-case two-digit text can
    // match, so the lookup skips both.
    EXPECT_EQ(lookup(table, 0x8020, 0x0C).mode(), "iPhone XR");
    PRuntimeCpid onlyBad;
    onlyBad.append(PRuntimeInfoCpid("8020", "0c", "lower", "", "", true));
    onlyBad.append(PRuntimeInfoCpid("8020", "C", "short", "", "", true));
    EXPECT_FALSE(anyRow(onlyBad, 0x8020, 0x0C));
}

TEST_F(CpidTable, UnknownBoardFallsBackToTheBoard00Row) {
    const PRuntimeInfoCpid row = lookup(table, 0x8020, 0x0E);
    EXPECT_EQ(row.bdid(), "00");
    EXPECT_EQ(row.mode(), "iPhone XS");
}

TEST_F(CpidTable, BoardSpecificRowWinsOverAnEarlierBoard00Row) {
    // 8020/00 stands before 8020/0C in the file; the first pass still finds 0C.
    EXPECT_EQ(lookup(table, 0x8020, 0x0C).bdid(), "0C");
}

TEST_F(CpidTable, Board00DeviceFindsTheDefaultRowDirectly) {
    EXPECT_EQ(lookup(table, 0x8020, 0x00).mode(), "iPhone XS");
}

TEST_F(CpidTable, ChipWithoutBoard00RowAndUnknownBoardIsNotFound) {
    // 8003 has rows for boards 01 to 09 but no 00 row.
    bool result = true;
    EXPECT_TRUE(found(table, 0x8003, 0x20, &result).empty());
    EXPECT_FALSE(result);
}

TEST_F(CpidTable, UnknownChipIsNotFound) {
    bool result = true;
    EXPECT_TRUE(found(table, 0x1234, 0x00, &result).empty());
    EXPECT_FALSE(result);
}

TEST_F(CpidTable, ChipAboveFFFFIsMatchedWithAllItsDigits) {
    const PRuntimeInfoCpid row = lookup(table, 0x10000, 0x05);
    EXPECT_EQ(row.cpid(), "10000");
    EXPECT_EQ(row.mode(), "Five-digit chip");
    // The truncated text 0000 belongs to chip 0 only.
    EXPECT_EQ(lookup(table, 0x0000, 0x05).mode(), "truncated chip");
}

TEST_F(CpidTable, ChipBelow1000IsPaddedToFourDigits) {
    EXPECT_EQ(lookup(table, 0x960, 0x00).mode(), "padded chip");
}

TEST_F(CpidTable, LowerCaseChipTextIsNeverFound) {
    EXPECT_FALSE(anyRow(table, 0x801A, 0x00));
}

TEST_F(CpidTable, BoardAboveFFIsPrintedWithAllItsDigits) {
    PRuntimeCpid wide;
    wide.append(PRuntimeInfoCpid("8020", "00", "default", "", "", true));
    wide.append(PRuntimeInfoCpid("8020", "1FF", "wide board", "", "", true));
    EXPECT_EQ(lookup(wide, 0x8020, 0x1FF).mode(), "wide board");
    EXPECT_EQ(lookup(wide, 0x8020, 0xFF).mode(), "default");
}

TEST_F(CpidTable, EarliestOfDuplicatePairsWins) {
    EXPECT_EQ(lookup(table, 0x8020, 0x0C).mode(), "iPhone XR");
    EXPECT_EQ(lookup(table, 0x8020, 0x0C).product(), "iPhone11,8");
}

TEST_F(CpidTable, CallbackFormCallsTheCallbackOnceWithTheRow) {
    bool result = false;
    const auto rows = found(table, 0x8020, 0x0C, &result);
    EXPECT_TRUE(result);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].mode(), "iPhone XR");
}

TEST_F(CpidTable, CallbackFormFallsBackToBoard00Too) {
    bool result = false;
    const auto rows = found(table, 0x8020, 0x77, &result);
    EXPECT_TRUE(result);
    ASSERT_EQ(rows.size(), 1u);
    EXPECT_EQ(rows[0].bdid(), "00");
}

TEST_F(CpidTable, FindWithEmptyCallbackReturnsFalseEvenWhenARowMatches) {
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8020, 0x0C), Callback()));
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8020, 0x0C), nullptr));
}

TEST_F(CpidTable, FindWithoutMatchLeavesTheOutputRowUntouched) {
    PRuntimeInfoCpid row("1111", "22", "kept", "net", "prod", true);
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x1234, 0x01), row));
    EXPECT_EQ(row.cpid(), "1111");
    EXPECT_EQ(row.bdid(), "22");
    EXPECT_EQ(row.mode(), "kept");
    EXPECT_EQ(row.network(), "net");
    EXPECT_EQ(row.product(), "prod");
    EXPECT_TRUE(row.support());
}

TEST_F(CpidTable, FindOverwritesEveryFieldOfTheOutputRow) {
    PRuntimeInfoCpid row("1111", "22", "old", "old", "old", false);
    ASSERT_TRUE(table.find(NDeviceInfoRecovery(0x7000, 0x00), row));
    EXPECT_EQ(row.cpid(), "7000");
    EXPECT_EQ(row.bdid(), "00");
    EXPECT_EQ(row.mode(), "");
    EXPECT_EQ(row.network(), "");
    EXPECT_EQ(row.product(), "");
    EXPECT_FALSE(row.support());
}

TEST_F(CpidTable, ModeIPad2With32NMIsStoredAsIPad2) {
    const PRuntimeInfoCpid row = lookup(table, 0x8942, 0x00);
    EXPECT_EQ(row.mode(), "iPad 2");
    // Only the mode is rewritten.
    EXPECT_EQ(row.network(), "iPad 2(32NM)");
    EXPECT_EQ(row.product(), "iPad 2(32NM)");
}

TEST_F(CpidTable, ModeIPad2WithLowerCase32nmIsStoredUnchanged) {
    EXPECT_EQ(lookup(table, 0x8942, 0x02).mode(), "iPad 2(32nm)");
}

TEST_F(CpidTable, ModeIPhoneXSMaxChinaIsStoredAsIPhoneXSMax) {
    const PRuntimeInfoCpid row = lookup(table, 0x8020, 0x18);
    EXPECT_EQ(row.mode(), "iPhone XS Max");
    EXPECT_EQ(row.network(), "iPhone XS Max(China)");
    EXPECT_EQ(row.product(), "iPhone XS Max(China)");
}

TEST_F(CpidTable, ModeIPhoneXSMaxWithLowerCaseChinaIsStoredUnchanged) {
    EXPECT_EQ(lookup(table, 0x8020, 0x1A).mode(), "iPhone XS Max(china)");
}

TEST_F(CpidTable, ModeIPhone4RevAIsStoredAsIPhone4) {
    const PRuntimeInfoCpid row = lookup(table, 0x8930, 0x06);
    EXPECT_EQ(row.mode(), "iPhone 4");
    EXPECT_EQ(row.network(), "iPhone 4(Rev A)");
    EXPECT_EQ(row.product(), "iPhone 4(Rev A)");
}

TEST_F(CpidTable, OnlyTheExactFullModeTextIsRewritten) {
    EXPECT_EQ(lookup(table, 0x8930, 0x08).mode(), " iPhone 4(Rev A)");
}

TEST_F(CpidTable, AppendedRowsAreNotNormalised) {
    table.append(PRuntimeInfoCpid("ABCD", "00", "iPad 2(32NM)", "", "", false));
    EXPECT_EQ(lookup(table, 0xABCD, 0x00).mode(), "iPad 2(32NM)");
}

TEST_F(CpidTable, EveryChildElementIsARowWhateverItsName) {
    const PRuntimeInfoCpid row = lookup(table, 0x8960, 0x02);
    EXPECT_EQ(row.mode(), "iPhone 5s");
    EXPECT_EQ(row.product(), "iPhone6,2");
}

TEST_F(CpidTable, MissingAttributesGiveEmptyTextsAndNoSupport) {
    const PRuntimeInfoCpid row = lookup(table, 0x7000, 0x00);
    EXPECT_TRUE(row.mode().empty());
    EXPECT_TRUE(row.network().empty());
    EXPECT_TRUE(row.product().empty());
    EXPECT_FALSE(row.support());
}

TEST_F(CpidTable, SupportFollowsTheParsersBooleanRule) {
    EXPECT_TRUE(lookup(table, 0x8003, 0x01).support());  // true
    EXPECT_TRUE(lookup(table, 0x8003, 0x02).support());  // Yes
    EXPECT_TRUE(lookup(table, 0x8003, 0x03).support());  // 1
    EXPECT_TRUE(lookup(table, 0x8003, 0x04).support());  // T
    EXPECT_FALSE(lookup(table, 0x8003, 0x05).support()); // false
    EXPECT_FALSE(lookup(table, 0x8003, 0x06).support()); // 0
    EXPECT_FALSE(lookup(table, 0x8003, 0x07).support()); // no
    EXPECT_FALSE(lookup(table, 0x8003, 0x08).support()); // empty
    EXPECT_FALSE(lookup(table, 0x8003, 0x09).support()); // missing
}

TEST_F(CpidTable, FormatOnAMissingFileEmptiesTheTableAndReturnsFalse) {
    ASSERT_TRUE(anyRow(table, 0x8020, 0x0C));
    EXPECT_FALSE(table.format(missingTable().c_str()));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x0C));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x00));
}

TEST_F(CpidTable, FormatOnAMalformedFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(tableData("malformed.xml").c_str()));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x0C));
}

TEST_F(CpidTable, FormatOnAnEmptyFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(tableData("empty.xml").c_str()));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x0C));
}

TEST_F(CpidTable, FormatOnADirectoryEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(PALLIX_TEST_DATA_DIR));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x0C));
}

TEST_F(CpidTable, FormatOnAnEmptyPathEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(NString()));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x0C));
}

TEST_F(CpidTable, FormatWithoutTheRootReturnsTrueAndLeavesTheTableEmpty) {
    EXPECT_TRUE(table.format(tableData("cpid-wrong-root.xml").c_str()));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x0C));
}

TEST_F(CpidTable, RootMustBeTheDocumentsOwnChild) {
    EXPECT_TRUE(table.format(tableData("cpid-nested-root.xml").c_str()));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x0C));
}

TEST_F(CpidTable, ReloadReplacesTheEarlierRows) {
    ASSERT_TRUE(table.format(tableData("cpid-reload.xml").c_str()));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x0C));
    EXPECT_FALSE(anyRow(table, 0x8020, 0x00));
    EXPECT_EQ(lookup(table, 0x8101, 0x0C).mode(), "iPhone 12 Pro");
}

TEST_F(CpidTable, LoadingTheSameFileTwiceDoesNotDoubleTheRows) {
    ASSERT_TRUE(table.format(tableData("cpid-edges.xml").c_str()));
    EXPECT_EQ(lookup(table, 0x8020, 0x0C).mode(), "iPhone XR");
    EXPECT_EQ(lookup(table, 0x8020, 0x0E).mode(), "iPhone XS");
}

TEST_F(CpidTable, AppendedRowComesAfterTheLoadedRows) {
    table.append(PRuntimeInfoCpid("8020", "0C", "appended", "", "", false));
    EXPECT_EQ(lookup(table, 0x8020, 0x0C).mode(), "iPhone XR");
    table.append(PRuntimeInfoCpid("8030", "0A", "iPhone 11 Pro Max", "Global", "iPhone12,5", true));
    const PRuntimeInfoCpid row = lookup(table, 0x8030, 0x0A);
    EXPECT_EQ(row.product(), "iPhone12,5");
    EXPECT_TRUE(row.support());
}

TEST(Cpid, EmptyTableFindsNothing) {
    PRuntimeCpid table;
    PRuntimeInfoCpid row;
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8020, 0x0C), row));
    bool called = false;
    EXPECT_FALSE(table.find(NDeviceInfoRecovery(0x8020, 0x0C),
                            [&called](const PRuntimeInfoCpid&) { called = true; }));
    EXPECT_FALSE(called);
}

TEST(Cpid, SampleTableAnswersForChip8101) {
    PRuntimeCpid table;
    ASSERT_TRUE(table.format(sampleTable("cpid.xml").c_str()));
    const PRuntimeInfoCpid specific = lookup(table, 0x8101, 0x0C);
    EXPECT_EQ(specific.bdid(), "0C");
    EXPECT_EQ(specific.mode(), "iPhone 12 Pro");
    const PRuntimeInfoCpid fallback = lookup(table, 0x8101, 0x3E);
    EXPECT_EQ(fallback.bdid(), "00");
    EXPECT_EQ(fallback.mode(), "iPhone 12");
    // The sample lists the three folded variants.
    EXPECT_EQ(lookup(table, 0x8020, 0x18).mode(), "iPhone XS Max");
    EXPECT_EQ(lookup(table, 0x8942, 0x00).mode(), "iPad 2");
    EXPECT_EQ(lookup(table, 0x8930, 0x06).mode(), "iPhone 4");
}

TEST(Cpid, SampleTableHasADefaultRowForEveryChip) {
    // Every chip of the sample resolves for a board that no row names.
    PRuntimeCpid table;
    ASSERT_TRUE(table.format(sampleTable("cpid.xml").c_str()));
    const std::string text = TemporaryDirectory::read(sampleTable("cpid.xml"));
    std::size_t rows = 0;
    for (std::size_t at = text.find("CPID=\""); at != std::string::npos;
         at = text.find("CPID=\"", at + 1)) {
        ++rows;
        const unsigned int chip =
            static_cast<unsigned int>(std::stoul(text.substr(at + 6, 4), nullptr, 16));
        PRuntimeInfoCpid row;
        ASSERT_TRUE(table.find(NDeviceInfoRecovery(chip, 0xFE), row)) << std::hex << chip;
        EXPECT_EQ(row.bdid(), "00");
    }
    EXPECT_GE(rows, 40u);
}

TEST(Cpid, RootOwnsOneTableThatAnswersLookups) {
    PRuntimeCpid* table = PRuntime::getInstance()->cpid();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(PRuntime::getInstance()->cpid(), table);
    ASSERT_TRUE(table->format(sampleTable("cpid.xml").c_str()));
    EXPECT_EQ(lookup(*table, 0x8020, 0x0C).mode(), "iPhone XR");
    PRuntime::freeInstance();
}

TEST(Cpid, CallsGoThroughTheVirtualOperations) {
    // A subclass that counts appends sees every row that format reads.
    class Counting : public PRuntimeCpid {
    public:
        void append(const PRuntimeInfoCpid& row) override {
            ++appended;
            PRuntimeCpid::append(row);
        }
        int appended = 0;
    };
    Counting table;
    ASSERT_TRUE(table.format(tableData("cpid-reload.xml").c_str()));
    EXPECT_EQ(table.appended, 1);
}

TEST(InfoCpid, DefaultRowIsEmptyAndUnsupported) {
    const PRuntimeInfoCpid row;
    EXPECT_TRUE(row.cpid().empty());
    EXPECT_TRUE(row.bdid().empty());
    EXPECT_TRUE(row.mode().empty());
    EXPECT_TRUE(row.network().empty());
    EXPECT_TRUE(row.product().empty());
    EXPECT_FALSE(row.support());
}

TEST(InfoCpid, ConstructorTakesTheSixValuesInOrder) {
    const PRuntimeInfoCpid row("8110", "0C", "iPhone 13 Pro", "Global", "iPhone14,2", true);
    EXPECT_EQ(row.cpid(), "8110");
    EXPECT_EQ(row.bdid(), "0C");
    EXPECT_EQ(row.mode(), "iPhone 13 Pro");
    EXPECT_EQ(row.network(), "Global");
    EXPECT_EQ(row.product(), "iPhone14,2");
    EXPECT_TRUE(row.support());
}

TEST(InfoCpid, CopiesAreIndependent) {
    PRuntimeInfoCpid original("8110", "0C", "iPhone 13 Pro", "Global", "iPhone14,2", true);
    PRuntimeInfoCpid copy(original);
    original = PRuntimeInfoCpid();
    EXPECT_EQ(copy.mode(), "iPhone 13 Pro");
    EXPECT_TRUE(original.mode().empty());
    PRuntimeInfoCpid assigned;
    assigned = copy;
    EXPECT_EQ(assigned.product(), "iPhone14,2");
    EXPECT_TRUE(assigned.support());
}

TEST(InfoCpid, IsMatchIsExactAndCaseSensitive) {
    const PRuntimeInfoCpid row("8020", "0C", "iPhone XR", "", "", true);
    EXPECT_TRUE(row.isMatch("8020", "0C"));
    EXPECT_FALSE(row.isMatch("8020", "0c"));
    EXPECT_FALSE(row.isMatch("8020", "C"));
    EXPECT_FALSE(row.isMatch("08020", "0C"));
    EXPECT_FALSE(row.isMatch("8020", "00"));
    EXPECT_FALSE(row.isMatch("", ""));
    EXPECT_TRUE(PRuntimeInfoCpid().isMatch("", ""));
}

TEST(InfoCpid, VirtualOperationsKeepTheirSlots) {
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCpid::isMatch), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCpid::cpid), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCpid::bdid), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCpid::mode), 6u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCpid::network), 7u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCpid::product), 8u);
    EXPECT_EQ(virtualSlot(&PRuntimeInfoCpid::support), 9u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeInfoCpid>);
}

TEST(Cpid, VirtualOperationsKeepTheirSlots) {
    using FindWithCallback =
        bool (PRuntimeCpid::*)(const NDeviceInfoRecovery&, const Callback&) const;
    using FindIntoRow = bool (PRuntimeCpid::*)(const NDeviceInfoRecovery&, PRuntimeInfoCpid&) const;
    EXPECT_EQ(virtualSlot(&PRuntimeCpid::format), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeCpid::append), 4u);
    EXPECT_EQ(virtualSlot(static_cast<FindWithCallback>(&PRuntimeCpid::find)), 5u);
    EXPECT_EQ(virtualSlot(static_cast<FindIntoRow>(&PRuntimeCpid::find)), 6u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeCpid>);
}
