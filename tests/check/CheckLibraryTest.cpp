#include "Checkers.h"
#include "ConfigDirectoryFiles.h"
#include "FileKind.h"
#include "FileNames.h"
#include "NonRegularFiles.h"
#include "ReadingProblem.h"
#include "ReleaseCheck.h"
#include "TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <string>

using pallix::check::FileKind;
using pallix::check::ReadingProblem;
using pallix::test::TemporaryDirectory;

namespace {

namespace fs = std::filesystem;
using Cause = ReadingProblem::Cause;

const std::string kSamples = PALLIX_SAMPLES_DIR;

std::string sample(const std::string& name) {
    return TemporaryDirectory::read(kSamples + "/" + name);
}

// A copy of the sample release, to be broken one way per test.
struct Release {
    Release() {
        for (const char* name : {"cloud.xml", "cpid.xml", "crash.xml", "restore-error.xml",
                                 "restore-version.xml", "plugin-mapping.xml"}) {
            TemporaryDirectory::write(directory.file(name), sample(name));
        }
    }
    std::string file(const std::string& name) const { return directory.file(name); }
    TemporaryDirectory directory{"pallix-release"};
};

std::vector<std::string> messages(const pallix::check::SourceFile& file) {
    std::vector<std::string> all;
    for (const auto& finding : file.findings()) {
        all.push_back(finding.message);
    }
    return all;
}

} // namespace

TEST(FileKinds, NamesAndDescriptionsBelongToEachKind) {
    const auto& names = pallix::check::fileKindNames();
    ASSERT_EQ(names.size(), 13u);
    for (std::size_t i = 0; i < names.size(); ++i) {
        const auto kind = static_cast<FileKind>(i);
        EXPECT_EQ(pallix::check::fileKindFromName(names[i]), kind);
        EXPECT_EQ(pallix::check::nameOf(kind), names[i]);
        EXPECT_EQ(pallix::check::describe(kind).rfind("a ", 0), 0u) << names[i];
    }
    EXPECT_EQ(pallix::check::describe(FileKind::Cpid), "a chip table");
    EXPECT_FALSE(pallix::check::fileKindFromName("chip"));
}

TEST(ReadingProblems, AFileOfTheKindHasNone) {
    EXPECT_FALSE(pallix::check::readingProblem(kSamples + "/cloud.xml", FileKind::Cloud));
    EXPECT_FALSE(pallix::check::readingProblem(kSamples + "/cpid.xml", FileKind::Cpid));
}

TEST(ReadingProblems, SaysWhatKeepsTheLibraryFromReadingAFile) {
    TemporaryDirectory directory;
    const auto missing = pallix::check::readingProblem(directory.file("none.xml"), FileKind::Cpid);
    ASSERT_TRUE(missing);
    EXPECT_EQ(missing->cause, Cause::Missing);
    EXPECT_EQ(missing->message, "no such file");

    const auto folder = pallix::check::readingProblem(directory.path(), FileKind::Cpid);
    ASSERT_TRUE(folder);
    EXPECT_EQ(folder->cause, Cause::NotRegular);
    EXPECT_EQ(folder->message, "is a directory");

    const std::string other = directory.file("crash.xml");
    TemporaryDirectory::write(other, sample("crash.xml"));
    const auto kind = pallix::check::readingProblem(other, FileKind::Cpid);
    ASSERT_TRUE(kind);
    EXPECT_EQ(kind->cause, Cause::OtherKind);
    EXPECT_EQ(kind->message, "is a crash code table, not a chip table");

    const std::string broken = directory.file("broken.xml");
    TemporaryDirectory::write(broken, "<Nevor>\n  <Application>\n</Nevor>");
    const auto malformed = pallix::check::readingProblem(broken, FileKind::Cloud);
    ASSERT_TRUE(malformed);
    EXPECT_EQ(malformed->cause, Cause::Malformed);
    EXPECT_EQ(malformed->line, 3u);
    EXPECT_NE(malformed->message.find("not well-formed XML"), std::string::npos);
}

