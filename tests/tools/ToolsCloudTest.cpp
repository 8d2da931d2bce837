// "pallix cloud": the overview of a cloud document, its queries, and what it says about files
// it cannot use.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using ::testing::HasSubstr;
using ::testing::Not;

namespace {

const std::string kSample = PALLIX_SAMPLES_DIR "/cloud.xml";
const std::string kEveryElement = PALLIX_TEST_DATA_DIR "/cloud/every-element.xml";

std::string writeDocument(const TemporaryDirectory& directory, const std::string& body) {
    const std::string path = directory.file("cloud.xml");
    TemporaryDirectory::write(path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Nevor>\n" + body +
                                        "\n</Nevor>\n");
    return path;
}

} // namespace

TEST(ToolsCloud, OverviewShowsTheSwitches) {
    const auto result = runTool({"cloud", kSample});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("advertisement pop-up:       on\n"));
    EXPECT_THAT(result.output, HasSubstr("advertisement auto-install: off\n"));
    EXPECT_THAT(result.output, HasSubstr("verification guide:         on\n"));
    EXPECT_THAT(result.output, HasSubstr("verification guide pixmap:  data:image/png;base64,"));
    EXPECT_THAT(result.output, HasSubstr("partner selling:            on\n"));
    EXPECT_THAT(result.output, HasSubstr("authorisation service:      203.0.113.24 port 8443\n"));
    EXPECT_TRUE(result.errors.empty()) << result.errors;
}

TEST(ToolsCloud, OverviewShowsEveryReferenceFileWithDigestAndAddress) {
    const auto result = runTool({"cloud", kSample});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("  CPID\n    digest:  51025cfd67fbe5ef5242bb4ddb43c48e\n"
                                         "    address: https://cdn.pallix.example/runtime/5/"
                                         "cpid.xml\n"));
    EXPECT_THAT(result.output, HasSubstr("  CrashCode\n    digest:  "));
    EXPECT_THAT(result.output, HasSubstr("/runtime/5/crash.xml\n"));
    EXPECT_THAT(result.output, HasSubstr("  RestoreCode\n    digest:  "));
    EXPECT_THAT(result.output, HasSubstr("/runtime/5/restore-error.xml\n"));
    EXPECT_THAT(result.output, HasSubstr("  RestoreVersion\n    digest:  "));
    EXPECT_THAT(result.output, HasSubstr("  DeveloperPluginMapping\n    digest:  "));
    EXPECT_THAT(result.output, HasSubstr("/runtime/5/plugin-mapping.xml\n"));
}

TEST(ToolsCloud, OverviewShowsPluginsDriversAndRules) {
    const auto result = runTool({"cloud", kEveryElement});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("Developer plug-ins (2)\n  15.7\n    digest:  "
                                         "15151515151515151515151515151515\n    address: "
                                         "https://files.example/dev-15.7.zip\n"));
    EXPECT_THAT(result.output, HasSubstr("Developer plug-ins (RVQ) (2)\n  16.0\n"));
    EXPECT_THAT(result.output, HasSubstr("https://files.example/rvq-17.1.zip\n"));
    EXPECT_THAT(result.output, HasSubstr("driver version:             3.1.4\n"));
    EXPECT_THAT(result.output, HasSubstr("iTunes, 32-bit:             12.6.5.3\n"));
    EXPECT_THAT(result.output, HasSubstr("iTunes, 64-bit:             12.12.10.1\n"));
    EXPECT_THAT(result.output,
                HasSubstr("Plug-in process rules (2)\n"
                          "  1. starts \"plug\", contains \"in\", ends \".bin\" -> PlugInA\n"
                          "  2. starts \"\", contains \"Helper\", ends \"\" -> PlugInB\n"));
    EXPECT_THAT(result.output, HasSubstr("Application process rules (3)\n"));
    EXPECT_THAT(result.output,
                HasSubstr("  3. starts \"x\", contains \"y\", ends \"z\" -> AppC\n"));
}

