// "pallix check" on broken files, one per kind of finding: the finding, its position and the
// exit status (0 clean, 1 findings, 2 a usage error or a file that cannot be checked). The
// check never changes a file.

#include "NonRegularFiles.h"
#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

using pallix::test::BlockingAlarm;
using pallix::test::makeFifo;
using pallix::test::runProgram;
using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

using Json = nlohmann::ordered_json;

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

// The tool with its standard input read from `input`.
ToolResult runToolOn(const std::string& input, const std::vector<std::string>& arguments) {
    std::vector<std::string> shell{"-c", "exec \"$0\" \"$@\" < \"$TOOL_INPUT\"", PALLIX_TOOL_PATH};
    shell.insert(shell.end(), arguments.begin(), arguments.end());
    return runProgram("sh", shell, {"TOOL_INPUT=" + input});
}

// The findings of every file of a --json run, as (file, "LINE:COLUMN severity") strings.
std::vector<std::string> positions(const Json& report) {
    std::vector<std::string> result;
    for (const Json& file : report) {
        for (const Json& finding : file.at("findings")) {
            result.push_back(finding.at("file").get<std::string>() + ":" +
                             std::to_string(finding.at("line").get<int>()) + ":" +
                             std::to_string(finding.at("column").get<int>()) + " " +
                             finding.at("severity").get<std::string>());
        }
    }
    return result;
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
    EXPECT_EQ(result.errors, "");

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
        BrokenFile{"wrong-root.xml", "cpid", "2:1", "error", "root element is \"CRASH\"", 1},
        BrokenFile{"unknown-root.xml", "", "2:1", "error", "none that the library reads", 1},
        BrokenFile{"cpid-lower-case-chip.xml", "", "3:8", "error", "CPID \"80a0\" is never found",
                   1},
        BrokenFile{"cpid-short-board.xml", "", "3:20", "error", "BDID \"C\" is never found", 1},
        BrokenFile{"cpid-duplicate-pair.xml", "", "4:3", "warning", "repeats an earlier row", 1},
        BrokenFile{"cpid-no-default.xml", "", "3:3", "warning", "no board-00 default row", 1},
        BrokenFile{"cpid-missing-texts.xml", "", "2:3", "warning", "has no MODE", 1},
        BrokenFile{"cpid-missing-texts.xml", "", "3:30", "warning", "has an empty MODE", 1},
        BrokenFile{"cpid-repeated-attribute.xml", "", "2:47", "error",
                   "takes the first, \"iPhone 11\"", 1},
        BrokenFile{"crash-empty-key.xml", "", "3:8", "error", "empty KEY matches every text", 1},
        BrokenFile{"crash-empty-key.xml", "", "4:3", "warning", "never found", 1},
        BrokenFile{"crash-duplicate-key.xml", "", "4:8", "warning", "(case ignored)", 1},
        BrokenFile{"crash-missing-texts.xml", "", "2:3", "warning", "has no REASON", 1},
        BrokenFile{"crash-forbidden-character.xml", "", "2:20", "error",
                   "KEY is read as \"Restore\"", 1},
        BrokenFile{"crash-forbidden-character.xml", "", "2:44", "warning", "as U+0007 in REASON",
                   1},
        BrokenFile{"crash-forbidden-character.xml", "", "2:64", "warning",
                   "bytes that are not UTF-8", 1},
        BrokenFile{"crash-unknown-entity.xml", "", "2:45", "error",
                   "keeps the text \"&nbsp;\" in REASON", 1},
        BrokenFile{"crash-unknown-entity.xml", "", "2:72", "warning", "starts no reference", 1},
        BrokenFile{"crash-declared-entity.xml", "", "4:30", "error",
                   "declared in the document type", 1},
        BrokenFile{"crash-text-between-rows.xml", "", "2:3", "warning", "is not read", 1},
        BrokenFile{"restore-missing-code.xml", "", "3:3", "error", "stored under code 0", 1},
        BrokenFile{"restore-bad-code.xml", "", "3:8", "error", "not a whole number", 1},
        BrokenFile{"restore-duplicate-code.xml", "", "4:8", "warning", "code 16 repeats", 1},
        BrokenFile{"restore-missing-texts.xml", "", "3:56", "warning", "an empty SOLUTION", 1},
        BrokenFile{"mapping-empty-mapping.xml", "", "3:3", "error", "\"Mapping\" is missing", 1},
        BrokenFile{"mapping-duplicate-version.xml", "", "4:9", "warning", "Version \"1.0\" repeats",
                   1},
        BrokenFile{"cloud-missing-entry.xml", "", "3:5", "error", "\"RestoreVersion\" is missing",
                   1},
        BrokenFile{"cloud-duplicate-name.xml", "", "9:13", "warning", "listed again", 1},
        BrokenFile{"cloud-bad-digest.xml", "", "8:25", "error", "not 32 hexadecimal digits", 1},
        BrokenFile{"cloud-bad-address.xml", "", "8:64", "error", "not an http or https address", 1},
        BrokenFile{"cloud-bad-port.xml", "", "13:40", "error", "read as 4464", 1},
        BrokenFile{"cloud-duplicate-plugin.xml", "", "14:13", "warning", "plug-in version \"15.0\"",
                   1},
        BrokenFile{"cloud-catch-all-rule.xml", "", "14:9", "warning", "never reached", 1},
        BrokenFile{"cloud-unknown-reference-name.xml", "", "9:13", "warning",
                   "case-sensitive: it is not \"CPID\"", 1},
        BrokenFile{"cloud-unknown-reference-name.xml", "", "10:13", "warning",
                   "\"Firmware\" is not one that the application looks up", 1},
        BrokenFile{"cloud-bad-plugin.xml", "", "13:31", "error",
                   "address of plug-in package \"16.0\"", 1},
        BrokenFile{"cloud-bad-plugin.xml", "", "14:80", "error",
                   "digest of plug-in package \"17.0\"", 1},
        BrokenFile{"cloud-repeated-element.xml", "", "9:5", "warning",
                   "\"Hash\" appears again in \"Application\"", 1},
        BrokenFile{"cloud-findings-in-position-order.xml", "", "12:59", "error",
                   "digest of plug-in package", 1},
        BrokenFile{"config-speed-beyond-32-bits.xml", "", "4:20", "error",
                   "read as 2147483647, so it does not survive a load", 1},
        BrokenFile{"config-unknown-setting.xml", "", "4:9", "warning",
                   "\"NoSuchSetting\" is not a setting", 1},
        BrokenFile{"config-duplicate-key.xml", "", "4:9", "warning", "lists \"Data\" again", 1},
        BrokenFile{"config-repeated-element.xml", "", "4:2", "warning", "whose Value is \"A1B2C3\"",
                   1},
        BrokenFile{"config-repeated-element.xml", "", "8:2", "warning",
                   "nothing in this one is read", 1},
        BrokenFile{"legacy-speed-beyond-32-bits.xml", "", "3:21", "error",
                   "not imported as written", 1},
        BrokenFile{"notify-duplicate-id.xml", "", "6:3", "warning", "notification 7", 1},
        BrokenFile{"notify-old-layout.xml", "", "4:10", "error", "it is read as 0", 1},
        BrokenFile{"portbind-duplicate-source.xml", "", "5:9", "warning", "bound again", 1},
        BrokenFile{"portbind-text-entry.xml", "", "3:3", "warning", "every field empty", 1},
        BrokenFile{"ipsw-duplicate-url.xml", "", "4:10", "warning", "listed again", 1},
        BrokenFile{"factory-not-hexadecimal.json", "", "3:3", "error", "it is dropped", 1},
        BrokenFile{"factory-lower-case.json", "", "3:3", "warning", "renamed", 1},
        BrokenFile{"factory-malformed.json", "", "3:40", "error", "not well-formed JSON", 2},
        BrokenFile{"factory-number-overflow.json", "", "3:33", "error",
                   "number overflow parsing '1e400'", 2},
        BrokenFile{"factory-repeated-member.json", "", "3:3", "warning",
                   "keeps only the last one's value", 1},
        BrokenFile{"factory-repeated-member.json", "", "3:48", "warning",
                   "value \"SerialNumber\" is written again", 1},
        BrokenFile{"version-no-control.xml", "", "2:1", "error", "falls back to \"5.0.0\"", 1},
        BrokenFile{"version-empty.xml", "", "4:3", "error", "the running version is empty", 1}));

