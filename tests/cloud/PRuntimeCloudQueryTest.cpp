// The read side of the cloud document: reference files, plug-in packages and process rules.

#include "CloudTestSupport.h"

#include "PRuntimeCloud.h"
#include "TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

using pallix::test::CloudState;
using pallix::test::TemporaryDirectory;

namespace {

// Records every rule the callback is given.
struct Calls {
    std::vector<std::string> names;
    PRuntimeCloud::ProcessCallback callback() {
        return [this](const PRuntimeCloudDeviceProcessItem& rule) {
            names.push_back(rule.name().toStdString());
        };
    }
};

const char* const kRules = R"(<Device><ProcessManager>
    <Plugins>
      <R StartsWith="abc" EndsWith=".exe" Name="AbcPlugin"/>
      <R Contains="Agent" Name="FirstAgent"/>
      <R Contains="Tool" Name="SecondAgent"/>
    </Plugins>
    <Process>
      <R StartsWith="Sync" Name="SyncApplication"/>
      <R EndsWith="Service" Name="ServiceApplication"/>
    </Process>
  </ProcessManager></Device>)";

} // namespace

TEST(CloudQuery, ResultKindsAreReferencesOrCopies) {
    using Cloud = const PRuntimeCloud&;
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().applet_verify_guide_pixmap()), NString>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().application_hash_cpid()),
                                 PRuntimeCloudApplicationHash>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().cooperate_hsb_sell_text_device_info()),
                       const NString&>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().cooperate_hsb_sell_text_device_verify()),
                       const NString&>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().cooperate_hsb_device_authorize_ipaddress()),
                       const NString&>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().cooperate_hsb_device_authorize_ipport()),
                       std::uint16_t>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().device_plugins_find("")),
                                 PRuntimeCloudDevicePluginsItem>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().device_drive_version()), const NString&>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().version()), const NString&>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().application_advertisement_iosapp_popup()),
                       bool>);
    static_assert(
        std::is_same_v<
            decltype(std::declval<Cloud>().application_advertisement_iosapp_auto_install()), bool>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().applet_verify_guide_status()), bool>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().cooperate_hsb_sell_status()), bool>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().application_hash_crash_code()),
                                 PRuntimeCloudApplicationHash>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().application_hash_restore_code()),
                                 PRuntimeCloudApplicationHash>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().application_hash_restore_version()),
                                 PRuntimeCloudApplicationHash>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().application_hash_developer_plugin_mapping()),
                       PRuntimeCloudApplicationHash>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().device_plugins_find_by_rvq("")),
                                 PRuntimeCloudDevicePluginsItem>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().device_drive_itunes_32()), const NString&>);
    static_assert(
        std::is_same_v<decltype(std::declval<Cloud>().device_drive_itunes_64()), const NString&>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().device_process_plugins_find(
                                     "", PRuntimeCloud::ProcessCallback())),
                                 bool>);
    static_assert(std::is_same_v<decltype(std::declval<Cloud>().device_process_application_find(
                                     "", PRuntimeCloud::ProcessCallback())),
                                 bool>);
    // Declared without a noexcept specifier, so that a host's override written without
    // one compiles; whether an exception can leave them is tested where they run. The
    // arguments are ready-made so that only the calls themselves are looked at.
    static_assert(!noexcept(std::declval<PRuntimeCloud&>().format(std::declval<const NString&>())));
    static_assert(!noexcept(std::declval<Cloud>().application_hash_cpid()));
    static_assert(
        !noexcept(std::declval<Cloud>().device_plugins_find(std::declval<const NString&>())));
    static_assert(!noexcept(std::declval<Cloud>().applet_verify_guide_pixmap()));
    static_assert(!noexcept(std::declval<Cloud>().device_process_plugins_find(
        std::declval<const NString&>(), std::declval<const PRuntimeCloud::ProcessCallback&>())));
    static_assert(!noexcept(std::declval<Cloud>().device_process_application_find(
        std::declval<const NString&>(), std::declval<const PRuntimeCloud::ProcessCallback&>())));

    // The references point into the component and follow its state.
    TemporaryDirectory directory;
    CloudState cloud;
    const NString& info = cloud.cooperate_hsb_sell_text_device_info();
    const NString& drive = cloud.device_drive_version();
    EXPECT_EQ(&info, &cloud.m_sellTextDeviceInfo);
    EXPECT_EQ(&drive, &cloud.m_driveVersion);
    EXPECT_EQ(&cloud.cooperate_hsb_sell_text_device_verify(), &cloud.m_sellTextDeviceVerify);
    EXPECT_EQ(&cloud.cooperate_hsb_device_authorize_ipaddress(), &cloud.m_authorizeAddress);
    EXPECT_EQ(&cloud.device_drive_itunes_32(), &cloud.m_driveItunes32);
    EXPECT_EQ(&cloud.device_drive_itunes_64(), &cloud.m_driveItunes64);
    EXPECT_EQ(&cloud.version(), &cloud.m_version);
    ASSERT_TRUE(cloud.formatText(directory, R"(<Cooperate><HSB><SellTextDeviceInfo VALUE="now"/>
        </HSB></Cooperate><Device><Drive><Version VALUE="7"/></Drive></Device>)"));
    EXPECT_EQ(info, "now");
    EXPECT_EQ(drive, "7");
}