TEST(ToolsCloud, OverviewOfAnEmptyDocumentShowsDefaults) {
    TemporaryDirectory directory;
    const auto result = runTool({"cloud", writeDocument(directory, "")});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("advertisement pop-up:       off\n"));
    EXPECT_THAT(result.output, HasSubstr("authorisation service:      (none) port 0\n"));
    EXPECT_THAT(result.output, HasSubstr("  CPID: (none)\n"));
    EXPECT_THAT(result.output, HasSubstr("Developer plug-ins (0)\n"));
    EXPECT_THAT(result.output, HasSubstr("Application process rules (0)\n"));
}

TEST(ToolsCloud, OverviewShowsWhatTheLibraryKeepsOfDuplicatesAndWidePorts) {
    TemporaryDirectory directory;
    const auto result = runTool({"cloud", writeDocument(directory, R"(
        <Cooperate><HSB><Authorize ServiceIP="h" ServicePort="70000"/></HSB></Cooperate>
        <Device><DeveloperPlugins>
          <P Version="1.0" Url="first" Hash="a"/><P Version="1.0" Url="second" Hash="b"/>
          <P Url="unversioned"/>
        </DeveloperPlugins></Device>)")});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("h port 4464\n"));
    EXPECT_THAT(result.output, HasSubstr("Developer plug-ins (2)\n  1.0\n    digest:  a\n    "
                                         "address: first\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("second")));
    EXPECT_THAT(result.output, HasSubstr("a package without a version"));
}

TEST(ToolsCloud, OverviewShowsPresentElementsWithoutAttributesAsDefaults) {
    TemporaryDirectory directory;
    const auto result = runTool({"cloud", writeDocument(directory, R"(
        <Application><Applet><VerifyGuide/></Applet><Hash><F/></Hash></Application>
        <Cooperate><HSB><SellStatus VALUE="no"/><Authorize ServiceIP="h" ServicePort="abc"/>
        </HSB></Cooperate>)")});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("verification guide:         off\n"));
    EXPECT_THAT(result.output, HasSubstr("partner selling:            off\n"));
    EXPECT_THAT(result.output, HasSubstr("authorisation service:      h port 0\n"));
}

TEST(ToolsCloud, ProcessQueryTakesOnlyTheFirstRuleThatHolds) {
    TemporaryDirectory directory;
    const std::string path = writeDocument(directory, R"(<Device><ProcessManager><Plugins>
        <R Contains="Agent" Name="FirstAgent"/><R Contains="Tool" Name="SecondAgent"/>
        </Plugins></ProcessManager></Device>)");
    const auto result = runTool({"cloud", path, "--plugin-process", "MyAgentTool"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "plug-in process \"MyAgentTool\": starts \"\", contains \"Agent\", "
                             "ends \"\" -> FirstAgent\n");
}

TEST(ToolsCloud, OverviewNamesEntriesNoQueryAsksFor) {
    TemporaryDirectory directory;
    const auto result = runTool({"cloud", writeDocument(directory, R"(<Application><Hash>
        <F Name="Firmware" MD5="m" Url="u"/><F/></Hash></Application>)")});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("other entry \"Firmware\": no query asks for it\n"));
    EXPECT_THAT(result.output, HasSubstr("other entry (no name): no query asks for it\n"));
}

TEST(ToolsCloud, NonAsciiAndEscapedTextIsPrintedDecoded) {
    TemporaryDirectory directory;
    const auto result = runTool({"cloud", writeDocument(directory, R"(<Cooperate><HSB>
        <SellTextDeviceInfo VALUE="出售设备 &amp; Gerät &lt;jetzt&gt;"/></HSB></Cooperate>)")});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("device information text:    出售设备 & Gerät <jetzt>\n"));
}

TEST(ToolsCloud, HashQueryPrintsNameDigestAndAddress) {
    const auto result = runTool({"cloud", kSample, "--hash", "CrashCode"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "reference file\n  CrashCode\n"
                             "    digest:  e8a957cb86dfdac099d29be57d484f17\n"
                             "    address: https://cdn.pallix.example/runtime/5/crash.xml\n");
}

TEST(ToolsCloud, HashQueryTakesTheFirstEntryOfAName) {
    TemporaryDirectory directory;
    const auto result = runTool(
        {"cloud", writeDocument(directory, R"(<Application><Hash><F Name="CPID" MD5="one" Url="u1"/>
             <F Name="CPID" MD5="two" Url="u2"/></Hash></Application>)"),
         "--hash", "CPID"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("digest:  one\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("two")));
}

TEST(ToolsCloud, HashQueryForAnAbsentEntryFindsNothing) {
    TemporaryDirectory directory;
    const auto result =
        runTool({"cloud", writeDocument(directory, ""), "--hash", "DeveloperPluginMapping"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "reference file DeveloperPluginMapping: not in the document\n");
}

TEST(ToolsCloud, UnknownReferenceFileNameIsRefused) {
    const auto result = runTool({"cloud", kSample, "--hash", "cpid"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("pallix: unknown reference file \"cpid\""));
    EXPECT_THAT(result.errors, HasSubstr("CPID, CrashCode, RestoreCode, RestoreVersion, "
                                         "DeveloperPluginMapping"));
    EXPECT_TRUE(result.output.empty());
}

TEST(ToolsCloud, PluginQueryFindsTheVersion) {
    const auto result = runTool({"cloud", kSample, "--plugin", "17.2"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output,
              "developer plug-in\n  17.2\n"
              "    digest:  6e45bfa6c79f699e7447d5234166f04a\n"
              "    address: https://cdn.pallix.example/plugins/developer-17.2.zip\n");
}

TEST(ToolsCloud, PluginQueryForAMissingOrEmptyVersionFindsNothing) {
    const auto missing = runTool({"cloud", kSample, "--plugin", "9.9"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, "developer plug-in \"9.9\": not in the document\n");
    const auto empty = runTool({"cloud", kSample, "--plugin", ""});
    EXPECT_EQ(empty.status, 1);
    EXPECT_EQ(empty.output, "developer plug-in \"\": not in the document\n");
}

TEST(ToolsCloud, RvqQueryReadsOnlyTheRvqList) {
    const auto found = runTool({"cloud", kSample, "--plugin-rvq", "17.0"});
    ASSERT_EQ(found.status, 0) << found.errors;
    EXPECT_THAT(found.output, HasSubstr("developer plug-in (RVQ)\n  17.0\n"));
    EXPECT_THAT(found.output, HasSubstr("/plugins/rvq/developer-17.0.zip\n"));
    // 16.4 is only in the plain list.
    const auto missing = runTool({"cloud", kSample, "--plugin-rvq", "16.4"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, "developer plug-in (RVQ) \"16.4\": not in the document\n");
}

TEST(ToolsCloud, ProcessQueryNamesTheFirstApplicationRuleThatHolds) {
    const auto result = runTool({"cloud", kSample, "--process", "iTunesHelper.exe"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "application process \"iTunesHelper.exe\": starts \"iTunes\", "
                             "contains \"\", ends \".exe\" -> iTunes\n");
}

TEST(ToolsCloud, ProcessQueryConsultsOnlyApplicationRules) {
    // Held by a plug-in rule of the sample, not by an application rule.
    const auto result = runTool({"cloud", kSample, "--process", "DeviceAgentTool"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.output, "application process \"DeviceAgentTool\": no rule holds\n");
}

TEST(ToolsCloud, PluginProcessQueryConsultsOnlyPluginRules) {
    const auto found = runTool({"cloud", kSample, "--plugin-process", "DeviceAgentTool"});
    ASSERT_EQ(found.status, 0) << found.errors;
    EXPECT_EQ(found.output, "plug-in process \"DeviceAgentTool\": starts \"\", contains "
                            "\"Agent\", ends \"\" -> DeviceAgent\n");
    const auto missing = runTool({"cloud", kSample, "--plugin-process", "iTunesHelper.exe"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.output, "plug-in process \"iTunesHelper.exe\": no rule holds\n");
}

TEST(ToolsCloud, ProcessPatternsAreCaseSensitive) {
    TemporaryDirectory directory;
    const std::string path = writeDocument(directory, R"(<Device><ProcessManager><Process>
        <R StartsWith="abc" EndsWith=".exe" Name="Abc"/></Process></ProcessManager></Device>)");
    EXPECT_EQ(runTool({"cloud", path, "--process", "abc_x.exe"}).status, 0);
    EXPECT_EQ(runTool({"cloud", path, "--process", "ABC_x.exe"}).status, 1);
    EXPECT_EQ(runTool({"cloud", path, "--process", "xabc.exe"}).status, 1);
}

TEST(ToolsCloud, SeveralQueriesAreAnsweredInOneRun) {
    const auto result =
        runTool({"cloud", kSample, "--hash", "CPID", "--plugin", "16.4", "--plugin-rvq", "1.0",
                 "--process", "SyncMobileDevice", "--plugin-process", "pallix-usb-helper"});
    EXPECT_EQ(result.status, 1); // the RVQ list has no 1.0
    EXPECT_THAT(result.output, HasSubstr("reference file\n  CPID\n"));
    EXPECT_THAT(result.output, HasSubstr("developer plug-in\n  16.4\n"));
    EXPECT_THAT(result.output, HasSubstr("developer plug-in (RVQ) \"1.0\": not in the document\n"));
    EXPECT_THAT(result.output,
                HasSubstr("application process \"SyncMobileDevice\": starts \"\", contains "
                          "\"MobileDevice\", ends \"\" -> MobileDeviceService\n"));
    EXPECT_THAT(result.output, HasSubstr("-> PallixHelper\n"));
    // Queries replace the overview.
    EXPECT_THAT(result.output, Not(HasSubstr("Switches")));
}

TEST(ToolsCloud, MissingFileIsReported) {
    TemporaryDirectory directory;
    const std::string path = directory.file("absent.xml");
    const auto result = runTool({"cloud", path});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: " + path + ": no such file\n");
    EXPECT_TRUE(result.output.empty());
}

TEST(ToolsCloud, MalformedFileIsReportedWithLineAndColumn) {
    TemporaryDirectory directory;
    const std::string path = directory.file("broken.xml");
    TemporaryDirectory::write(path, "<?xml version=\"1.0\"?>\n<Nevor>\n  <Application>\n"
                                    "</Nevor>\n");
    const auto result = runTool({"cloud", path});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("pallix: " + path + ":4:3: not well-formed XML"));
    EXPECT_TRUE(result.output.empty());
}

TEST(ToolsCloud, EmptyFileIsNotWellFormed) {
    TemporaryDirectory directory;
    const std::string path = directory.file("empty.xml");
    TemporaryDirectory::write(path, "");
    const auto result = runTool({"cloud", path});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr(path + ":1:1: not well-formed XML"));
}

TEST(ToolsCloud, DocumentWithoutNevorRootIsReported) {
    TemporaryDirectory directory;
    const std::string path = directory.file("table.xml");
    TemporaryDirectory::write(path, "<?xml version=\"1.0\"?>\n<DEVICE><Application/></DEVICE>\n");
    const auto result = runTool({"cloud", path, "--hash", "CPID"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: " + path +
                                 ": not a cloud document: the root element is \"DEVICE\", "
                                 "not \"Nevor\"\n");
    EXPECT_TRUE(result.output.empty());
}

TEST(ToolsCloud, FileArgumentIsRequired) {
    const auto result = runTool({"cloud"});
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.output + result.errors, HasSubstr("FILE is required"));
}