TEST(CheckCommand, MissingFileCannotBeChecked) {
    const std::string missing = dataPath("no-such-file.xml");
    const auto result = runTool({"check", missing});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "pallix: " + missing + ": cannot read the file: No such file or directory\n");
    EXPECT_EQ(result.output, "0 files checked: 0 errors, 0 warnings\n");
}

TEST(CheckCommand, DirectoryCannotBeChecked) {
    TemporaryDirectory directory;
    const auto result = runTool({"check", directory.path()});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "pallix: " + directory.path() + ": cannot read the file: it is a directory\n");
}

TEST(CheckCommand, FifoIsRefusedWithoutBeingOpened) {
    TemporaryDirectory directory;
    const std::string fifo = directory.file("cpid.xml");
    ASSERT_TRUE(makeFifo(fifo));
    // Opening a FIFO without a writer would block; the check must not even try.
    BlockingAlarm alarm(60);
    const auto result = runTool({"check", fifo});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "pallix: " + fifo + ": cannot read the file: it is not a regular file\n");
}

TEST(CheckCommand, UnreadableFileCannotBeChecked) {
    TemporaryDirectory directory;
    ASSERT_EQ(::chmod(directory.path().c_str(), 0755), 0);
    const std::string path = directory.file("cpid.xml");
    TemporaryDirectory::write(path, TemporaryDirectory::read(dataPath("cpid-no-default.xml")));
    ASSERT_EQ(::chmod(path.c_str(), 0), 0);
    ToolResult result;
    if (::geteuid() == 0) {
        // Permissions do not bind the superuser: run the tool as an ordinary user.
        result = runProgram("setpriv", {"--reuid=65534", "--regid=65534", "--clear-groups",
                                        PALLIX_TOOL_PATH, "check", path});
    } else {
        result = runTool({"check", path});
    }
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: " + path + ": cannot read the file: Permission denied\n");
}

