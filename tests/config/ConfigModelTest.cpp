// The configuration record, start-up, release and the working directories.

#include "ConfigTestSupport.h"
#include "VirtualSlot.h"

#include <sys/stat.h>

#include <filesystem>
#include <type_traits>
#include <vector>

using namespace pallix::test;

// Runs before any fixture touches the record: the library built it when it loaded.
TEST(ConfigRecord, LibraryLoadBuildsAnEmptyRecordWithZeroScalars) {
    const _PALLIX_RUNTIME_CONFIG& record = _globalFrameworkConfig;
    EXPECT_FALSE(record.newInstall);
    EXPECT_FALSE(record.newUpdate);
    EXPECT_TRUE(record.version.empty());
    EXPECT_TRUE(record.lastVersion.empty());
    EXPECT_EQ(record.sameTimeDownloadNumber, 0);
    EXPECT_EQ(record.downloadMaxSpeed, 0);
    EXPECT_EQ(record.popupTimeADAPP, 0u);
    EXPECT_TRUE(record.lastSkin.empty());
    EXPECT_EQ(static_cast<int>(record.lastLanguage), 0);
    EXPECT_EQ(static_cast<int>(record.restoreCore), 0);
    EXPECT_TRUE(record.status.empty());
    EXPECT_TRUE(record.autoImport.empty());
    EXPECT_TRUE(record.directory.empty());
    EXPECT_TRUE(record.tools.empty());
    EXPECT_TRUE(record.customBackup.empty());
    EXPECT_TRUE(record.virtualLocation.empty());
    EXPECT_TRUE(record.locationFavorites.empty());
    EXPECT_TRUE(record.fileFavorites.empty());
}

TEST(ConfigRecord, FieldsHaveTheirDeclaredWidths) {
    const _PALLIX_RUNTIME_CONFIG& record = _globalFrameworkConfig;
    EXPECT_EQ(sizeof record.sameTimeDownloadNumber, 8u);
    EXPECT_EQ(sizeof record.downloadMaxSpeed, 8u);
    EXPECT_EQ(sizeof record.popupTimeADAPP, 8u);
    EXPECT_EQ(sizeof record.lastLanguage, 4u);
    EXPECT_EQ(sizeof record.restoreCore, 4u);
    EXPECT_TRUE(std::is_signed_v<decltype(record.sameTimeDownloadNumber)>);
    EXPECT_TRUE(std::is_signed_v<decltype(record.downloadMaxSpeed)>);
    EXPECT_TRUE(std::is_unsigned_v<decltype(record.popupTimeADAPP)>);
}

TEST(ConfigRecord, PlaceCopiesAllThreeFields) {
    _PALLIX_RUNTIME_CONFIG_VL place;
    place.X = 1.25;
    place.Y = -7.5;
    place.Location = "Harbour";
    const _PALLIX_RUNTIME_CONFIG_VL copy = place;
    EXPECT_EQ(copy.X, 1.25);
    EXPECT_EQ(copy.Y, -7.5);
    EXPECT_EQ(copy.Location, NString("Harbour"));
}

TEST(ConfigRecord, FacadeHoldsNothingButItsVirtualTable) {
    EXPECT_EQ(sizeof(PRuntimeConfig), sizeof(void*));
}

