// What every lookup (cloud, cpid, crash, restore-error, mapping) does with a file that is not
// the one it reads, and what its help promises.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <vector>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using ::testing::EndsWith;
using ::testing::HasSubstr;

namespace {

struct Lookup {
    std::string command;
    std::vector<std::string> query; // the arguments after the file
    std::string kind;               // as 'pallix check --kind' names it
    std::string described;          // as messages name it
    std::string sample;             // a file of that kind
};

const std::vector<Lookup>& lookups() {
    static const std::vector<Lookup> all = {
        {"cloud", {}, "cloud", "a cloud document", PALLIX_SAMPLES_DIR "/cloud.xml"},
        {"cpid", {"0x8101", "0x0C"}, "cpid", "a chip table", PALLIX_SAMPLES_DIR "/cpid.xml"},
        {"crash", {"AMRestore"}, "crash", "a crash code table", PALLIX_SAMPLES_DIR "/crash.xml"},
        {"restore-error",
         {"-35"},
         "restore-error",
         "a restore error table",
         PALLIX_SAMPLES_DIR "/restore-error.xml"},
        {"mapping",
         {"16.4.1"},
         "mapping",
         "a plug-in mapping table",
         PALLIX_SAMPLES_DIR "/plugin-mapping.xml"},
    };
    return all;
}

pallix::test::ToolResult run(const Lookup& lookup, const std::string& file) {
    std::vector<std::string> arguments{lookup.command, file};
    arguments.insert(arguments.end(), lookup.query.begin(), lookup.query.end());
    return runTool(arguments);
}

} // namespace

TEST(LookupFiles, EachLookupReadsItsOwnKind) {
    for (const Lookup& lookup : lookups()) {
        const auto result = run(lookup, lookup.sample);
        EXPECT_EQ(result.status, 0) << lookup.command << ": " << result.errors;
        EXPECT_TRUE(result.errors.empty()) << result.errors;
    }
}

TEST(LookupFiles, EachLookupNamesTheKindOfEveryOtherTable) {
    for (const Lookup& lookup : lookups()) {
        for (const Lookup& other : lookups()) {
            if (other.command == lookup.command) {
                continue;
            }
            const auto result = run(lookup, other.sample);
            EXPECT_EQ(result.status, 2) << lookup.command << " " << other.sample;
            EXPECT_EQ(result.errors, "pallix: " + other.sample + " is " + other.described +
                                         ", not " + lookup.described + "\n");
            EXPECT_TRUE(result.output.empty()) << result.output;
        }
    }
}

TEST(LookupFiles, EachLookupNamesStoreFiles) {
    TemporaryDirectory directory;
    const std::vector<std::pair<std::string, std::string>> stores = {
        {"<Nevor><Notify/></Nevor>", "a notification store"},
        {"<Rilo><BIND/></Rilo>", "a port binding store"},
        {"{\"0000000000000001\": {}}", "a factory information store"},
        {"<Nevor><LastVersion VALUE=\"5.0.0\"/></Nevor>", "a configuration file"}};
    const std::string path = directory.file("store");
    for (const auto& [content, described] : stores) {
        TemporaryDirectory::write(path, content);
        for (const Lookup& lookup : lookups()) {
            const auto result = run(lookup, path);
            EXPECT_EQ(result.status, 2) << lookup.command << " " << content;
            EXPECT_EQ(result.errors,
                      "pallix: " + path + " is " + described + ", not " + lookup.described + "\n");
        }
    }
}

TEST(LookupFiles, MissingDirectoryAndDeviceFilesExitWith2NamingTheFile) {
    TemporaryDirectory directory;
    const std::string missing = directory.file("absent.xml");
    for (const Lookup& lookup : lookups()) {
        EXPECT_EQ(run(lookup, missing).errors, "pallix: " + missing + ": no such file\n");
        EXPECT_EQ(run(lookup, missing).status, 2);
        const auto folder = run(lookup, directory.path());
        EXPECT_EQ(folder.status, 2) << lookup.command;
        EXPECT_EQ(folder.errors, "pallix: " + directory.path() + ": is a directory\n");
        const auto device = run(lookup, "/dev/null");
        EXPECT_EQ(device.status, 2) << lookup.command;
        EXPECT_EQ(device.errors, "pallix: /dev/null: is not a regular file\n");
        EXPECT_TRUE(device.output.empty()) << device.output;
    }
}

TEST(LookupFiles, MalformedFilesExitWith2SuggestingACheck) {
    TemporaryDirectory directory;
    const std::string path = directory.file("broken.xml");
    TemporaryDirectory::write(path, "<?xml version=\"1.0\"?>\n<DEVICE>\n  <ROW>\n</DEVICE>\n");
    for (const Lookup& lookup : lookups()) {
        const auto result = run(lookup, path);
        EXPECT_EQ(result.status, 2) << lookup.command;
        EXPECT_THAT(result.errors, HasSubstr("pallix: " + path + ":4:3: not well-formed XML: "));
        EXPECT_THAT(result.errors,
                    EndsWith(" (run 'pallix check --kind " + lookup.kind + " " + path + "')\n"));
        EXPECT_TRUE(result.output.empty()) << result.output;
    }
}

TEST(LookupFiles, FilesOfAKindNobodyCanTellExitWith2SuggestingACheck) {
    TemporaryDirectory directory;
    const std::string path = directory.file("unknown.xml");
    TemporaryDirectory::write(path, "<Table><Row/></Table>");
    for (const Lookup& lookup : lookups()) {
        const auto result = run(lookup, path);
        EXPECT_EQ(result.status, 2) << lookup.command;
        EXPECT_THAT(result.errors,
                    HasSubstr("pallix: " + path +
                              ":1:1: the root element \"Table\" is none that the library reads"));
        EXPECT_THAT(result.errors,
                    EndsWith(" (run 'pallix check --kind " + lookup.kind + " " + path + "')\n"));
    }
}

TEST(LookupFiles, EachHelpNamesTheExitStatusesAndEndsWithAnExampleThatWorks) {
    for (const Lookup& lookup : lookups()) {
        const auto help = runTool({lookup.command, "--help"});
        ASSERT_EQ(help.status, 0) << lookup.command;
        EXPECT_THAT(help.output, HasSubstr("With --json")) << lookup.command;
        EXPECT_THAT(help.output, HasSubstr("\nExit status: 0 ")) << lookup.command;
        const std::string marker = "\nExample:\n  pallix " + lookup.command + " ";
        const auto at = help.output.rfind(marker);
        ASSERT_NE(at, std::string::npos) << help.output;
        const std::string example = help.output.substr(at + marker.size());
        ASSERT_THAT(example, EndsWith("\n"));
        EXPECT_EQ(example.find('\n'), example.size() - 1) << "one line: " << example;
        // The example runs from the source tree; here the samples are elsewhere.
        std::vector<std::string> arguments{lookup.command};
        std::istringstream words(example);
        for (std::string word; words >> word;) {
            if (word.rfind("samples/", 0) == 0) {
                word = PALLIX_SAMPLES_DIR + word.substr(7);
            }
            arguments.push_back(word);
        }
        const auto result = runTool(arguments);
        EXPECT_EQ(result.status, 0) << example << result.errors;
        EXPECT_FALSE(result.output.empty()) << example;
    }
}