TEST(ReadingProblems, APipeIsNeverOpenedForReading) {
    TemporaryDirectory directory;
    const std::string fifo = directory.file("cloud.xml");
    ASSERT_TRUE(pallix::test::makeFifo(fifo));
    const pallix::test::BlockingAlarm alarm;
    const auto problem = pallix::check::readingProblem(fifo, FileKind::Cloud);
    ASSERT_TRUE(problem);
    EXPECT_EQ(problem->cause, Cause::NotRegular);
    EXPECT_EQ(problem->message, "is not a regular file");
}

TEST(ReadingProblems, FactoryInformationMustBeAJsonObject) {
    TemporaryDirectory directory;
    const std::string path = directory.file("Factory.json");
    TemporaryDirectory::write(path, "[1, 2]");
    EXPECT_EQ(pallix::check::readingProblem(path, FileKind::Factory)->message,
              "does not hold a JSON object");
    TemporaryDirectory::write(path, "{\"0000000000008101\": ");
    EXPECT_EQ(pallix::check::readingProblem(path, FileKind::Factory)->message, "is not valid JSON");
    TemporaryDirectory::write(path, "{}");
    EXPECT_FALSE(pallix::check::readingProblem(path, FileKind::Factory));
}

TEST(ConfigDirectoryFiles, ListsWhatTheLibraryReadsInItsOrder) {
    TemporaryDirectory directory;
    namespace format = pallix::format;
    for (const char* name : {format::kCustomFirmwareFile, format::kNotifyFile,
                             format::kConfigurationFile, "unrelated.xml"}) {
        TemporaryDirectory::write(directory.file(name), "<Nevor/>");
    }
    const auto files = pallix::check::configDirectoryFiles(directory.path() + "/");
    ASSERT_EQ(files.size(), 3u);
    EXPECT_EQ(files[0].path, directory.file(format::kConfigurationFile));
    EXPECT_EQ(files[0].kind, FileKind::Config);
    EXPECT_EQ(files[1].kind, FileKind::Notify);
    EXPECT_EQ(files[2].kind, FileKind::Ipsw);
    for (const auto& file : files) {
        EXPECT_TRUE(file.note.empty()) << file.path;
    }
}

TEST(ConfigDirectoryFiles, AnImportedFileAndAPassedOverOneAreNoted) {
    TemporaryDirectory directory;
    namespace format = pallix::format;
    TemporaryDirectory::write(directory.file(format::kConfigurationFile), "<Nevor/>");
    TemporaryDirectory::write(directory.file(format::kLegacyConfigurationFile), "<Config/>");
    const std::string old = directory.file(format::kOldNotifyDirectory);
    fs::create_directories(old);
    TemporaryDirectory::write(old + "/7" + format::kOldNotifyExtension, "<Notify/>");
    TemporaryDirectory::write(old + "/7.txt", "x");
    const auto files = pallix::check::configDirectoryFiles(directory.path());
    ASSERT_EQ(files.size(), 4u);
    EXPECT_NE(files[0].note.find("is imported in its place"), std::string::npos);
    EXPECT_EQ(files[1].kind, FileKind::LegacyConfig);
    // The old files come by name: "7.txt" is passed over for the "7.xml" that the import reads.
    EXPECT_TRUE(files[2].noteOnly);
    EXPECT_FALSE(files[2].kind);
    EXPECT_NE(files[2].note.find("never reads this file"), std::string::npos);
    EXPECT_EQ(files[3].kind, FileKind::OldNotify);
}

TEST(ReleaseCheck, TheSampleReleaseIsCleanAndFindsItsCloudDocument) {
    const Release release;
    std::error_code error;
    EXPECT_EQ(pallix::check::cloudDocumentsIn(release.directory.path(), error),
              std::vector<std::string>{release.file("cloud.xml")});
    pallix::check::SourceFile document(release.file("cloud.xml"));
    ASSERT_TRUE(document.parseXml());
    const auto references =
        pallix::check::checkReferences(document, release.directory.path(), {}, true);
    ASSERT_EQ(references.size(), 5u);
    for (const auto& reference : references) {
        ASSERT_TRUE(reference.file) << reference.name;
        EXPECT_FALSE(reference.digestDiffers()) << reference.name;
        EXPECT_TRUE(reference.file->findings().empty()) << reference.name;
    }
    EXPECT_TRUE(document.findings().empty()) << messages(document).front();
    EXPECT_EQ(pallix::check::withDigests(document, references), document.text());
}

