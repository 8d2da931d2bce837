#include "NShell.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

using pallix::test::TemporaryDirectory;

TEST(NShell, ReturnsTheExitStatus) {
    EXPECT_EQ(NShell::system("exit 0"), 0);
    EXPECT_EQ(NShell::system("exit 3"), 3);
}

TEST(NShell, RunsThroughTheShellWithWordSplitting) {
    TemporaryDirectory directory;
    const std::string out = directory.file("args");
    ASSERT_EQ(NShell::system(NString("printf '%s|' a 'b c' > '" + out + "'")), 0);
    EXPECT_EQ(TemporaryDirectory::read(out), "a|b c|");
}

TEST(NShell, KilledCommandGivesMinusOne) {
    EXPECT_EQ(NShell::system("kill -9 $$"), -1);
}
