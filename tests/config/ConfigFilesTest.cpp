// The configuration's files as a careful user keeps them: a configure.xml linked from a folder
// of dotfiles, special files where a file is expected, and a configuration directory that
// takes no new file while the file in it may be written.

#include "ConfigTestSupport.h"
#include "ReadOnlyDirectory.h"
#include "NonRegularFiles.h"

#include <sys/stat.h>
#include <unistd.h>

#include <string>

using namespace pallix::test;

namespace {

constexpr uid_t kNobody = 65534;

class ConfigFilesTest : public ConfigTest {
protected:
    void SetUp() override {
        ConfigTest::SetUp();
        ASSERT_EQ(::mkdir(dotfiles().c_str(), 0755), 0);
    }

    std::string dotfiles() const { return scratch("dotfiles"); }
    std::string linkedFile() const { return dotfiles() + "/configure.xml"; }

    std::string writtenSkin() const {
        pugi::xml_document document;
        return loadWritten(document).child("LastSkin").attribute("Value").value();
    }
};

} // namespace

TEST_F(ConfigFilesTest, ALinkedConfigurationFileStaysALinkAndGetsTheSettings) {
    TemporaryDirectory::write(linkedFile(), "<Nevor><LastSkin Value=\"111111\"/></Nevor>");
    ASSERT_EQ(::chmod(linkedFile().c_str(), 0600), 0);
    ASSERT_EQ(::symlink(linkedFile().c_str(), currentFile().c_str()), 0);

    config()->initialize();
    EXPECT_FALSE(config()->newInstall());
    EXPECT_EQ(config()->getLastSkin(), NString("111111"));
    config()->setLastSkin("222222");

    EXPECT_TRUE(isSymbolicLink(currentFile()));
    EXPECT_NE(TemporaryDirectory::read(linkedFile()).find("222222"), std::string::npos);
    EXPECT_EQ(writtenSkin(), "222222");
    struct stat info {};
    ASSERT_EQ(::stat(linkedFile().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u);
}

TEST_F(ConfigFilesTest, ADanglingLinkIsWrittenThrough) {
    ASSERT_EQ(::symlink("../dotfiles/configure.xml", currentFile().c_str()), 0);
    config()->initialize();
    EXPECT_TRUE(config()->newInstall());
    config()->setLastSkin("333333");
    EXPECT_TRUE(isSymbolicLink(currentFile()));
    EXPECT_NE(TemporaryDirectory::read(linkedFile()).find("333333"), std::string::npos);
}

TEST_F(ConfigFilesTest, AFifoAsTheConfigurationFileReadsAsNoFileAndIsLeftAlone) {
    ASSERT_TRUE(makeFifo(currentFile()));
    BlockingAlarm alarm;
    config()->initialize();
    // Something is there, so not a new installation; unreadable, like a malformed file.
    EXPECT_FALSE(config()->newInstall());
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
    config()->setLastSkin("444444");
    EXPECT_EQ(config()->getLastSkin(), NString("444444"));
    EXPECT_TRUE(isFifo(currentFile()));
}

TEST_F(ConfigFilesTest, AFifoAsTheLegacyFileIsNeitherReadNorImported) {
    ASSERT_TRUE(makeFifo(legacyFile()));
    writeCurrent("<Nevor><LastSkin Value=\"555555\"/></Nevor>");
    BlockingAlarm alarm;
    config()->initialize();
    // Not a file, so not a legacy configuration: the current file is read.
    EXPECT_EQ(config()->getLastSkin(), NString("555555"));
    EXPECT_TRUE(isFifo(legacyFile()));
}

TEST_F(ConfigFilesTest, LoadingTheLegacyFileFromAFifoReturnsAtOnce) {
    ASSERT_TRUE(makeFifo(legacyFile()));
    BlockingAlarm alarm;
    config()->load_old();
    EXPECT_FALSE(config()->newInstall());
    // Nothing read: the start-up value stays.
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
}

TEST_F(ConfigFilesTest, AFifoAsTheVersionFileReadsAsNoVersionFile) {
    ASSERT_TRUE(makeFifo(resourcesDirectory() + "/UpdateCfg.xml"));
    BlockingAlarm alarm;
    config()->initialize();
    EXPECT_EQ(config()->version(), NString("5.0.0"));
}

TEST_F(ConfigFilesTest, ADirectoryAsTheConfigurationFileReadsAsNoFile) {
    ASSERT_EQ(::mkdir(currentFile().c_str(), 0755), 0);
    BlockingAlarm alarm;
    config()->load_new();
    EXPECT_EQ(config()->getLastSkin(), NString("236EE7"));
    config()->setLastSkin("666666");
    EXPECT_TRUE(isDirectory(currentFile()));
}

// The directory takes no new file, so no temporary can be made beside the file; the file is
// the user's and may be written, so the setter saves it in place.
TEST_F(ConfigFilesTest, AWritableFileInAReadOnlyDirectoryIsSaved) {
    writeCurrent("<Nevor><LastSkin Value=\"111111\"/></Nevor>");
    if (::geteuid() == 0) {
        ASSERT_EQ(::chown(currentFile().c_str(), kNobody, kNobody), 0);
    }
    const int status = runWithReadOnlyDirectory(configDirectory(), [this] {
        config()->initialize();
        config()->setLastSkin("777777");
        config()->fileCollectAppend("/Users/zoe/Music", true);
        return config()->getLastSkin() == NString("777777");
    });
    ASSERT_EQ(status, 0) << "2: the directory could not be made read-only for the test";
    EXPECT_EQ(writtenSkin(), "777777");
    EXPECT_NE(readCurrent().find("/Users/zoe/Music"), std::string::npos);
}

TEST_F(ConfigFilesTest, AReadOnlyFileInAReadOnlyDirectoryKeepsTheValuesInMemoryOnly) {
    writeCurrent("<Nevor><LastSkin Value=\"111111\"/></Nevor>");
    ASSERT_EQ(::chmod(currentFile().c_str(), 0444), 0);
    const std::string before = readCurrent();
    const int status = runWithReadOnlyDirectory(configDirectory(), [this] {
        config()->initialize();
        config()->setLastSkin("888888");
        return config()->getLastSkin() == NString("888888");
    });
    ASSERT_EQ(status, 0);
    EXPECT_EQ(readCurrent(), before);
}