TEST(ReleaseCheck, AChangedFileIsFoundAndItsDigestRewritten) {
    const Release release;
    TemporaryDirectory::write(release.file("crash.xml"), sample("crash.xml") + "\n");
    fs::remove(release.file("plugin-mapping.xml"));
    pallix::check::SourceFile document(release.file("cloud.xml"));
    ASSERT_TRUE(document.parseXml());
    const auto references =
        pallix::check::checkReferences(document, release.directory.path(), {}, true);
    const auto all = messages(document);
    ASSERT_EQ(all.size(), 2u);
    EXPECT_NE(all[0].find("the digest of CrashCode is \"e8a957cb86dfdac099d29be57d484f17\""),
              std::string::npos);
    EXPECT_NE(all[1].find("is not in the release"), std::string::npos);

    // Only the digest's value changes; the entry without a file keeps its digest.
    const std::string rewritten = pallix::check::withDigests(document, references);
    ASSERT_EQ(rewritten.size(), document.text().size());
    std::size_t differing = 0;
    for (std::size_t i = 0; i < rewritten.size(); ++i) {
        differing += rewritten[i] != document.text()[i] ? 1 : 0;
    }
    EXPECT_GT(differing, 0u);
    EXPECT_LE(differing, 32u);
    EXPECT_NE(rewritten.find("4b260396fd1667e7f9fde638782fbafc"), std::string::npos);
}

TEST(ReleaseCheck, ANamedFileTakesThePlaceOfTheAddressOne) {
    const Release release;
    const std::string elsewhere = release.directory.file("elsewhere.xml");
    fs::rename(release.file("cpid.xml"), elsewhere);
    pallix::check::SourceFile document(release.file("cloud.xml"));
    ASSERT_TRUE(document.parseXml());
    const std::map<std::string, std::string> named{{"CPID", elsewhere}};
    const auto references =
        pallix::check::checkReferences(document, release.directory.path(), named, true);
    EXPECT_TRUE(document.findings().empty());
    EXPECT_EQ(references.front().path, elsewhere);
    EXPECT_TRUE(pallix::check::isReferenceName("RestoreVersion"));
    EXPECT_FALSE(pallix::check::isReferenceName("Firmware"));
}

TEST(CheckXml, ADeeplyNestedDocumentIsWalkedToTheBottom) {
    // pugixml parses nesting far deeper than a call stack holds; the checker walks all of it.
    const std::size_t depth = 100000;
    std::string text = "<CRASH>";
    for (std::size_t i = 0; i < depth; ++i) {
        text += "<a>";
    }
    const std::size_t deepest = text.size();
    text += "<b V=\"&nbsp;\"/>";
    for (std::size_t i = 0; i < depth; ++i) {
        text += "</a>";
    }
    text += "</CRASH>";
    const auto findings = pallix::check::checkBytes("deep.xml", text, FileKind::Crash);
    ASSERT_EQ(findings.size(), 3u);
    // The one row, the outermost "a", has no texts.
    EXPECT_NE(findings[0].message.find("has no REASON"), std::string::npos);
    EXPECT_NE(findings[1].message.find("has no SOLUTION"), std::string::npos);
    EXPECT_EQ(findings[2].line, 1u);
    EXPECT_EQ(findings[2].column, deepest + 7);
    EXPECT_NE(findings[2].message.find("\"&nbsp;\" is none of the five"), std::string::npos)
        << findings[2].message;
}

