// Reading the cloud document: what each element fills, and how a later document merges into
// what an earlier one left.

#include "CloudTestSupport.h"

#include "PRuntime.h"
#include "PRuntimeCloud.h"
#include "NonRegularFiles.h"
#include "TemporaryDirectory.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <list>
#include <map>
#include <string>
#include <type_traits>
#include <vector>

using pallix::test::CloudState;
using pallix::test::describe;
using pallix::test::nevorDocument;
using pallix::test::TemporaryDirectory;
using pallix::test::writeFile;

namespace {

const std::string kEveryElement = PALLIX_TEST_DATA_DIR "/cloud/every-element.xml";

// A document that touches every field, with values unlike those of every-element.xml.
const char* const kSmallDocument = R"(
<Application>
  <Advertisement><IosApplication AutoPopup="1" AutoInstall="1"/></Advertisement>
  <Applet><VerifyGuide Status="1" Pixmap="first.png"/></Applet>
  <Hash><File Name="CPID" MD5="a" Url="u"/></Hash>
</Application>
<Cooperate><HSB>
  <SellStatus VALUE="1"/>
  <SellTextDeviceInfo VALUE="info"/>
  <SellTextDeviceVerify VALUE="verify"/>
  <Authorize ServiceIP="10.0.0.1" ServicePort="80"/>
</HSB></Cooperate>
<Device>
  <DeveloperPlugins><P Version="1.0" Url="u1" Hash="h1"/></DeveloperPlugins>
  <DeveloperPlugins_RVQ><P Version="2.0" Url="u2" Hash="h2"/></DeveloperPlugins_RVQ>
  <Drive><Version VALUE="d"/><iTunes><X86 VALUE="x86"/><X64 VALUE="x64"/></iTunes></Drive>
  <ProcessManager>
    <Plugins><R StartsWith="s" Contains="c" EndsWith="e" Name="n"/></Plugins>
    <Process><R StartsWith="S" Contains="C" EndsWith="E" Name="N"/></Process>
  </ProcessManager>
</Device>)";

std::vector<std::string> initialState() {
    const CloudState fresh;
    return describe(fresh);
}

} // namespace

TEST(CloudFormat, NewObjectHoldsTheInitialValues) {
    const CloudState cloud;
    EXPECT_FALSE(cloud.m_advertisementPopup);
    EXPECT_FALSE(cloud.m_advertisementAutoInstall);
    EXPECT_FALSE(cloud.m_verifyGuideStatus);
    EXPECT_TRUE(cloud.m_verifyGuidePixmap.empty());
    EXPECT_TRUE(cloud.m_applicationHash.empty());
    EXPECT_FALSE(cloud.m_sellStatus);
    EXPECT_TRUE(cloud.m_sellTextDeviceInfo.empty());
    EXPECT_TRUE(cloud.m_sellTextDeviceVerify.empty());
    EXPECT_TRUE(cloud.m_authorizeAddress.empty());
    EXPECT_EQ(cloud.m_authorizePort, 0);
    EXPECT_TRUE(cloud.m_developerPlugins.empty());
    EXPECT_TRUE(cloud.m_developerPluginsRvq.empty());
    EXPECT_TRUE(cloud.m_driveVersion.empty());
    EXPECT_TRUE(cloud.m_driveItunes32.empty());
    EXPECT_TRUE(cloud.m_driveItunes64.empty());
    EXPECT_TRUE(cloud.m_processPlugins.empty());
    EXPECT_TRUE(cloud.m_processApplications.empty());
    EXPECT_TRUE(cloud.m_version.empty());
}

TEST(CloudFormat, StateIsDeclaredInItsDocumentedOrder) {
    // The layout is part of the binary interface: every field sits after the one before it.
    const CloudState cloud;
    const auto at = [](const auto& field) { return reinterpret_cast<std::uintptr_t>(&field); };
    const std::vector<std::uintptr_t> addresses = {
        at(cloud.m_advertisementPopup),  at(cloud.m_advertisementAutoInstall),
        at(cloud.m_verifyGuideStatus),   at(cloud.m_verifyGuidePixmap),
        at(cloud.m_applicationHash),     at(cloud.m_sellStatus),
        at(cloud.m_sellTextDeviceInfo),  at(cloud.m_sellTextDeviceVerify),
        at(cloud.m_authorizeAddress),    at(cloud.m_authorizePort),
        at(cloud.m_developerPlugins),    at(cloud.m_developerPluginsRvq),
        at(cloud.m_driveVersion),        at(cloud.m_driveItunes32),
        at(cloud.m_driveItunes64),       at(cloud.m_processPlugins),
        at(cloud.m_processApplications), at(cloud.m_version)};
    for (std::size_t i = 1; i < addresses.size(); ++i) {
        EXPECT_LT(addresses[i - 1], addresses[i]) << "field " << i;
    }
    // The port is kept in 16 bits and the lists keep document order.
    static_assert(std::is_same_v<decltype(CloudState::m_authorizePort), std::uint16_t>);
    static_assert(std::is_same_v<decltype(CloudState::m_applicationHash),
                                 std::list<PRuntimeCloudApplicationHash>>);
    static_assert(std::is_same_v<decltype(CloudState::m_developerPlugins),
                                 std::map<NString, PRuntimeCloudDevicePluginsItem>>);
    static_assert(std::is_same_v<decltype(CloudState::m_processApplications),
                                 std::list<PRuntimeCloudDeviceProcessItem>>);
}

TEST(CloudFormat, MissingFileReturnsFalseAndChangesNothing) {
    TemporaryDirectory directory;
    CloudState cloud;
    EXPECT_FALSE(cloud.format(NString(directory.file("absent.xml"))));
    EXPECT_EQ(describe(cloud), initialState());

    ASSERT_TRUE(cloud.formatText(directory, kSmallDocument));
    const auto before = describe(cloud);
    EXPECT_FALSE(cloud.format(NString(directory.file("absent.xml"))));
    EXPECT_EQ(describe(cloud), before);
}

TEST(CloudFormat, SomethingOtherThanAFileReadsAsMissingAtOnceAndChangesNothing) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kSmallDocument));
    const auto before = describe(cloud);
    const std::string fifo = directory.file("cloud.xml");
    const std::string link = directory.file("linked.xml");
    ASSERT_TRUE(pallix::test::makeFifo(fifo));
    ASSERT_EQ(::symlink(fifo.c_str(), link.c_str()), 0);

    pallix::test::BlockingAlarm alarm;
    EXPECT_FALSE(cloud.format(NString(fifo)));
    EXPECT_FALSE(cloud.format(NString(link)));
    EXPECT_FALSE(cloud.format(NString(directory.path())));
    EXPECT_FALSE(cloud.format(NString("/dev/zero")));
    EXPECT_EQ(describe(cloud), before);
}

