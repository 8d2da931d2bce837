// The stores' files as a careful user keeps them: symbolic links into a folder of their own,
// links whose file is not there yet, and things that are not files at all where a file is
// expected. A link stays a link and its file gets the change; a special file is read as no
// file, at once.

#include "NotifyPortbindTestSupport.h"
#include "NonRegularFiles.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <functional>
#include <string>

using pallix::test::BlockingAlarm;
using pallix::test::ConfigDirectory;
using pallix::test::isFifo;
using pallix::test::isSymbolicLink;
using pallix::test::makeFifo;
using pallix::test::makeItem;
using pallix::test::TemporaryDirectory;

namespace {

// One store file, how to change it, and how to see the change.
struct StoreFile {
    const char* name;
    // Makes a change that a save must carry to the file.
    std::function<void(const std::string& directory)> change;
    // Whether a fresh store, reading the file, sees that change.
    std::function<bool(const std::string& directory)> seesChange;
};

const std::string kUrl = "https://updates.example.com/ipsw/iPad13,4_17.1_21B80_Restore.ipsw";

std::string firmwareFile(const std::string& directory) {
    return directory + "/../iPad13,4_17.1_21B80_Restore.ipsw";
}

NDeviceInfoFactory factoryRecord() {
    NDeviceInfoFactory info;
    info.append(NString("SerialNumber"), NByteArray("DMPXK0QJHG7"));
    return info;
}

std::vector<StoreFile> storeFiles() {
    return std::vector<StoreFile>{
        StoreFile{"notify.xml",
                  [](const std::string&) {
                      PRuntimeNotify store;
                      store.append(42, makeItem(42, "A new version is out"));
                  },
                  [](const std::string&) {
                      PRuntimeNotify store;
                      return store.exist(42) && store.find(42).title() == "A new version is out";
                  }},
        StoreFile{"PortBind.xml",
                  [](const std::string&) {
                      PRuntimePortbind store;
                      store.append("usb-7", "tcp:62078");
                  },
                  [](const std::string&) {
                      PRuntimePortbind store;
                      return store.find("usb-7") == NString("tcp:62078");
                  }},
        StoreFile{"Factory.json",
                  [](const std::string&) {
                      PRuntimeFactory store;
                      store.append(0x8030001E2D3A0001ULL, factoryRecord());
                  },
                  [](const std::string&) {
                      PRuntimeFactory store;
                      return store.find(0x8030001E2D3A0001ULL);
                  }},
        StoreFile{"RestoreIpsw.xml",
                  [](const std::string& directory) {
                      TemporaryDirectory::write(firmwareFile(directory), "made-up firmware");
                      PRuntimeRestoreCustomFirmware store;
                      store.append(NString(kUrl), NString(firmwareFile(directory)));
                  },
                  [](const std::string& directory) {
                      PRuntimeRestoreCustomFirmware store;
                      return store.find(NString(kUrl)) == NString(firmwareFile(directory));
                  }},
    };
}

class StoreFiles : public ::testing::TestWithParam<StoreFile> {
protected:
    void SetUp() override { ASSERT_EQ(::mkdir(dotfiles.c_str(), 0755), 0); }

    std::string inConfig() const { return config.file(std::string("/") + GetParam().name); }
    std::string inDotfiles() const { return dotfiles + "/" + GetParam().name; }

    ConfigDirectory config;
    const std::string dotfiles = config.outside("dotfiles");
};

std::string nameOf(const ::testing::TestParamInfo<StoreFile>& info) {
    std::string name = info.param.name;
    for (char& c : name) {
        if (c == '.') {
            c = '_';
        }
    }
    return name;
}

} // namespace