TEST(CloudQuery, PixmapIsACopy) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Applet><VerifyGuide Pixmap="one"/></Applet></Application>)"));
    const NString pixmap = cloud.applet_verify_guide_pixmap();
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Applet><VerifyGuide Pixmap="two"/></Applet></Application>)"));
    EXPECT_EQ(pixmap, "one");
    EXPECT_EQ(cloud.applet_verify_guide_pixmap(), "two");
}

TEST(CloudQuery, HashCpidBeforeAnyDocumentIsEmpty) {
    const PRuntimeCloud cloud;
    const PRuntimeCloudApplicationHash cpid = cloud.application_hash_cpid();
    EXPECT_TRUE(cpid.name().empty());
    EXPECT_TRUE(cpid.hash().empty());
    EXPECT_TRUE(cpid.url().empty());
    for (const PRuntimeCloudApplicationHash& other :
         {cloud.application_hash_crash_code(), cloud.application_hash_restore_code(),
          cloud.application_hash_restore_version(),
          cloud.application_hash_developer_plugin_mapping()}) {
        EXPECT_TRUE(other.name().empty());
        EXPECT_TRUE(other.hash().empty());
        EXPECT_TRUE(other.url().empty());
    }
}

TEST(CloudQuery, EachReferenceFileQueryFindsItsOwnName) {
    PRuntimeCloud cloud;
    ASSERT_TRUE(cloud.format(NString(PALLIX_TEST_DATA_DIR "/cloud/every-element.xml")));
    const std::vector<std::pair<PRuntimeCloudApplicationHash, std::string>> answers = {
        {cloud.application_hash_cpid(), "CPID"},
        {cloud.application_hash_crash_code(), "CrashCode"},
        {cloud.application_hash_restore_code(), "RestoreCode"},
        {cloud.application_hash_restore_version(), "RestoreVersion"},
        {cloud.application_hash_developer_plugin_mapping(), "DeveloperPluginMapping"}};
    for (const auto& [entry, name] : answers) {
        EXPECT_EQ(entry.name(), name.c_str());
    }
    EXPECT_EQ(cloud.application_hash_crash_code().hash(), "11112222333344445555666677778888");
    EXPECT_EQ(cloud.application_hash_restore_version().url(),
              "http://files.example/restore-version.xml");
}

TEST(CloudQuery, TwoCpidEntriesGiveTheFirstInDocumentOrder) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Application><Hash>
        <F Name="CrashCode" MD5="c" Url="c"/>
        <F Name="CPID" MD5="first" Url="https://first"/>
        <F Name="CPID" MD5="second" Url="https://second"/>
        </Hash></Application>)"));
    const PRuntimeCloudApplicationHash cpid = cloud.application_hash_cpid();
    EXPECT_EQ(cpid.name(), "CPID");
    EXPECT_EQ(cpid.hash(), "first");
    EXPECT_EQ(cpid.url(), "https://first");
}