TEST(CloudFormat, EmptyFileReturnsFalseAndChangesNothing) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kSmallDocument));
    const auto before = describe(cloud);
    EXPECT_FALSE(cloud.format(NString(writeFile(directory, ""))));
    EXPECT_EQ(describe(cloud), before);
}

TEST(CloudFormat, MalformedFileReturnsFalseAndAppliesNoPartOfIt) {
    TemporaryDirectory directory;
    CloudState cloud;
    // Well-formed up to the point where the root is left open: nothing of it may be taken.
    const std::string truncated =
        "<?xml version=\"1.0\"?>\n<Nevor><Application><Hash><File Name=\"CPID\" MD5=\"m\" "
        "Url=\"u\"/></Hash></Application><Cooperate><HSB><SellStatus VALUE=\"1\"/>";
    EXPECT_FALSE(cloud.format(NString(writeFile(directory, truncated))));
    EXPECT_EQ(describe(cloud), initialState());
}

TEST(CloudFormat, DirectoryInsteadOfFileReturnsFalse) {
    TemporaryDirectory directory;
    CloudState cloud;
    EXPECT_FALSE(cloud.format(NString(directory.path())));
    EXPECT_EQ(describe(cloud), initialState());
}

TEST(CloudFormat, RootOtherThanNevorReturnsTrueAndChangesNothing) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kSmallDocument));
    const auto before = describe(cloud);
    const std::string other = "<?xml version=\"1.0\"?>\n<DEVICE><Application><Advertisement>"
                              "<IosApplication AutoPopup=\"0\"/></Advertisement></Application>"
                              "</DEVICE>\n";
    EXPECT_TRUE(cloud.format(NString(writeFile(directory, other))));
    EXPECT_EQ(describe(cloud), before);
}

TEST(CloudFormat, NevorBelowAnotherRootIsNotTheRoot) {
    TemporaryDirectory directory;
    CloudState cloud;
    const std::string nested = "<Wrapper><Nevor><Cooperate><HSB><SellStatus VALUE=\"1\"/></HSB>"
                               "</Cooperate></Nevor></Wrapper>";
    EXPECT_TRUE(cloud.format(NString(writeFile(directory, nested))));
    EXPECT_EQ(describe(cloud), initialState());
}

TEST(CloudFormat, EmptyNevorRootReturnsTrueAndChangesNothing) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kSmallDocument));
    const auto before = describe(cloud);
    EXPECT_TRUE(cloud.formatText(directory, ""));
    EXPECT_EQ(describe(cloud), before);
}

TEST(CloudFormat, EveryElementAndAttributeIsReadFieldByField) {
    CloudState cloud;
    ASSERT_TRUE(cloud.format(NString(kEveryElement)));

    EXPECT_TRUE(cloud.m_advertisementPopup);
    EXPECT_TRUE(cloud.m_advertisementAutoInstall);
    EXPECT_TRUE(cloud.m_verifyGuideStatus);
    EXPECT_EQ(cloud.m_verifyGuidePixmap, "guide/verify@2x.png");

    ASSERT_EQ(cloud.m_applicationHash.size(), 5u);
    const std::vector<std::vector<std::string>> hashes = {
        {"CPID", "00112233445566778899aabbccddeeff", "https://files.example/cpid.xml"},
        {"CrashCode", "11112222333344445555666677778888", "https://files.example/crash.xml"},
        {"RestoreCode", "aaaabbbbccccddddeeeeffff00001111",
         "https://files.example/restore-error.xml"},
        {"RestoreVersion", "0123456789abcdef0123456789abcdef",
         "http://files.example/restore-version.xml"},
        {"DeveloperPluginMapping", "fedcba9876543210fedcba9876543210",
         "https://files.example/plugin-mapping.xml"}};
    auto entry = cloud.m_applicationHash.begin();
    for (const auto& expected : hashes) {
        EXPECT_EQ(entry->name(), expected[0].c_str());
        EXPECT_EQ(entry->hash(), expected[1].c_str());
        EXPECT_EQ(entry->url(), expected[2].c_str());
        ++entry;
    }

    EXPECT_TRUE(cloud.m_sellStatus);
    EXPECT_EQ(cloud.m_sellTextDeviceInfo, "Trade in this device");
    EXPECT_EQ(cloud.m_sellTextDeviceVerify, "Check the device before selling");
    EXPECT_EQ(cloud.m_authorizeAddress, "192.0.2.10");
    EXPECT_EQ(cloud.m_authorizePort, 9443);

    ASSERT_EQ(cloud.m_developerPlugins.size(), 2u);
    const auto& plugin157 = cloud.m_developerPlugins.at(NString("15.7"));
    EXPECT_EQ(plugin157.version(), "15.7");
    EXPECT_EQ(plugin157.url(), "https://files.example/dev-15.7.zip");
    EXPECT_EQ(plugin157.hash(), "15151515151515151515151515151515");
    const auto& plugin160 = cloud.m_developerPlugins.at(NString("16.0"));
    EXPECT_EQ(plugin160.version(), "16.0");
    EXPECT_EQ(plugin160.url(), "https://files.example/dev-16.0.zip");
    EXPECT_EQ(plugin160.hash(), "16161616161616161616161616161616");

    ASSERT_EQ(cloud.m_developerPluginsRvq.size(), 2u);
    const auto& rvq160 = cloud.m_developerPluginsRvq.at(NString("16.0"));
    EXPECT_EQ(rvq160.version(), "16.0");
    EXPECT_EQ(rvq160.url(), "https://files.example/rvq-16.0.zip");
    EXPECT_EQ(rvq160.hash(), "61616161616161616161616161616161");
    const auto& rvq171 = cloud.m_developerPluginsRvq.at(NString("17.1"));
    EXPECT_EQ(rvq171.version(), "17.1");
    EXPECT_EQ(rvq171.url(), "https://files.example/rvq-17.1.zip");
    EXPECT_EQ(rvq171.hash(), "71717171717171717171717171717171");

    EXPECT_EQ(cloud.m_driveVersion, "3.1.4");
    EXPECT_EQ(cloud.m_driveItunes32, "12.6.5.3");
    EXPECT_EQ(cloud.m_driveItunes64, "12.12.10.1");

    ASSERT_EQ(cloud.m_processPlugins.size(), 2u);
    EXPECT_EQ(cloud.m_processPlugins.front().startsWith(), "plug");
    EXPECT_EQ(cloud.m_processPlugins.front().contains(), "in");
    EXPECT_EQ(cloud.m_processPlugins.front().endsWith(), ".bin");
    EXPECT_EQ(cloud.m_processPlugins.front().name(), "PlugInA");
    EXPECT_EQ(cloud.m_processPlugins.back().startsWith(), "");
    EXPECT_EQ(cloud.m_processPlugins.back().contains(), "Helper");
    EXPECT_EQ(cloud.m_processPlugins.back().endsWith(), "");
    EXPECT_EQ(cloud.m_processPlugins.back().name(), "PlugInB");

    ASSERT_EQ(cloud.m_processApplications.size(), 3u);
    auto rule = cloud.m_processApplications.begin();
    EXPECT_EQ(rule->startsWith(), "app");
    EXPECT_EQ(rule->contains(), "");
    EXPECT_EQ(rule->endsWith(), ".exe");
    EXPECT_EQ(rule->name(), "AppA");
    ++rule;
    EXPECT_EQ(rule->startsWith(), "");
    EXPECT_EQ(rule->contains(), "");
    EXPECT_EQ(rule->endsWith(), "Service");
    EXPECT_EQ(rule->name(), "AppB");
    ++rule;
    EXPECT_EQ(rule->startsWith(), "x");
    EXPECT_EQ(rule->contains(), "y");
    EXPECT_EQ(rule->endsWith(), "z");
    EXPECT_EQ(rule->name(), "AppC");

    EXPECT_TRUE(cloud.m_version.empty());
}

