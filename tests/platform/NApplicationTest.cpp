#include "NApplication.h"
#include "NApple.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <stdlib.h>
#include <sys/stat.h>

#include <string>

using pallix::test::TemporaryDirectory;

namespace {

mode_t modeOf(const std::string& path) {
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode) ? (info.st_mode & 07777) : 0;
}

} // namespace

TEST(NApplication, ConfigDirectoryDefaultsUnderTheUsersConfigFolder) {
    TemporaryDirectory home;
    const std::string config = home.file("xdg config");
    ::setenv("XDG_CONFIG_HOME", config.c_str(), 1);
    EXPECT_EQ(NApplication::DirectoryConfig(), NString(config + "/TolVane"));
}

TEST(NApplication, ConfigDirectoryFallsBackToHome) {
    TemporaryDirectory root;
    const std::string home = root.file("zoë");
    ::unsetenv("XDG_CONFIG_HOME");
    ::setenv("HOME", home.c_str(), 1);
    EXPECT_EQ(NApplication::DirectoryConfig(), NString(home + "/.config/TolVane"));
}

TEST(NApplication, DefaultConfigDirectoryIsCreatedPrivateWhenFirstAskedFor) {
    TemporaryDirectory home;
    ::unsetenv("XDG_CONFIG_HOME");
    ::setenv("HOME", home.path().c_str(), 1);
    const std::string expected = home.file(".config/TolVane");
    ASSERT_EQ(modeOf(expected), 0u);
    EXPECT_EQ(NApplication::DirectoryConfig(), NString(expected));
    EXPECT_EQ(modeOf(expected), 0700u);
    EXPECT_EQ(modeOf(home.file(".config")), 0700u);
}

TEST(NApplication, DefaultConfigDirectoryIsCreatedAgainForANewEnvironment) {
    TemporaryDirectory first;
    TemporaryDirectory second;
    ::setenv("XDG_CONFIG_HOME", first.path().c_str(), 1);
    NApplication::DirectoryConfig();
    EXPECT_EQ(modeOf(first.file("TolVane")), 0700u);
    ::setenv("XDG_CONFIG_HOME", second.path().c_str(), 1);
    NApplication::DirectoryConfig();
    EXPECT_EQ(modeOf(second.file("TolVane")), 0700u);
}

TEST(NApplication, AnExistingDefaultDirectoryKeepsItsMode) {
    TemporaryDirectory home;
    const std::string existing = home.file("TolVane");
    ASSERT_EQ(::mkdir(existing.c_str(), 0755), 0);
    ASSERT_EQ(::chmod(existing.c_str(), 0755), 0);
    ::setenv("XDG_CONFIG_HOME", home.path().c_str(), 1);
    NApplication::DirectoryConfig();
    EXPECT_EQ(modeOf(existing), 0755u);
}

TEST(NApplication, SettersReplaceTheDefaults) {
    NApplication::setDirectoryConfig("/srv/config");
    NApplication::setDirectoryResources("/srv/resources");
    EXPECT_EQ(NApplication::DirectoryConfig(), NString("/srv/config"));
    EXPECT_EQ(NApplication::DirectoryResources(), NString("/srv/resources"));
}

TEST(NApplication, ADirectorySetByTheHostIsTakenAsItIs) {
    TemporaryDirectory root;
    const std::string chosen = root.file("not yet there");
    TemporaryDirectory home;
    ::setenv("XDG_CONFIG_HOME", home.path().c_str(), 1);
    NApplication::setDirectoryConfig(NString(chosen));
    EXPECT_EQ(NApplication::DirectoryConfig(), NString(chosen));
    EXPECT_EQ(modeOf(chosen), 0u);
    EXPECT_EQ(modeOf(home.file("TolVane")), 0u) << "the unused default was made";
}

TEST(NApplication, ResourcesDefaultToTheExecutablesDirectory) {
    EXPECT_TRUE(NApplication::DirectoryResources().endsWith("tests/platform"))
        << NApplication::DirectoryResources().data();
}

TEST(NApple, BackupDirectoryDefaultsToThePlatformFolder) {
    ::unsetenv("XDG_DATA_HOME");
    ::setenv("HOME", "/home/zoë", 1);
    EXPECT_EQ(NApple::BackupDirectory(), NString("/home/zoë/.local/share/MobileSync/Backup"));
    ::setenv("XDG_DATA_HOME", "/data", 1);
    EXPECT_EQ(NApple::BackupDirectory(), NString("/data/MobileSync/Backup"));
}

TEST(NApple, BackupDirectoryCanBeSet) {
    NApple::setBackupDirectory("/Volumes/External/Backup");
    EXPECT_EQ(NApple::BackupDirectory(), NString("/Volumes/External/Backup"));
}