TEST(CloudQuery, EntryOfAnEarlierDocumentComesFirst) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Hash><F Name="RestoreCode" MD5="old"/></Hash></Application>)"));
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Hash><F Name="RestoreCode" MD5="new"/></Hash></Application>)"));
    EXPECT_EQ(cloud.application_hash_restore_code().hash(), "old");
}

TEST(CloudQuery, ReferenceFileNamesAreExactAndCaseSensitive) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Application><Hash>
        <F Name="cpid" MD5="lower"/><F Name="CPID " MD5="blank"/><F Name="Crashcode" MD5="x"/>
        </Hash></Application>)"));
    EXPECT_TRUE(cloud.application_hash_cpid().name().empty());
    EXPECT_TRUE(cloud.application_hash_crash_code().hash().empty());
}

TEST(CloudQuery, ReferenceFileResultIsACopy) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Hash><F Name="CPID" MD5="m" Url="u"/></Hash></Application>)"));
    PRuntimeCloudApplicationHash cpid = cloud.application_hash_cpid();
    cpid = PRuntimeCloudApplicationHash("changed", "", "");
    EXPECT_EQ(cloud.m_applicationHash.front().name(), "CPID");
    EXPECT_EQ(cloud.application_hash_cpid().hash(), "m");
}

TEST(CloudQuery, EmptyVersionGivesAnEmptyItemEvenWhenOneIsFiledUnderIt) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device>
        <DeveloperPlugins><P Version="" Url="https://empty" Hash="e"/></DeveloperPlugins>
        <DeveloperPlugins_RVQ><P Url="https://empty-rvq" Hash="e"/></DeveloperPlugins_RVQ>
        </Device>)"));
    ASSERT_EQ(cloud.m_developerPlugins.count(NString("")), 1u);
    ASSERT_EQ(cloud.m_developerPluginsRvq.count(NString("")), 1u);
    for (const PRuntimeCloudDevicePluginsItem& item :
         {cloud.device_plugins_find(""), cloud.device_plugins_find_by_rvq("")}) {
        EXPECT_TRUE(item.version().empty());
        EXPECT_TRUE(item.url().empty());
        EXPECT_TRUE(item.hash().empty());
    }
}

TEST(CloudQuery, PluginFoundByItsVersionAndMissingOneIsEmpty) {
    PRuntimeCloud cloud;
    ASSERT_TRUE(cloud.format(NString(PALLIX_TEST_DATA_DIR "/cloud/every-element.xml")));
    const PRuntimeCloudDevicePluginsItem found = cloud.device_plugins_find("15.7");
    EXPECT_EQ(found.version(), "15.7");
    EXPECT_EQ(found.url(), "https://files.example/dev-15.7.zip");
    EXPECT_EQ(found.hash(), "15151515151515151515151515151515");
    const PRuntimeCloudDevicePluginsItem missing = cloud.device_plugins_find("99.9");
    EXPECT_TRUE(missing.version().empty());
    EXPECT_TRUE(missing.url().empty());
    EXPECT_TRUE(missing.hash().empty());
}

TEST(CloudQuery, PluginVersionsAreExactKeys) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Device><DeveloperPlugins><P Version="17.0" Url="u"/></DeveloperPlugins>
        </Device>)"));
    EXPECT_EQ(cloud.device_plugins_find("17.0").url(), "u");
    EXPECT_TRUE(cloud.device_plugins_find("17").url().empty());
    EXPECT_TRUE(cloud.device_plugins_find("17.0.0").url().empty());
    EXPECT_TRUE(cloud.device_plugins_find(" 17.0").url().empty());
}

TEST(CloudQuery, EachPluginLookupReadsOnlyItsOwnMap) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device>
        <DeveloperPlugins><P Version="1.0" Url="plain"/></DeveloperPlugins>
        <DeveloperPlugins_RVQ><P Version="2.0" Url="rvq"/></DeveloperPlugins_RVQ>
        </Device>)"));
    EXPECT_EQ(cloud.device_plugins_find("1.0").url(), "plain");
    EXPECT_TRUE(cloud.device_plugins_find("2.0").url().empty());
    EXPECT_EQ(cloud.device_plugins_find_by_rvq("2.0").url(), "rvq");
    EXPECT_TRUE(cloud.device_plugins_find_by_rvq("1.0").url().empty());
}