TEST(CloudFormat, SampleDocumentReads) {
    CloudState cloud;
    ASSERT_TRUE(cloud.format(NString(PALLIX_SAMPLES_DIR "/cloud.xml")));
    EXPECT_TRUE(cloud.application_advertisement_iosapp_popup());
    EXPECT_FALSE(cloud.application_advertisement_iosapp_auto_install());
    EXPECT_TRUE(cloud.applet_verify_guide_status());
    EXPECT_TRUE(cloud.applet_verify_guide_pixmap().startsWith("data:image/png;base64,"));
    EXPECT_EQ(cloud.m_applicationHash.size(), 5u);
    for (const auto& entry : cloud.m_applicationHash) {
        EXPECT_EQ(entry.hash().size(), 32u) << entry.name().data();
        EXPECT_TRUE(entry.url().startsWith("https://")) << entry.name().data();
    }
    EXPECT_EQ(cloud.application_hash_cpid().url(), "https://cdn.pallix.example/runtime/5/cpid.xml");
    EXPECT_TRUE(cloud.application_hash_crash_code().url().endsWith("/crash.xml"));
    EXPECT_TRUE(cloud.application_hash_restore_code().url().endsWith("/restore-error.xml"));
    EXPECT_TRUE(cloud.application_hash_restore_version().url().endsWith("/restore-version.xml"));
    EXPECT_TRUE(
        cloud.application_hash_developer_plugin_mapping().url().endsWith("/plugin-mapping.xml"));
    EXPECT_TRUE(cloud.cooperate_hsb_sell_status());
    EXPECT_EQ(cloud.cooperate_hsb_sell_text_device_info(),
              "Sell this device \xE2\x80\x93 get a quote in 30 seconds");
    EXPECT_EQ(cloud.cooperate_hsb_sell_text_device_verify(),
              "Verified devices sell faster & for more");
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipaddress(), "203.0.113.24");
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 8443);
    EXPECT_EQ(cloud.m_developerPlugins.size(), 3u);
    EXPECT_EQ(cloud.device_plugins_find("17.2").hash(), "6e45bfa6c79f699e7447d5234166f04a");
    EXPECT_EQ(cloud.device_plugins_find_by_rvq("17.0").url(),
              "https://cdn.pallix.example/plugins/rvq/developer-17.0.zip");
    EXPECT_EQ(cloud.device_drive_version(), "12.9.0.164");
    EXPECT_EQ(cloud.device_drive_itunes_32(), "12.10.11.2");
    EXPECT_EQ(cloud.device_drive_itunes_64(), "12.13.1.3");
    NString owner;
    EXPECT_TRUE(cloud.device_process_plugins_find(
        "pallix-usb-helper", [&](const PRuntimeCloudDeviceProcessItem& r) { owner = r.name(); }));
    EXPECT_EQ(owner, "PallixHelper");
    EXPECT_TRUE(cloud.device_process_application_find(
        "iTunesHelper.exe", [&](const PRuntimeCloudDeviceProcessItem& r) { owner = r.name(); }));
    EXPECT_EQ(owner, "iTunes");
    EXPECT_TRUE(cloud.version().empty());
}

TEST(CloudFormat, VerifyGuideWithoutStatusResetsAnEarlierTrueStatus) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Applet><VerifyGuide Status="true" Pixmap="p"/></Applet>
                      </Application>)"));
    ASSERT_TRUE(cloud.applet_verify_guide_status());
    ASSERT_TRUE(cloud.formatText(directory,
                                 R"(<Application><Applet><VerifyGuide/></Applet></Application>)"));
    EXPECT_FALSE(cloud.applet_verify_guide_status());
    EXPECT_TRUE(cloud.applet_verify_guide_pixmap().empty());
}

TEST(CloudFormat, IosApplicationWithoutAttributesResetsBothFlags) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Application><Advertisement>
        <IosApplication AutoPopup="1" AutoInstall="1"/></Advertisement></Application>)"));
    ASSERT_TRUE(cloud.m_advertisementPopup && cloud.m_advertisementAutoInstall);
    ASSERT_TRUE(cloud.formatText(
        directory, "<Application><Advertisement><IosApplication/></Advertisement></Application>"));
    EXPECT_FALSE(cloud.m_advertisementPopup);
    EXPECT_FALSE(cloud.m_advertisementAutoInstall);
}

