// "pallix check" on broken files, one per kind of finding: the finding, its position and the
// exit status (0 clean, 1 warnings only, 2 errors). The check never changes a file.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>

#include <sys/stat.h>

#include <filesystem>
#include <string>
#include <vector>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;

namespace {

struct BrokenFile {
    const char* file;
    const char* kind;     // empty: found from the content
    const char* position; // "LINE:COLUMN"
    const char* severity;
    const char* words; // a part of the message
    int exitStatus;
};

std::string dataPath(const std::string& name) {
    return std::string(PALLIX_TEST_DATA_DIR) + "/check/" + name;
}

void PrintTo(const BrokenFile& broken, std::ostream* out) {
    *out << broken.file;
}

class CheckFindsSeededProblem : public ::testing::TestWithParam<BrokenFile> {};

} // namespace

TEST_P(CheckFindsSeededProblem, ReportsItAtItsPositionWithItsExitStatus) {
    const BrokenFile& broken = GetParam();
    const std::string path = dataPath(broken.file);
    const std::string before = TemporaryDirectory::read(path);
    struct stat infoBefore {};
    ASSERT_EQ(::stat(path.c_str(), &infoBefore), 0);

    std::vector<std::string> arguments{"check"};
    if (*broken.kind != '\0') {
        arguments.insert(arguments.end(), {"--kind", broken.kind});
    }
    arguments.push_back(path);
    const auto result = runTool(arguments);

    const std::string expected = path + ":" + broken.position + ": " + broken.severity + ": ";
    const auto at = result.output.find(expected);
    ASSERT_NE(at, std::string::npos) << "expected " << expected << " in:\n" << result.output;
    const std::string line = result.output.substr(at, result.output.find('\n', at) - at);
    EXPECT_NE(line.find(broken.words), std::string::npos) << line;
    EXPECT_EQ(result.status, broken.exitStatus) << result.output;
    EXPECT_NE(result.output.find("1 file checked: "), std::string::npos) << result.output;

    // Never modified: same bytes, same modification time.
    EXPECT_EQ(TemporaryDirectory::read(path), before);
    struct stat infoAfter {};
    ASSERT_EQ(::stat(path.c_str(), &infoAfter), 0);
    EXPECT_EQ(infoAfter.st_mtim.tv_sec, infoBefore.st_mtim.tv_sec);
    EXPECT_EQ(infoAfter.st_mtim.tv_nsec, infoBefore.st_mtim.tv_nsec);
}