TEST(CloudQuery, StartAndEndPatternsMatchCaseSensitively) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kRules));
    Calls calls;
    EXPECT_TRUE(cloud.device_process_plugins_find("abc_x.exe", calls.callback()));
    EXPECT_THAT(calls.names, ::testing::ElementsAre("AbcPlugin"));
    calls.names.clear();
    EXPECT_FALSE(cloud.device_process_plugins_find("ABC_x.exe", calls.callback()));
    EXPECT_FALSE(cloud.device_process_plugins_find("xabc.exe", calls.callback()));
    EXPECT_FALSE(cloud.device_process_plugins_find("abc_x.EXE", calls.callback()));
    EXPECT_TRUE(calls.names.empty());
}

TEST(CloudQuery, ContainsPatternMatchesAndLaterMatchingRuleIsNeverSeen) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kRules));
    std::vector<PRuntimeCloudDeviceProcessItem> received;
    EXPECT_TRUE(cloud.device_process_plugins_find(
        "MyAgentTool",
        [&](const PRuntimeCloudDeviceProcessItem& rule) { received.push_back(rule); }));
    // "SecondAgent" (Contains="Tool") holds as well but comes later.
    ASSERT_EQ(received.size(), 1u);
    EXPECT_EQ(received[0].name(), "FirstAgent");
    EXPECT_EQ(received[0].contains(), "Agent");
    EXPECT_TRUE(received[0].startsWith().empty());
    EXPECT_TRUE(received[0].endsWith().empty());
}

TEST(CloudQuery, ContainsPatternIsCaseSensitive) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kRules));
    Calls calls;
    EXPECT_FALSE(cloud.device_process_plugins_find("myagenttool", calls.callback()));
    EXPECT_TRUE(calls.names.empty());
}

TEST(CloudQuery, ApplicationLookupConsultsOnlyTheProcessRules) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kRules));
    Calls calls;
    // Held by a plug-in rule only.
    EXPECT_FALSE(cloud.device_process_application_find("MyAgentTool", calls.callback()));
    EXPECT_FALSE(cloud.device_process_application_find("abc_x.exe", calls.callback()));
    EXPECT_TRUE(calls.names.empty());
    EXPECT_TRUE(cloud.device_process_application_find("SyncDaemon", calls.callback()));
    EXPECT_TRUE(cloud.device_process_application_find("UpdateService", calls.callback()));
    EXPECT_THAT(calls.names, ::testing::ElementsAre("SyncApplication", "ServiceApplication"));
}

TEST(CloudQuery, PluginLookupConsultsOnlyThePluginRules) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kRules));
    Calls calls;
    // Held by an application rule only.
    EXPECT_FALSE(cloud.device_process_plugins_find("SyncDaemon", calls.callback()));
    EXPECT_FALSE(cloud.device_process_plugins_find("UpdateService", calls.callback()));
    EXPECT_TRUE(calls.names.empty());
}

TEST(CloudQuery, NoMatchingRuleReturnsFalseWithoutCallingBack) {
    TemporaryDirectory directory;
    CloudState cloud;
    Calls calls;
    // No rules at all.
    EXPECT_FALSE(cloud.device_process_plugins_find("anything", calls.callback()));
    EXPECT_FALSE(cloud.device_process_application_find("anything", calls.callback()));
    ASSERT_TRUE(cloud.formatText(directory, kRules));
    EXPECT_FALSE(cloud.device_process_plugins_find("nothing-here", calls.callback()));
    EXPECT_FALSE(cloud.device_process_application_find("nothing-here", calls.callback()));
    EXPECT_TRUE(calls.names.empty());
}

TEST(CloudQuery, RuleWithoutPatternsMatchesEveryNameAndTheEmptyOne) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device><ProcessManager>
        <Process><R StartsWith="" Contains="" EndsWith="" Name="CatchAll"/>
                 <R Contains="x" Name="Never"/></Process>
        </ProcessManager></Device>)"));
    Calls calls;
    EXPECT_TRUE(cloud.device_process_application_find("", calls.callback()));
    EXPECT_TRUE(cloud.device_process_application_find("x", calls.callback()));
    EXPECT_TRUE(cloud.device_process_application_find("Any Program.app", calls.callback()));
    EXPECT_THAT(calls.names, ::testing::ElementsAre("CatchAll", "CatchAll", "CatchAll"));
}