TEST(CloudFormat, PresentValueElementWithoutAttributeResetsItsField) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, kSmallDocument));
    ASSERT_TRUE(cloud.formatText(directory, R"(
        <Cooperate><HSB><SellStatus/><SellTextDeviceInfo/><SellTextDeviceVerify/><Authorize/>
        </HSB></Cooperate>
        <Device><Drive><Version/><iTunes><X86/><X64/></iTunes></Drive></Device>)"));
    EXPECT_FALSE(cloud.m_sellStatus);
    EXPECT_TRUE(cloud.m_sellTextDeviceInfo.empty());
    EXPECT_TRUE(cloud.m_sellTextDeviceVerify.empty());
    EXPECT_TRUE(cloud.m_authorizeAddress.empty());
    EXPECT_EQ(cloud.m_authorizePort, 0);
    EXPECT_TRUE(cloud.m_driveVersion.empty());
    EXPECT_TRUE(cloud.m_driveItunes32.empty());
    EXPECT_TRUE(cloud.m_driveItunes64.empty());
}

TEST(CloudFormat, ServicePortAbove16BitsKeepsOnlyTheLowBits) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Cooperate><HSB><Authorize ServicePort="70000"/></HSB></Cooperate>)"));
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 4464);
}

TEST(CloudFormat, ServicePortThatIsNoNumberReadsAsZero) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Cooperate><HSB><Authorize ServicePort="8080"/></HSB></Cooperate>)"));
    ASSERT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 8080);
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Cooperate><HSB><Authorize ServicePort="abc"/></HSB></Cooperate>)"));
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 0);
}

TEST(CloudFormat, ServicePortAtTheEdgesOf16Bits) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Cooperate><HSB><Authorize ServicePort="65535"/></HSB></Cooperate>)"));
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 65535);
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Cooperate><HSB><Authorize ServicePort="65536"/></HSB></Cooperate>)"));
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 0);
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Cooperate><HSB><Authorize ServicePort="65537"/></HSB></Cooperate>)"));
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipport(), 1);
}

TEST(CloudFormat, DuplicateDeveloperPluginVersionKeepsTheFirst) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device><DeveloperPlugins>
        <P Version="16.0" Url="first-url" Hash="first-hash"/>
        <P Version="16.0" Url="second-url" Hash="second-hash"/>
        </DeveloperPlugins></Device>)"));
    ASSERT_EQ(cloud.m_developerPlugins.size(), 1u);
    const PRuntimeCloudDevicePluginsItem item = cloud.device_plugins_find("16.0");
    EXPECT_EQ(item.url(), "first-url");
    EXPECT_EQ(item.hash(), "first-hash");
}

TEST(CloudFormat, DuplicateRvqVersionKeepsTheFirst) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device><DeveloperPlugins_RVQ>
        <P Version="16.0" Url="first-url" Hash="first-hash"/>
        <P Version="16.0" Url="second-url" Hash="second-hash"/>
        </DeveloperPlugins_RVQ></Device>)"));
    ASSERT_EQ(cloud.m_developerPluginsRvq.size(), 1u);
    EXPECT_EQ(cloud.device_plugins_find_by_rvq("16.0").url(), "first-url");
    EXPECT_TRUE(cloud.m_developerPlugins.empty());
}

TEST(CloudFormat, HashChildWithoutAttributesAppendsAnEmptyEntry) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Application><Hash><File/><File Name="CPID"/></Hash></Application>)"));
    ASSERT_EQ(cloud.m_applicationHash.size(), 2u);
    const PRuntimeCloudApplicationHash& empty = cloud.m_applicationHash.front();
    EXPECT_TRUE(empty.name().empty());
    EXPECT_TRUE(empty.hash().empty());
    EXPECT_TRUE(empty.url().empty());
    EXPECT_EQ(cloud.m_applicationHash.back().name(), "CPID");
}

TEST(CloudFormat, ListChildrenCountWhateverTheirElementName) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(
        <Application><Hash><A Name="one"/><Hash Name="two"/><zz Name="three"/></Hash></Application>
        <Device>
          <DeveloperPlugins><X Version="1"/><Y Version="2"/></DeveloperPlugins>
          <DeveloperPlugins_RVQ><Plugins Version="3"/></DeveloperPlugins_RVQ>
          <ProcessManager>
            <Plugins><Process Name="p1"/><Rule Name="p2"/></Plugins>
            <Process><Plugins Name="a1"/><Other Name="a2"/></Process>
          </ProcessManager>
        </Device>)"));
    std::vector<std::string> names;
    for (const auto& entry : cloud.m_applicationHash) {
        names.push_back(entry.name().toStdString());
    }
    EXPECT_THAT(names, ::testing::ElementsAre("one", "two", "three"));
    EXPECT_EQ(cloud.m_developerPlugins.size(), 2u);
    EXPECT_EQ(cloud.m_developerPluginsRvq.size(), 1u);
    ASSERT_EQ(cloud.m_processPlugins.size(), 2u);
    EXPECT_EQ(cloud.m_processPlugins.front().name(), "p1");
    EXPECT_EQ(cloud.m_processPlugins.back().name(), "p2");
    ASSERT_EQ(cloud.m_processApplications.size(), 2u);
    EXPECT_EQ(cloud.m_processApplications.front().name(), "a1");
    EXPECT_EQ(cloud.m_processApplications.back().name(), "a2");
}

TEST(CloudFormat, TextInsideAListIsNoEntry) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(
        <Application><Hash>loose text<File Name="CPID"/><![CDATA[more]]></Hash></Application>
        <Device><ProcessManager><Plugins>text<R Name="p"/>tail</Plugins></ProcessManager>
        </Device>)"));
    ASSERT_EQ(cloud.m_applicationHash.size(), 1u);
    EXPECT_EQ(cloud.m_applicationHash.front().name(), "CPID");
    ASSERT_EQ(cloud.m_processPlugins.size(), 1u);
    EXPECT_EQ(cloud.m_processPlugins.front().name(), "p");
}

TEST(CloudFormat, OnlyTheFirstElementOfANameIsRead) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(
        <Application>
          <Applet><VerifyGuide Status="1" Pixmap="first"/><VerifyGuide Pixmap="second"/></Applet>
          <Hash><F Name="first-list"/></Hash>
          <Hash><F Name="second-list"/></Hash>
        </Application>
        <Application><Advertisement><IosApplication AutoPopup="1"/></Advertisement></Application>
        <Cooperate><HSB><Authorize ServiceIP="first" ServicePort="1"/>
                        <Authorize ServiceIP="second" ServicePort="2"/></HSB></Cooperate>
        <Device><Drive><iTunes><X86 VALUE="a"/></iTunes><iTunes><X64 VALUE="b"/></iTunes></Drive>
        </Device>)"));
    EXPECT_TRUE(cloud.m_verifyGuideStatus);
    EXPECT_EQ(cloud.m_verifyGuidePixmap, "first");
    ASSERT_EQ(cloud.m_applicationHash.size(), 1u);
    EXPECT_EQ(cloud.m_applicationHash.front().name(), "first-list");
    // The second "Application" is never looked at.
    EXPECT_FALSE(cloud.m_advertisementPopup);
    EXPECT_EQ(cloud.m_authorizeAddress, "first");
    EXPECT_EQ(cloud.m_authorizePort, 1);
    EXPECT_EQ(cloud.m_driveItunes32, "a");
    // X64 sits in the second "iTunes", which is not read.
    EXPECT_TRUE(cloud.m_driveItunes64.empty());
}