TEST(ConfigSlots, EveryOperationHasItsSlot) {
    using C = PRuntimeConfig;
    EXPECT_EQ(virtualSlot(&C::initialize), 3u);
    EXPECT_EQ(virtualSlot(&C::release), 4u);
    EXPECT_EQ(virtualSlot(&C::load_old), 5u);
    EXPECT_EQ(virtualSlot(&C::load_new), 6u);
    EXPECT_EQ(virtualSlot(&C::save), 7u);
    EXPECT_EQ(virtualSlot(&C::check_disk), 8u);
    EXPECT_EQ(virtualSlot(&C::_set_setting_status), 9u);
    EXPECT_EQ(virtualSlot(&C::_get_setting_status), 10u);
    EXPECT_EQ(virtualSlot(&C::newInstall), 11u);
    EXPECT_EQ(virtualSlot(&C::version), 12u);
    EXPECT_EQ(virtualSlot(&C::newUpdate), 13u);
    EXPECT_EQ(virtualSlot(&C::setPopupTimeADAPP), 14u);
    EXPECT_EQ(virtualSlot(&C::getPopupTimeADAPP), 15u);
    EXPECT_EQ(virtualSlot(&C::setSameTimeDownloadNumber), 16u);
    EXPECT_EQ(virtualSlot(&C::getSameTimeDownloadNumber), 17u);
    EXPECT_EQ(virtualSlot(&C::setDownloadMaxSpeed), 18u);
    EXPECT_EQ(virtualSlot(&C::getDownloadMaxSpeed), 19u);
    EXPECT_EQ(virtualSlot(&C::setLastSkin), 20u);
    EXPECT_EQ(virtualSlot(&C::getLastSkin), 21u);
    EXPECT_EQ(virtualSlot(&C::setLastLanguage), 22u);
    EXPECT_EQ(virtualSlot(&C::getLastLanguage), 23u);
    EXPECT_EQ(virtualSlot(&C::setRestoreCore), 24u);
    EXPECT_EQ(virtualSlot(&C::getRestoreCore), 25u);
    EXPECT_EQ(virtualSlot(&C::setConfigDirectory), 26u);
    EXPECT_EQ(virtualSlot(&C::getConfigDirectory), 27u);
    EXPECT_EQ(virtualSlot(&C::setSettingStatus), 28u);
    EXPECT_EQ(virtualSlot(&C::getSettingStatus), 29u);
    EXPECT_EQ(virtualSlot(&C::setToolsHot), 30u);
    EXPECT_EQ(virtualSlot(&C::getToolsHot), 31u);
    EXPECT_EQ(virtualSlot(&C::setAutoImportRingtone), 32u);
    EXPECT_EQ(virtualSlot(&C::getAutoImportRingtone), 33u);
    EXPECT_EQ(virtualSlot(&C::customBackupAppend), 34u);
    EXPECT_EQ(virtualSlot(&C::customBackupRemove), 35u);
    EXPECT_EQ(virtualSlot(&C::customBackupTraverse), 36u);
    EXPECT_EQ(virtualSlot(&C::fileCollectAppend), 37u);
    EXPECT_EQ(virtualSlot(&C::fileCollectRemove), 38u);
    EXPECT_EQ(virtualSlot(&C::fileCollectTraverse), 39u);
    EXPECT_EQ(virtualSlot(&C::virtualLocationAppend), 40u);
    EXPECT_EQ(virtualSlot(&C::virtualLocationRemove), 41u);
    EXPECT_EQ(virtualSlot(&C::virtualLocationClear), 42u);
    EXPECT_EQ(virtualSlot(&C::virtualLocationTraverse), 43u);
    EXPECT_EQ(virtualSlot(&C::locationCollectAppend), 44u);
    EXPECT_EQ(virtualSlot(&C::locationCollectRemove), 45u);
    EXPECT_EQ(virtualSlot(&C::locationCollectClear), 46u);
    EXPECT_EQ(virtualSlot(&C::locationCollectTraverse), 47u);
    EXPECT_EQ(virtualSlot(&C::localRoot), 48u);
    EXPECT_EQ(virtualSlot(&C::localFirmwareSave), 49u);
    EXPECT_EQ(virtualSlot(&C::localFirmwareArchiver), 50u);
    EXPECT_EQ(virtualSlot(&C::localDownload), 51u);
    EXPECT_EQ(virtualSlot(&C::localRestoreVersion), 52u);
    EXPECT_EQ(virtualSlot(&C::localRingtoneSave), 53u);
    EXPECT_EQ(virtualSlot(&C::localRingtoneMake), 54u);
    EXPECT_EQ(virtualSlot(&C::localPluginsSave), 55u);
    EXPECT_EQ(virtualSlot(&C::localScreenSave), 56u);
    EXPECT_EQ(virtualSlot(&C::localPicturePreview), 57u);
    EXPECT_EQ(virtualSlot(&C::localNormal), 58u);
    EXPECT_EQ(virtualSlot(&C::localNormalBottomBackup), 59u);
}

