// Setting flags, tools-hot and auto-import flags, and the scalar preferences.

#include "ConfigTestSupport.h"

#include <climits>
#include <utility>

using namespace pallix::test;

namespace {

class ConfigSettingsTest : public ConfigTest {
protected:
    void SetUp() override {
        ConfigTest::SetUp();
        config()->initialize();
    }

    // The flag `name` of the list element `list` in the written file, or "" when absent.
    std::string writtenFlag(const char* list, const char* name) const {
        pugi::xml_document document;
        return loadWritten(document)
            .child(list)
            .find_child_by_attribute("Item", "Name", name)
            .attribute("Status")
            .value();
    }
};

} // namespace

TEST_F(ConfigSettingsTest, TheThirteenSettingsHaveTheirTableDefaults) {
    const std::vector<std::pair<const char*, bool>> defaults{
        {"ApplicationAutorun", false},    {"WindowCloseSelect", false},
        {"WindowCloseOperate", false},    {"WindowAnimation", false},
        {"WiFiConnect", false},           {"ITunesAutorun", true},
        {"KeepFirmwareCache", true},      {"RelationIpa", false},
        {"VerifySerialNumber", true},     {"VerifyPaymentConfirm", false},
        {"VerifyTimecardConfirm", false}, {"ToolsProcessSkipService", true},
        {"RESTORE_FACTORY", false}};
    for (const auto& setting : defaults) {
        EXPECT_EQ(config()->getSettingStatus(setting.first), setting.second) << setting.first;
    }
    EXPECT_EQ(record().status.size(), 13u);
}

TEST_F(ConfigSettingsTest, SettingNamesAreCaseSensitive) {
    EXPECT_FALSE(config()->getSettingStatus("itunesautorun"));
    EXPECT_FALSE(config()->getSettingStatus("Restore_Factory"));
    EXPECT_TRUE(config()->getSettingStatus("ITunesAutorun"));
}

TEST_F(ConfigSettingsTest, ReadingATableSettingRecordsItAndTheNextSaveWritesIt) {
    EXPECT_EQ(record().status.count("ITunesAutorun"), 0u);
    EXPECT_TRUE(config()->getSettingStatus("ITunesAutorun"));
    EXPECT_TRUE(record().status.at("ITunesAutorun"));
    EXPECT_FALSE(exists(currentFile()));
    config()->save();
    EXPECT_EQ(writtenFlag("Status", "ITunesAutorun"), "true");
}

TEST_F(ConfigSettingsTest, UnknownSettingReadsFalseAndIsRecordedFalse) {
    EXPECT_FALSE(config()->getSettingStatus("SomethingNew"));
    ASSERT_EQ(record().status.count("SomethingNew"), 1u);
    EXPECT_FALSE(record().status.at("SomethingNew"));
}

TEST_F(ConfigSettingsTest, StoredValueWinsOverTheTable) {
    config()->setSettingStatus("KeepFirmwareCache", false);
    EXPECT_FALSE(config()->getSettingStatus("KeepFirmwareCache"));
    config()->setSettingStatus("WiFiConnect", true);
    EXPECT_TRUE(config()->getSettingStatus("WiFiConnect"));
}

TEST_F(ConfigSettingsTest, SetSettingStatusWritesTheFileAtOnce) {
    config()->setSettingStatus("RESTORE_FACTORY", true);
    EXPECT_EQ(writtenFlag("Status", "RESTORE_FACTORY"), "true");
    config()->setSettingStatus("RESTORE_FACTORY", false);
    EXPECT_EQ(writtenFlag("Status", "RESTORE_FACTORY"), "false");
}

TEST_F(ConfigSettingsTest, PrivateSetterReplacesWithoutSaving) {
    CountingConfig counting;
    counting._set_setting_status("WindowAnimation", true);
    counting._set_setting_status("WindowAnimation", false);
    EXPECT_EQ(counting.saves, 0);
    EXPECT_FALSE(record().status.at("WindowAnimation"));
    EXPECT_EQ(record().status.size(), 1u);
}

TEST_F(ConfigSettingsTest, PrivateGetterRecordsTheGivenDefaultOnlyWhenAbsent) {
    CountingConfig counting;
    EXPECT_TRUE(counting._get_setting_status("Custom", true));
    EXPECT_TRUE(record().status.at("Custom"));
    EXPECT_TRUE(counting._get_setting_status("Custom", false));
    EXPECT_EQ(counting.saves, 0);
}