TEST(CheckCommand, AFileThatCannotBeReadDoesNotStopTheOthers) {
    const auto result =
        runTool({"check", dataPath("no-such-file.xml"), dataPath("crash-duplicate-key.xml")});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.output.find("crash-duplicate-key.xml:4:8: warning: "), std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("1 file checked: 0 errors, 1 warning"), std::string::npos)
        << result.output;
}

TEST(CheckCommand, UnknownKindIsAUsageError) {
    const auto result = runTool({"check", "--kind", "spreadsheet", dataPath("wrong-root.xml")});
    // The option is refused while the arguments are parsed, with the status that the tool
    // gives every usage error: neither clean (0) nor findings (1).
    EXPECT_NE(result.status, 0);
    EXPECT_NE(result.status, 1);
    EXPECT_NE(result.errors.find("spreadsheet"), std::string::npos) << result.errors;
    EXPECT_EQ(result.output.find("checked"), std::string::npos) << result.output;
}

TEST(CheckCommand, NothingToCheckIsAUsageError) {
    const auto result = runTool({"check"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: check: name a FILE, - for standard input, or --config-dir "
                             "DIR\n");
    EXPECT_EQ(result.output, "");
}

TEST(CheckCommand, KindThatCannotBeToldIsAUsageError) {
    TemporaryDirectory directory;
    const std::string path = directory.file("empty.xml");
    TemporaryDirectory::write(path, "<Nevor/>\n");
    const auto result = runTool({"check", path});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.errors.find("pallix: " + path + ": cannot tell what kind of file this is"),
              std::string::npos)
        << result.errors;
    EXPECT_NE(result.errors.find("--kind"), std::string::npos) << result.errors;
    // Named, the same file is checked: an empty configuration is a clean one.
    const auto named = runTool({"check", "--kind", "config", path});
    EXPECT_EQ(named.status, 0) << named.output << named.errors;
}