// A host's override is written from the documented signatures, which carry no noexcept; a
// noexcept here would reject it. The free function keeps its noexcept.
TEST(ConfigSlots, OperationsAreNotDeclaredNoexcept) {
    PRuntimeConfig* config = nullptr;
    const NString name("x");
    EXPECT_FALSE(noexcept(config->initialize()));
    EXPECT_FALSE(noexcept(config->save()));
    EXPECT_FALSE(noexcept(config->getSettingStatus(name)));
    EXPECT_FALSE(noexcept(config->customBackupTraverse(nullptr)));
    EXPECT_FALSE(noexcept(config->localNormalBottomBackup()));
    EXPECT_TRUE(noexcept(NevorFrameworkConfigDirectoryDefault(name, name)));
}

TEST(ConfigSlots, TheRootHandsOutAnUninitialisedConfiguration) {
    PRuntimeConfig* config = PRuntime::getInstance()->config();
    ASSERT_NE(config, nullptr);
    // Nothing was loaded: the record still has the state the library built.
    EXPECT_EQ(_globalFrameworkConfig.sameTimeDownloadNumber, 0);
    EXPECT_TRUE(_globalFrameworkConfig.version.empty());
    PRuntime::freeInstance();
}

class ConfigStartTest : public ConfigTest {};

TEST_F(ConfigStartTest, FirstRunIsANewInstallationWithStartUpValues) {
    PRuntimeConfig* c = config();
    c->initialize();
    EXPECT_TRUE(c->newInstall());
    EXPECT_FALSE(c->newUpdate());
    EXPECT_EQ(c->version(), NString("5.0.0"));
    EXPECT_EQ(record().lastVersion, NString("5.0.0"));
    EXPECT_EQ(c->getSameTimeDownloadNumber(), 3);
    EXPECT_EQ(c->getDownloadMaxSpeed(), 0);
    EXPECT_EQ(c->getPopupTimeADAPP(), 0u);
    EXPECT_EQ(record().lastSkin, NString("236EE7"));
    EXPECT_EQ(static_cast<int>(c->getLastLanguage()), 0);
    EXPECT_EQ(static_cast<int>(c->getRestoreCore()), 0);
}

TEST_F(ConfigStartTest, FirstRunWithTheSameResourcesVersionIsNoUpdate) {
    writeVersion("5.0.0");
    config()->initialize();
    EXPECT_TRUE(config()->newInstall());
    EXPECT_FALSE(config()->newUpdate());
}

TEST_F(ConfigStartTest, FirstRunWithAnotherResourcesVersionIsAnUpdate) {
    writeVersion("5.2.1");
    config()->initialize();
    EXPECT_TRUE(config()->newInstall());
    EXPECT_TRUE(config()->newUpdate());
    EXPECT_EQ(config()->version(), NString("5.2.1"));
    EXPECT_EQ(record().lastVersion, NString("5.2.1"));
}

TEST_F(ConfigStartTest, SampleVersionFileGivesItsVersion) {
    std::filesystem::copy_file(std::string(PALLIX_SAMPLES_DIR) + "/UpdateCfg.xml",
                               resourcesDirectory() + "/UpdateCfg.xml");
    config()->initialize();
    EXPECT_EQ(config()->version(), NString("5.2.1"));
}

TEST_F(ConfigStartTest, RecordedVersionEqualToTheRunningOneIsNoUpdate) {
    writeVersion("5.2.1");
    writeCurrent("<Nevor><LastVersion Value=\"5.2.1\"/></Nevor>");
    config()->initialize();
    EXPECT_FALSE(config()->newInstall());
    EXPECT_FALSE(config()->newUpdate());
}

TEST_F(ConfigStartTest, MissingVersionFileWithAnOlderRecordedVersionIsAnUpdate) {
    writeCurrent("<Nevor><LastVersion Value=\"4.9.0\"/></Nevor>");
    config()->initialize();
    EXPECT_EQ(config()->version(), NString("5.0.0"));
    EXPECT_TRUE(config()->newUpdate());
    EXPECT_EQ(record().lastVersion, NString("5.0.0"));
}