TEST(CloudQuery, PatternsLongerThanTheNameDoNotMatch) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device><ProcessManager><Process>
        <R StartsWith="abcdef" Name="S"/><R EndsWith="abcdef" Name="E"/>
        <R Contains="abcdef" Name="C"/></Process></ProcessManager></Device>)"));
    Calls calls;
    EXPECT_FALSE(cloud.device_process_application_find("abc", calls.callback()));
    EXPECT_FALSE(cloud.device_process_application_find("", calls.callback()));
    EXPECT_TRUE(cloud.device_process_application_find("abcdef", calls.callback()));
    EXPECT_THAT(calls.names, ::testing::ElementsAre("S"));
}

TEST(CloudQuery, RuleNamePlaysNoPartInTheMatch) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device><ProcessManager><Plugins>
        <R StartsWith="zz" Name="Helper"/><R EndsWith="d" Name="Other"/>
        </Plugins></ProcessManager></Device>)"));
    Calls calls;
    EXPECT_FALSE(cloud.device_process_plugins_find("Helper", calls.callback()));
    EXPECT_TRUE(cloud.device_process_plugins_find("Helperd", calls.callback()));
    EXPECT_THAT(calls.names, ::testing::ElementsAre("Other"));
}

TEST(CloudQuery, AllThreePatternsMustHold) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device><ProcessManager><Plugins>
        <R StartsWith="a" Contains="m" EndsWith="z" Name="AMZ"/>
        </Plugins></ProcessManager></Device>)"));
    Calls calls;
    EXPECT_FALSE(cloud.device_process_plugins_find("abz", calls.callback()));
    EXPECT_FALSE(cloud.device_process_plugins_find("bmz", calls.callback()));
    EXPECT_FALSE(cloud.device_process_plugins_find("amb", calls.callback()));
    EXPECT_TRUE(calls.names.empty());
    EXPECT_TRUE(cloud.device_process_plugins_find("a-m-z", calls.callback()));
    EXPECT_THAT(calls.names, ::testing::ElementsAre("AMZ"));
}

TEST(CloudQuery, RuleOfAnEarlierDocumentIsTriedFirst) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device><ProcessManager><Process>
        <R Contains="Sync" Name="Old"/></Process></ProcessManager></Device>)"));
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device><ProcessManager><Process>
        <R StartsWith="Sync" Name="New"/></Process></ProcessManager></Device>)"));
    Calls calls;
    EXPECT_TRUE(cloud.device_process_application_find("SyncDaemon", calls.callback()));
    EXPECT_THAT(calls.names, ::testing::ElementsAre("Old"));
}

TEST(CloudQuery, ExceptionFromTheCallbackReachesTheCaller) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kRules));
    EXPECT_THROW(cloud.device_process_plugins_find("MyAgentTool",
                                                   [](const PRuntimeCloudDeviceProcessItem&) {
                                                       throw std::runtime_error(
                                                           "from the callback");
                                                   }),
                 std::runtime_error);
    // The object is untouched by it.
    Calls calls;
    EXPECT_TRUE(cloud.device_process_plugins_find("MyAgentTool", calls.callback()));
    EXPECT_THAT(calls.names, ::testing::ElementsAre("FirstAgent"));
}

// The callback is not guarded, not even against being empty: calling an empty one raises the
// standard wrapper's bad-call exception, which reaches the caller like any other.
TEST(CloudQuery, EmptyCallbackOfAMatchingRuleThrowsBadFunctionCallToTheCaller) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kRules));
    EXPECT_THROW(cloud.device_process_plugins_find("MyAgentTool", {}), std::bad_function_call);
    EXPECT_THROW(cloud.device_process_application_find("SyncDaemon", nullptr),
                 std::bad_function_call);
    // Without a matching rule there is no call to make, so nothing is raised.
    EXPECT_FALSE(cloud.device_process_plugins_find("nothing", {}));
    EXPECT_FALSE(cloud.device_process_application_find("nothing", nullptr));
}

