// pallix release: the sample files are a clean release; each test breaks one copy of it in one
// way and expects the finding at the right file and line.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <QByteArray>
#include <QCryptographicHash>

#include <filesystem>
#include <string>
#include <vector>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;
using Json = nlohmann::json;

namespace {

const std::vector<std::string> kReleaseFiles = {"cloud.xml",           "cpid.xml",
                                                "crash.xml",           "restore-error.xml",
                                                "restore-version.xml", "plugin-mapping.xml"};

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

std::string md5Of(const std::string& bytes) {
    return QCryptographicHash::hash(QByteArray(bytes.data(), static_cast<int>(bytes.size())),
                                    QCryptographicHash::Md5)
        .toHex()
        .toStdString();
}

// The line (from 1) on which `needle` first stands in `text`.
std::size_t lineOf(const std::string& text, const std::string& needle) {
    const std::size_t at = text.find(needle);
    EXPECT_NE(at, std::string::npos) << needle;
    std::size_t line = 1;
    for (std::size_t i = 0; i < at && i < text.size(); ++i) {
        line += text[i] == '\n' ? 1 : 0;
    }
    return line;
}

class ReleaseCommandTest : public ::testing::Test {
protected:
    void SetUp() override {
        for (const std::string& name : kReleaseFiles) {
            TemporaryDirectory::write(m_release.file(name), TemporaryDirectory::read(sample(name)));
        }
    }

    static std::string sample(const std::string& name) {
        return std::string(PALLIX_SAMPLES_DIR) + "/" + name;
    }
    std::string file(const std::string& name) const { return m_release.file(name); }
    std::string read(const std::string& name) const { return TemporaryDirectory::read(file(name)); }
    void write(const std::string& name, const std::string& text) const {
        TemporaryDirectory::write(file(name), text);
    }
    // Replaces the first `from` in a file of the release by `to`.
    void change(const std::string& name, const std::string& from, const std::string& to) const {
        std::string text = read(name);
        const std::size_t at = text.find(from);
        ASSERT_NE(at, std::string::npos) << from;
        text.replace(at, from.size(), to);
        write(name, text);
    }
    ToolResult release(std::vector<std::string> extra = {}) const {
        std::vector<std::string> arguments{"release", m_release.path()};
        arguments.insert(arguments.end(), extra.begin(), extra.end());
        return runTool(arguments);
    }
    // "FILE:LINE:" of a finding on a file of the release.
    std::string at(const std::string& name, std::size_t line) const {
        return file(name) + ":" + std::to_string(line) + ":";
    }

    TemporaryDirectory m_release{"pallix-release"};
    TemporaryDirectory m_elsewhere{"pallix-release-out"};
};

TEST_F(ReleaseCommandTest, TheSamplesAreACleanRelease) {
    const ToolResult result = release();
    EXPECT_EQ(result.status, 0) << result.output << result.errors;
    EXPECT_TRUE(contains(result.output, "6 files checked: 0 errors, 0 warnings")) << result.output;
    EXPECT_TRUE(result.errors.empty()) << result.errors;
}

TEST_F(ReleaseCommandTest, AFileThatDoesNotMatchItsDigestIsNamedAtTheEntry) {
    write("crash.xml", read("crash.xml") + "<!-- edited after the digest was taken -->\n");
    const ToolResult result = release();
    EXPECT_EQ(result.status, 1);
    const std::string cloud = read("cloud.xml");
    EXPECT_TRUE(contains(result.output, at("cloud.xml", lineOf(cloud, "Name=\"CrashCode\""))))
        << result.output;
    EXPECT_TRUE(contains(result.output, "has MD5 " + md5Of(read("crash.xml")))) << result.output;
}

TEST_F(ReleaseCommandTest, AMissingReferenceEntryIsAnError) {
    const std::string cloud = read("cloud.xml");
    const std::size_t line = lineOf(cloud, "<Hash>");
    const std::size_t begin = cloud.find("<File Name=\"RestoreVersion\"");
    const std::size_t end = cloud.find('\n', begin);
    write("cloud.xml", cloud.substr(0, begin) + cloud.substr(end));
    const ToolResult result = release();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, at("cloud.xml", line))) << result.output;
    EXPECT_TRUE(contains(result.output, "\"RestoreVersion\" is missing")) << result.output;
}

