// Import of the configuration file of earlier releases.

#include "ConfigTestSupport.h"

#include <climits>
#include <filesystem>

using namespace pallix::test;

namespace {

class ConfigLegacyTest : public ConfigTest {
protected:
    // Every name the importer knows, with values other than the defaults where possible.
    std::string completeLegacyFile() const {
        return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
               "<Config>\n"
               "  <LastVersion Value=\"4.8.2\"/>\n"
               "  <PopupTimeADAPP Value=\"1700000000\"/>\n"
               "  <SameTimeDownloadNumber Value=\"5\"/>\n"
               "  <DownloadMaxSpeed Value=\"2048\"/>\n"
               "  <LastSkin Value=\"3399FF\"/>\n"
               "  <LastLanguage Value=\"4\"/>\n"
               "  <RestoreCore Value=\"2\"/>\n"
               "  <SelectClose Value=\"true\"/>\n"
               "  <CloseButton Value=\"true\"/>\n"
               "  <WifiConnect Value=\"true\"/>\n"
               "  <ITunesState Value=\"false\"/>\n"
               "  <SaveIpswCache Value=\"false\"/>\n"
               "  <RelationIpa Value=\"true\"/>\n"
               "  <VerifySerial Value=\"false\"/>\n"
               "  <WindowAnimation Value=\"true\"/>\n"
               "  <VerifyPro Value=\"true\"/>\n"
               "  <NumberCard Value=\"true\"/>\n"
               "  <UserDir Value=\"/Users/old/UserDir\"/>\n"
               "  <Directory>\n"
               "    <Item KEY=\"Data\" VALUE=\"" +
               scratch("Old Data ü") +
               "\"/>\n"
               "    <Item KEY=\"Ringtone\" VALUE=\"/Users/old/Tones\"/>\n"
               "  </Directory>\n"
               "  <Tools>\n"
               "    <Tool KEY=\"Cleaner\" VALUE=\"true\"/>\n"
               "    <Tool KEY=\"Flasher\" VALUE=\"false\"/>\n"
               "  </Tools>\n"
               "  <BackupList>\n"
               "    <Backup BackupCustom=\"/Volumes/Ext/Backups\"/>\n"
               "    <Backup BackupCustom=\"/Users/old//Backups/\"/>\n"
               "  </BackupList>\n"
               "  <CollectionList>\n"
               "    <Collection CollectionPath=\"/Users/old/Fav 1\" CollectionRoot=\"true\"/>\n"
               "    <Collection CollectionPath=\"/Users/old/Fav 2\" CollectionRoot=\"false\"/>\n"
               "  </CollectionList>\n"
               "  <AutoImport>\n"
               "    <Ringtone Value=\"false\"/>\n"
               "  </AutoImport>\n"
               "  <VirtualLocationList>\n"
               "    <Location X=\"31.2304\" Y=\"121.4737\" Location=\"上海\"/>\n"
               "    <Location X=\"-22.9068\" Y=\"-43.1729\" Location=\"Rio\"/>\n"
               "  </VirtualLocationList>\n"
               "  <LocationCollectList>\n"
               "    <Location X=\"51.5074\" Y=\"-0.1278\" Location=\"London\"/>\n"
               "  </LocationCollectList>\n"
               "</Config>\n";
    }
};

} // namespace