TEST_F(ConfigStartTest, VersionFileWithoutVersionElementGivesAnEmptyVersion) {
    TemporaryDirectory::write(resourcesDirectory() + "/UpdateCfg.xml",
                              "<root><Control><Channel VALUE=\"beta\"/></Control></root>");
    config()->initialize();
    EXPECT_EQ(config()->version(), NString(""));
    EXPECT_TRUE(config()->newUpdate());
}

TEST_F(ConfigStartTest, VersionFileWithoutVersionAttributeGivesAnEmptyVersion) {
    TemporaryDirectory::write(resourcesDirectory() + "/UpdateCfg.xml",
                              "<root><Control><Version value=\"5.3.0\"/></Control></root>");
    config()->initialize();
    EXPECT_EQ(config()->version(), NString(""));
}

TEST_F(ConfigStartTest, VersionFileWithoutControlKeepsTheBuiltInVersion) {
    TemporaryDirectory::write(resourcesDirectory() + "/UpdateCfg.xml",
                              "<root><Version VALUE=\"6.0.0\"/></root>");
    config()->initialize();
    EXPECT_EQ(config()->version(), NString("5.0.0"));
}

TEST_F(ConfigStartTest, VersionFileWithAnotherRootKeepsTheBuiltInVersion) {
    TemporaryDirectory::write(resourcesDirectory() + "/UpdateCfg.xml",
                              "<Root><Control><Version VALUE=\"6.0.0\"/></Control></Root>");
    config()->initialize();
    EXPECT_EQ(config()->version(), NString("5.0.0"));
}

TEST_F(ConfigStartTest, MalformedVersionFileKeepsTheBuiltInVersion) {
    TemporaryDirectory::write(resourcesDirectory() + "/UpdateCfg.xml",
                              "<root><Control><Version VALUE=\"6.0.0\"></Control>");
    config()->initialize();
    EXPECT_EQ(config()->version(), NString("5.0.0"));
    EXPECT_FALSE(config()->newUpdate());
}

TEST_F(ConfigStartTest, UpdateTurnsTheFirmwareCacheBackOn) {
    writeVersion("5.2.1");
    writeCurrent("<Nevor><LastVersion Value=\"5.1.0\"/><Status>"
                 "<Item Name=\"KeepFirmwareCache\" Status=\"false\"/></Status></Nevor>");
    config()->initialize();
    ASSERT_TRUE(config()->newUpdate());
    EXPECT_TRUE(record().status.at("KeepFirmwareCache"));
    EXPECT_TRUE(config()->getSettingStatus("KeepFirmwareCache"));
}

TEST_F(ConfigStartTest, WithoutUpdateTheFirmwareCacheChoiceStays) {
    writeVersion("5.2.1");
    writeCurrent("<Nevor><LastVersion Value=\"5.2.1\"/><Status>"
                 "<Item Name=\"KeepFirmwareCache\" Status=\"false\"/></Status></Nevor>");
    config()->initialize();
    ASSERT_FALSE(config()->newUpdate());
    EXPECT_FALSE(config()->getSettingStatus("KeepFirmwareCache"));
}

TEST_F(ConfigStartTest, FirstRunWithoutUpdateRecordsNoFirmwareCacheFlag) {
    config()->initialize();
    EXPECT_EQ(record().status.count("KeepFirmwareCache"), 0u);
}

TEST_F(ConfigStartTest, StartUpDoesNotSaveWithoutALegacyFile) {
    CountingConfig counting;
    counting.initialize();
    EXPECT_EQ(counting.saves, 0);
    EXPECT_FALSE(exists(currentFile()));
}

TEST_F(ConfigStartTest, StartUpReachesItsStepsThroughTheVirtualTable) {
    writeVersion("5.2.1");
    CountingConfig counting;
    counting.initialize();
    const std::vector<std::string> expected{"load_new", "check_disk", "getConfigDirectory:Data",
                                            "_set_setting_status:KeepFirmwareCache"};
    EXPECT_EQ(counting.calls, expected);
}