TEST_F(ConfigSettingsTest, PublicGetterAsksThePrivateOneThroughTheVirtualTable) {
    class Overriding : public PRuntimeConfig {
    public:
        bool _get_setting_status(const NString& name, bool defaultStatus) const override {
            asked = name;
            given = defaultStatus;
            return !defaultStatus;
        }
        mutable NString asked;
        mutable bool given = false;
    } overriding;
    EXPECT_FALSE(overriding.getSettingStatus("VerifySerialNumber"));
    EXPECT_EQ(overriding.asked, NString("VerifySerialNumber"));
    EXPECT_TRUE(overriding.given);
}

TEST_F(ConfigSettingsTest, PublicSetterGoesThroughThePrivateOneThenSaves) {
    CountingConfig counting;
    counting.setSettingStatus("RelationIpa", true);
    EXPECT_EQ(counting.calls,
              (std::vector<std::string>{"_set_setting_status:RelationIpa", "save"}));
}

TEST_F(ConfigSettingsTest, ToolsAreHotUntilStoredOtherwise) {
    EXPECT_TRUE(config()->getToolsHot("Screen Recorder"));
    EXPECT_TRUE(record().tools.at("Screen Recorder"));
    config()->setToolsHot("Screen Recorder", false);
    EXPECT_FALSE(config()->getToolsHot("Screen Recorder"));
    EXPECT_EQ(writtenFlag("Tools", "Screen Recorder"), "false");
    EXPECT_TRUE(config()->getToolsHot("Another"));
}

TEST_F(ConfigSettingsTest, SetToolsHotReplacesTheEntry) {
    config()->setToolsHot("T", false);
    config()->setToolsHot("T", true);
    EXPECT_EQ(record().tools.size(), 1u);
    EXPECT_TRUE(config()->getToolsHot("T"));
}

TEST_F(ConfigSettingsTest, RingtoneAutoImportIsOnWithoutRecordingAKey) {
    EXPECT_TRUE(config()->getAutoImportRingtone());
    EXPECT_TRUE(record().autoImport.empty());
    config()->save();
    pugi::xml_document document;
    EXPECT_FALSE(loadWritten(document).child("AutoImport").first_child());
}

TEST_F(ConfigSettingsTest, SetAutoImportRingtoneStoresAndWritesTheKey) {
    config()->setAutoImportRingtone(false);
    EXPECT_FALSE(config()->getAutoImportRingtone());
    EXPECT_EQ(writtenFlag("AutoImport", "Ringtone"), "false");
    config()->setAutoImportRingtone(true);
    EXPECT_TRUE(config()->getAutoImportRingtone());
    EXPECT_EQ(record().autoImport.size(), 1u);
}

TEST_F(ConfigSettingsTest, NegativeDownloadNumberIsStoredAsGiven) {
    config()->setSameTimeDownloadNumber(-5);
    EXPECT_EQ(config()->getSameTimeDownloadNumber(), -5);
    EXPECT_EQ(record().sameTimeDownloadNumber, -5);
    record().sameTimeDownloadNumber = 0;
    config()->load_new();
    EXPECT_EQ(config()->getSameTimeDownloadNumber(), -5);
}

TEST_F(ConfigSettingsTest, DownloadNumberIsSignExtendedAndReadBackTruncated) {
    config()->setSameTimeDownloadNumber(INT_MIN);
    EXPECT_EQ(record().sameTimeDownloadNumber, static_cast<long long>(INT_MIN));
    record().sameTimeDownloadNumber = 0x100000007ll;
    EXPECT_EQ(config()->getSameTimeDownloadNumber(), 7);
}

TEST_F(ConfigSettingsTest, LargeValuesAreStoredUnchecked) {
    config()->setDownloadMaxSpeed(LLONG_MAX);
    EXPECT_EQ(config()->getDownloadMaxSpeed(), LLONG_MAX);
    config()->setPopupTimeADAPP(ULLONG_MAX);
    EXPECT_EQ(config()->getPopupTimeADAPP(), ULLONG_MAX);
    pugi::xml_document document;
    EXPECT_STREQ(loadWritten(document).child("PopupTimeADAPP").attribute("Value").value(),
                 "18446744073709551615");
}

