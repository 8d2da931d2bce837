// What "pallix notify", "portbind", "factory" and "ipsw" share: where --config-dir goes, their
// help, their exit statuses, files they refuse to replace, failed writes and parallel changes.

#include "ReadOnlyDirectory.h"
#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <algorithm>
#include <string>
#include <vector>

using pallix::test::runProgram;
using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

using Arguments = std::vector<std::string>;

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::size_t lineCount(const std::string& text) {
    return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// One store: its group, its file, and the arguments of an add of entry number i.
struct Store {
    std::string group;
    std::string file;
    Arguments (*add)(int i, const std::string& directory);
};

const std::vector<Store>& stores() {
    static const std::vector<Store> all = {
        {"notify", "notify.xml",
         [](int i, const std::string&) {
             return Arguments{"add", std::to_string(100 + i), "--title", "n" + std::to_string(i)};
         }},
        {"portbind", "PortBind.xml",
         [](int i, const std::string&) {
             return Arguments{"add", "usb-" + std::to_string(i), "tcp:" + std::to_string(i)};
         }},
        {"factory", "Factory.json",
         [](int i, const std::string&) {
             return Arguments{"add", std::to_string(100 + i), "Serial=S" + std::to_string(i)};
         }},
        {"ipsw", "RestoreIpsw.xml",
         [](int i, const std::string& directory) {
             const std::string local = directory + "/fw" + std::to_string(i) + ".ipsw";
             TemporaryDirectory::write(local, "made-up firmware");
             return Arguments{"add", "https://example.invalid/" + std::to_string(i), local};
         }},
    };
    return all;
}

class StoresSharedToolTest : public ::testing::Test {
protected:
    // The group, then the arguments, then --config-dir.
    ToolResult run(const std::string& group, Arguments arguments) const {
        arguments.insert(arguments.begin(), group);
        arguments.insert(arguments.end(), {"--config-dir", directory.path()});
        return runTool(arguments);
    }

    TemporaryDirectory directory{"pallix-tool-stores-shared"};
};

} // namespace

TEST_F(StoresSharedToolTest, TheConfigurationDirectoryGoesBeforeOrAfterTheAction) {
    for (const Store& store : stores()) {
        const Arguments add = store.add(1, directory.path());
        Arguments before{store.group, "--config-dir", directory.path()};
        before.insert(before.end(), add.begin(), add.end());
        const ToolResult added = runTool(before);
        EXPECT_EQ(added.status, 0) << store.group << ": " << added.errors;
        EXPECT_TRUE(TemporaryDirectory::read(directory.file(store.file)).size() > 0) << store.group;

        const ToolResult after = runTool({store.group, "list", "--config-dir", directory.path()});
        EXPECT_EQ(after.status, 0) << store.group << ": " << after.errors;
        EXPECT_EQ(lineCount(after.output), 1u) << after.output;
        const ToolResult first = runTool({store.group, "--config-dir", directory.path(), "list"});
        EXPECT_EQ(first.output, after.output) << store.group;
    }
}

TEST_F(StoresSharedToolTest, TheConfigurationDirectoryIsGivenOnce) {
    TemporaryDirectory other{"pallix-tool-stores-other"};
    for (const Store& store : stores()) {
        const ToolResult result = runTool(
            {store.group, "--config-dir", other.path(), "list", "--config-dir", directory.path()});
        EXPECT_EQ(result.status, 2) << store.group;
        EXPECT_EQ(result.output, "");
        EXPECT_TRUE(contains(result.errors, "pallix: --config-dir: is given twice; give it once"))
            << result.errors;
    }
}

TEST_F(StoresSharedToolTest, EveryHelpGivesTheExitStatusesAndEndsWithAnExample) {
    const std::vector<Arguments> commands = {{"notify"},
                                             {"notify", "list"},
                                             {"notify", "add"},
                                             {"notify", "remove"},
                                             {"portbind"},
                                             {"portbind", "list"},
                                             {"portbind", "find"},
                                             {"portbind", "add"},
                                             {"portbind", "remove"},
                                             {"factory"},
                                             {"factory", "list"},
                                             {"factory", "add"},
                                             {"factory", "remove"},
                                             {"ipsw"},
                                             {"ipsw", "list"},
                                             {"ipsw", "find"},
                                             {"ipsw", "add"},
                                             {"ipsw", "remove"}};
    for (Arguments command : commands) {
        command.push_back("--help");
        const ToolResult help = runTool(command);
        EXPECT_EQ(help.status, 0) << command[0];
        const auto statuses = help.output.find("\nExit status: 0 ");
        const auto example = help.output.rfind("\nExample:\n  pallix " + command[0] + " ");
        EXPECT_NE(statuses, std::string::npos) << help.output;
        ASSERT_NE(example, std::string::npos) << help.output;
        EXPECT_LT(statuses, example) << help.output;
        // Nothing after the example but the example itself.
        EXPECT_EQ(help.output.find("\n\n", example + 1), std::string::npos) << help.output;
    }
}

