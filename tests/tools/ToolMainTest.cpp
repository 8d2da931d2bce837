#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

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

TEST(ToolMain, RuntimeHelpGivesTheExitStatusesAndEndsWithAnExample) {
    const auto result = runTool({"runtime", "--help"});
    EXPECT_EQ(result.status, 0);
    const auto example = result.output.find("\nExample:\n  pallix runtime");
    const auto statuses = result.output.find("\nExit status: 0 ");
    EXPECT_NE(example, std::string::npos) << result.output;
    EXPECT_NE(statuses, std::string::npos) << result.output;
    EXPECT_LT(statuses, example);
}

TEST(ToolMain, HelpCommandNamesTheCommandFromTheTool) {
    const auto result = runTool({"help", "config", "set"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, runTool({"config", "set", "--help"}).output);
    EXPECT_NE(result.output.find("Usage: pallix config set "), std::string::npos) << result.output;
}

TEST(ToolMain, HelpCommandRefusesAnUnknownCommand) {
    const auto result = runTool({"help", "config", "sett"});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.errors.find("did you mean 'set'?"), std::string::npos) << result.errors;
}

TEST(ToolMain, UnknownOptionOfACommandIsNamedOnce) {
    const auto result = runTool({"config", "add", "CustomBackup", "/x", "--rot"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors.rfind("pallix: config add: unknown option '--rot'; did you mean "
                                  "'--root'?\n",
                                  0),
              0U)
        << result.errors;
}

TEST(ToolMain, MistypedWordsGetASuggestionAndExit2) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"chek"}, "pallix: unknown command 'chek'; did you mean 'check'?"},
        {{"config", "lst"}, "pallix: config: unknown command 'lst'; did you mean 'list'?"},
        {{"config", "--config-dir", "/nonexistent", "lst"},
         "pallix: config: unknown command 'lst'; did you mean 'list'?"},
        {{"notify", "lst"}, "pallix: notify: unknown command 'lst'; did you mean 'list'?"},
        {{"check", "--jsn", "x.xml"}, "unknown option '--jsn'; did you mean '--json'?"},
        // The mistyped word, not the words after it that CLI11 also did not expect.
        {{"chek", "a.xml"}, "pallix: unknown command 'chek'; did you mean 'check'?"},
        {{"portbnd", "list"}, "pallix: unknown command 'portbnd'; did you mean 'portbind'?"},
        {{"notfy", "list", "--json"}, "pallix: unknown command 'notfy'; did you mean 'notify'?"},
        {{"size", "5", "--precison", "1"},
         "pallix: size: unknown option '--precison'; did you mean '--precision'?"},
        {{"runtime", "--config-dir", "x"}, "pallix: runtime: unknown option '--config-dir'\n"},
    };
    for (const auto& [arguments, message] : cases) {
        const auto result = runTool(arguments);
        EXPECT_EQ(result.status, 2) << arguments.front();
        EXPECT_NE(result.errors.find(message), std::string::npos) << result.errors;
        EXPECT_TRUE(result.output.empty()) << result.output;
    }
}

TEST(ToolMain, HelpOfACommandIsTheCommandsOwnHelpWithAnExample) {
    const auto viaHelp = runTool({"help", "config", "set"});
    const auto viaOption = runTool({"config", "set", "--help"});
    EXPECT_EQ(viaHelp.status, 0);
    EXPECT_EQ(viaHelp.output, viaOption.output);
    EXPECT_NE(viaHelp.output.find("Example"), std::string::npos) << viaHelp.output;
    const auto unknown = runTool({"help", "confg"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_NE(unknown.errors.find("did you mean 'config'?"), std::string::npos) << unknown.errors;
}

TEST(ToolMain, AGroupWithoutAnActionNamesItsActions) {
    for (const char* group : {"config", "notify", "portbind", "factory", "ipsw"}) {
        const auto result = runTool({group});
        EXPECT_EQ(result.status, 2) << group;
        EXPECT_NE(result.errors.find(std::string("pallix: ") + group + ": an action is required ("),
                  std::string::npos)
            << result.errors;
        EXPECT_NE(result.errors.find("list"), std::string::npos) << result.errors;
    }
}

TEST(ToolMain, AnActionsOptionBeforeTheActionIsNamedAsSuch) {
    const std::vector<std::pair<std::vector<std::string>, std::string>> cases{
        {{"notify", "--json", "list"},
         "pallix: notify: '--json' is an option of 'list': put it after the action\n"},
        {{"config", "--root", "add", "FileFavorites", "/x"},
         "pallix: config: '--root' is an option of 'add' and 'remove': put it after the action\n"},
    };
    for (const auto& [arguments, message] : cases) {
        const auto result = runTool(arguments);
        EXPECT_EQ(result.status, 2);
        EXPECT_EQ(result.errors.rfind(message, 0), 0U) << result.errors;
        EXPECT_NE(result.errors.find("Run 'pallix " + arguments.front() + " --help'"),
                  std::string::npos)
            << result.errors;
    }
    // An option of a command given before the command points to the tool's help.
    const auto early = runTool({"--config-dir", "/tmp", "config", "show"});
    EXPECT_EQ(early.status, 2);
    EXPECT_NE(early.errors.find("'--config-dir' is an option of 'config'"), std::string::npos)
        << early.errors;
    EXPECT_NE(early.errors.find("Run 'pallix --help'"), std::string::npos) << early.errors;
}

TEST(ToolMain, WordsThatLookLikeOptionsAreNamed) {
    // A value that starts with '-' is an unknown option unless it is a number or follows "--".
    const auto dashed = runTool({"password", "-abc12"});
    EXPECT_EQ(dashed.status, 2);
    EXPECT_EQ(dashed.errors.rfind("pallix: password: unknown option '-abc12' (an argument that "
                                  "starts with '-' goes after '--')\n",
                                  0),
              0U)
        << dashed.errors;
    EXPECT_EQ(runTool({"password", "--", "-abc12"}).status, 0);
    // After "--" an option's name is only an argument too many.
    const auto late = runTool({"size", "--", "5", "--json"});
    EXPECT_EQ(late.status, 2);
    EXPECT_EQ(late.errors.rfind("pallix: size: unexpected argument '--json'\n", 0), 0U)
        << late.errors;
}

TEST(ToolMain, HelpWithoutACommandIsTheToolsHelp) {
    const auto viaHelp = runTool({"help"});
    EXPECT_EQ(viaHelp.status, 0);
    EXPECT_EQ(viaHelp.output, runTool({"--help"}).output);
    EXPECT_EQ(viaHelp.output.rfind("pallix: inspect", 0), 0U) << viaHelp.output;
    // Like every help screen, it gives the exit statuses and ends with its examples.
    const auto statuses = viaHelp.output.find("\nExit status: 0 ");
    const auto examples = viaHelp.output.find("\nExamples:\n  pallix help check\n");
    EXPECT_NE(statuses, std::string::npos) << viaHelp.output;
    EXPECT_NE(examples, std::string::npos) << viaHelp.output;
    EXPECT_LT(statuses, examples);
}
