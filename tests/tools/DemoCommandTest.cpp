// "pallix demo" walks the typical road on the samples: every step must succeed on the samples
// as shipped, what it writes must be kept with --config-dir and removed otherwise, and a sample
// that no longer matches its digest must be reported.

#include "ReadOnlyDirectory.h"
#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <iostream>
#include <string>
#include <vector>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;

namespace {

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

} // namespace

TEST(DemoCommand, EveryStepSucceedsOnTheSamples) {
    TemporaryDirectory scratch;
    const auto result = runTool({"demo"}, {"TMPDIR=" + scratch.path()});
    EXPECT_EQ(result.status, 0) << result.output << result.errors;
    EXPECT_TRUE(contains(result.output, "Every step worked.")) << result.output;
    EXPECT_FALSE(contains(result.output, "[!!]")) << result.output;
    for (const char* step :
         {"Initialise the configuration", "Load the cloud document", "Load the reference tables",
          "Identify devices in recovery mode", "Explain a failed restore", "Keep the local stores",
          "Convert a coordinate", "What the demo wrote"}) {
        EXPECT_TRUE(contains(result.output, step)) << step << " missing from:\n" << result.output;
    }
}

TEST(DemoCommand, SampleDigestsMatchTheCloudDocument) {
    TemporaryDirectory scratch;
    const auto result = runTool({"demo"}, {"TMPDIR=" + scratch.path()});
    for (const char* file : {"cpid.xml", "crash.xml", "restore-error.xml", "plugin-mapping.xml"}) {
        EXPECT_TRUE(contains(result.output, std::string(file) + " matches its digest"))
            << file << " in:\n"
            << result.output;
    }
}

TEST(DemoCommand, IdentifiesOwnRowFallbackAndUnknownDevice) {
    TemporaryDirectory scratch;
    const auto result = runTool({"demo"}, {"TMPDIR=" + scratch.path()});
    EXPECT_TRUE(contains(result.output, "board 0x0C (has a row of its own): iPhone 12 Pro"))
        << result.output;
    EXPECT_TRUE(contains(result.output, "board 0x3E (falls back to the chip's board-00 row): "
                                        "iPhone 12,"))
        << result.output;
    EXPECT_TRUE(contains(result.output, "unknown device")) << result.output;
}

TEST(DemoCommand, ExplainsTheRestoreErrorAndTheCrashText) {
    TemporaryDirectory scratch;
    const auto result = runTool({"demo"}, {"TMPDIR=" + scratch.path()});
    EXPECT_TRUE(contains(result.output, "restore error 4013: The device disconnected while the "
                                        "firmware was being installed."))
        << result.output;
    EXPECT_TRUE(contains(result.output, "-> The device left recovery mode")) << result.output;
    EXPECT_TRUE(contains(result.output, "developer plug-in package 16.4")) << result.output;
}

TEST(DemoCommand, TemporaryDirectoryIsRemovedAfterwards) {
    TemporaryDirectory scratch;
    const auto result = runTool({"demo"}, {"TMPDIR=" + scratch.path()});
    ASSERT_EQ(result.status, 0) << result.output;
    EXPECT_TRUE(std::filesystem::is_empty(scratch.path()));
}

TEST(DemoCommand, ConfigDirectoryKeepsWhatEachStepWrote) {
    TemporaryDirectory scratch;
    const std::string config = scratch.file("config dir");
    const auto result = runTool({"demo", "--config-dir", config});
    ASSERT_EQ(result.status, 0) << result.output << result.errors;
    for (const char* file :
         {"configure.xml", "notify.xml", "PortBind.xml", "Factory.json", "RestoreIpsw.xml"}) {
        EXPECT_TRUE(std::filesystem::is_regular_file(config + "/" + file)) << file;
        EXPECT_TRUE(contains(result.output, file)) << file << " not listed in:\n" << result.output;
    }
    const std::string configuration = TemporaryDirectory::read(config + "/configure.xml");
    EXPECT_TRUE(contains(configuration, "5.2.1")) << configuration;
}

TEST(DemoCommand, SecondRunInTheSameDirectoryIsNotANewInstallation) {
    TemporaryDirectory scratch;
    const std::string config = scratch.file("config");
    ASSERT_EQ(runTool({"demo", "--config-dir", config}).status, 0);
    const auto second = runTool({"demo", "--config-dir", config});
    EXPECT_EQ(second.status, 0) << second.output;
    EXPECT_TRUE(contains(second.output, "an existing installation")) << second.output;
}