TEST(CloudFormat, UnknownElementsAndAttributesAreIgnored) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(
        <Extra><SellStatus VALUE="1"/></Extra>
        <Application Flag="1"><Advertisement><IosApplication AutoPopup="1" Other="x"/>
          <AndroidApplication AutoPopup="1"/></Advertisement>
          <Hash><F Name="CPID" MD5="m" Url="u" Size="12"/></Hash></Application>
        <Cooperate><Other><SellStatus VALUE="1"/></Other></Cooperate>
        <Device><DeveloperPlugins><P Version="1" Url="u" Hash="h" Md5="x"/></DeveloperPlugins>
        </Device>)"));
    EXPECT_TRUE(cloud.m_advertisementPopup);
    EXPECT_FALSE(cloud.m_advertisementAutoInstall);
    EXPECT_FALSE(cloud.m_sellStatus);
    ASSERT_EQ(cloud.m_applicationHash.size(), 1u);
    EXPECT_EQ(cloud.m_applicationHash.front().hash(), "m");
    ASSERT_EQ(cloud.m_developerPlugins.size(), 1u);
    EXPECT_EQ(cloud.m_developerPlugins.begin()->second.hash(), "h");
}

TEST(CloudFormat, MissingAttributesOfListChildrenReadAsEmptyText) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(<Device>
        <DeveloperPlugins><P Version="2.0"/><P Url="only-url"/></DeveloperPlugins>
        <ProcessManager><Process><R Name="payload"/><R/></Process></ProcessManager>
        </Device>)"));
    ASSERT_EQ(cloud.m_developerPlugins.size(), 2u);
    const auto& versioned = cloud.m_developerPlugins.at(NString("2.0"));
    EXPECT_TRUE(versioned.url().empty());
    EXPECT_TRUE(versioned.hash().empty());
    // A package without a version is filed under the empty key.
    EXPECT_EQ(cloud.m_developerPlugins.at(NString("")).url(), "only-url");
    ASSERT_EQ(cloud.m_processApplications.size(), 2u);
    const auto& payload = cloud.m_processApplications.front();
    EXPECT_TRUE(payload.startsWith().empty());
    EXPECT_TRUE(payload.contains().empty());
    EXPECT_TRUE(payload.endsWith().empty());
    EXPECT_EQ(payload.name(), "payload");
    EXPECT_TRUE(cloud.m_processApplications.back().name().empty());
}

TEST(CloudFormat, SameFileTwiceDoublesEveryList) {
    CloudState cloud;
    ASSERT_TRUE(cloud.format(NString(kEveryElement)));
    ASSERT_TRUE(cloud.format(NString(kEveryElement)));

    ASSERT_EQ(cloud.m_applicationHash.size(), 10u);
    std::vector<std::string> names;
    for (const auto& entry : cloud.m_applicationHash) {
        names.push_back(entry.name().toStdString());
    }
    EXPECT_THAT(names,
                ::testing::ElementsAre("CPID", "CrashCode", "RestoreCode", "RestoreVersion",
                                       "DeveloperPluginMapping", "CPID", "CrashCode", "RestoreCode",
                                       "RestoreVersion", "DeveloperPluginMapping"));
    std::vector<std::string> plugins;
    for (const auto& rule : cloud.m_processPlugins) {
        plugins.push_back(rule.name().toStdString());
    }
    EXPECT_THAT(plugins, ::testing::ElementsAre("PlugInA", "PlugInB", "PlugInA", "PlugInB"));
    std::vector<std::string> applications;
    for (const auto& rule : cloud.m_processApplications) {
        applications.push_back(rule.name().toStdString());
    }
    EXPECT_THAT(applications,
                ::testing::ElementsAre("AppA", "AppB", "AppC", "AppA", "AppB", "AppC"));
    // The maps hold each version once.
    EXPECT_EQ(cloud.m_developerPlugins.size(), 2u);
    EXPECT_EQ(cloud.m_developerPluginsRvq.size(), 2u);
}

TEST(CloudFormat, SecondDocumentMergesIntoTheFirst) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.format(NString(kEveryElement)));
    // Some scalar elements, one more entry per list, a known and a new version per map.
    ASSERT_TRUE(cloud.formatText(directory, R"(
        <Application>
          <Applet><VerifyGuide Status="0" Pixmap="second.png"/></Applet>
          <Hash><F Name="CPID" MD5="ffffffffffffffffffffffffffffffff" Url="https://x/2"/></Hash>
        </Application>
        <Cooperate><HSB><SellTextDeviceInfo VALUE="second info"/></HSB></Cooperate>
        <Device>
          <DeveloperPlugins>
            <P Version="16.0" Url="replaced?" Hash="no"/>
            <P Version="18.0" Url="https://x/18" Hash="18"/>
          </DeveloperPlugins>
          <DeveloperPlugins_RVQ><P Version="17.1" Url="replaced?" Hash="no"/></DeveloperPlugins_RVQ>
          <Drive><iTunes><X64 VALUE="13.0"/></iTunes></Drive>
          <ProcessManager>
            <Plugins><R Contains="second" Name="PlugInC"/></Plugins>
            <Process><R Contains="second" Name="AppD"/></Process>
          </ProcessManager>
        </Device>)"));

    // Replaced where the second document has the element.
    EXPECT_FALSE(cloud.m_verifyGuideStatus);
    EXPECT_EQ(cloud.m_verifyGuidePixmap, "second.png");
    EXPECT_EQ(cloud.m_sellTextDeviceInfo, "second info");
    EXPECT_EQ(cloud.m_driveItunes64, "13.0");
    // Kept where it does not.
    EXPECT_TRUE(cloud.m_advertisementPopup);
    EXPECT_TRUE(cloud.m_advertisementAutoInstall);
    EXPECT_TRUE(cloud.m_sellStatus);
    EXPECT_EQ(cloud.m_sellTextDeviceVerify, "Check the device before selling");
    EXPECT_EQ(cloud.m_authorizeAddress, "192.0.2.10");
    EXPECT_EQ(cloud.m_authorizePort, 9443);
    EXPECT_EQ(cloud.m_driveVersion, "3.1.4");
    EXPECT_EQ(cloud.m_driveItunes32, "12.6.5.3");
    // Lists appended to.
    ASSERT_EQ(cloud.m_applicationHash.size(), 6u);
    EXPECT_EQ(cloud.m_applicationHash.back().hash(), "ffffffffffffffffffffffffffffffff");
    EXPECT_EQ(cloud.application_hash_cpid().hash(), "00112233445566778899aabbccddeeff");
    ASSERT_EQ(cloud.m_processPlugins.size(), 3u);
    EXPECT_EQ(cloud.m_processPlugins.back().name(), "PlugInC");
    ASSERT_EQ(cloud.m_processApplications.size(), 4u);
    EXPECT_EQ(cloud.m_processApplications.back().name(), "AppD");
    // Maps keep their first items and gain new versions.
    ASSERT_EQ(cloud.m_developerPlugins.size(), 3u);
    EXPECT_EQ(cloud.device_plugins_find("16.0").url(), "https://files.example/dev-16.0.zip");
    EXPECT_EQ(cloud.device_plugins_find("18.0").url(), "https://x/18");
    ASSERT_EQ(cloud.m_developerPluginsRvq.size(), 2u);
    EXPECT_EQ(cloud.device_plugins_find_by_rvq("17.1").hash(), "71717171717171717171717171717171");
}