TEST_F(ConfigStartTest, LegacyStartUpLoadsOldSavesAndDeletesThroughTheVirtualTable) {
    writeLegacy("<Config><LastVersion Value=\"5.0.0\"/></Config>");
    CountingConfig counting;
    counting.initialize();
    const std::vector<std::string> expected{"load_old", "save", "check_disk",
                                            "getConfigDirectory:Data"};
    EXPECT_EQ(counting.calls, expected);
    EXPECT_FALSE(exists(legacyFile()));
    EXPECT_TRUE(exists(currentFile()));
}

TEST_F(ConfigStartTest, LegacyFileIsImportedWrittenAndRemoved) {
    writeLegacy("<Config><LastSkin Value=\"FF8800\"/><SameTimeDownloadNumber Value=\"6\"/>"
                "</Config>");
    writeCurrent("<Nevor><LastSkin Value=\"000000\"/></Nevor>");
    config()->initialize();
    EXPECT_FALSE(config()->newInstall());
    EXPECT_FALSE(exists(legacyFile()));
    EXPECT_EQ(config()->getLastSkin(), NString("FF8800"));
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_STREQ(root.child("LastSkin").attribute("Value").value(), "FF8800");
    EXPECT_STREQ(root.child("SameTimeDownloadNumber").attribute("Value").value(), "6");
}

TEST_F(ConfigStartTest, StartUpDoesNotClearTheContainers) {
    record().tools.emplace("Earlier", false);
    record().customBackup.emplace_back("/earlier");
    config()->initialize();
    EXPECT_EQ(record().tools.count("Earlier"), 1u);
    EXPECT_EQ(customBackups(*config()), std::vector<std::string>{"/earlier"});
}

TEST_F(ConfigStartTest, FirstRunGivesDataAndBackupTheirDefaults) {
    config()->initialize();
    EXPECT_EQ(config()->getConfigDirectory("Data"), NString(defaultDataDirectory()));
    EXPECT_EQ(config()->getConfigDirectory("Backup"), NString(backupDirectory()));
}

TEST_F(ConfigStartTest, FirstRunCreatesNoDataDirectoryBeforeAnAccessorAsks) {
    config()->initialize();
    EXPECT_FALSE(exists(defaultDataDirectory()));
    EXPECT_EQ(config()->localRoot(), NString(defaultDataDirectory()));
    EXPECT_TRUE(isDirectory(defaultDataDirectory()));
}

TEST_F(ConfigStartTest, StartUpCreatesAConfiguredDataDirectory) {
    const std::string data = scratch("data/nested");
    writeCurrent("<Nevor><Directory><Item Name=\"Data\" Path=\"" + data +
                 "\"/></Directory></Nevor>");
    config()->initialize();
    EXPECT_TRUE(isDirectory(data));
}

TEST_F(ConfigStartTest, EmptyDataEntryIsReplacedByTheDefault) {
    writeCurrent("<Nevor><Directory><Item Name=\"Data\" Path=\"\"/></Directory></Nevor>");
    config()->initialize();
    EXPECT_EQ(config()->getConfigDirectory("Data"), NString(defaultDataDirectory()));
}

TEST_F(ConfigStartTest, NonEmptyDataEntryIsKept) {
    const std::string data = scratch("mine");
    writeCurrent("<Nevor><Directory><Item Name=\"Data\" Path=\"" + data +
                 "\"/></Directory></Nevor>");
    config()->initialize();
    EXPECT_EQ(config()->getConfigDirectory("Data"), NString(data));
}

TEST_F(ConfigStartTest, EmptyBackupEntryIsReplacedByThePlatformDirectory) {
    writeCurrent("<Nevor><Directory><Item Name=\"Backup\" Path=\"\"/></Directory></Nevor>");
    config()->initialize();
    EXPECT_EQ(config()->getConfigDirectory("Backup"), NString(backupDirectory()));
}

TEST_F(ConfigStartTest, ReleaseSavesExactlyOnce) {
    CountingConfig counting;
    counting.initialize();
    counting.release();
    EXPECT_EQ(counting.saves, 1);
    pugi::xml_document document;
    EXPECT_TRUE(loadWritten(document));
}