TEST_F(StoresSharedToolTest, UsageErrorsOfEveryActionExitWith2) {
    const std::vector<Arguments> mistakes = {{"notify", "list", "extra"},
                                             {"notify", "add"},
                                             {"notify", "remove", "x"},
                                             {"notify", "add", "1", "--colour"},
                                             {"portbind", "list", "--jsn"},
                                             {"portbind", "find"},
                                             {"portbind", "add", "only-source"},
                                             {"portbind", "remove"},
                                             {"factory", "list", "extra"},
                                             {"factory", "add", "1"},
                                             {"factory", "remove", "g"},
                                             {"ipsw", "list", "extra"},
                                             {"ipsw", "find"},
                                             {"ipsw", "add", "https://example.invalid/a"},
                                             {"ipsw", "remove"},
                                             {"notify", "lst"}};
    for (const Arguments& mistake : mistakes) {
        const ToolResult result = run(mistake[0], Arguments(mistake.begin() + 1, mistake.end()));
        EXPECT_EQ(result.status, 2) << mistake[0] << " " << mistake[1] << ": " << result.errors;
        EXPECT_TRUE(contains(result.errors, "pallix: ")) << result.errors;
    }
    EXPECT_TRUE(contains(run("notify", {"lst"}).errors, "did you mean 'list'?"));
    EXPECT_EQ(TemporaryDirectory::entries(directory.path()), std::vector<std::string>{});
}

TEST_F(StoresSharedToolTest, AMissingConfigurationDirectoryIsAUsageError) {
    const std::string missing = directory.file("missing");
    for (const Store& store : stores()) {
        for (Arguments arguments : {Arguments{"list"}, store.add(1, directory.path())}) {
            arguments.insert(arguments.begin(), store.group);
            arguments.insert(arguments.end(), {"--config-dir", missing});
            const ToolResult result = runTool(arguments);
            EXPECT_EQ(result.status, 2) << store.group;
            EXPECT_TRUE(contains(result.errors, missing + ": no such configuration directory"))
                << result.errors;
        }
    }
    struct stat info {};
    EXPECT_NE(::stat(missing.c_str(), &info), 0);
}

TEST_F(StoresSharedToolTest, TruncatedFilesAreNeitherListedAsEmptyNorReplaced) {
    for (const Store& store : stores()) {
        const std::string file = directory.file(store.file);
        const std::string truncated =
            store.group == "factory" ? "{\"0000000000000001\":{\"A\":\"MQ=\"" : "<Rilo><";
        TemporaryDirectory::write(file, truncated);
        const Arguments add = store.add(1, directory.path());
        const Arguments remove = {"remove", add[1]};
        for (const Arguments& change : {add, remove}) {
            const ToolResult result = run(store.group, change);
            EXPECT_EQ(result.status, 2) << store.group << " " << change[0];
            EXPECT_TRUE(contains(result.errors, file + ": ")) << result.errors;
            EXPECT_TRUE(contains(result.errors, "pallix check " + file)) << result.errors;
            EXPECT_TRUE(contains(result.errors, "--force")) << result.errors;
            EXPECT_EQ(TemporaryDirectory::read(file), truncated) << store.group;
        }
        const ToolResult listed = run(store.group, {"list"});
        EXPECT_EQ(listed.status, 2) << store.group;
        EXPECT_EQ(listed.output, "");
        EXPECT_TRUE(contains(listed.errors, file + ": ")) << listed.errors;
        EXPECT_TRUE(contains(listed.errors, "the library reads it as empty") !=
                    contains(listed.errors, "the library reads nothing from this file"))
            << listed.errors;

        Arguments forced = add;
        forced.push_back("--force");
        const ToolResult replaced = run(store.group, forced);
        EXPECT_EQ(replaced.status, 0) << store.group << ": " << replaced.errors;
        EXPECT_TRUE(contains(replaced.errors, "pallix: warning: " + file)) << replaced.errors;
        EXPECT_EQ(lineCount(run(store.group, {"list"}).output), 1u) << store.group;
    }
}