TEST(CloudFormat, NonAsciiTextIsKeptAsUtf8) {
    TemporaryDirectory directory;
    CloudState cloud;
    const std::string info = "Gerät verkaufen – 出售设备 – Продать 📱";
    const std::string address = "ß.例え.jp";
    ASSERT_TRUE(cloud.formatText(
        directory, "<Cooperate><HSB><SellTextDeviceInfo VALUE=\"" + info +
                       "\"/><Authorize ServiceIP=\"" + address +
                       "\"/></HSB></Cooperate><Device><ProcessManager><Process>"
                       "<R StartsWith=\"微信\" Name=\"Ünïcode\"/></Process></ProcessManager>"
                       "</Device>"));
    EXPECT_EQ(cloud.cooperate_hsb_sell_text_device_info(), info.c_str());
    EXPECT_EQ(cloud.cooperate_hsb_device_authorize_ipaddress(), address.c_str());
    NString owner;
    EXPECT_TRUE(cloud.device_process_application_find(
        "微信助手", [&](const PRuntimeCloudDeviceProcessItem& rule) { owner = rule.name(); }));
    EXPECT_EQ(owner, "Ünïcode");
}

TEST(CloudFormat, EscapedCharactersInAttributesAreDecoded) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory, R"(
        <Cooperate><HSB>
          <SellTextDeviceInfo VALUE="&lt;b&gt;Sell &amp; save&lt;/b&gt; &quot;now&quot; &apos;today&apos;"/>
          <SellTextDeviceVerify VALUE="&#169; &#x4E2D;&#x6587; &#65;"/>
        </HSB></Cooperate>
        <Application><Hash><F Name="CPID" MD5="m" Url="https://x/get?a=1&amp;b=2"/></Hash>
        </Application>)"));
    EXPECT_EQ(cloud.cooperate_hsb_sell_text_device_info(), "<b>Sell & save</b> \"now\" 'today'");
    EXPECT_EQ(cloud.cooperate_hsb_sell_text_device_verify(), "\xC2\xA9 \xE4\xB8\xAD\xE6\x96\x87 A");
    EXPECT_EQ(cloud.application_hash_cpid().url(), "https://x/get?a=1&b=2");
}

TEST(CloudFormat, WhitespaceInAttributesBecomesSpaces) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.formatText(directory,
                                 "<Cooperate><HSB><SellTextDeviceInfo VALUE=\"one\ttwo\nthree\"/>"
                                 "<SellTextDeviceVerify VALUE=\"  padded  \"/></HSB></Cooperate>"));
    EXPECT_EQ(cloud.cooperate_hsb_sell_text_device_info(), "one two three");
    // Converted, not trimmed: the text is otherwise verbatim.
    EXPECT_EQ(cloud.cooperate_hsb_sell_text_device_verify(), "  padded  ");
}

TEST(CloudFormat, PixmapIsKeptWithoutDecoding) {
    TemporaryDirectory directory;
    CloudState cloud;
    const std::string pixmap = "iVBORw0KGgoAAAANSUhEUgAAAAEAAAABCAYAAAAfFcSJAAAADUlEQVR4nGOQm/D/"
                               "PwAFKgKti6zvbAAAAABJRU5ErkJggg==";
    ASSERT_TRUE(cloud.formatText(directory, "<Application><Applet><VerifyGuide Status=\"1\" "
                                            "Pixmap=\"" +
                                                pixmap + "\"/></Applet></Application>"));
    EXPECT_EQ(cloud.applet_verify_guide_pixmap(), pixmap.c_str());
}

TEST(CloudFormat, VersionStaysEmptyAfterLoading) {
    TemporaryDirectory directory;
    CloudState cloud;
    ASSERT_TRUE(cloud.format(NString(kEveryElement)));
    ASSERT_TRUE(cloud.formatText(
        directory, R"(<Version VALUE="9"/><Device><Drive><Version VALUE="1"/></Drive></Device>)"));
    EXPECT_TRUE(cloud.version().empty());
    EXPECT_EQ(cloud.device_drive_version(), "1");
}

