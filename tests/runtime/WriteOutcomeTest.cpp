// PRuntime::lastWriteSucceeded(): whether the last file the library wrote on the calling thread
// reached the disk, for callers of operations that return nothing.

#include "TemporaryDirectory.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <thread>

using pallix::test::TemporaryDirectory;

namespace {

class WriteOutcomeTest : public ::testing::Test {
protected:
    void SetUp() override { NApplication::setDirectoryConfig(NString(directory.path())); }

    TemporaryDirectory directory{"pallix-write-outcome"};
};

} // namespace

TEST_F(WriteOutcomeTest, TrueBeforeTheFirstWrite) {
    EXPECT_TRUE(PRuntime::lastWriteSucceeded());
}

TEST_F(WriteOutcomeTest, FollowsEachWriteOfTheThread) {
    PRuntimePortbind store;
    store.append("usb:1", "tcp:62078");
    EXPECT_TRUE(PRuntime::lastWriteSucceeded());

    // A directory where the file should be: the save fails and leaves it alone.
    std::filesystem::remove(directory.file("PortBind.xml"));
    std::filesystem::create_directory(directory.file("PortBind.xml"));
    store.append("usb:2", "tcp:62078");
    EXPECT_FALSE(PRuntime::lastWriteSucceeded());
    EXPECT_TRUE(std::filesystem::is_directory(directory.file("PortBind.xml")));

    std::filesystem::remove(directory.file("PortBind.xml"));
    store.append("usb:3", "tcp:62078");
    EXPECT_TRUE(PRuntime::lastWriteSucceeded());
}

TEST_F(WriteOutcomeTest, CoversTheJsonStoreToo) {
    std::filesystem::create_directory(directory.file("Factory.json"));
    PRuntimeFactory store;
    NDeviceInfoFactory info;
    info.append("Serial", NByteArray(std::string("F2LXK0QJHG7F")));
    store.append(0x1A2B, info);
    EXPECT_FALSE(PRuntime::lastWriteSucceeded());
}

TEST_F(WriteOutcomeTest, IsKeptPerThread) {
    std::filesystem::create_directory(directory.file("PortBind.xml"));
    PRuntimePortbind store;
    store.append("usb:1", "tcp:62078");
    ASSERT_FALSE(PRuntime::lastWriteSucceeded());
    bool seenByOtherThread = false;
    std::thread other([&seenByOtherThread] { seenByOtherThread = PRuntime::lastWriteSucceeded(); });
    other.join();
    EXPECT_TRUE(seenByOtherThread);
    EXPECT_FALSE(PRuntime::lastWriteSucceeded());
}