TEST_F(StoresSharedToolTest, WhatTheStoreReadsOtherwiseIsNotWrittenBackUnlessForced) {
    for (const Store& store : stores()) {
        const std::string file = directory.file(store.file);
        const Arguments first = store.add(1, directory.path());
        ASSERT_EQ(run(store.group, first).status, 0) << store.group;
        // A value the factory store reads as empty bytes; an element the XML stores never read.
        const std::string lossy = store.group == "factory"
                                      ? "{\"0000000000000001\":{\"A\":\"not base64!\"}}"
                                      : TemporaryDirectory::read(file) + "<Spare/>\n";
        TemporaryDirectory::write(file, lossy);
        for (const Arguments& change :
             {store.add(2, directory.path()), Arguments{"remove", first[1]}}) {
            const ToolResult result = run(store.group, change);
            EXPECT_EQ(result.status, 2) << store.group << " " << change[0];
            EXPECT_TRUE(contains(result.errors, "pallix: " + file + ":")) << result.errors;
            EXPECT_TRUE(contains(result.errors, "would write back what the library read"))
                << result.errors;
            EXPECT_TRUE(contains(result.errors, "pallix check " + file)) << result.errors;
            EXPECT_EQ(TemporaryDirectory::read(file), lossy) << store.group;
        }
        Arguments forced = store.add(2, directory.path());
        forced.push_back("--force");
        const ToolResult result = run(store.group, forced);
        EXPECT_EQ(result.status, 0) << store.group << ": " << result.errors;
        EXPECT_TRUE(contains(result.errors, "pallix: warning: " + file + ":")) << result.errors;
        EXPECT_NE(TemporaryDirectory::read(file), lossy) << store.group;
    }
}

TEST_F(StoresSharedToolTest, PairsAreSaidAsTheListingShowsThem) {
    ToolResult result =
        runTool({"portbind", "add", "usb\tone", "tcp:1", "--config-dir", directory.path()});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "bound usb\\tone to tcp:1\n");
    result = runTool({"portbind", "remove", "usb\tone", "--config-dir", directory.path()});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "unbound usb\\tone\n");
}

TEST_F(StoresSharedToolTest, SomethingThatIsNotAFileIsNeverReplacedEvenWhenForced) {
    for (const Store& store : stores()) {
        const std::string path = directory.file(store.file);
        ASSERT_EQ(::mkdir(path.c_str(), 0755), 0);
        Arguments forced = store.add(1, directory.path());
        forced.push_back("--force");
        const ToolResult result = run(store.group, forced);
        EXPECT_EQ(result.status, 2) << store.group;
        EXPECT_TRUE(contains(result.errors, path + ": is not a regular file")) << result.errors;
        EXPECT_EQ(run(store.group, {"list"}).status, 2) << store.group;
        struct stat info {};
        EXPECT_TRUE(::stat(path.c_str(), &info) == 0 && S_ISDIR(info.st_mode));
    }
}

TEST_F(StoresSharedToolTest, AFileThatCannotBeReadIsReportedWith2) {
    for (const Store& store : stores()) {
        TemporaryDirectory::write(directory.file(store.file), "");
        ASSERT_EQ(::chmod(directory.file(store.file).c_str(), 0), 0);
    }
    const std::string dir = directory.path();
    const int status = pallix::test::runWithReadOnlyDirectory(dir, [&] {
        bool all = true;
        for (const Store& store : stores()) {
            const std::string file = dir + "/" + store.file;
            const ToolResult listed = runTool({store.group, "list", "--config-dir", dir});
            all = all && listed.status == 2 && contains(listed.errors, file + ": cannot be read");
        }
        return all;
    });
    EXPECT_EQ(status, 0);
}

TEST_F(StoresSharedToolTest, ChangesThatCannotBeWrittenExitWith1) {
    const std::string dir = directory.path();
    std::vector<Arguments> adds;
    for (const Store& store : stores()) {
        Arguments add = store.add(1, dir);
        add.insert(add.begin(), store.group);
        add.insert(add.end(), {"--config-dir", dir});
        adds.push_back(add);
    }
    const int status = pallix::test::runWithReadOnlyDirectory(dir, [&] {
        bool all = true;
        for (std::size_t i = 0; i < adds.size(); ++i) {
            const ToolResult result = runTool(adds[i]);
            all = all && result.status == 1 &&
                  result.errors == "pallix: could not write " + dir + "/" + stores()[i].file + "\n";
        }
        return all;
    });
    EXPECT_EQ(status, 0);
    for (const Store& store : stores()) {
        struct stat info {};
        EXPECT_NE(::stat(directory.file(store.file).c_str(), &info), 0) << store.file;
    }
}

TEST_F(StoresSharedToolTest, TenParallelAddsKeepAllTen) {
    for (const Store& store : stores()) {
        // One shell starts the ten adds together and waits for them all.
        std::string script;
        for (int i = 0; i < 10; ++i) {
            script += "\"$0\" " + store.group;
            for (const std::string& argument : store.add(i, directory.path())) {
                script += " '" + argument + "'";
            }
            script += " --config-dir \"$1\" >/dev/null &\n";
        }
        script += "wait\n";
        const ToolResult result =
            runProgram("/bin/sh", {"-c", script, PALLIX_TOOL_PATH, directory.path()});
        EXPECT_EQ(result.status, 0) << result.errors;
        const ToolResult listed = run(store.group, {"list"});
        EXPECT_EQ(lineCount(listed.output), 10u) << store.group << ":\n" << listed.output;
    }
}