TEST_F(ReleaseCommandTest, AnEntryNamedTwiceIsFoundAtTheSecond) {
    const std::string cloud = read("cloud.xml");
    const std::size_t begin = cloud.find("<File Name=\"CPID\"");
    const std::string entry = cloud.substr(begin, cloud.find('\n', begin) + 1 - begin);
    write("cloud.xml", cloud.substr(0, begin) + entry + "\t\t\t" + cloud.substr(begin));
    const ToolResult result = release();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, at("cloud.xml", lineOf(cloud, "Name=\"CPID\"") + 1) +
                                            "10: warning: reference file \"CPID\" is listed "
                                            "again"))
        << result.output;
}

TEST_F(ReleaseCommandTest, AFileThatIsNotPublishedIsNamedAtItsAddress) {
    std::filesystem::remove(file("restore-error.xml"));
    const ToolResult result = release();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(
        contains(result.output, at("cloud.xml", lineOf(read("cloud.xml"), "Name=\"RestoreCode\""))))
        << result.output;
    EXPECT_TRUE(contains(result.output, "restore-error.xml, which is not in the release"))
        << result.output;
}

TEST_F(ReleaseCommandTest, AFileOfTheWrongKindIsNamedAsSuch) {
    write("cpid.xml", read("crash.xml"));
    const ToolResult result = release();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, at("cpid.xml", 1) + "1: error: this is a crash code "
                                                            "table, but the CPID entry"))
        << result.output;
}

TEST_F(ReleaseCommandTest, ATableFindingIsReportedOnTheTable) {
    const std::string table = read("cpid.xml");
    const std::size_t line = lineOf(table, "SUPPORT=\"false\"");
    change("cpid.xml", "SUPPORT=\"false\"", "SUPPORT=\"maybe\"");
    const ToolResult result = release({"--write-digests", m_elsewhere.file("cloud.xml")});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, at("cpid.xml", line))) << result.output;
}

TEST_F(ReleaseCommandTest, AMalformedRestoreVersionFileIsAnError) {
    write("restore-version.xml", "<RestoreVersions>\n<Product>\n</RestoreVersions>\n");
    const ToolResult result = release();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, at("restore-version.xml", 3))) << result.output;
}

TEST_F(ReleaseCommandTest, MalformedPluginDigestsAndAddressesAreFound) {
    const std::string cloud = read("cloud.xml");
    change("cloud.xml", "Hash=\"447df296b406116053af27b390784af9\"", "Hash=\"447df296\"");
    change("cloud.xml", "Url=\"https://cdn.pallix.example/plugins/rvq/developer-17.0.zip\"",
           "Url=\"cdn.pallix.example developer-17.0.zip\"");
    const ToolResult result = release();
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.output, at("cloud.xml", lineOf(cloud, "Version=\"16.4\""))))
        << result.output;
    EXPECT_TRUE(
        contains(result.output, at("cloud.xml", lineOf(cloud, "plugins/rvq/developer-17.0.zip"))))
        << result.output;
}

TEST_F(ReleaseCommandTest, WrittenDigestsCheckCleanAndTheOriginalStaysAsItWas) {
    write("cpid.xml", read("cpid.xml") + "<!-- a row was corrected -->\n");
    write("plugin-mapping.xml", read("plugin-mapping.xml") + "\n");
    const std::string before = md5Of(read("cloud.xml"));
    const std::string out = m_elsewhere.file("cloud.xml");
    const ToolResult written = release({"--write-digests", out});
    EXPECT_EQ(written.status, 0) << written.output << written.errors;
    EXPECT_TRUE(contains(written.output, "CPID: 51025cfd")) << written.output;
    EXPECT_EQ(md5Of(read("cloud.xml")), before);

    // Only the two digests differ; comments and layout are kept byte for byte.
    std::string expected = read("cloud.xml");
    for (const char* name : {"cpid.xml", "plugin-mapping.xml"}) {
        const std::string old = md5Of(TemporaryDirectory::read(sample(name)));
        expected.replace(expected.find(old), old.size(), md5Of(read(name)));
    }
    EXPECT_EQ(TemporaryDirectory::read(out), expected);

    const ToolResult again = release({"--cloud", out});
    EXPECT_EQ(again.status, 0) << again.output << again.errors;
    EXPECT_TRUE(contains(again.output, "0 errors, 0 warnings")) << again.output;
}

TEST_F(ReleaseCommandTest, DigestsAreNotWrittenWhenAFileIsMissing) {
    std::filesystem::remove(file("crash.xml"));
    write("cpid.xml", read("cpid.xml") + "<!-- a row was corrected -->\n");
    const std::string out = m_elsewhere.file("cloud.xml");
    const ToolResult result = release({"--write-digests", out});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "not written")) << result.errors;
    EXPECT_FALSE(std::filesystem::exists(out));
    // The digest that differs is no finding when rewriting, so it is still told.
    EXPECT_TRUE(contains(result.output, "digests that differ from their files (not written):\n"
                                        "  CPID: "))
        << result.output;
}

