#include "TableFiles.h"
#include "VirtualSlot.h"

#include "PRuntime.h"
#include "PRuntimePluginMapping.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using pallix::test::missingTable;
using pallix::test::sampleTable;
using pallix::test::tableData;
using pallix::test::virtualSlot;

namespace {

using Callback = std::function<void(const NString&)>;

// The mapped text of the version through the output form, or "<none>".
std::string mapped(const PRuntimePluginMapping& table, const NString& version) {
    NString out("<none>");
    const bool result = table.find(version, out);
    EXPECT_EQ(result, out != "<none>");
    return out.toStdString();
}

// Every value that the callback form hands over.
std::vector<std::string> called(const PRuntimePluginMapping& table, const NString& version,
                                bool* result = nullptr) {
    std::vector<std::string> values;
    const bool matched = table.find(
        version, [&values](const NString& value) { values.push_back(value.toStdString()); });
    if (result != nullptr) {
        *result = matched;
    }
    return values;
}

class MappingTable : public ::testing::Test {
protected:
    void SetUp() override { ASSERT_TRUE(table.format(tableData("mapping-edges.xml").c_str())); }
    PRuntimePluginMapping table;
};

} // namespace

TEST_F(MappingTable, ChildWithAnEmptyMappingIsNotStored) {
    // 15.7 is first written with an empty mapping, which is skipped, so the next one counts.
    EXPECT_EQ(mapped(table, "15.7"), "15.6");
}

TEST_F(MappingTable, ChildWithVersionButNoMappingIsNotStoredAndNotFound) {
    EXPECT_EQ(mapped(table, "14.8"), "<none>");
    bool result = true;
    EXPECT_TRUE(called(table, "14.8", &result).empty());
    EXPECT_FALSE(result);
}

TEST_F(MappingTable, ChildWithoutVersionIsSkipped) {
    // Neither a missing nor an empty version becomes a key.
    PRuntimePluginMapping only;
    ASSERT_TRUE(only.format(tableData("mapping-edges.xml").c_str()));
    EXPECT_EQ(mapped(only, "13.0"), "<none>");
    EXPECT_EQ(mapped(only, "12.0"), "<none>");
}

TEST_F(MappingTable, OfTwoChildrenWithTheSameVersionTheFirstMappingIsReturned) {
    EXPECT_EQ(mapped(table, "16.4.1"), "16.4");
    bool result = false;
    EXPECT_EQ(called(table, "16.4.1", &result), std::vector<std::string>{"16.4"});
    EXPECT_TRUE(result);
}

TEST_F(MappingTable, EveryChildElementIsAMappingWhateverItsName) {
    EXPECT_EQ(mapped(table, "17.0"), "16.7");
}

TEST_F(MappingTable, NonAsciiTextsAreKeptVerbatim) {
    EXPECT_EQ(mapped(table, "Beta 2"), "ベータ");
}

TEST_F(MappingTable, VersionMustMatchExactly) {
    EXPECT_EQ(mapped(table, "16.4"), "<none>");
    EXPECT_EQ(mapped(table, "16.4.10"), "<none>");
    EXPECT_EQ(mapped(table, "beta 2"), "<none>");
    EXPECT_EQ(mapped(table, " 17.0"), "<none>");
}

TEST_F(MappingTable, FindWithAnEmptyVersionReturnsFalseAndKeepsTheOutput) {
    NString out("previous");
    EXPECT_FALSE(table.find("", out));
    EXPECT_EQ(out, "previous");
    EXPECT_FALSE(table.find(NString(), out));
    EXPECT_EQ(out, "previous");
}

TEST_F(MappingTable, FindWithAnEmptyVersionDoesNotCallTheCallback) {
    bool result = true;
    EXPECT_TRUE(called(table, "", &result).empty());
    EXPECT_FALSE(result);
}

TEST_F(MappingTable, FindWithAnEmptyCallbackReturnsFalse) {
    EXPECT_FALSE(table.find("16.4.1", Callback()));
    EXPECT_FALSE(table.find("16.4.1", nullptr));
}

TEST_F(MappingTable, UnknownVersionReturnsFalseAndKeepsTheOutput) {
    NString out("previous");
    EXPECT_FALSE(table.find("99.0", out));
    EXPECT_EQ(out, "previous");
}

TEST_F(MappingTable, FormatOnAMissingFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(missingTable().c_str()));
    EXPECT_EQ(mapped(table, "16.4.1"), "<none>");
    EXPECT_EQ(mapped(table, "17.0"), "<none>");
}

TEST_F(MappingTable, FormatOnAMalformedFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(tableData("malformed.xml").c_str()));
    EXPECT_EQ(mapped(table, "16.4.1"), "<none>");
}

TEST_F(MappingTable, FormatOnAnEmptyFileEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(tableData("empty.xml").c_str()));
    EXPECT_EQ(mapped(table, "16.4.1"), "<none>");
}

TEST_F(MappingTable, FormatOnADirectoryEmptiesTheTableAndReturnsFalse) {
    EXPECT_FALSE(table.format(PALLIX_TEST_DATA_DIR));
    EXPECT_EQ(mapped(table, "16.4.1"), "<none>");
}

TEST_F(MappingTable, FormatWithoutTheRootReturnsTrueAndLeavesTheTableEmpty) {
    EXPECT_TRUE(table.format(tableData("mapping-wrong-root.xml").c_str()));
    EXPECT_EQ(mapped(table, "16.4.1"), "<none>");
}

TEST_F(MappingTable, ReloadReplacesTheEarlierMappings) {
    ASSERT_TRUE(table.format(tableData("mapping-reload.xml").c_str()));
    EXPECT_EQ(mapped(table, "16.4.1"), "<none>");
    EXPECT_EQ(mapped(table, "13.7"), "13.7");
}

TEST(PluginMapping, SampleTableMapsVersions) {
    PRuntimePluginMapping table;
    ASSERT_TRUE(table.format(sampleTable("plugin-mapping.xml").c_str()));
    EXPECT_EQ(mapped(table, "16.4.1"), "16.4");
    EXPECT_EQ(mapped(table, "17.1.2"), "16.7");
    EXPECT_EQ(mapped(table, "12.5.7"), "12.4");
}

TEST(PluginMapping, RootOwnsOneTable) {
    PRuntimePluginMapping* table = PRuntime::getInstance()->pluginMapping();
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(PRuntime::getInstance()->pluginMapping(), table);
    ASSERT_TRUE(table->format(sampleTable("plugin-mapping.xml").c_str()));
    EXPECT_EQ(mapped(*table, "15.0"), "15.0");
    PRuntime::freeInstance();
}

TEST(PluginMapping, VirtualOperationsKeepTheirSlots) {
    using FindWithCallback = bool (PRuntimePluginMapping::*)(const NString&, const Callback&) const;
    using FindIntoText = bool (PRuntimePluginMapping::*)(const NString&, NString&) const;
    EXPECT_EQ(virtualSlot(&PRuntimePluginMapping::format), 3u);
    EXPECT_EQ(virtualSlot(static_cast<FindWithCallback>(&PRuntimePluginMapping::find)), 4u);
    EXPECT_EQ(virtualSlot(static_cast<FindIntoText>(&PRuntimePluginMapping::find)), 5u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimePluginMapping>);
}