TEST(DemoCommand, ADirectoryThatIsNotTheDemosOwnIsNeverChanged) {
    // A user's configuration, a broken store beside it, and an empty --config-dir.
    TemporaryDirectory scratch;
    const std::string config = scratch.file("mine");
    std::filesystem::create_directories(config);
    const std::string configuration =
        "<Nevor><CustomBackup><Item Path=\"/precious\"/></CustomBackup></Nevor>";
    TemporaryDirectory::write(config + "/configure.xml", configuration);
    TemporaryDirectory::write(config + "/Factory.json", "{bad");
    for (const std::string& directory : {config, std::string()}) {
        const auto result = runTool({"demo", "--config-dir", directory});
        EXPECT_EQ(result.status, 2) << result.output;
        EXPECT_EQ(result.output, "");
    }
    EXPECT_TRUE(contains(runTool({"demo", "--config-dir", config}).errors,
                         "pallix: " + std::filesystem::canonical(config).string() +
                             ": holds files that the demo did not write"));
    EXPECT_EQ(TemporaryDirectory::read(config + "/configure.xml"), configuration);
    EXPECT_EQ(TemporaryDirectory::read(config + "/Factory.json"), "{bad");
    EXPECT_EQ(TemporaryDirectory::entries(config),
              (std::vector<std::string>{"Factory.json", "configure.xml"}));
    // An empty directory becomes the demo's own, and stays so for the next run.
    const std::string fresh = scratch.file("fresh");
    std::filesystem::create_directories(fresh);
    ASSERT_EQ(runTool({"demo", "--config-dir", fresh}).status, 0);
    EXPECT_EQ(runTool({"demo", "--config-dir", fresh}).status, 0);
}

TEST(DemoCommand, TamperedSampleIsReportedAndFailsTheDemo) {
    TemporaryDirectory scratch;
    const std::string samples = scratch.file("samples");
    std::filesystem::copy(PALLIX_SAMPLES_DIR, samples, std::filesystem::copy_options::recursive);
    const std::string crash = samples + "/crash.xml";
    TemporaryDirectory::write(crash, TemporaryDirectory::read(crash) + "\n");
    const auto result = runTool({"demo", "--samples-dir", samples}, {"TMPDIR=" + scratch.path()});
    EXPECT_EQ(result.status, 1) << result.output;
    EXPECT_TRUE(contains(result.output, "[!!] crash.xml has MD5")) << result.output;
    EXPECT_TRUE(contains(result.output, "1 check failed.")) << result.output;
}

// Each directory option given something that is not a directory it can use: a usage error that
// names it, before anything is written.
TEST(DemoCommand, DirectoriesThatCannotBeUsedAreClearErrors) {
    TemporaryDirectory scratch;
    const std::string file = scratch.file("a file");
    TemporaryDirectory::write(file, "not a directory");
    const std::string empty = scratch.file("empty");
    std::filesystem::create_directories(empty);
    struct Case {
        std::vector<std::string> arguments;
        std::string message;
    };
    const std::vector<Case> cases{
        {{"--config-dir", file}, file + ": is not a directory"},
        {{"--config-dir", file + "/below"}, file + "/below: cannot create"},
        {{"--resources-dir", file}, file + ": is not a directory"},
        {{"--resources-dir", scratch.file("none")}, scratch.file("none") + ": no such resources"},
        {{"--samples-dir", file}, file + ": is not a directory"},
        {{"--samples-dir", scratch.file("none")}, scratch.file("none") + ": no such samples"},
        {{"--samples-dir", empty}, empty + ": no sample files (cloud.xml)"},
    };
    for (const Case& test : cases) {
        std::vector<std::string> arguments{"demo"};
        arguments.insert(arguments.end(), test.arguments.begin(), test.arguments.end());
        const auto result = runTool(arguments, {"TMPDIR=" + scratch.path()});
        EXPECT_EQ(result.status, 2) << test.arguments[0] << " " << test.arguments[1];
        EXPECT_EQ(result.output, "") << test.arguments[0];
        EXPECT_TRUE(contains(result.errors, "pallix: " + test.message)) << result.errors;
    }
    EXPECT_EQ(TemporaryDirectory::entries(scratch.path()),
              (std::vector<std::string>{"a file", "empty"}));
    EXPECT_EQ(TemporaryDirectory::read(file), "not a directory");
}

TEST(DemoCommand, UnreadableDirectoriesAreClearErrors) {
    TemporaryDirectory scratch;
    const std::string locked = scratch.file("locked");
    std::filesystem::copy(PALLIX_SAMPLES_DIR, locked, std::filesystem::copy_options::recursive);
    ASSERT_EQ(::chmod(locked.c_str(), 0), 0);
    // File modes do not stop root: the tool runs as a user whom they do stop.
    const int status = pallix::test::runWithReadOnlyDirectory(scratch.path(), [&] {
        bool ok = true;
        for (const char* option : {"--config-dir", "--resources-dir", "--samples-dir"}) {
            const auto result = runTool({"demo", option, locked});
            if (result.status != 2 || !contains(result.errors, locked + ": the ") ||
                !contains(result.errors, "directory cannot be read")) {
                std::cerr << option << ": " << result.status << " " << result.errors;
                ok = false;
            }
        }
        return ok;
    });
    ::chmod(locked.c_str(), 0755);
    EXPECT_EQ(status, 0);
}

TEST(DemoCommand, HelpGivesTheExitStatusesAndEndsWithAnExample) {
    const auto result = runTool({"demo", "--help"});
    EXPECT_EQ(result.status, 0);
    const auto example = result.output.find("\nExample:\n  pallix demo");
    const auto statuses = result.output.find("\nExit status: 0 ");
    EXPECT_NE(example, std::string::npos) << result.output;
    EXPECT_NE(statuses, std::string::npos) << result.output;
    EXPECT_LT(statuses, example);
}