TEST(CheckPositions, EveryKindOfLineBreakCountsOnce) {
    const std::string rows[] = {"<CRASH>", "  <ROW KEY=\"A\" REASON=\"r\" SOLUTION=\"s\"/>",
                                "  <ROW KEY=\"a\" REASON=\"r\" SOLUTION=\"s\"/>", "</CRASH>"};
    for (const char* lineBreak : {"\n", "\r\n", "\r"}) {
        std::string text;
        for (const std::string& row : rows) {
            text += row + lineBreak;
        }
        const auto findings = pallix::check::checkBytes("lines.xml", text, FileKind::Crash);
        ASSERT_EQ(findings.size(), 1u);
        EXPECT_EQ(findings[0].line, 3u);
        EXPECT_EQ(findings[0].column, 8u);
    }
    // Mixed: "\r\n" is one break, a '\r' before a '\r' is one of its own.
    const auto mixed = pallix::check::checkBytes(
        "mixed.xml", rows[0] + "\r\r\n" + rows[1] + "\n" + rows[2] + "\r" + rows[3],
        FileKind::Crash);
    ASSERT_EQ(mixed.size(), 1u);
    EXPECT_EQ(mixed[0].line, 4u);
    EXPECT_EQ(mixed[0].column, 8u);
}

TEST(CheckValues, ABooleanIsReadByItsFirstCharacterAndANumberAfterItsBlanks) {
    // The cloud document's flags and port, read as pugixml's as_bool and as_uint read them.
    const auto valueFindings = [](const std::string& flag, const std::string& port) {
        const std::string text = "<Nevor><Cooperate><HSB><SellStatus VALUE=\"" + flag +
                                 "\"/><Authorize ServicePort=\"" + port +
                                 "\"/></HSB></Cooperate></Nevor>";
        std::vector<std::string> found;
        for (const auto& finding : pallix::check::checkBytes("cloud.xml", text, FileKind::Cloud)) {
            if (finding.message.find("SellStatus") != std::string::npos ||
                finding.message.find("ServicePort") != std::string::npos) {
                found.push_back(finding.message);
            }
        }
        return found;
    };
    EXPECT_TRUE(valueFindings("TRUE", "80").empty());
    EXPECT_TRUE(valueFindings("no", " 80 ").empty());
    // "-0" is read as port 0, a port like any other.
    EXPECT_TRUE(valueFindings("1", "-0").empty());
    EXPECT_EQ(valueFindings(" true", "80"),
              std::vector<std::string>{
                  "SellStatus VALUE=\" true\" is not a boolean word; it is read as false"});
    EXPECT_EQ(valueFindings("yes ", "80"),
              std::vector<std::string>{
                  "SellStatus VALUE=\"yes \" is not a boolean word; it is read as true"});
    EXPECT_EQ(valueFindings("0", "-1"),
              std::vector<std::string>{
                  "ServicePort \"-1\" is not a port number from 0 to 65535; it is read as 0"});
}

TEST(CheckXml, TheFirstByteThatIsNotUtf8IsFound) {
    const std::string row = "<CRASH><ROW KEY=\"K\xC3\xA9\xF0\x9F\x98\x80\" REASON=\"";
    // An overlong form, a surrogate, a lone continuation byte: none is UTF-8.
    for (const char* bad : {"\xC0\x80", "\xED\xA0\x80", "\x80"}) {
        const auto findings = pallix::check::checkBytes(
            "bytes.xml", row + "r" + bad + "\xFF\" SOLUTION=\"s\"/></CRASH>", FileKind::Crash);
        ASSERT_EQ(findings.size(), 1u);
        EXPECT_EQ(findings[0].column, row.size() + 2);
        EXPECT_EQ(findings[0].message.rfind("byte 0x", 0), 0u) << findings[0].message;
        EXPECT_NE(findings[0].message.find("keeps the byte unchanged in the text it reads; other "
                                           "XML parsers reject the file"),
                  std::string::npos)
            << findings[0].message;
    }
    const std::string declared = "<?xml version='1.0' encoding='UTF-8'?>\n";
    EXPECT_TRUE(pallix::check::checkBytes(
                    "fine.xml", declared + row + "r\" SOLUTION=\"s\"/></CRASH>", FileKind::Crash)
                    .empty());
}