TEST_F(ConfigStartTest, StartUpValuesAreNeverWritten) {
    writeVersion("5.2.1");
    config()->initialize();
    config()->release();
    const std::string text = readCurrent();
    EXPECT_EQ(text.find("NewInstall"), std::string::npos);
    EXPECT_EQ(text.find("NewUpdate"), std::string::npos);
    pugi::xml_document document;
    const pugi::xml_node root = loadWritten(document);
    EXPECT_FALSE(root.child("Version"));
    EXPECT_STREQ(root.child("LastVersion").attribute("Value").value(), "5.2.1");
}

class ConfigDirectoryDefaultTest : public ConfigTest {};

TEST_F(ConfigDirectoryDefaultTest, MissingNameGetsTheDefault) {
    NevorFrameworkConfigDirectoryDefault("Cache", "/var/cache/app");
    EXPECT_EQ(record().directory.at("Cache"), NString("/var/cache/app"));
}

TEST_F(ConfigDirectoryDefaultTest, EmptyPathIsReplaced) {
    record().directory.emplace("Cache", "");
    NevorFrameworkConfigDirectoryDefault("Cache", "/var/cache/app");
    EXPECT_EQ(record().directory.at("Cache"), NString("/var/cache/app"));
}

TEST_F(ConfigDirectoryDefaultTest, NonEmptyPathIsKept) {
    record().directory.emplace("Cache", "/mine");
    NevorFrameworkConfigDirectoryDefault("Cache", "/var/cache/app");
    EXPECT_EQ(record().directory.at("Cache"), NString("/mine"));
}

TEST_F(ConfigDirectoryDefaultTest, DoesNotSave) {
    NevorFrameworkConfigDirectoryDefault("Cache", "/var/cache/app");
    EXPECT_FALSE(exists(currentFile()));
}

class ConfigDirectoryTest : public ConfigTest {
protected:
    void SetUp() override {
        ConfigTest::SetUp();
        m_data = scratch("data root");
        record().directory.emplace("Data", NString(m_data));
        m_oldMask = ::umask(0);
    }
    void TearDown() override {
        ::umask(m_oldMask);
        ConfigTest::TearDown();
    }
    std::string m_data;
    mode_t m_oldMask = 0;
};

TEST_F(ConfigDirectoryTest, UnknownNameGivesAnEmptyPathAndIsNotAdded) {
    EXPECT_EQ(config()->getConfigDirectory("Nowhere"), NString());
    EXPECT_EQ(record().directory.count("Nowhere"), 0u);
}

TEST_F(ConfigDirectoryTest, SetConfigDirectoryWritesTheFileAtOnce) {
    config()->setConfigDirectory("Ringtones", "/srv/tones");
    pugi::xml_document document;
    const pugi::xml_node directory = loadWritten(document).child("Directory");
    EXPECT_STREQ(
        directory.find_child_by_attribute("Item", "Name", "Ringtones").attribute("Path").value(),
        "/srv/tones");
}

TEST_F(ConfigDirectoryTest, SetConfigDirectoryReplacesAnEntryAndSavesOnce) {
    CountingConfig counting;
    counting.setConfigDirectory("Data", "/other");
    EXPECT_EQ(counting.saves, 1);
    EXPECT_EQ(counting.getConfigDirectory("Data"), NString("/other"));
    EXPECT_EQ(record().directory.size(), 1u);
}

TEST_F(ConfigDirectoryTest, RootIsTheNormalisedDataPath) {
    record().directory["Data"] = NString(m_data + "//sub/./");
    EXPECT_EQ(config()->localRoot(), NString(m_data + "/sub"));
    EXPECT_TRUE(isDirectory(m_data + "/sub"));
}

TEST_F(ConfigDirectoryTest, EveryWorkingDirectoryIsComposedFromTheRoot) {
    PRuntimeConfig* c = config();
    EXPECT_EQ(c->localRoot(), NString(m_data));
    EXPECT_EQ(c->localFirmwareSave(), NString(m_data + "/Download"));
    EXPECT_EQ(c->localFirmwareArchiver(), NString(m_data + "/IpswCache"));
    EXPECT_EQ(c->localDownload(), NString(m_data + "/Download"));
    EXPECT_EQ(c->localRestoreVersion(), NString(m_data + "/IpswCache/version.xml"));
    EXPECT_EQ(c->localRingtoneSave(), NString(m_data + "/Ringtone"));
    EXPECT_EQ(c->localRingtoneMake(), NString(m_data + "/RingtoneMake"));
    EXPECT_EQ(c->localPluginsSave(), NString(m_data + "/PluginsSave"));
    EXPECT_EQ(c->localScreenSave(), NString(m_data + "/ScreenSave"));
    EXPECT_EQ(c->localPicturePreview(), NString(m_data + "/PicturePreview"));
    EXPECT_EQ(c->localNormal(), NString(m_data + "/Normal"));
    EXPECT_EQ(c->localNormalBottomBackup(), NString(m_data + "/Normal/Bottom"));
}

