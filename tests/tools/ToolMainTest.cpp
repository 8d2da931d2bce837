#include "ToolRunner.h"

#include <gtest/gtest.h>

using pallix::test::runTool;

TEST(ToolMain, VersionNamesTheLibraryVersion) {
    const auto result = runTool({"--version"});
    EXPECT_EQ(result.status, 0);
    EXPECT_EQ(result.output, "pallix 5.0.0\n");
}

TEST(ToolMain, HelpListsTheSubcommands) {
    const auto result = runTool({"--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output.find("runtime"), std::string::npos) << result.output;
    EXPECT_NE(result.output.find("--version"), std::string::npos);
}

TEST(ToolMain, NoSubcommandPrintsHelpAndSucceeds) {
    const auto result = runTool({});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output.find("Usage"), std::string::npos) << result.output;
}

TEST(ToolMain, UnknownSubcommandIsRefusedWithAMessage) {
    const auto result = runTool({"frobnicate"});
    EXPECT_NE(result.status, 0);
    EXPECT_NE(result.errors.find("frobnicate"), std::string::npos) << result.errors;
}

TEST(ToolMain, UnknownOptionIsRefusedWithAMessage) {
    const auto result = runTool({"--no-such-option"});
    EXPECT_NE(result.status, 0);
    EXPECT_NE(result.errors.find("--no-such-option"), std::string::npos) << result.errors;
}

TEST(ToolMain, RuntimeSubcommandLoadsTheLibrary) {
    const auto result = runTool({"runtime"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_NE(result.output.find("root ready"), std::string::npos) << result.output;
}