TEST_F(ConfigLegacyTest, EveryMappedNameArrivesAndTheCurrentFileHoldsIt) {
    writeLegacy(completeLegacyFile());
    writeVersion("4.8.2");
    PRuntimeConfig* c = config();
    c->initialize();
    EXPECT_FALSE(c->newUpdate());
    EXPECT_FALSE(exists(legacyFile()));
    ASSERT_TRUE(exists(currentFile()));
    EXPECT_FALSE(c->newInstall());

    // In memory.
    EXPECT_EQ(c->getPopupTimeADAPP(), 1700000000ull);
    EXPECT_EQ(c->getSameTimeDownloadNumber(), 5);
    EXPECT_EQ(c->getDownloadMaxSpeed(), 2048);
    EXPECT_EQ(c->getLastSkin(), NString("3399FF"));
    EXPECT_EQ(static_cast<int>(c->getRestoreCore()), 2);
    EXPECT_EQ(static_cast<int>(c->getLastLanguage()), 0);
    EXPECT_TRUE(c->getSettingStatus("WindowCloseSelect"));
    EXPECT_TRUE(c->getSettingStatus("WindowCloseOperate"));
    EXPECT_TRUE(c->getSettingStatus("WiFiConnect"));
    EXPECT_FALSE(c->getSettingStatus("ITunesAutorun"));
    EXPECT_FALSE(c->getSettingStatus("KeepFirmwareCache"));
    EXPECT_TRUE(c->getSettingStatus("RelationIpa"));
    EXPECT_FALSE(c->getSettingStatus("VerifySerialNumber"));
    EXPECT_TRUE(c->getSettingStatus("WindowAnimation"));
    EXPECT_TRUE(c->getSettingStatus("VerifyPaymentConfirm"));
    EXPECT_TRUE(c->getSettingStatus("VerifyTimecardConfirm"));
    EXPECT_EQ(c->getConfigDirectory("Data"), NString(scratch("Old Data ü")));
    EXPECT_EQ(c->getConfigDirectory("Ringtone"), NString("/Users/old/Tones"));
    EXPECT_EQ(c->getConfigDirectory("Backup"), NString(backupDirectory()));
    EXPECT_TRUE(c->getToolsHot("Cleaner"));
    EXPECT_FALSE(c->getToolsHot("Flasher"));
    EXPECT_EQ(customBackups(*c),
              (std::vector<std::string>{"/Volumes/Ext/Backups", "/Users/old//Backups/"}));
    EXPECT_EQ(fileFavourites(*c), (std::vector<std::pair<std::string, bool>>{
                                      {"/Users/old/Fav 1", true}, {"/Users/old/Fav 2", false}}));
    EXPECT_FALSE(c->getAutoImportRingtone());
    EXPECT_EQ(virtualLocations(*c),
              (std::vector<Place>{{31.2304, 121.4737, "上海"}, {-22.9068, -43.1729, "Rio"}}));
    EXPECT_EQ(locationFavourites(*c), (std::vector<Place>{{51.5074, -0.1278, "London"}}));

    // On disk, in the current format.
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_STREQ(root.child("LastVersion").attribute("Value").value(), "4.8.2");
    EXPECT_STREQ(root.child("PopupTimeADAPP").attribute("Value").value(), "1700000000");
    EXPECT_STREQ(root.child("SameTimeDownloadNumber").attribute("Value").value(), "5");
    EXPECT_STREQ(root.child("DownloadMaxSpeed").attribute("Value").value(), "2048");
    EXPECT_STREQ(root.child("LastSkin").attribute("Value").value(), "3399FF");
    EXPECT_STREQ(root.child("LastLanguage").attribute("Value").value(), "0");
    EXPECT_STREQ(root.child("RestoreCore").attribute("Value").value(), "2");
    const auto flag = [&root](const char* name) {
        return std::string(root.child("Status")
                               .find_child_by_attribute("Item", "Name", name)
                               .attribute("Status")
                               .value());
    };
    EXPECT_EQ(flag("WindowCloseSelect"), "true");
    EXPECT_EQ(flag("WindowCloseOperate"), "true");
    EXPECT_EQ(flag("WiFiConnect"), "true");
    EXPECT_EQ(flag("ITunesAutorun"), "false");
    EXPECT_EQ(flag("KeepFirmwareCache"), "false");
    EXPECT_EQ(flag("RelationIpa"), "true");
    EXPECT_EQ(flag("VerifySerialNumber"), "false");
    EXPECT_EQ(flag("WindowAnimation"), "true");
    EXPECT_EQ(flag("VerifyPaymentConfirm"), "true");
    EXPECT_EQ(flag("VerifyTimecardConfirm"), "true");
    EXPECT_EQ(childNames(root.child("Status")).size(), 10u);
    const pugi::xml_node directory = root.child("Directory");
    EXPECT_EQ(
        std::string(
            directory.find_child_by_attribute("Item", "Name", "Data").attribute("Path").value()),
        scratch("Old Data ü"));
    EXPECT_STREQ(
        directory.find_child_by_attribute("Item", "Name", "Ringtone").attribute("Path").value(),
        "/Users/old/Tones");
    EXPECT_STREQ(root.child("Tools")
                     .find_child_by_attribute("Item", "Name", "Cleaner")
                     .attribute("Status")
                     .value(),
                 "true");
    EXPECT_EQ(childNames(root.child("CustomBackup")).size(), 2u);
    EXPECT_STREQ(root.child("FileFavorites").first_child().attribute("Path").value(),
                 "/Users/old/Fav 1");
    EXPECT_STREQ(root.child("AutoImport")
                     .find_child_by_attribute("Item", "Name", "Ringtone")
                     .attribute("Status")
                     .value(),
                 "false");
    EXPECT_STREQ(root.child("VirtualLocation").first_child().attribute("Location").value(), "上海");
    EXPECT_EQ(root.child("VirtualLocation").first_child().attribute("X").as_double(), 31.2304);
    EXPECT_STREQ(root.child("LocationFavorites").first_child().attribute("Location").value(),
                 "London");
}