TEST(CheckCommand, AnyFindingGivesOneAndAFileThatDoesNotParseGivesTwo) {
    const auto warnings =
        runTool({"check", dataPath("cpid-no-default.xml"), dataPath("crash-duplicate-key.xml")});
    EXPECT_EQ(warnings.status, 1) << warnings.output;
    EXPECT_NE(warnings.output.find("2 files checked: 0 errors, 2 warnings"), std::string::npos)
        << warnings.output;

    const auto errors =
        runTool({"check", dataPath("cpid-no-default.xml"), dataPath("restore-bad-code.xml")});
    EXPECT_EQ(errors.status, 1) << errors.output;
    EXPECT_NE(errors.output.find("2 files checked: 1 error, 1 warning"), std::string::npos)
        << errors.output;

    const auto malformed =
        runTool({"check", dataPath("restore-bad-code.xml"), dataPath("not-well-formed.xml")});
    EXPECT_EQ(malformed.status, 2) << malformed.output;
    EXPECT_NE(malformed.output.find("2 files checked: 2 errors, 0 warnings"), std::string::npos)
        << malformed.output;
}

TEST(CheckCommand, EverySampleFileIsClean) {
    std::vector<std::string> arguments{"check"};
    for (const auto& entry : std::filesystem::recursive_directory_iterator(PALLIX_SAMPLES_DIR)) {
        const std::string extension = entry.path().extension().string();
        // The restore versions are published with a release, but no reader of the library
        // takes them: check has no kind for them.
        const bool read = entry.path().filename() != "restore-version.xml";
        if (read && entry.is_regular_file() && (extension == ".xml" || extension == ".json")) {
            arguments.push_back(entry.path().string());
        }
    }
    ASSERT_GT(arguments.size(), 1u) << "no sample files";
    const auto result = runTool(arguments);
    EXPECT_EQ(result.status, 0) << result.output;
    EXPECT_NE(result.output.find(" 0 errors, 0 warnings"), std::string::npos) << result.output;
}

TEST(CheckCommand, FindingsComeInTheOrderOfTheirPositions) {
    // The checker finds the missing entry after walking the entries, and the plug-in's digest
    // before its address; the report puts them by line, then column.
    const std::string path = dataPath("cloud-findings-in-position-order.xml");
    const auto result = runTool({"check", path});
    EXPECT_EQ(result.output, path +
                                 ":3:5: error: the reference file \"RestoreVersion\" is missing "
                                 "from Application/Hash\n" +
                                 path +
                                 ":6:32: error: the MD5 digest of \"RestoreCode\" is \"12345\", "
                                 "not 32 hexadecimal digits\n" +
                                 path +
                                 ":12:31: error: the address of plug-in package \"16.0\" is "
                                 "\"example.invalid/p.zip\", not an http or https address\n" +
                                 path +
                                 ":12:59: error: the digest of plug-in package \"16.0\" is "
                                 "\"0123\", not 32 hexadecimal digits (an MD5 digest)\n"
                                 "1 file checked: 4 errors, 0 warnings\n");
    EXPECT_EQ(result.status, 1);
}

TEST(CheckCommand, JsonReportHoldsEveryFindingFieldByField) {
    const std::string first = dataPath("cloud-findings-in-position-order.xml");
    const std::string second = dataPath("crash-duplicate-key.xml");
    const std::string clean = std::string(PALLIX_SAMPLES_DIR) + "/crash.xml";
    const auto result = runTool({"check", "--json", first, second, clean});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "");
    const Json report = Json::parse(result.output); // the whole output is one document
    ASSERT_TRUE(report.is_array());
    ASSERT_EQ(report.size(), 3u);

    const std::vector<std::string> fileKeys{"file", "findings"};
    const std::vector<std::string> findingKeys{"file", "line", "column", "severity", "message"};
    for (const Json& file : report) {
        std::vector<std::string> keys;
        for (const auto& member : file.items()) {
            keys.push_back(member.key());
        }
        EXPECT_EQ(keys, fileKeys);
    }
    EXPECT_EQ(report[0].at("file"), first);
    EXPECT_EQ(report[1].at("file"), second);
    EXPECT_EQ(report[2].at("file"), clean);
    EXPECT_EQ(report[2].at("findings"), Json::array());

    const Json& findings = report[0].at("findings");
    ASSERT_EQ(findings.size(), 4u);
    const Json& digest = findings[1];
    std::vector<std::string> keys;
    for (const auto& member : digest.items()) {
        keys.push_back(member.key());
    }
    EXPECT_EQ(keys, findingKeys);
    EXPECT_EQ(digest.at("file"), first);
    EXPECT_EQ(digest.at("line"), 6);
    EXPECT_EQ(digest.at("column"), 32);
    EXPECT_EQ(digest.at("severity"), "error");
    EXPECT_EQ(digest.at("message"),
              "the MD5 digest of \"RestoreCode\" is \"12345\", not 32 hexadecimal digits");
    EXPECT_EQ(positions(report),
              (std::vector<std::string>{first + ":3:5 error", first + ":6:32 error",
                                        first + ":12:31 error", first + ":12:59 error",
                                        second + ":4:8 warning"}));
    const Json& warning = report[1].at("findings")[0];
    EXPECT_EQ(warning.at("severity"), "warning");
    EXPECT_EQ(warning.at("message"), "KEY \"amrestore\" repeats \"AMRestore\" (case ignored); this "
                                     "later row is never found");
}