TEST_F(ReleaseCommandTest, TheOriginalIsNeverTheOutput) {
    const std::string before = read("cloud.xml");
    const ToolResult result = release({"--write-digests", file("cloud.xml")});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "is the cloud document itself")) << result.errors;
    EXPECT_EQ(read("cloud.xml"), before);
}

TEST_F(ReleaseCommandTest, NoFileOfTheReleaseIsTheOutput) {
    write("cpid.xml", read("cpid.xml") + "<!-- a row was corrected -->\n");
    const std::string before = read("crash.xml");
    const ToolResult result = release({"--write-digests", file("crash.xml")});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "is a file of the release")) << result.errors;
    EXPECT_EQ(read("crash.xml"), before);
}

TEST_F(ReleaseCommandTest, EmptyPathsAreUsageErrors) {
    for (const char* option : {"--write-digests", "--cloud"}) {
        const ToolResult result = release({option, ""});
        EXPECT_EQ(result.status, 2) << option;
        EXPECT_TRUE(contains(result.errors, "the path is empty")) << result.errors;
    }
}

TEST_F(ReleaseCommandTest, FileGivesTheFileOfAnEntry) {
    std::filesystem::rename(file("crash.xml"), m_elsewhere.file("crash-5.xml"));
    const ToolResult result = release({"--file", "CrashCode=" + m_elsewhere.file("crash-5.xml")});
    EXPECT_EQ(result.status, 0) << result.output << result.errors;

    const ToolResult unknown = release({"--file", "CrashCodes=x.xml"});
    EXPECT_EQ(unknown.status, 2);
    EXPECT_TRUE(contains(unknown.errors, "did you mean 'CrashCode'")) << unknown.errors;
    EXPECT_EQ(release({"--file", "CrashCode"}).status, 2);
}

TEST_F(ReleaseCommandTest, TheCloudDocumentMustBeOneAndReadable) {
    std::filesystem::remove(file("cloud.xml"));
    ToolResult result = release();
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "no cloud document")) << result.errors;

    TemporaryDirectory::write(file("cloud.xml"), TemporaryDirectory::read(sample("cloud.xml")));
    TemporaryDirectory::write(file("cloud-next.xml"),
                              TemporaryDirectory::read(sample("cloud.xml")));
    result = release();
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "2 cloud documents")) << result.errors;
    EXPECT_EQ(release({"--cloud", file("cloud-next.xml")}).status, 0);

    write("cloud-next.xml", "<Nevor><Application>");
    EXPECT_EQ(release({"--cloud", file("cloud-next.xml")}).status, 2);
    EXPECT_EQ(runTool({"release", file("cloud.xml")}).status, 2);
    EXPECT_EQ(runTool({"release", m_release.file("missing")}).status, 2);
}

TEST_F(ReleaseCommandTest, JsonGivesEveryFindingFieldByField) {
    write("crash.xml", read("crash.xml") + "\n");
    const ToolResult result = release({"--json"});
    EXPECT_EQ(result.status, 1);
    const Json report = Json::parse(result.output);
    EXPECT_EQ(report["cloud"], file("cloud.xml"));
    EXPECT_EQ(report["files"].size(), 6u);
    EXPECT_EQ(report["errors"], 1);
    EXPECT_EQ(report["warnings"], 0);
    ASSERT_EQ(report["findings"].size(), 1u);
    const Json& finding = report["findings"][0];
    EXPECT_EQ(finding["file"], file("cloud.xml"));
    EXPECT_EQ(finding["line"], lineOf(read("cloud.xml"), "Name=\"CrashCode\""));
    EXPECT_TRUE(finding["column"].is_number());
    EXPECT_EQ(finding["severity"], "error");
    EXPECT_TRUE(contains(finding["message"].get<std::string>(), md5Of(read("crash.xml"))));
    EXPECT_TRUE(report["written"].is_null());
}

TEST_F(ReleaseCommandTest, HelpGivesTheExitStatusesAndEndsWithAnExample) {
    const ToolResult result = runTool({"release", "--help"});
    EXPECT_EQ(result.status, 0);
    const auto statuses = result.output.find("\nExit status: 0 ");
    const auto example = result.output.find("\nExample:\n  pallix release ");
    ASSERT_NE(statuses, std::string::npos) << result.output;
    ASSERT_NE(example, std::string::npos) << result.output;
    EXPECT_LT(statuses, example);
}

} // namespace