TEST_F(ConfigLegacyTest, UpdateAfterTheImportTurnsTheFirmwareCacheOnInMemoryOnly) {
    writeLegacy("<Config><LastVersion Value=\"4.8.2\"/><SaveIpswCache Value=\"false\"/></Config>");
    writeVersion("5.2.1");
    config()->initialize();
    EXPECT_TRUE(config()->newUpdate());
    EXPECT_TRUE(config()->getSettingStatus("KeepFirmwareCache"));
    pugi::xml_document document;
    EXPECT_STREQ(loadWritten(document)
                     .child("Status")
                     .find_child_by_attribute("Item", "Name", "KeepFirmwareCache")
                     .attribute("Status")
                     .value(),
                 "false");
    EXPECT_STREQ(loadWritten(document).child("LastVersion").attribute("Value").value(), "4.8.2");
}

TEST_F(ConfigLegacyTest, ImportedConfigurationIsReadFromTheCurrentFileNextTime) {
    writeLegacy(completeLegacyFile());
    config()->initialize();
    ASSERT_FALSE(exists(legacyFile()));
    CountingConfig second;
    second.initialize();
    EXPECT_EQ(second.calls.front(), "load_new");
    EXPECT_FALSE(second.newInstall());
    EXPECT_EQ(second.getLastSkin(), NString("3399FF"));
}

TEST_F(ConfigLegacyTest, EmptyConfigElementGivesTheLegacyDefaults) {
    writeLegacy("<Config/>");
    config()->load_old();
    const _PALLIX_RUNTIME_CONFIG& r = record();
    EXPECT_FALSE(r.newInstall);
    EXPECT_TRUE(r.status.at("ITunesAutorun"));
    EXPECT_TRUE(r.status.at("KeepFirmwareCache"));
    EXPECT_TRUE(r.status.at("VerifySerialNumber"));
    for (const char* name :
         {"WindowCloseSelect", "WindowCloseOperate", "WindowAnimation", "WiFiConnect",
          "RelationIpa", "VerifyPaymentConfirm", "VerifyTimecardConfirm"}) {
        EXPECT_FALSE(r.status.at(name)) << name;
    }
    EXPECT_EQ(r.status.size(), 10u);
    EXPECT_EQ(r.sameTimeDownloadNumber, 3);
    EXPECT_EQ(r.downloadMaxSpeed, 0);
    EXPECT_EQ(r.popupTimeADAPP, 0u);
    EXPECT_EQ(static_cast<int>(r.restoreCore), 0);
    EXPECT_TRUE(r.lastVersion.empty());
    EXPECT_TRUE(r.lastSkin.empty());
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
    EXPECT_EQ(r.directory.at("Data"), NString(""));
    EXPECT_EQ(r.directory.at("Backup"), NString(backupDirectory()));
    EXPECT_TRUE(r.tools.empty());
    EXPECT_TRUE(r.autoImport.empty());
    EXPECT_TRUE(r.customBackup.empty());
    EXPECT_TRUE(r.fileFavorites.empty());
    EXPECT_TRUE(r.virtualLocation.empty());
    EXPECT_TRUE(r.locationFavorites.empty());
}

TEST_F(ConfigLegacyTest, EmptyDataFromTheLegacyFileGetsTheDefaultAtStartUp) {
    writeLegacy("<Config/>");
    config()->initialize();
    EXPECT_EQ(config()->getConfigDirectory("Data"), NString(defaultDataDirectory()));
}

TEST_F(ConfigLegacyTest, SettingsWithoutALegacyCounterpartKeepTheirTableDefaults) {
    writeLegacy("<Config/>");
    config()->load_old();
    EXPECT_EQ(record().status.count("ApplicationAutorun"), 0u);
    EXPECT_EQ(record().status.count("ToolsProcessSkipService"), 0u);
    EXPECT_EQ(record().status.count("RESTORE_FACTORY"), 0u);
    EXPECT_FALSE(config()->getSettingStatus("ApplicationAutorun"));
    EXPECT_TRUE(config()->getSettingStatus("ToolsProcessSkipService"));
    EXPECT_FALSE(config()->getSettingStatus("RESTORE_FACTORY"));
}