TEST(CheckCommand, JsonReportOfCleanFilesExitsZero) {
    const auto result = runTool({"check", "--json", std::string(PALLIX_SAMPLES_DIR) + "/cpid.xml"});
    EXPECT_EQ(result.status, 0);
    const Json report = Json::parse(result.output);
    ASSERT_EQ(report.size(), 1u);
    EXPECT_TRUE(report[0].at("findings").empty());
}

TEST(CheckCommand, JsonReportLeavesFilesThatCannotBeReadToStandardError) {
    const std::string missing = dataPath("no-such-file.xml");
    const std::string malformed = dataPath("not-well-formed.xml");
    const auto result = runTool({"check", "--json", missing, malformed});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "pallix: " + missing + ": cannot read the file: No such file or directory\n");
    const Json report = Json::parse(result.output);
    ASSERT_EQ(report.size(), 1u);
    EXPECT_EQ(report[0].at("file"), malformed);
    EXPECT_EQ(positions(report), (std::vector<std::string>{malformed + ":4:1 error"}));
}

TEST(CheckCommand, StandardInputIsCheckedAsStdin) {
    const auto result = runToolOn(dataPath("cpid-short-board.xml"), {"check", "-"});
    EXPECT_EQ(result.status, 1) << result.errors;
    EXPECT_EQ(result.output, "<stdin>:3:20: error: BDID \"C\" is never found: a board is looked "
                             "up as two upper-case hexadecimal digits\n"
                             "1 file checked: 1 error, 0 warnings\n");
}

TEST(CheckCommand, StandardInputTakesItsKindFromTheOption) {
    // A crash table checked as chip identifiers: the wrong root.
    const auto result =
        runToolOn(dataPath("crash-duplicate-key.xml"), {"check", "--json", "--kind", "cpid", "-"});
    EXPECT_EQ(result.status, 1);
    const Json report = Json::parse(result.output);
    ASSERT_EQ(report.size(), 1u);
    EXPECT_EQ(report[0].at("file"), "<stdin>");
    EXPECT_EQ(positions(report), (std::vector<std::string>{"<stdin>:1:1 error"}));
    EXPECT_NE(report[0]["findings"][0]["message"].get<std::string>().find("not \"DEVICE\""),
              std::string::npos);
}

TEST(CheckCommand, StandardInputBesideFiles) {
    const std::string file = dataPath("cpid-no-default.xml");
    const auto result =
        runToolOn(dataPath("factory-lower-case.json"), {"check", "--json", file, "-"});
    EXPECT_EQ(result.status, 1);
    const Json report = Json::parse(result.output);
    EXPECT_EQ(positions(report),
              (std::vector<std::string>{file + ":3:3 warning", "<stdin>:3:3 warning"}));
}

