// "pallix cloud": the overview of a cloud document, its queries, and what it says about files
// it cannot use.

#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

using pallix::test::runTool;
using pallix::test::TemporaryDirectory;
using ::testing::HasSubstr;
using ::testing::Not;
using Json = nlohmann::json;

namespace {

const std::string kSample = PALLIX_SAMPLES_DIR "/cloud.xml";
const std::string kEveryElement = PALLIX_TEST_DATA_DIR "/cloud/every-element.xml";

std::string writeDocument(const TemporaryDirectory& directory, const std::string& body) {
    const std::string path = directory.file("cloud.xml");
    TemporaryDirectory::write(path, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Nevor>\n" + body +
                                        "\n</Nevor>\n");
    return path;
}

Json parsed(const std::string& output) {
    return Json::parse(output); // throws, and so fails the test, unless it is one document
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

TEST(ToolsCloud, OverviewOfADocumentWithEmptySectionsShowsDefaults) {
    TemporaryDirectory directory;
    const auto result =
        runTool({"cloud", writeDocument(directory, "<Application/><Cooperate/><Device/>")});
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
    // The library keeps packages by version; the empty version sorts first.
    EXPECT_THAT(result.output,
                HasSubstr("Developer plug-ins (2)\n"
                          "  (a package without a version; lookups never return it)\n"
                          "  1.0\n    digest:  a\n    address: first\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("second")));
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

TEST(ToolsCloud, OverviewNamesLaterEntriesOfAQueriedName) {
    TemporaryDirectory directory;
    const auto result = runTool({"cloud", writeDocument(directory, R"(<Application><Hash>
        <F Name="CPID" MD5="one" Url="u1"/><F Name="CPID" MD5="two" Url="u2"/>
        </Hash></Application>)")});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("  CPID\n    digest:  one\n"));
    EXPECT_THAT(result.output,
                HasSubstr("  another \"CPID\" entry: the query answers with the first\n"));
    EXPECT_THAT(result.output, Not(HasSubstr("two")));
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
    const auto result = runTool(
        {"cloud", writeDocument(directory, "<Application/>"), "--hash", "DeveloperPluginMapping"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors,
              "pallix: reference file DeveloperPluginMapping: not in the document\n");
    EXPECT_TRUE(result.output.empty()) << result.output;
}

TEST(ToolsCloud, UnknownReferenceFileNameIsRefusedWithASuggestion) {
    const auto result = runTool({"cloud", kSample, "--hash", "cpid"});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors, "pallix: --hash: unknown reference file 'cpid' (one of CPID, "
                             "CrashCode, RestoreCode, RestoreVersion, DeveloperPluginMapping); "
                             "did you mean 'CPID'?\n");
    EXPECT_TRUE(result.output.empty());
    const auto typo = runTool({"cloud", kSample, "--hash", "DeveloperPlugin-Mapping"});
    EXPECT_EQ(typo.status, 2);
    EXPECT_THAT(typo.errors, HasSubstr("did you mean 'DeveloperPluginMapping'?"));
}

TEST(ToolsCloud, UnknownReferenceFileNameIsRefusedBeforeTheDocumentIsRead) {
    TemporaryDirectory directory;
    const auto result = runTool({"cloud", directory.file("absent.xml"), "--hash", "Firmware"});
    EXPECT_EQ(result.status, 2);
    EXPECT_THAT(result.errors, HasSubstr("unknown reference file 'Firmware'"));
    EXPECT_THAT(result.errors, Not(HasSubstr("did you mean")));
}

TEST(ToolsCloud, PluginQueryFindsTheVersion) {
    const auto result = runTool({"cloud", kSample, "--plugin", "17.2"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output,
              "developer plug-in\n  17.2\n"
              "    digest:  6e45bfa6c79f699e7447d5234166f04a\n"
              "    address: https://cdn.pallix.example/plugins/developer-17.2.zip\n");
}

TEST(ToolsCloud, PluginQueryForAMissingVersionFindsNothing) {
    const auto missing = runTool({"cloud", kSample, "--plugin", "9.9"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.errors, "pallix: developer plug-in \"9.9\": not in the document\n");
    EXPECT_TRUE(missing.output.empty()) << missing.output;
}

TEST(ToolsCloud, EmptyVersionIsRefusedAsTheLibraryNeverLooksItUp) {
    for (const char* option : {"--plugin", "--plugin-rvq"}) {
        const auto empty = runTool({"cloud", kSample, option, ""});
        EXPECT_EQ(empty.status, 2) << option;
        EXPECT_EQ(empty.errors, "pallix: " + std::string(option) +
                                    ": the library never looks up an empty version\n");
        EXPECT_TRUE(empty.output.empty()) << empty.output;
    }
}

TEST(ToolsCloud, RvqQueryReadsOnlyTheRvqList) {
    const auto found = runTool({"cloud", kSample, "--plugin-rvq", "17.0"});
    ASSERT_EQ(found.status, 0) << found.errors;
    EXPECT_THAT(found.output, HasSubstr("developer plug-in (RVQ)\n  17.0\n"));
    EXPECT_THAT(found.output, HasSubstr("/plugins/rvq/developer-17.0.zip\n"));
    // 16.4 is only in the plain list.
    const auto missing = runTool({"cloud", kSample, "--plugin-rvq", "16.4"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.errors, "pallix: developer plug-in (RVQ) \"16.4\": not in the document\n");
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
    EXPECT_EQ(result.errors, "pallix: application process \"DeviceAgentTool\": no rule holds\n");
}

TEST(ToolsCloud, PluginProcessQueryConsultsOnlyPluginRules) {
    const auto found = runTool({"cloud", kSample, "--plugin-process", "DeviceAgentTool"});
    ASSERT_EQ(found.status, 0) << found.errors;
    EXPECT_EQ(found.output, "plug-in process \"DeviceAgentTool\": starts \"\", contains "
                            "\"Agent\", ends \"\" -> DeviceAgent\n");
    const auto missing = runTool({"cloud", kSample, "--plugin-process", "iTunesHelper.exe"});
    EXPECT_EQ(missing.status, 1);
    EXPECT_EQ(missing.errors, "pallix: plug-in process \"iTunesHelper.exe\": no rule holds\n");
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
    EXPECT_EQ(result.errors, "pallix: developer plug-in (RVQ) \"1.0\": not in the document\n");
    EXPECT_THAT(result.output,
                HasSubstr("application process \"SyncMobileDevice\": starts \"\", contains "
                          "\"MobileDevice\", ends \"\" -> MobileDeviceService\n"));
    EXPECT_THAT(result.output, HasSubstr("-> PallixHelper\n"));
    // Queries replace the overview.
    EXPECT_THAT(result.output, Not(HasSubstr("Switches")));
}

TEST(ToolsCloud, EmptyProcessNameIsAskedAsTheLibraryMatchesIt) {
    TemporaryDirectory directory;
    const std::string path = writeDocument(directory, R"(<Device><ProcessManager><Process>
        <R Name="Everything"/></Process></ProcessManager></Device>)");
    const auto result = runTool({"cloud", path, "--process", ""});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("-> Everything\n"));
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
    EXPECT_THAT(result.errors, HasSubstr("(run 'pallix check --kind cloud " + path + "')\n"));
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

TEST(ToolsCloud, PluginMappingTableIsNamedNotShownAsAnEmptyDocument) {
    // Both roots are "Nevor": the library would read the table as a cloud document with
    // nothing in it.
    const std::string path = PALLIX_SAMPLES_DIR "/plugin-mapping.xml";
    const auto result = runTool({"cloud", path});
    EXPECT_EQ(result.status, 2);
    EXPECT_EQ(result.errors,
              "pallix: " + path + " is a plug-in mapping table, not a cloud document\n");
    EXPECT_TRUE(result.output.empty()) << result.output;
}

TEST(ToolsCloud, TablesAndStoresAreNamedByTheirKind) {
    TemporaryDirectory directory;
    const std::string notify = directory.file("notify.xml");
    TemporaryDirectory::write(notify, "<Nevor><Notify/></Nevor>");
    const std::string factory = directory.file("Factory.json");
    TemporaryDirectory::write(factory, "{}");
    const std::pair<std::string, std::string> files[] = {
        {PALLIX_SAMPLES_DIR "/cpid.xml", "a chip table"},
        {PALLIX_SAMPLES_DIR "/crash.xml", "a crash code table"},
        {PALLIX_SAMPLES_DIR "/restore-error.xml", "a restore error table"},
        {notify, "a notification store"},
        {factory, "a factory information store"}};
    for (const auto& [path, kind] : files) {
        const auto result = runTool({"cloud", path, "--hash", "CPID"});
        EXPECT_EQ(result.status, 2) << path;
        EXPECT_EQ(result.errors, "pallix: " + path + " is " + kind + ", not a cloud document\n");
        EXPECT_TRUE(result.output.empty()) << result.output;
    }
}

TEST(ToolsCloud, DocumentOfAnUnknownKindIsRefused) {
    TemporaryDirectory directory;
    // A root no reader takes, and the root that four kinds share with nothing to tell them apart.
    const std::pair<const char*, const char*> cases[] = {
        {"<Foo><Application/></Foo>", "the root element \"Foo\" is none that the library reads"},
        {"<Nevor/>", "cannot tell what kind of file this is"}};
    for (const auto& [text, reason] : cases) {
        const std::string path = directory.file("unknown.xml");
        TemporaryDirectory::write(path, text);
        const auto result = runTool({"cloud", path});
        EXPECT_EQ(result.status, 2) << text;
        EXPECT_THAT(result.errors, HasSubstr("pallix: " + path + ":1:1: " + reason));
        EXPECT_THAT(result.errors, HasSubstr("(run 'pallix check --kind cloud " + path + "')"));
        EXPECT_TRUE(result.output.empty()) << result.output;
    }
}

TEST(ToolsCloud, DirectoryAndOtherNonRegularFilesAreRefused) {
    TemporaryDirectory directory;
    const auto folder = runTool({"cloud", directory.path()});
    EXPECT_EQ(folder.status, 2);
    EXPECT_EQ(folder.errors, "pallix: " + directory.path() + ": is a directory\n");
    // A device would be read for ever, or as nothing.
    const auto device = runTool({"cloud", "/dev/null"});
    EXPECT_EQ(device.status, 2);
    EXPECT_EQ(device.errors, "pallix: /dev/null: is not a regular file\n");
}

TEST(ToolsCloud, FileArgumentIsRequired) {
    const auto result = runTool({"cloud"});
    EXPECT_NE(result.status, 0);
    EXPECT_THAT(result.output + result.errors, HasSubstr("FILE is required"));
}

TEST(ToolsCloud, JsonOverviewHoldsEveryPartOfTheDocument) {
    const auto result = runTool({"cloud", kEveryElement, "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    EXPECT_TRUE(result.errors.empty()) << result.errors;
    const Json document = parsed(result.output);
    EXPECT_EQ(document.at("advertisement").at("popup"), true);
    EXPECT_EQ(document.at("advertisement").at("autoInstall"), true);
    EXPECT_EQ(document.at("verifyGuide").at("status"), true);
    EXPECT_EQ(document.at("verifyGuide").at("pixmap"), "guide/verify@2x.png");
    const Json& partner = document.at("partner");
    EXPECT_EQ(partner.at("sellStatus"), true);
    EXPECT_EQ(partner.at("deviceInfoText"), "Trade in this device");
    EXPECT_EQ(partner.at("deviceVerifyText"), "Check the device before selling");
    EXPECT_EQ(partner.at("authorizeAddress"), "192.0.2.10");
    EXPECT_EQ(partner.at("authorizePort"), 9443);
    const Json& hashes = document.at("referenceFiles");
    ASSERT_EQ(hashes.size(), 5u);
    EXPECT_EQ(hashes[0].at("name"), "CPID");
    EXPECT_EQ(hashes[0].at("hash"), "00112233445566778899aabbccddeeff");
    EXPECT_EQ(hashes[0].at("url"), "https://files.example/cpid.xml");
    EXPECT_EQ(hashes[4].at("name"), "DeveloperPluginMapping");
    const Json& plugins = document.at("developerPlugins");
    ASSERT_EQ(plugins.size(), 2u);
    EXPECT_EQ(plugins[0].at("version"), "15.7");
    EXPECT_EQ(plugins[0].at("hash"), "15151515151515151515151515151515");
    EXPECT_EQ(plugins[0].at("url"), "https://files.example/dev-15.7.zip");
    const Json& rvq = document.at("developerPluginsRvq");
    ASSERT_EQ(rvq.size(), 2u);
    EXPECT_EQ(rvq[1].at("version"), "17.1");
    EXPECT_EQ(rvq[1].at("url"), "https://files.example/rvq-17.1.zip");
    EXPECT_EQ(document.at("drivers").at("version"), "3.1.4");
    EXPECT_EQ(document.at("drivers").at("itunes32"), "12.6.5.3");
    EXPECT_EQ(document.at("drivers").at("itunes64"), "12.12.10.1");
    const Json& pluginRules = document.at("pluginProcessRules");
    ASSERT_EQ(pluginRules.size(), 2u);
    EXPECT_EQ(pluginRules[0].at("startsWith"), "plug");
    EXPECT_EQ(pluginRules[0].at("contains"), "in");
    EXPECT_EQ(pluginRules[0].at("endsWith"), ".bin");
    EXPECT_EQ(pluginRules[0].at("name"), "PlugInA");
    const Json& applicationRules = document.at("applicationProcessRules");
    ASSERT_EQ(applicationRules.size(), 3u);
    EXPECT_EQ(applicationRules[2].at("name"), "AppC");
}

TEST(ToolsCloud, JsonOverviewListsEveryReferenceEntryAndTheFullPixmap) {
    TemporaryDirectory directory;
    const std::string pixmap(100, 'p');
    const auto result = runTool({"cloud", writeDocument(directory, R"(<Application>
        <Applet><VerifyGuide Status="1" Pixmap=")" + pixmap + R"("/></Applet><Hash>
        <F Name="CPID" MD5="one"/><F Name="Firmware"/><F Name="CPID" MD5="two"/>
        </Hash></Application>)"),
                                 "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json document = parsed(result.output);
    EXPECT_EQ(document.at("verifyGuide").at("pixmap"), pixmap);
    const Json& hashes = document.at("referenceFiles");
    ASSERT_EQ(hashes.size(), 3u);
    EXPECT_EQ(hashes[0].at("hash"), "one");
    EXPECT_EQ(hashes[1].at("name"), "Firmware");
    EXPECT_EQ(hashes[2].at("hash"), "two");
    EXPECT_TRUE(document.at("developerPlugins").empty());
}

TEST(ToolsCloud, JsonQueriesAnswerEachFieldOrNull) {
    const auto result = runTool({"cloud", kSample, "--json", "--hash", "RestoreCode", "--plugin",
                                 "17.2", "--plugin-rvq", "16.4", "--process", "iTunesHelper.exe",
                                 "--plugin-process", "DeviceAgentTool"});
    EXPECT_EQ(result.status, 1); // the RVQ list has no 16.4
    EXPECT_TRUE(result.errors.empty()) << result.errors;
    const Json document = parsed(result.output);
    const Json& hash = document.at("hash");
    EXPECT_EQ(hash.at("query"), "RestoreCode");
    EXPECT_EQ(hash.at("found"), true);
    EXPECT_EQ(hash.at("answer").at("name"), "RestoreCode");
    EXPECT_EQ(hash.at("answer").at("hash"), "6b1feb1e6fff6db130e5969a34ae449b");
    EXPECT_EQ(hash.at("answer").at("url"),
              "https://cdn.pallix.example/runtime/5/restore-error.xml");
    const Json& plugin = document.at("plugin");
    EXPECT_EQ(plugin.at("query"), "17.2");
    EXPECT_EQ(plugin.at("found"), true);
    EXPECT_EQ(plugin.at("answer").at("version"), "17.2");
    EXPECT_EQ(plugin.at("answer").at("hash"), "6e45bfa6c79f699e7447d5234166f04a");
    EXPECT_EQ(plugin.at("answer").at("url"),
              "https://cdn.pallix.example/plugins/developer-17.2.zip");
    const Json& rvq = document.at("pluginRvq");
    EXPECT_EQ(rvq.at("query"), "16.4");
    EXPECT_EQ(rvq.at("found"), false);
    EXPECT_TRUE(rvq.at("answer").is_null());
    const Json& process = document.at("process");
    EXPECT_EQ(process.at("found"), true);
    EXPECT_EQ(process.at("answer").at("startsWith"), "iTunes");
    EXPECT_EQ(process.at("answer").at("contains"), "");
    EXPECT_EQ(process.at("answer").at("endsWith"), ".exe");
    EXPECT_EQ(process.at("answer").at("name"), "iTunes");
    const Json& pluginProcess = document.at("pluginProcess");
    EXPECT_EQ(pluginProcess.at("query"), "DeviceAgentTool");
    EXPECT_EQ(pluginProcess.at("answer").at("name"), "DeviceAgent");
}

TEST(ToolsCloud, JsonQueryHoldsOnlyWhatWasAsked) {
    const auto result = runTool({"cloud", kSample, "--hash", "CPID", "--json"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const Json document = parsed(result.output);
    EXPECT_EQ(document.size(), 1u);
    EXPECT_EQ(document.at("hash").at("answer").at("hash"), "51025cfd67fbe5ef5242bb4ddb43c48e");
}

TEST(ToolsCloud, JsonMembersComeInTheOrderTheHelpGives) {
    const auto result = runTool({"cloud", kSample, "--json", "--hash", "CPID", "--plugin", "17.2",
                                 "--plugin-process", "DeviceAgentTool"});
    ASSERT_EQ(result.status, 0) << result.errors;
    const nlohmann::ordered_json document = nlohmann::ordered_json::parse(result.output);
    const auto keys = [](const nlohmann::ordered_json& object) {
        std::vector<std::string> names;
        for (const auto& member : object.items()) {
            names.push_back(member.key());
        }
        return names;
    };
    using Names = std::vector<std::string>;
    EXPECT_EQ(keys(document.at("hash").at("answer")), (Names{"name", "hash", "url"}));
    EXPECT_EQ(keys(document.at("plugin").at("answer")), (Names{"version", "hash", "url"}));
    EXPECT_EQ(keys(document.at("pluginProcess").at("answer")),
              (Names{"startsWith", "contains", "endsWith", "name"}));
}

TEST(ToolsCloud, JsonNotFoundExitsWith1AndSaysNothingElse) {
    const auto result = runTool({"cloud", kSample, "--json", "--process", "none"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(result.errors.empty()) << result.errors;
    const Json document = parsed(result.output);
    EXPECT_EQ(document.at("process").at("found"), false);
    EXPECT_TRUE(document.at("process").at("answer").is_null());
}

TEST(ToolsCloud, JsonWithAnUnusableDocumentPrintsNothing) {
    const auto result = runTool({"cloud", PALLIX_SAMPLES_DIR "/cpid.xml", "--json"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(result.output.empty()) << result.output;
    EXPECT_THAT(result.errors, HasSubstr("is a chip table, not a cloud document"));
}

TEST(ToolsCloud, HelpNamesTheExitStatusesAndEndsWithAnExample) {
    const auto result = runTool({"cloud", "--help"});
    ASSERT_EQ(result.status, 0);
    EXPECT_THAT(result.output, HasSubstr("Exit status: 0 "));
    EXPECT_THAT(result.output, HasSubstr("\"referenceFiles\""));
    EXPECT_THAT(result.output, ::testing::EndsWith("Example:\n  pallix cloud samples/cloud.xml "
                                                   "--hash CPID --plugin-process "
                                                   "DeviceAgentTool\n"));
}