TEST_F(ConfigLegacyTest, LanguageIsNotImported) {
    record().lastLanguage = EPALLIX_RUNTIME_LANGUAGE(9);
    writeLegacy("<Config><LastLanguage Value=\"4\"/></Config>");
    config()->load_old();
    EXPECT_EQ(static_cast<int>(record().lastLanguage), 9);
}

TEST_F(ConfigLegacyTest, DirectoryKeyDataWinsOverUserDir) {
    writeLegacy("<Config><UserDir Value=\"/user/dir\"/><Directory>"
                "<Item KEY=\"Data\" VALUE=\"/directory/data\"/></Directory></Config>");
    config()->load_old();
    EXPECT_EQ(record().directory.at("Data"), NString("/directory/data"));
}

TEST_F(ConfigLegacyTest, UserDirGivesDataWhenTheDirectoryTableLacksIt) {
    writeLegacy("<Config><UserDir Value=\"/user/dir\"/></Config>");
    config()->load_old();
    EXPECT_EQ(record().directory.at("Data"), NString("/user/dir"));
}

TEST_F(ConfigLegacyTest, FirstOfTwoDirectoryEntriesWithOneKeyWins) {
    writeLegacy("<Config><Directory><A KEY=\"Music\" VALUE=\"/first\"/>"
                "<B KEY=\"Music\" VALUE=\"/second\"/></Directory></Config>");
    config()->load_old();
    EXPECT_EQ(record().directory.at("Music"), NString("/first"));
}

TEST_F(ConfigLegacyTest, BackupFromTheDirectoryTableIsKept) {
    writeLegacy("<Config><Directory><Item KEY=\"Backup\" VALUE=\"/my/backups\"/></Directory>"
                "</Config>");
    config()->load_old();
    EXPECT_EQ(record().directory.at("Backup"), NString("/my/backups"));
}

TEST_F(ConfigLegacyTest, SpeedBeyondThirtyTwoBitsDoesNotArriveAsWritten) {
    writeLegacy("<Config><DownloadMaxSpeed Value=\"3000000000\"/></Config>");
    config()->load_old();
    EXPECT_NE(record().downloadMaxSpeed, 3000000000ll);
    EXPECT_LE(record().downloadMaxSpeed, static_cast<long long>(INT_MAX));
}

TEST_F(ConfigLegacyTest, NegativeSpeedIsSignExtended) {
    writeLegacy("<Config><DownloadMaxSpeed Value=\"-1\"/></Config>");
    config()->load_old();
    EXPECT_EQ(record().downloadMaxSpeed, -1ll);
}

TEST_F(ConfigLegacyTest, MalformedFileLeavesDefaultsButIsStillReplacedAndRemoved) {
    writeLegacy("<Config><LastSkin Value=\"123456\"></Config");
    CountingConfig counting;
    counting.initialize();
    EXPECT_FALSE(counting.newInstall());
    EXPECT_EQ(counting.getLastSkin(), NString("236EE7"));
    EXPECT_EQ(counting.getSameTimeDownloadNumber(), 3);
    EXPECT_EQ(counting.saves, 1);
    EXPECT_FALSE(exists(legacyFile()));
    pugi::xml_document document;
    EXPECT_STREQ(loadWritten(document).child("LastSkin").attribute("Value").value(), "236EE7");
}

TEST_F(ConfigLegacyTest, MalformedFileStillClearsTheNewInstallFlag) {
    record().newInstall = true;
    writeLegacy("not xml at all");
    config()->load_old();
    EXPECT_FALSE(record().newInstall);
    EXPECT_TRUE(record().status.empty());
    EXPECT_TRUE(record().directory.empty());
}

TEST_F(ConfigLegacyTest, FileWithoutConfigRootIsIgnored) {
    writeLegacy("<Nevor><LastSkin Value=\"123456\"/></Nevor>");
    record().lastSkin = "236EE7";
    config()->load_old();
    EXPECT_FALSE(record().newInstall);
    EXPECT_EQ(record().lastSkin, NString("236EE7"));
    EXPECT_TRUE(record().status.empty());
}

TEST_F(ConfigLegacyTest, ImportWritesNothingItself) {
    writeLegacy("<Config><LastSkin Value=\"123456\"/></Config>");
    const std::string before = TemporaryDirectory::read(legacyFile());
    CountingConfig counting;
    counting.load_old();
    EXPECT_EQ(counting.saves, 0);
    EXPECT_FALSE(exists(currentFile()));
    EXPECT_EQ(TemporaryDirectory::read(legacyFile()), before);
}