TEST(CheckCommand, StandardInputOnlyOnce) {
    const auto result = runToolOn(dataPath("cpid-no-default.xml"), {"check", "-", "-"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: check: standard input (-) can be checked only once\n");
    EXPECT_EQ(result.output, "");
}

TEST(CheckCommand, HelpStatesTheExitStatusesAndEndsWithAnExample) {
    const auto result = runTool({"check", "--help"});
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.output.find("Exit status: 0 every file is clean; 1 some file has findings"),
              std::string::npos)
        << result.output;
    EXPECT_NE(result.output.find("2 a usage error"), std::string::npos) << result.output;
    std::string last = result.output;
    while (!last.empty() && last.back() == '\n') {
        last.pop_back();
    }
    last = last.substr(last.rfind('\n') + 1);
    EXPECT_EQ(last.rfind("  pallix check ", 0), 0u) << last;
    EXPECT_NE(result.output.find("\nExample:\n  pallix check "), std::string::npos)
        << result.output;
}

// --config-dir: every file of a configuration directory that the library reads, as its kind.
class CheckConfigDirectory : public ::testing::Test {
protected:
    void put(const std::string& name, const std::string& fixture) const {
        TemporaryDirectory::write(directory.file(name),
                                  TemporaryDirectory::read(dataPath(fixture)));
    }

    Json check() const {
        const auto result = runTool({"check", "--json", "--config-dir", directory.path()});
        EXPECT_EQ(result.errors, "");
        status = result.status;
        return Json::parse(result.output);
    }

    TemporaryDirectory directory;
    mutable int status = -1;
};

TEST_F(CheckConfigDirectory, ChecksEachFileAsItsKindInTheOrderTheLibraryReadsThem) {
    put("configure.xml", "config-duplicate-key.xml");
    put("notify.xml", "notify-duplicate-id.xml");
    // The custom firmware list where the port bindings belong: checked as port bindings.
    put("PortBind.xml", "ipsw-duplicate-url.xml");
    put("Factory.json", "factory-lower-case.json");
    put("RestoreIpsw.xml", "ipsw-duplicate-url.xml");
    put("unrelated.xml", "not-well-formed.xml");
    const Json report = check();
    EXPECT_EQ(status, 1);
    const std::string dir = directory.path();
    EXPECT_EQ(positions(report), (std::vector<std::string>{
                                     dir + "/configure.xml:4:9 warning",
                                     dir + "/notify.xml:6:3 warning",
                                     dir + "/PortBind.xml:1:1 error",
                                     dir + "/Factory.json:3:3 warning",
                                     dir + "/RestoreIpsw.xml:4:10 warning",
                                 }));
    EXPECT_NE(report[2]["findings"][0]["message"].get<std::string>().find("no element \"BIND\""),
              std::string::npos);
}

TEST_F(CheckConfigDirectory, CleanDirectoryExitsZero) {
    TemporaryDirectory::write(directory.file("PortBind.xml"),
                              "<Rilo><BIND><Item SOURCE=\"a\" TARGET=\"b\"/></BIND></Rilo>\n");
    const Json report = check();
    EXPECT_EQ(status, 0);
    ASSERT_EQ(report.size(), 1u);
    EXPECT_EQ(report[0]["file"], directory.file("PortBind.xml"));
}

TEST_F(CheckConfigDirectory, EmptyDirectoryHasNothingToCheck) {
    const Json report = check();
    EXPECT_EQ(status, 0);
    EXPECT_EQ(report, Json::array());
}

TEST_F(CheckConfigDirectory, LegacyFileHidesTheCurrentOne) {
    put("configure.xml", "config-duplicate-key.xml");
    put("Config.xml", "legacy-speed-beyond-32-bits.xml");
    const Json report = check();
    const std::string dir = directory.path();
    EXPECT_EQ(positions(report), (std::vector<std::string>{
                                     dir + "/configure.xml:1:1 warning",
                                     dir + "/configure.xml:4:9 warning",
                                     dir + "/Config.xml:3:21 error",
                                 }));
    EXPECT_NE(report[0]["findings"][0]["message"].get<std::string>().find(
                  "\"Config.xml\" beside it is imported in its place"),
              std::string::npos);
}

TEST_F(CheckConfigDirectory, OldNotificationsHideTheCurrentFile) {
    put("notify.xml", "notify-duplicate-id.xml");
    ASSERT_EQ(::mkdir(directory.file("Notify").c_str(), 0755), 0);
    put("Notify/9.xml", "notify-old-layout.xml");
    put("Notify/10.txt", "notify-old-layout.xml");
    ASSERT_EQ(::mkdir(directory.file("Notify/sub").c_str(), 0755), 0);
    const Json report = check();
    EXPECT_EQ(status, 1);
    const std::string dir = directory.path();
    EXPECT_EQ(positions(report), (std::vector<std::string>{
                                     dir + "/notify.xml:1:1 warning",
                                     dir + "/notify.xml:6:3 warning",
                                     dir + "/Notify/10.txt:1:1 warning",
                                     dir + "/Notify/9.xml:4:10 error",
                                 }));
    EXPECT_NE(report[0]["findings"][0]["message"].get<std::string>().find(
                  "the old \"Notify\" directory beside it is imported in its place"),
              std::string::npos);
    EXPECT_NE(report[1]["findings"][0]["message"].get<std::string>().find(
                  "reads \"10.xml\" in its place, and then deletes it with the directory"),
              std::string::npos);
}

TEST_F(CheckConfigDirectory, WithFilesToo) {
    put("Factory.json", "factory-lower-case.json");
    const std::string file = dataPath("cpid-no-default.xml");
    const auto result = runTool({"check", "--config-dir", directory.path(), file});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find("2 files checked: 0 errors, 2 warnings"), std::string::npos)
        << result.output;
}

