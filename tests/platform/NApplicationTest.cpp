#include "NApplication.h"
#include "NApple.h"

#include <gtest/gtest.h>

#include <stdlib.h>

TEST(NApplication, ConfigDirectoryDefaultsUnderTheUsersConfigFolder) {
    ::setenv("XDG_CONFIG_HOME", "/tmp/xdg config", 1);
    EXPECT_EQ(NApplication::DirectoryConfig(), NString("/tmp/xdg config/TolVane"));
}

TEST(NApplication, ConfigDirectoryFallsBackToHome) {
    ::unsetenv("XDG_CONFIG_HOME");
    ::setenv("HOME", "/home/zoë", 1);
    EXPECT_EQ(NApplication::DirectoryConfig(), NString("/home/zoë/.config/TolVane"));
}

TEST(NApplication, SettersReplaceTheDefaults) {
    NApplication::setDirectoryConfig("/srv/config");
    NApplication::setDirectoryResources("/srv/resources");
    EXPECT_EQ(NApplication::DirectoryConfig(), NString("/srv/config"));
    EXPECT_EQ(NApplication::DirectoryResources(), NString("/srv/resources"));
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
