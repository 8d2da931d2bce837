// The names the status, tools and directory maps hold, as a caller that shows the whole
// configuration sees them.

#include "ConfigTestSupport.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

using namespace pallix::test;

namespace {

class ConfigTraversalTest : public ConfigTest {
protected:
    void SetUp() override {
        ConfigTest::SetUp();
        config()->initialize();
    }
};

} // namespace

TEST_F(ConfigTraversalTest, SettingTraversalListsStoredNamesInNameOrder) {
    config()->setSettingStatus("Zeta", true);
    config()->setSettingStatus("Alpha", false);
    std::vector<std::pair<std::string, bool>> seen;
    config()->settingStatusTraverse([&seen](const NString& name, bool status) {
        seen.emplace_back(name.toStdString(), status);
    });
    // An update at start-up stores KeepFirmwareCache; the two set here come in name order.
    std::vector<std::pair<std::string, bool>> expected;
    for (const auto& [name, status] : record().status) {
        expected.emplace_back(name.toStdString(), status);
    }
    EXPECT_EQ(seen, expected);
    EXPECT_NE(std::find(seen.begin(), seen.end(), std::make_pair(std::string("Zeta"), true)),
              seen.end());
    EXPECT_NE(std::find(seen.begin(), seen.end(), std::make_pair(std::string("Alpha"), false)),
              seen.end());
}

TEST_F(ConfigTraversalTest, ASettingAnsweredButNeverStoredIsNotListed) {
    std::vector<std::string> seen;
    config()->settingStatusTraverse(
        [&seen](const NString& name, bool) { seen.push_back(name.toStdString()); });
    EXPECT_EQ(std::count(seen.begin(), seen.end(), "VerifySerialNumber"), 0);
    EXPECT_TRUE(config()->getSettingStatus("VerifySerialNumber"));
}

TEST_F(ConfigTraversalTest, ToolsTraversalListsEveryTool) {
    config()->setToolsHot("Ringtones", true);
    config()->setToolsHot("Backup", false);
    std::vector<std::pair<std::string, bool>> seen;
    config()->toolsHotTraverse(
        [&seen](const NString& name, bool hot) { seen.emplace_back(name.toStdString(), hot); });
    EXPECT_EQ(seen,
              (std::vector<std::pair<std::string, bool>>{{"Backup", false}, {"Ringtones", true}}));
}

TEST_F(ConfigTraversalTest, DirectoryTraversalListsTheDefaultsAndAddedNames) {
    config()->setConfigDirectory("Exports", "/tmp/exports");
    std::vector<std::pair<std::string, std::string>> seen;
    config()->configDirectoryTraverse([&seen](const NString& name, const NString& path) {
        seen.emplace_back(name.toStdString(), path.toStdString());
    });
    std::vector<std::string> names;
    for (const auto& entry : seen) {
        names.push_back(entry.first);
    }
    EXPECT_EQ(names, (std::vector<std::string>{"Backup", "Data", "Exports"}));
    EXPECT_EQ(seen[1].second, defaultDataDirectory());
    EXPECT_EQ(seen[2].second, config()->getConfigDirectory("Exports").toStdString());
}