TEST_F(ConfigDirectoryTest, DownloadAndFirmwareSaveAreOneDirectory) {
    EXPECT_EQ(config()->localDownload(), config()->localFirmwareSave());
}

TEST_F(ConfigDirectoryTest, EveryAccessorCreatesItsDirectoryWithMode0755) {
    PRuntimeConfig* c = config();
    const std::vector<NString> created{
        c->localRoot(),        c->localFirmwareSave(),      c->localFirmwareArchiver(),
        c->localDownload(),    c->localRingtoneSave(),      c->localRingtoneMake(),
        c->localPluginsSave(), c->localScreenSave(),        c->localPicturePreview(),
        c->localNormal(),      c->localNormalBottomBackup()};
    for (const NString& directory : created) {
        EXPECT_TRUE(isDirectory(directory.data())) << directory.data();
        EXPECT_EQ(permissions(directory.data()), 0755u) << directory.data();
    }
}

TEST_F(ConfigDirectoryTest, AccessorsCreateTheirDirectoryAgainOnEveryCall) {
    const NString ringtones = config()->localRingtoneSave();
    ASSERT_TRUE(isDirectory(ringtones.data()));
    std::filesystem::remove(ringtones.data());
    ASSERT_FALSE(exists(ringtones.data()));
    EXPECT_EQ(config()->localRingtoneSave(), ringtones);
    EXPECT_TRUE(isDirectory(ringtones.data()));
}

TEST_F(ConfigDirectoryTest, RestoreVersionIsAFileThatIsNotCreated) {
    const NString version = config()->localRestoreVersion();
    EXPECT_FALSE(exists(version.data()));
    EXPECT_TRUE(isDirectory(m_data + "/IpswCache"));
}

TEST_F(ConfigDirectoryTest, AccessorsComposeThroughTheVirtualTable) {
    CountingConfig counting;
    counting.localRestoreVersion();
    counting.localNormalBottomBackup();
    const std::vector<std::string> expected{
        "localFirmwareArchiver", "localRoot", "getConfigDirectory:Data",
        "localNormal",           "localRoot", "getConfigDirectory:Data"};
    EXPECT_EQ(counting.calls, expected);
}

TEST_F(ConfigDirectoryTest, AccessorReturnsThePathEvenWhenItCannotBeCreated) {
    const std::string blocker = scratch("blocker");
    TemporaryDirectory::write(blocker, "a file where a directory should be");
    record().directory["Data"] = NString(blocker);
    EXPECT_EQ(config()->localNormal(), NString(blocker + "/Normal"));
    EXPECT_FALSE(isDirectory(blocker + "/Normal"));
}

TEST_F(ConfigDirectoryTest, AccessorsNeverSave) {
    CountingConfig counting;
    counting.localRoot();
    counting.localNormalBottomBackup();
    counting.getConfigDirectory("Data");
    EXPECT_EQ(counting.saves, 0);
}

TEST_F(ConfigDirectoryTest, DataPathWithSpacesAndNonAsciiCharacters) {
    const std::string data = scratch("Données de l’app 東京");
    config()->setConfigDirectory("Data", NString(data));
    EXPECT_EQ(config()->localScreenSave(), NString(data + "/ScreenSave"));
    EXPECT_TRUE(isDirectory(data + "/ScreenSave"));
    pugi::xml_document document;
    const pugi::xml_node directory = loadWritten(document).child("Directory");
    EXPECT_EQ(
        std::string(
            directory.find_child_by_attribute("Item", "Name", "Data").attribute("Path").value()),
        data);
}