TEST_F(CheckConfigDirectory, MissingDirectoryIsAUsageError) {
    const std::string missing = directory.file("missing");
    const auto result = runTool({"check", "--config-dir", missing});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: " + missing + ": not a directory\n");
    EXPECT_EQ(result.output, "");
}

TEST(CheckCommand, StandardInputThatCannotBeReadIsNotCheckedAsEmpty) {
    const TemporaryDirectory directory;
    const auto result = runToolOn(directory.path(), {"check", "-"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: <stdin>: cannot be read (Is a directory)\n");
    EXPECT_TRUE(result.output.empty()) << result.output;
}

TEST(CheckCommand, AMistypedKindGetsASuggestion) {
    for (const char* kind : {"resore-error", "Cpid"}) {
        const auto result = runTool({"check", "--kind", kind, dataPath("cpid-no-default.xml")});
        EXPECT_EQ(result.status, 2);
        EXPECT_NE(result.errors.find(std::string("'") + kind + "' is not a kind of file"),
                  std::string::npos)
            << result.errors;
        EXPECT_NE(result.errors.find(std::strcmp(kind, "Cpid") == 0
                                         ? "did you mean 'cpid'?"
                                         : "did you mean 'restore-error'?"),
                  std::string::npos)
            << result.errors;
    }
}

TEST(CheckCommand, AnEmptyConfigurationDirectoryIsRefused) {
    // An unset variable in a script must not check (or anything else) the default directory.
    const auto result = runTool({"check", "--config-dir", ""});
    EXPECT_EQ(result.status, 2);
    EXPECT_NE(result.errors.find("--config-dir: the path is empty"), std::string::npos)
        << result.errors;
}

TEST(CheckCommand, ALineBreakInAMessageIsEscaped) {
    const TemporaryDirectory directory;
    const std::string file = directory.path() + "/cpid.xml";
    std::ofstream(file) << "<DEVICE>\n<ROW CPID=\"8022&#10;\" BDID=\"00\" MODE=\"m\" PRODUCT=\"p\" "
                           "NETWORK=\"n\" SUPPORT=\"true\"/>\n</DEVICE>\n";
    const auto result = runTool({"check", file});
    EXPECT_EQ(result.status, 1);
    EXPECT_NE(result.output.find(":2:6: error: CPID \"8022\\n\" is never found"), std::string::npos)
        << result.output;
    // One line per finding, then the summary.
    EXPECT_EQ(std::count(result.output.begin(), result.output.end(), '\n'), 2) << result.output;
    const Json report = Json::parse(runTool({"check", "--json", file}).output);
    EXPECT_EQ(report[0]["findings"][0]["message"].get<std::string>().rfind("CPID \"8022\n\"", 0),
              0U);
}