TEST_P(StoreFiles, ALinkedFileStaysLinkedAndGetsTheChange) {
    // The linked file holds nothing a store can read, so only a save through the link can
    // make the change visible there.
    TemporaryDirectory::write(inDotfiles(), "kept elsewhere");
    ASSERT_EQ(::chmod(inDotfiles().c_str(), 0600), 0);
    ASSERT_EQ(::symlink(inDotfiles().c_str(), inConfig().c_str()), 0);

    GetParam().change(config.path());
    EXPECT_TRUE(isSymbolicLink(inConfig()));
    EXPECT_NE(TemporaryDirectory::read(inDotfiles()), "kept elsewhere");
    EXPECT_TRUE(GetParam().seesChange(config.path()));
    struct stat info {};
    ASSERT_EQ(::stat(inDotfiles().c_str(), &info), 0);
    EXPECT_EQ(info.st_mode & 07777, 0600u);
}

TEST_P(StoreFiles, ALinkWhoseFileIsNotThereYetIsWrittenThrough) {
    ASSERT_EQ(::symlink(inDotfiles().c_str(), inConfig().c_str()), 0);
    GetParam().change(config.path());
    EXPECT_TRUE(isSymbolicLink(inConfig()));
    EXPECT_TRUE(pallix::test::fileExists(inDotfiles()));
    EXPECT_TRUE(GetParam().seesChange(config.path()));
}

TEST_P(StoreFiles, AFifoReadsAsNoFileAtOnceAndIsLeftAlone) {
    ASSERT_TRUE(makeFifo(inConfig()));
    {
        BlockingAlarm alarm;
        // Reading finds nothing; the change lives in memory, since the FIFO is not replaced.
        GetParam().change(config.path());
        EXPECT_FALSE(GetParam().seesChange(config.path()));
    }
    EXPECT_TRUE(isFifo(inConfig()));
}

TEST_P(StoreFiles, ALinkToAFifoReadsAsNoFileAtOnce) {
    ASSERT_TRUE(makeFifo(inDotfiles()));
    ASSERT_EQ(::symlink(inDotfiles().c_str(), inConfig().c_str()), 0);
    {
        BlockingAlarm alarm;
        GetParam().change(config.path());
        EXPECT_FALSE(GetParam().seesChange(config.path()));
    }
    EXPECT_TRUE(isSymbolicLink(inConfig()));
    EXPECT_TRUE(isFifo(inDotfiles()));
}

TEST_P(StoreFiles, ADirectoryReadsAsNoFile) {
    ASSERT_EQ(::mkdir(inConfig().c_str(), 0755), 0);
    BlockingAlarm alarm;
    GetParam().change(config.path());
    EXPECT_FALSE(GetParam().seesChange(config.path()));
    struct stat info {};
    ASSERT_EQ(::stat(inConfig().c_str(), &info), 0);
    EXPECT_TRUE(S_ISDIR(info.st_mode));
}

INSTANTIATE_TEST_SUITE_P(EveryStore, StoreFiles, ::testing::ValuesIn(storeFiles()), nameOf);

// The old notification layout: a directory of one file per notification. A FIFO where a
// notification's file should be is skipped at once, and the other notifications come in.
TEST(NotifyOldDirectoryFiles, AFifoAmongTheOldFilesIsSkippedWithoutBlocking) {
    ConfigDirectory config;
    const std::string old = config.file("/Notify");
    ASSERT_EQ(::mkdir(old.c_str(), 0755), 0);
    TemporaryDirectory::write(old + "/7.xml", "<?xml version=\"1.0\"?>\n<ROOT><ID VALUE=\"7\"/>"
                                              "<Title VALUE=\"Backup finished\"/></ROOT>\n");
    // "8.txt" is a regular entry whose notification file "8.xml" is a FIFO; "9.xml" is a FIFO
    // entry of its own.
    TemporaryDirectory::write(old + "/8.txt", "");
    ASSERT_TRUE(makeFifo(old + "/8.xml"));
    ASSERT_TRUE(makeFifo(old + "/9.xml"));

    BlockingAlarm alarm;
    PRuntimeNotify store;
    EXPECT_TRUE(store.exist(7));
    EXPECT_EQ(store.find(7).title(), NString("Backup finished"));
    EXPECT_FALSE(store.exist(8));
    EXPECT_FALSE(store.exist(9));
}