TEST_F(ConfigLegacyTest, ScalarsOverwrite) {
    record().lastSkin = "AAAAAA";
    record().sameTimeDownloadNumber = 8;
    record().lastVersion = "5.0.0";
    writeLegacy("<Config/>");
    config()->load_old();
    EXPECT_TRUE(record().lastSkin.empty());
    EXPECT_EQ(record().sameTimeDownloadNumber, 3);
    EXPECT_TRUE(record().lastVersion.empty());
}

TEST_F(ConfigLegacyTest, DictionariesNeverOverwrite) {
    record().status.emplace("WiFiConnect", false);
    record().tools.emplace("Cleaner", false);
    record().autoImport.emplace("Ringtone", true);
    record().directory.emplace("Data", "/kept");
    writeLegacy("<Config><WifiConnect Value=\"true\"/><Tools><T KEY=\"Cleaner\" VALUE=\"true\"/>"
                "</Tools><AutoImport><Ringtone Value=\"false\"/></AutoImport><Directory>"
                "<D KEY=\"Data\" VALUE=\"/imported\"/></Directory></Config>");
    config()->load_old();
    EXPECT_FALSE(record().status.at("WiFiConnect"));
    EXPECT_FALSE(record().tools.at("Cleaner"));
    EXPECT_TRUE(record().autoImport.at("Ringtone"));
    EXPECT_EQ(record().directory.at("Data"), NString("/kept"));
}

TEST_F(ConfigLegacyTest, ListsAppendWithoutChecks) {
    record().customBackup.emplace_back("/a");
    writeLegacy("<Config><BackupList><B BackupCustom=\"/a\"/><B BackupCustom=\"\"/><B/>"
                "</BackupList><LocationCollectList><L X=\"1\" Y=\"1\" Location=\"x\"/>"
                "<L X=\"1\" Y=\"1\" Location=\"y\"/></LocationCollectList></Config>");
    config()->load_old();
    EXPECT_EQ(customBackups(*config()), (std::vector<std::string>{"/a", "/a", "", ""}));
    EXPECT_EQ(locationFavourites(*config()), (std::vector<Place>{{1, 1, "x"}, {1, 1, "y"}}));
}

TEST_F(ConfigLegacyTest, ListItemsMissingAttributesTakeTheirDefaults) {
    writeLegacy("<Config><CollectionList><C/></CollectionList><VirtualLocationList><V/>"
                "</VirtualLocationList><Tools><T KEY=\"Lone\"/></Tools></Config>");
    config()->load_old();
    EXPECT_EQ(fileFavourites(*config()), (std::vector<std::pair<std::string, bool>>{{"", false}}));
    EXPECT_EQ(virtualLocations(*config()), (std::vector<Place>{{0, 0, ""}}));
    EXPECT_FALSE(record().tools.at("Lone"));
}

TEST_F(ConfigLegacyTest, AutoImportWithoutRingtoneDefaultsToTrue) {
    writeLegacy("<Config><AutoImport/></Config>");
    config()->load_old();
    EXPECT_TRUE(record().autoImport.at("Ringtone"));
}

TEST_F(ConfigLegacyTest, WithoutAutoImportNoRingtoneKeyIsRecorded) {
    writeLegacy("<Config/>");
    config()->load_old();
    EXPECT_EQ(record().autoImport.count("Ringtone"), 0u);
}

TEST_F(ConfigLegacyTest, FlagsAreStoredWithoutInversion) {
    writeLegacy("<Config><SelectClose Value=\"1\"/><ITunesState Value=\"0\"/>"
                "<VerifySerial Value=\"no\"/><SaveIpswCache Value=\"yes\"/></Config>");
    config()->load_old();
    EXPECT_TRUE(record().status.at("WindowCloseSelect"));
    EXPECT_FALSE(record().status.at("ITunesAutorun"));
    EXPECT_FALSE(record().status.at("VerifySerialNumber"));
    EXPECT_TRUE(record().status.at("KeepFirmwareCache"));
}

TEST_F(ConfigLegacyTest, SampleLegacyFileIsImported) {
    std::filesystem::copy_file(std::string(PALLIX_TEST_DATA_DIR) + "/config/Config.xml",
                               legacyFile());
    config()->initialize();
    EXPECT_FALSE(exists(legacyFile()));
    EXPECT_FALSE(config()->newInstall());
    EXPECT_EQ(config()->getLastSkin(), NString("2E8B57"));
    EXPECT_EQ(customBackups(*config()).size(), 2u);
    EXPECT_EQ(virtualLocations(*config()).size(), 2u);
}