INSTANTIATE_TEST_SUITE_P(
    BrokenFiles, CheckFindsSeededProblem,
    ::testing::Values(
        BrokenFile{"not-well-formed.xml", "", "4:1", "error", "not well-formed XML", 2},
        BrokenFile{"wrong-root.xml", "cpid", "2:1", "error", "root element is \"CRASH\"", 2},
        BrokenFile{"unknown-root.xml", "", "2:1", "error", "--kind", 2},
        BrokenFile{"cpid-lower-case-chip.xml", "", "3:8", "error", "CPID \"80a0\" is never found",
                   2},
        BrokenFile{"cpid-short-board.xml", "", "3:20", "error", "BDID \"C\" is never found", 2},
        BrokenFile{"cpid-duplicate-pair.xml", "", "4:3", "warning", "repeats an earlier row", 1},
        BrokenFile{"cpid-no-default.xml", "", "3:3", "warning", "no board-00 default row", 1},
        BrokenFile{"crash-empty-key.xml", "", "3:8", "error", "empty KEY matches every text", 2},
        BrokenFile{"crash-empty-key.xml", "", "4:3", "warning", "never found", 2},
        BrokenFile{"crash-duplicate-key.xml", "", "4:8", "warning", "(case ignored)", 1},
        BrokenFile{"restore-missing-code.xml", "", "3:3", "error", "stored under code 0", 2},
        BrokenFile{"restore-bad-code.xml", "", "3:8", "error", "not a whole number", 2},
        BrokenFile{"restore-duplicate-code.xml", "", "4:8", "warning", "code 16 repeats", 1},
        BrokenFile{"mapping-empty-mapping.xml", "", "3:3", "error", "\"Mapping\" is missing", 2},
        BrokenFile{"mapping-duplicate-version.xml", "", "4:9", "warning", "Version \"1.0\" repeats",
                   1},
        BrokenFile{"cloud-missing-entry.xml", "", "3:5", "error", "\"RestoreVersion\" is missing",
                   2},
        BrokenFile{"cloud-duplicate-name.xml", "", "9:13", "warning", "listed again", 1},
        BrokenFile{"cloud-bad-digest.xml", "", "8:25", "error", "not 32 hexadecimal digits", 2},
        BrokenFile{"cloud-bad-address.xml", "", "8:64", "error", "not an http or https address", 2},
        BrokenFile{"cloud-bad-port.xml", "", "13:40", "error", "read as 4464", 2},
        BrokenFile{"cloud-duplicate-plugin.xml", "", "14:13", "warning", "plug-in version \"15.0\"",
                   1},
        BrokenFile{"cloud-catch-all-rule.xml", "", "14:9", "warning", "never reached", 1},
        BrokenFile{"config-speed-beyond-32-bits.xml", "", "4:20", "error",
                   "does not survive a load", 2},
        BrokenFile{"config-unknown-setting.xml", "", "4:9", "warning",
                   "\"NoSuchSetting\" is not a setting", 1},
        BrokenFile{"config-duplicate-key.xml", "", "4:9", "warning", "lists \"Data\" again", 1},
        BrokenFile{"legacy-speed-beyond-32-bits.xml", "", "3:21", "error",
                   "not imported as written", 2},
        BrokenFile{"notify-duplicate-id.xml", "", "6:3", "warning", "notification 7", 1},
        BrokenFile{"portbind-duplicate-source.xml", "", "5:9", "warning", "bound again", 1},
        BrokenFile{"ipsw-duplicate-url.xml", "", "4:10", "warning", "listed again", 1},
        BrokenFile{"factory-not-hexadecimal.json", "", "3:3", "error", "it is dropped", 2},
        BrokenFile{"version-no-control.xml", "", "2:1", "error", "falls back to \"5.0.0\"", 2},
        BrokenFile{"version-empty.xml", "", "4:3", "error", "the running version is empty", 2},
        BrokenFile{"factory-lower-case.json", "", "3:3", "warning", "renamed", 1},
        BrokenFile{"factory-malformed.json", "", "3:40", "error", "not well-formed JSON", 2}));

TEST(CheckCommand, MissingFileIsAnError) {
    const auto result = runTool({"check", dataPath("no-such-file.xml")});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("no-such-file.xml:1:1: error: cannot read the file"),
              std::string::npos)
        << result.output;
}

TEST(CheckCommand, DirectoryIsAnError) {
    TemporaryDirectory directory;
    const auto result = runTool({"check", directory.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("it is a directory"), std::string::npos) << result.output;
}

TEST(CheckCommand, UnknownKindIsRefused) {
    const auto result = runTool({"check", "--kind", "spreadsheet", dataPath("wrong-root.xml")});
    EXPECT_NE(result.status, 0);
    EXPECT_EQ(result.output.find("checked"), std::string::npos) << result.output;
}

TEST(CheckCommand, WorstFindingOfAllFilesSetsTheExitStatus) {
    const auto warnings =
        runTool({"check", dataPath("cpid-no-default.xml"), dataPath("crash-duplicate-key.xml")});
    EXPECT_EQ(warnings.status, 1) << warnings.output;
    EXPECT_NE(warnings.output.find("2 files checked: 0 errors, 2 warnings"), std::string::npos)
        << warnings.output;

    const auto errors =
        runTool({"check", dataPath("cpid-no-default.xml"), dataPath("restore-bad-code.xml")});
    EXPECT_EQ(errors.status, 2) << errors.output;
    EXPECT_NE(errors.output.find("2 files checked: 1 error, 1 warning"), std::string::npos)
        << errors.output;
}

TEST(CheckCommand, EverySampleFileIsClean) {
    std::vector<std::string> arguments{"check"};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(PALLIX_SAMPLES_DIR)) {
        const std::string extension = entry.path().extension().string();
        if (entry.is_regular_file() && (extension == ".xml" || extension == ".json")) {
            arguments.push_back(entry.path().string());
        }
    }
    ASSERT_GT(arguments.size(), 1u) << "no sample files";
    const auto result = runTool(arguments);
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find(" 0 errors, 0 warnings"), std::string::npos) << result.output;
}