TEST_F(ConfigSettingsTest, EmptySkinReadsAsTheDefaultSkin) {
    config()->setLastSkin("");
    EXPECT_TRUE(record().lastSkin.empty());
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
}

TEST_F(ConfigSettingsTest, SkinIsStoredWithoutValidation) {
    config()->setLastSkin("not a colour");
    EXPECT_EQ(config()->getLastSkin(), NString("not a colour"));
}

TEST_F(ConfigSettingsTest, LanguageAndRestoreCoreAreStoredAsIntegers) {
    config()->setLastLanguage(EPALLIX_RUNTIME_LANGUAGE(7));
    config()->setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE(3));
    EXPECT_EQ(static_cast<int>(config()->getLastLanguage()), 7);
    EXPECT_EQ(static_cast<int>(config()->getRestoreCore()), 3);
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_STREQ(root.child("LastLanguage").attribute("Value").value(), "7");
    EXPECT_STREQ(root.child("RestoreCore").attribute("Value").value(), "3");
}

TEST_F(ConfigSettingsTest, EverySetterSavesExactlyOnce) {
    CountingConfig c;
    const std::vector<std::pair<const char*, std::function<void()>>> setters{
        {"setPopupTimeADAPP", [&c] { c.setPopupTimeADAPP(5); }},
        {"setSameTimeDownloadNumber", [&c] { c.setSameTimeDownloadNumber(2); }},
        {"setDownloadMaxSpeed", [&c] { c.setDownloadMaxSpeed(100); }},
        {"setLastSkin", [&c] { c.setLastSkin("FFFFFF"); }},
        {"setLastLanguage", [&c] { c.setLastLanguage(EPALLIX_RUNTIME_LANGUAGE(1)); }},
        {"setRestoreCore", [&c] { c.setRestoreCore(EPALLIX_RUNTIME_RESTORE_CORE(1)); }},
        {"setConfigDirectory", [&c] { c.setConfigDirectory("Extra", "/extra"); }},
        {"setSettingStatus", [&c] { c.setSettingStatus("WiFiConnect", true); }},
        {"setToolsHot", [&c] { c.setToolsHot("Tool", false); }},
        {"setAutoImportRingtone", [&c] { c.setAutoImportRingtone(false); }},
        {"setSettingStatus again", [&c] { c.setSettingStatus("WiFiConnect", true); }},
    };
    for (const auto& setter : setters) {
        c.saves = 0;
        setter.second();
        EXPECT_EQ(c.saves, 1) << setter.first;
    }
}

TEST_F(ConfigSettingsTest, NoGetterSaves) {
    CountingConfig c;
    c.getPopupTimeADAPP();
    c.getSameTimeDownloadNumber();
    c.getDownloadMaxSpeed();
    c.getLastSkin();
    c.getLastLanguage();
    c.getRestoreCore();
    c.getConfigDirectory("Data");
    c.getSettingStatus("ITunesAutorun");
    c.getSettingStatus("Unknown");
    c._get_setting_status("Other", true);
    c.getToolsHot("Tool");
    c.getAutoImportRingtone();
    c.newInstall();
    c.newUpdate();
    c.version();
    EXPECT_EQ(c.saves, 0);
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigSettingsTest, EveryInstanceSharesTheOneRecord) {
    PRuntimeConfig first;
    PRuntimeConfig second;
    first.setSettingStatus("WindowCloseOperate", true);
    EXPECT_TRUE(second.getSettingStatus("WindowCloseOperate"));
    EXPECT_TRUE(config()->getSettingStatus("WindowCloseOperate"));
}

TEST_F(ConfigSettingsTest, NamesWithSpacesAndNonAsciiCharactersSurviveTheFile) {
    config()->setSettingStatus("Fenêtre animée 動畫", true);
    config()->setToolsHot("Outil « spécial »", false);
    record().status.clear();
    record().tools.clear();
    config()->load_new();
    EXPECT_TRUE(config()->getSettingStatus("Fenêtre animée 動畫"));
    EXPECT_FALSE(config()->getToolsHot("Outil « spécial »"));
}