// The rules of kRules without their <Device> element, followed by its end tag, so that they can
// join other device content.
std::string rulesInsideDevice() {
    const std::string rules(kRules);
    return rules.substr(std::string("<Device>").size());
}

TEST(CloudQuery, TraversalsHandOutEverythingTheDocumentGave) {
    TemporaryDirectory directory("pallix-cloud-traverse");
    const std::string path = pallix::test::writeFile(directory, pallix::test::nevorDocument(
                                                                    R"(<Application><Hash>
                 <I Name="CrashCode" MD5="00112233445566778899aabbccddeeff" Url="https://a/c.xml"/>
                 <I Name="CPID" MD5="ffeeddccbbaa99887766554433221100" Url="https://a/p.xml"/>
                 <I Name="Unknown" MD5="" Url=""/>
               </Hash></Application>
               <Device>
                 <DeveloperPlugins>
                   <P Version="17.0" Url="https://a/17.zip" Hash="h17"/>
                   <P Version="16.4" Url="https://a/16.zip" Hash="h16"/>
                   <P Version="17.0" Url="https://a/17-again.zip" Hash="again"/>
                 </DeveloperPlugins>
                 <DeveloperPlugins_RVQ><P Version="9.9" Url="https://a/rvq.zip" Hash="r"/></DeveloperPlugins_RVQ>
               )" + rulesInsideDevice()));
    PRuntimeCloud cloud;
    ASSERT_TRUE(cloud.format(NString(path)));

    std::vector<std::string> hashes;
    cloud.application_hash_traverse([&hashes](const PRuntimeCloudApplicationHash& entry) {
        hashes.push_back(entry.name().toStdString() + " " + entry.url().toStdString());
    });
    EXPECT_EQ(hashes, (std::vector<std::string>{"CrashCode https://a/c.xml", "CPID https://a/p.xml",
                                                "Unknown "}));

    // By version; the first package of a version is the one the find operations answer with.
    std::vector<std::string> plugins;
    cloud.device_plugins_traverse(
        [&plugins](const NString& version, const PRuntimeCloudDevicePluginsItem& item) {
            plugins.push_back(version.toStdString() + " " + item.url().toStdString());
        });
    EXPECT_EQ(plugins,
              (std::vector<std::string>{"16.4 https://a/16.zip", "17.0 https://a/17.zip"}));
    EXPECT_EQ(cloud.device_plugins_find("17.0").url().toStdString(), "https://a/17.zip");

    std::vector<std::string> rvq;
    cloud.device_plugins_rvq_traverse(
        [&rvq](const NString& version, const PRuntimeCloudDevicePluginsItem&) {
            rvq.push_back(version.toStdString());
        });
    EXPECT_EQ(rvq, std::vector<std::string>{"9.9"});

    Calls plugin;
    cloud.device_process_plugins_traverse(plugin.callback());
    EXPECT_EQ(plugin.names, (std::vector<std::string>{"AbcPlugin", "FirstAgent", "SecondAgent"}));
    Calls application;
    cloud.device_process_application_traverse(application.callback());
    EXPECT_EQ(application.names,
              (std::vector<std::string>{"SyncApplication", "ServiceApplication"}));
}

TEST(CloudQuery, TraversalsOfAnEmptyDocumentVisitNothing) {
    const PRuntimeCloud cloud;
    int visits = 0;
    cloud.application_hash_traverse([&visits](const PRuntimeCloudApplicationHash&) { ++visits; });
    cloud.device_plugins_traverse(
        [&visits](const NString&, const PRuntimeCloudDevicePluginsItem&) { ++visits; });
    cloud.device_plugins_rvq_traverse(
        [&visits](const NString&, const PRuntimeCloudDevicePluginsItem&) { ++visits; });
    cloud.device_process_plugins_traverse(
        [&visits](const PRuntimeCloudDeviceProcessItem&) { ++visits; });
    cloud.device_process_application_traverse(
        [&visits](const PRuntimeCloudDeviceProcessItem&) { ++visits; });
    EXPECT_EQ(visits, 0);
}