TEST(CloudFormat, DocumentWithDeclarationInAnotherOrderOfSubtreesReadsTheSame) {
    TemporaryDirectory directory;
    CloudState inOrder;
    CloudState reversed;
    ASSERT_TRUE(inOrder.formatText(directory, kSmallDocument));
    // The subtrees are looked up by name; their order in the file does not matter.
    ASSERT_TRUE(reversed.formatText(directory, R"(
<Device>
  <ProcessManager>
    <Process><R StartsWith="S" Contains="C" EndsWith="E" Name="N"/></Process>
    <Plugins><R StartsWith="s" Contains="c" EndsWith="e" Name="n"/></Plugins>
  </ProcessManager>
  <Drive><iTunes><X64 VALUE="x64"/><X86 VALUE="x86"/></iTunes><Version VALUE="d"/></Drive>
  <DeveloperPlugins_RVQ><P Version="2.0" Url="u2" Hash="h2"/></DeveloperPlugins_RVQ>
  <DeveloperPlugins><P Version="1.0" Url="u1" Hash="h1"/></DeveloperPlugins>
</Device>
<Cooperate><HSB>
  <Authorize ServicePort="80" ServiceIP="10.0.0.1"/>
  <SellTextDeviceVerify VALUE="verify"/>
  <SellTextDeviceInfo VALUE="info"/>
  <SellStatus VALUE="1"/>
</HSB></Cooperate>
<Application>
  <Hash><File Url="u" MD5="a" Name="CPID"/></Hash>
  <Applet><VerifyGuide Pixmap="first.png" Status="1"/></Applet>
  <Advertisement><IosApplication AutoInstall="1" AutoPopup="1"/></Advertisement>
</Application>)"));
    EXPECT_EQ(describe(reversed), describe(inOrder));
}

TEST(CloudFormat, RootHandsOutOneCloudDocument) {
    PRuntime* root = PRuntime::getInstance();
    ASSERT_NE(root, nullptr);
    PRuntimeCloud* cloud = root->cloud();
    ASSERT_NE(cloud, nullptr);
    EXPECT_EQ(root->cloud(), cloud);
    EXPECT_TRUE(cloud->format(NString(kEveryElement)));
    EXPECT_EQ(root->cloud()->device_drive_version(), "3.1.4");
    PRuntime::freeInstance();
}

// Booleans follow the parser's rule: true when the text starts with 1, t, T, y or Y.
struct BooleanSpelling {
    const char* name;
    const char* text;
    bool expected;
};

class CloudBooleanSpelling : public ::testing::TestWithParam<BooleanSpelling> {};

TEST_P(CloudBooleanSpelling, EveryFlagReadsTheSpelling) {
    TemporaryDirectory directory;
    CloudState cloud;
    const auto document = [](const std::string& value) {
        return "<Application><Advertisement><IosApplication AutoPopup=\"" + value +
               "\" AutoInstall=\"" + value + "\"/></Advertisement><Applet><VerifyGuide Status=\"" +
               value + "\"/></Applet></Application><Cooperate><HSB><SellStatus VALUE=\"" + value +
               "\"/></HSB></Cooperate>";
    };
    // Start from the opposite value so that the spelling visibly sets each flag.
    const bool expected = GetParam().expected;
    ASSERT_TRUE(cloud.formatText(directory, document(expected ? "0" : "1")));
    ASSERT_EQ(cloud.cooperate_hsb_sell_status(), !expected);
    ASSERT_TRUE(cloud.formatText(directory, document(GetParam().text)));
    EXPECT_EQ(cloud.application_advertisement_iosapp_popup(), expected);
    EXPECT_EQ(cloud.application_advertisement_iosapp_auto_install(), expected);
    EXPECT_EQ(cloud.applet_verify_guide_status(), expected);
    EXPECT_EQ(cloud.cooperate_hsb_sell_status(), expected);
}

INSTANTIATE_TEST_SUITE_P(
    Spellings, CloudBooleanSpelling,
    ::testing::Values(BooleanSpelling{"one", "1", true}, BooleanSpelling{"true", "true", true},
                      BooleanSpelling{"Yes", "Yes", true}, BooleanSpelling{"no", "no", false},
                      BooleanSpelling{"zero", "0", false}, BooleanSpelling{"empty", "", false},
                      BooleanSpelling{"TRUE", "TRUE", true},
                      BooleanSpelling{"false", "false", false},
                      BooleanSpelling{"leadingBlank", " 1", false}),
    [](const auto& info) { return std::string(info.param.name); });

// One subtree at a time is left out of a second document. The fields below it keep what the
// first document gave them; every other field takes the second document's value.
namespace {

struct Element {
    std::string name;
    std::string attributes;
    std::vector<Element> children;
};

// The whole tree with values that tell the two documents apart ("1"/"0" for the flags).
Element tree(const std::string& v, bool flags, int port) {
    const std::string b = flags ? "1" : "0";
    return {
        "Nevor",
        "",
        {{"Application",
          "",
          {{"Advertisement",
            "",
            {{"IosApplication", "AutoPopup=\"" + b + "\" AutoInstall=\"" + b + "\"", {}}}},
           {"Applet",
            "",
            {{"VerifyGuide", "Status=\"" + b + "\" Pixmap=\"pixmap-" + v + "\"", {}}}},
           {"Hash",
            "",
            {{"F", "Name=\"hash-" + v + "\" MD5=\"md5-" + v + "\" Url=\"url-" + v + "\"", {}}}}}},
         {"Cooperate",
          "",
          {{"HSB",
            "",
            {{"SellStatus", "VALUE=\"" + b + "\"", {}},
             {"SellTextDeviceInfo", "VALUE=\"info-" + v + "\"", {}},
             {"SellTextDeviceVerify", "VALUE=\"verify-" + v + "\"", {}},
             {"Authorize",
              "ServiceIP=\"ip-" + v + "\" ServicePort=\"" + std::to_string(port) + "\"",
              {}}}}}},
         {"Device",
          "",
          {{"DeveloperPlugins",
            "",
            {{"P", "Version=\"plugin-" + v + "\" Url=\"u\" Hash=\"h\"", {}}}},
           {"DeveloperPlugins_RVQ",
            "",
            {{"P", "Version=\"rvq-" + v + "\" Url=\"u\" Hash=\"h\"", {}}}},
           {"Drive",
            "",
            {{"Version", "VALUE=\"drive-" + v + "\"", {}},
             {"iTunes",
              "",
              {{"X86", "VALUE=\"x86-" + v + "\"", {}}, {"X64", "VALUE=\"x64-" + v + "\"", {}}}}}},
           {"ProcessManager",
            "",
            {{"Plugins", "", {{"R", "Name=\"plugin-rule-" + v + "\"", {}}}},
             {"Process", "", {{"R", "Name=\"application-rule-" + v + "\"", {}}}}}}}}}};
}

std::string render(const Element& element, const std::string& path, const std::string& omit) {
    if (!omit.empty() && path == omit) {
        return std::string();
    }
    std::string text = "<" + element.name;
    if (!element.attributes.empty()) {
        text += " " + element.attributes;
    }
    text += ">";
    for (const Element& child : element.children) {
        text += render(child, path.empty() ? child.name : path + "/" + child.name, omit);
    }
    return text + "</" + element.name + ">\n";
}

std::string documentWithout(const std::string& v, bool flags, int port, const std::string& omit) {
    const Element root = tree(v, flags, port);
    std::string body;
    for (const Element& child : root.children) {
        body += render(child, child.name, omit);
    }
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Nevor>\n" + body + "</Nevor>\n";
}

struct Field {
    const char* path; // the element that fills the field
    std::function<std::string(const CloudState&)> read;
    std::string first;
    std::string both; // after the second document, when its element is present
};

std::string joinNames(const std::vector<std::string>& names) {
    std::string text;
    for (const auto& name : names) {
        text += (text.empty() ? "" : ",") + name;
    }
    return text;
}

std::vector<Field> fields() {
    const auto flag = [](bool value) { return std::string(value ? "1" : "0"); };
    return {
        {"Application/Advertisement/IosApplication",
         [=](const CloudState& c) { return flag(c.m_advertisementPopup); }, "1", "0"},
        {"Application/Advertisement/IosApplication",
         [=](const CloudState& c) { return flag(c.m_advertisementAutoInstall); }, "1", "0"},
        {"Application/Applet/VerifyGuide",
         [=](const CloudState& c) { return flag(c.m_verifyGuideStatus); }, "1", "0"},
        {"Application/Applet/VerifyGuide",
         [](const CloudState& c) { return c.m_verifyGuidePixmap.toStdString(); }, "pixmap-A",
         "pixmap-B"},
        {"Application/Hash",
         [](const CloudState& c) {
             std::vector<std::string> names;
             for (const auto& e : c.m_applicationHash) {
                 names.push_back(e.name().toStdString() + "/" + e.hash().toStdString() + "/" +
                                 e.url().toStdString());
             }
             return joinNames(names);
         },
         "hash-A/md5-A/url-A", "hash-A/md5-A/url-A,hash-B/md5-B/url-B"},
        {"Cooperate/HSB/SellStatus", [=](const CloudState& c) { return flag(c.m_sellStatus); }, "1",
         "0"},
        {"Cooperate/HSB/SellTextDeviceInfo",
         [](const CloudState& c) { return c.m_sellTextDeviceInfo.toStdString(); }, "info-A",
         "info-B"},
        {"Cooperate/HSB/SellTextDeviceVerify",
         [](const CloudState& c) { return c.m_sellTextDeviceVerify.toStdString(); }, "verify-A",
         "verify-B"},
        {"Cooperate/HSB/Authorize",
         [](const CloudState& c) { return c.m_authorizeAddress.toStdString(); }, "ip-A", "ip-B"},
        {"Cooperate/HSB/Authorize",
         [](const CloudState& c) { return std::to_string(c.m_authorizePort); }, "1111", "2222"},
        {"Device/DeveloperPlugins",
         [](const CloudState& c) {
             std::vector<std::string> keys;
             for (const auto& entry : c.m_developerPlugins) {
                 keys.push_back(entry.first.toStdString());
             }
             return joinNames(keys);
         },
         "plugin-A", "plugin-A,plugin-B"},
        {"Device/DeveloperPlugins_RVQ",
         [](const CloudState& c) {
             std::vector<std::string> keys;
             for (const auto& entry : c.m_developerPluginsRvq) {
                 keys.push_back(entry.first.toStdString());
             }
             return joinNames(keys);
         },
         "rvq-A", "rvq-A,rvq-B"},
        {"Device/Drive/Version", [](const CloudState& c) { return c.m_driveVersion.toStdString(); },
         "drive-A", "drive-B"},
        {"Device/Drive/iTunes/X86",
         [](const CloudState& c) { return c.m_driveItunes32.toStdString(); }, "x86-A", "x86-B"},
        {"Device/Drive/iTunes/X64",
         [](const CloudState& c) { return c.m_driveItunes64.toStdString(); }, "x64-A", "x64-B"},
        {"Device/ProcessManager/Plugins",
         [](const CloudState& c) {
             std::vector<std::string> names;
             for (const auto& rule : c.m_processPlugins) {
                 names.push_back(rule.name().toStdString());
             }
             return joinNames(names);
         },
         "plugin-rule-A", "plugin-rule-A,plugin-rule-B"},
        {"Device/ProcessManager/Process",
         [](const CloudState& c) {
             std::vector<std::string> names;
             for (const auto& rule : c.m_processApplications) {
                 names.push_back(rule.name().toStdString());
             }
             return joinNames(names);
         },
         "application-rule-A", "application-rule-A,application-rule-B"},
    };
}

bool isWithin(const std::string& path, const std::string& subtree) {
    return path == subtree || path.rfind(subtree + "/", 0) == 0;
}

} // namespace

class CloudMissingSubtree : public ::testing::TestWithParam<const char*> {};

TEST_P(CloudMissingSubtree, FieldsBelowItKeepTheirValues) {
    TemporaryDirectory directory;
    CloudState cloud;
    const std::string omitted = GetParam();
    ASSERT_TRUE(cloud.format(NString(writeFile(directory, documentWithout("A", true, 1111, "")))));
    ASSERT_TRUE(
        cloud.format(NString(writeFile(directory, documentWithout("B", false, 2222, omitted)))));
    int kept = 0;
    for (const Field& field : fields()) {
        const bool missing = isWithin(field.path, omitted);
        kept += missing ? 1 : 0;
        EXPECT_EQ(field.read(cloud), missing ? field.first : field.both)
            << field.path << " with " << omitted << " missing";
    }
    // Every subtree fills at least one field.
    EXPECT_GT(kept, 0);
}

INSTANTIATE_TEST_SUITE_P(
    Subtrees, CloudMissingSubtree,
    ::testing::Values("Application", "Application/Advertisement",
                      "Application/Advertisement/IosApplication", "Application/Applet",
                      "Application/Applet/VerifyGuide", "Application/Hash", "Cooperate",
                      "Cooperate/HSB", "Cooperate/HSB/SellStatus",
                      "Cooperate/HSB/SellTextDeviceInfo", "Cooperate/HSB/SellTextDeviceVerify",
                      "Cooperate/HSB/Authorize", "Device", "Device/DeveloperPlugins",
                      "Device/DeveloperPlugins_RVQ", "Device/Drive", "Device/Drive/Version",
                      "Device/Drive/iTunes", "Device/Drive/iTunes/X86", "Device/Drive/iTunes/X64",
                      "Device/ProcessManager", "Device/ProcessManager/Plugins",
                      "Device/ProcessManager/Process"),
    [](const auto& info) {
        std::string name = info.param;
        for (char& c : name) {
            if (c == '/') {
                c = '_';
            }
        }
        return name;
    });
