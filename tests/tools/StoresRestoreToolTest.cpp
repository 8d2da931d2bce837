// "pallix factory" and "pallix ipsw" on configuration directories made up by the tests.

#include "StoreFileState.h"
#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <vector>

using pallix::test::ageFile;
using pallix::test::runTool;
using pallix::test::stateOf;
using pallix::test::TemporaryDirectory;
using pallix::test::ToolResult;

namespace {

class StoresRestoreToolTest : public ::testing::Test {
protected:
    ToolResult run(std::vector<std::string> arguments) const {
        arguments.push_back("--config-dir");
        arguments.push_back(directory.path());
        return runTool(arguments);
    }

    std::string factoryFile() const { return directory.file("Factory.json"); }
    std::string ipswFile() const { return directory.file("RestoreIpsw.xml"); }

    std::string firmware(const std::string& name) const {
        const std::string path = directory.file(name);
        TemporaryDirectory::write(path, "made-up firmware " + name);
        return path;
    }

    TemporaryDirectory directory{"pallix-tool-restore"};
};

bool contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

const std::string urlA = "https://updates.example.com/ipsw/iPhone15,2_17.1_21B80_Restore.ipsw";
const std::string urlB = "https://updates.example.com/ipsw/iPad13,18_16.6_20G75_Restore.ipsw";

} // namespace

// ---------------------------------------------------------------------------------------------
// pallix factory

TEST_F(StoresRestoreToolTest, FactoryListOfAnEmptyDirectoryPrintsNothing) {
    const ToolResult result = run({"factory", "list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors, "");
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
    EXPECT_EQ(run({"factory", "list", "--json"}).output, "[]\n");
}

TEST_F(StoresRestoreToolTest, FactoryAddThenListShowsTheDevicesInIdOrder) {
    const ToolResult first =
        run({"factory", "add", "8101", "SerialNumber=DNPXK2ABHG7F", "Color=1"});
    EXPECT_EQ(first.status, 0) << first.errors;
    EXPECT_EQ(first.output, "added device 0000000000008101\n");
    ASSERT_EQ(run({"factory", "add", "0x1a2b", "ModelNumber=MQ3D2LL/A"}).status, 0);
    const ToolResult result = run({"factory", "list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "0000000000001A2B\tModelNumber\tMQ3D2LL/A\n"
                             "0000000000008101\tSerialNumber\tDNPXK2ABHG7F\n"
                             "0000000000008101\tColor\t1\n");
    // What the tool wrote is what the library reads.
    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimeFactory store;
    EXPECT_TRUE(store.find(0x1A2B));
    EXPECT_TRUE(store.find(0x8101));
}

TEST_F(StoresRestoreToolTest, FactoryListAsJsonGivesTheValuesAsTheFileKeepsThem) {
    ASSERT_EQ(run({"factory", "add", "ab", "Serial=DN", "Nonce=base64:AH//"}).status, 0);
    const ToolResult listed = run({"factory", "list", "--json"});
    EXPECT_EQ(listed.status, 0) << listed.errors;
    EXPECT_EQ(nlohmann::json::parse(listed.output), nlohmann::json::parse(R"([
        {"id": "00000000000000AB", "values": [
            {"key": "Serial", "base64": "RE4=", "text": "DN"},
            {"key": "Nonce", "base64": "AH//", "text": null}]}])"));
    EXPECT_EQ(TemporaryDirectory::read(factoryFile()),
              R"({"00000000000000AB":{"Serial":"RE4=","Nonce":"AH//"}})");
}

TEST_F(StoresRestoreToolTest, FactoryAddReplacesTheWholeRecord) {
    ASSERT_EQ(run({"factory", "add", "42", "A=1", "B=2"}).status, 0);
    const ToolResult replaced = run({"factory", "add", "42", "C=3"});
    EXPECT_EQ(replaced.status, 0) << replaced.errors;
    EXPECT_EQ(replaced.output, "replaced the values of device 0000000000000042\n");
    EXPECT_EQ(run({"factory", "list"}).output, "0000000000000042\tC\t3\n");
}

TEST_F(StoresRestoreToolTest, FactoryAddOfTheSameValuesWritesNothing) {
    ASSERT_EQ(run({"factory", "add", "42", "A=1", "B=base64:AP8="}).status, 0);
    const auto before = ageFile(factoryFile());
    const ToolResult again = run({"factory", "add", "0x0042", "A=1", "B=base64:AP8="});
    EXPECT_EQ(again.status, 0) << again.errors;
    EXPECT_EQ(again.output, "");
    EXPECT_EQ(again.errors,
              "pallix: note: device 0000000000000042 already holds these values; unchanged\n");
    EXPECT_EQ(stateOf(factoryFile()), before);
}

TEST_F(StoresRestoreToolTest, FactoryAddKeepsEverythingAfterTheFirstEqualsSign) {
    ASSERT_EQ(run({"factory", "add", "7", "Note=a=b", "Empty=", "Tab=a\tb"}).status, 0);
    EXPECT_EQ(
        run({"factory", "list"}).output,
        "0000000000000007\tNote\ta=b\n0000000000000007\tEmpty\t\n0000000000000007\tTab\ta\\tb\n");
}

TEST_F(StoresRestoreToolTest, FactoryValuesThatAreNotTextGoInAndOutAsBase64) {
    // Bytes, and text that would read as base64, are shown as base64; typed back, they give
    // the same bytes.
    ASSERT_EQ(run({"factory", "add", "7", "Nonce=base64:AH//", "Odd=base64:YmFzZTY0Onhx"}).status,
              0);
    const std::string listed = run({"factory", "list"}).output;
    EXPECT_EQ(listed, "0000000000000007\tNonce\tbase64:AH//\n0000000000000007\tOdd\tbase64:"
                      "YmFzZTY0Onhx\n");
    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimeFactory store;
    store.traverse([](unsigned long long, const NDeviceInfoFactory& info) {
        EXPECT_EQ(info.value(NString("Nonce")).toStdString(), std::string("\x00\x7f\xff", 3));
        EXPECT_EQ(info.value(NString("Odd")).toStdString(), "base64:xq");
    });
}

TEST_F(StoresRestoreToolTest, FactoryAddRefusesValuesTheStoreWouldNotKeep) {
    for (const char* value :
         {"N=base64:AH/", "N=base64:A===", "N=base64:AB==", "N=base64:A H=", "N=base64:AH//=="}) {
        const ToolResult result = run({"factory", "add", "7", value});
        EXPECT_EQ(result.status, 2) << value;
        EXPECT_TRUE(contains(result.errors, "not base64")) << result.errors;
    }
    const ToolResult key = run({"factory", "add", "7", "\xff=1"});
    EXPECT_EQ(key.status, 2);
    EXPECT_TRUE(contains(key.errors, "not UTF-8")) << key.errors;
    const ToolResult twice = run({"factory", "add", "7", "A=1", "A=2"});
    EXPECT_EQ(twice.status, 2);
    EXPECT_TRUE(contains(twice.errors, "the key 'A' is given twice")) << twice.errors;
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
}

TEST_F(StoresRestoreToolTest, FactoryRefusesABadDeviceIdentifier) {
    for (const char* id : {"0", "0x0", "xyz", "12G", "11112222333344445", "", "-1", "0x"}) {
        for (const char* action : {"add", "remove"}) {
            const ToolResult result = std::string(action) == "add"
                                          ? run({"factory", action, id, "A=1"})
                                          : run({"factory", action, id});
            EXPECT_EQ(result.status, 2) << action << " " << id;
            EXPECT_TRUE(contains(result.errors, "device")) << result.errors;
        }
    }
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
}

TEST_F(StoresRestoreToolTest, FactoryAddRefusesAValueWithoutKey) {
    for (const char* pair : {"novalue", "=value"}) {
        const ToolResult result = run({"factory", "add", "12", pair});
        EXPECT_EQ(result.status, 2) << pair;
        EXPECT_TRUE(contains(result.errors, "is not KEY=VALUE")) << result.errors;
    }
    EXPECT_EQ(run({"factory", "add", "12"}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
}

TEST_F(StoresRestoreToolTest, FactoryRemoveForgetsADevice) {
    ASSERT_EQ(run({"factory", "add", "1", "A=1"}).status, 0);
    ASSERT_EQ(run({"factory", "add", "2", "B=2"}).status, 0);
    const ToolResult result = run({"factory", "remove", "0x01"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "removed device 0000000000000001\n");
    EXPECT_EQ(run({"factory", "list"}).output, "0000000000000002\tB\t2\n");
}

TEST_F(StoresRestoreToolTest, FactoryRemoveOfAnUnknownDeviceFailsAndWritesNothing) {
    ASSERT_EQ(run({"factory", "add", "1", "A=1"}).status, 0);
    const auto before = ageFile(factoryFile());
    const ToolResult result = run({"factory", "remove", "99"});
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.errors, "pallix: no factory information for device 0000000000000099\n");
    EXPECT_EQ(stateOf(factoryFile()), before);
}

TEST_F(StoresRestoreToolTest, FactoryListOfAMalformedFileFailsWith2) {
    TemporaryDirectory::write(factoryFile(), "{\"0000000000000001\": {");
    const ToolResult result = run({"factory", "list"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, factoryFile() + ": is not valid JSON; the library reads "
                                                        "it as empty"))
        << result.errors;
    EXPECT_EQ(result.output, "");
}

TEST_F(StoresRestoreToolTest, FactoryListShowsWhatTheLibraryKeeps) {
    TemporaryDirectory::write(factoryFile(), R"({"1a2b":{"A":"MQ=="},"serial":{"A":"MQ=="},)"
                                             R"("0000000000000003":"text",)"
                                             R"("0000000000000004":{},)"
                                             R"("0000000000001A2B":{"B":"Mg=="}})");
    const ToolResult result = run({"factory", "list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "0000000000001A2B\tA\t1\n");
    EXPECT_EQ(result.errors, "");
}

// ---------------------------------------------------------------------------------------------
// pallix ipsw

TEST_F(StoresRestoreToolTest, IpswListOfAnEmptyDirectoryPrintsNothing) {
    const ToolResult result = run({"ipsw", "list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
    EXPECT_EQ(run({"ipsw", "list", "--json"}).output, "[]\n");
}

TEST_F(StoresRestoreToolTest, IpswAddThenListAndFind) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    const ToolResult added = run({"ipsw", "add", urlA, a});
    EXPECT_EQ(added.status, 0) << added.errors;
    EXPECT_EQ(added.output, "matched " + urlA + " to " + a + "\n");
    ASSERT_EQ(run({"ipsw", "add", urlB, b}).status, 0);
    const ToolResult list = run({"ipsw", "list"});
    EXPECT_EQ(list.status, 0) << list.errors;
    // By address.
    EXPECT_EQ(list.output, urlB + "\t" + b + "\n" + urlA + "\t" + a + "\n");
    const ToolResult find = run({"ipsw", "find", urlA});
    EXPECT_EQ(find.status, 0) << find.errors;
    EXPECT_EQ(find.output, a + "\n");
    // What the tool wrote is what the library reads.
    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimeRestoreCustomFirmware store;
    EXPECT_EQ(store.find(NString(urlB)).toStdString(), b);
}

TEST_F(StoresRestoreToolTest, IpswListAndFindAsJson) {
    const std::string a = firmware("a.ipsw");
    ASSERT_EQ(run({"ipsw", "add", urlA, a}).status, 0);
    const ToolResult list = run({"ipsw", "list", "--json"});
    EXPECT_EQ(list.status, 0) << list.errors;
    EXPECT_EQ(nlohmann::json::parse(list.output),
              nlohmann::json::array({{{"url", urlA}, {"local", a}}}));
    const ToolResult find = run({"ipsw", "find", urlA, "--json"});
    EXPECT_EQ(find.status, 0) << find.errors;
    EXPECT_EQ(nlohmann::json::parse(find.output), nlohmann::json({{"url", urlA}, {"local", a}}));
}

TEST_F(StoresRestoreToolTest, IpswAddReplacesAnEarlierMatch) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    ASSERT_EQ(run({"ipsw", "add", urlA, a}).status, 0);
    const ToolResult result = run({"ipsw", "add", urlA, b});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "rematched " + urlA + " to " + b + " (was " + a + ")\n");
    EXPECT_EQ(run({"ipsw", "list"}).output, urlA + "\t" + b + "\n");
}

TEST_F(StoresRestoreToolTest, IpswAddOfTheSameMatchWritesNothing) {
    const std::string a = firmware("a.ipsw");
    ASSERT_EQ(run({"ipsw", "add", urlA, a}).status, 0);
    const auto before = ageFile(ipswFile());
    const ToolResult result = run({"ipsw", "add", urlA, a});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors,
              "pallix: note: " + urlA + " is already matched to " + a + "; unchanged\n");
    EXPECT_EQ(stateOf(ipswFile()), before);
}

TEST_F(StoresRestoreToolTest, IpswAddKeepsTheLocalFileAsAnAbsolutePath) {
    firmware("relative.ipsw");
    const ToolResult result = pallix::test::runProgram(
        "/bin/sh", {"-c", "cd \"$0\" && exec \"$1\" ipsw add --config-dir . \"$2\" ./relative.ipsw",
                    directory.path(), PALLIX_TOOL_PATH, urlA});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(run({"ipsw", "find", urlA}).output, directory.file("relative.ipsw") + "\n");
}

TEST_F(StoresRestoreToolTest, IpswAddFollowsALinkBeforeDotDot) {
    // link/../fw.ipsw is real/fw.ipsw for the system, not the decoy beside the link.
    std::filesystem::create_directories(directory.file("real/sub"));
    firmware("real/fw.ipsw");
    firmware("fw.ipsw");
    std::filesystem::create_directory_symlink("real/sub", directory.file("link"));
    const ToolResult result = run({"ipsw", "add", urlA, directory.file("link/../fw.ipsw")});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(run({"ipsw", "find", urlA}).output,
              std::filesystem::canonical(directory.file("real")).string() + "/fw.ipsw\n");
}

TEST_F(StoresRestoreToolTest, IpswRefusesWhatIsNotAFirmwareFileOrAnAddress) {
    std::filesystem::create_directories(directory.file("folder"));
    const ToolResult folder = run({"ipsw", "add", urlA, directory.file("folder")});
    EXPECT_EQ(folder.status, 2);
    EXPECT_EQ(folder.errors, "pallix: " + directory.file("folder") +
                                 ": is not a regular file; a firmware file is expected\n");
    const ToolResult empty = run({"ipsw", "add", urlA, ""});
    EXPECT_EQ(empty.status, 2);
    EXPECT_EQ(empty.errors, "pallix: the local file is empty\n");
    for (const char* action : {"find", "remove"}) {
        const ToolResult none = run({"ipsw", action, ""});
        EXPECT_EQ(none.status, 2) << action;
        EXPECT_EQ(none.errors, "pallix: the url is empty\n") << action;
    }
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
}

TEST_F(StoresRestoreToolTest, IpswAddRefusesALocalFileThatDoesNotExist) {
    const ToolResult result = run({"ipsw", "add", urlA, directory.file("never.ipsw")});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, "never.ipsw: no such file")) << result.errors;
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
}

TEST_F(StoresRestoreToolTest, IpswAddRefusesTextsThatXmlCannotCarry) {
    const std::string a = firmware("a.ipsw");
    for (const auto& arguments :
         std::vector<std::vector<std::string>>{{"ipsw", "add", urlA + "\x01", a},
                                               {"ipsw", "add", "\xfe", a},
                                               {"ipsw", "add", "", a}}) {
        const ToolResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << result.errors;
    }
    const std::string odd = firmware("odd\x02.ipsw");
    EXPECT_EQ(run({"ipsw", "add", urlA, odd}).status, 2);
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
}

TEST_F(StoresRestoreToolTest, IpswRemoveForgetsAMatch) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    ASSERT_EQ(run({"ipsw", "add", urlA, a}).status, 0);
    ASSERT_EQ(run({"ipsw", "add", urlB, b}).status, 0);
    const ToolResult result = run({"ipsw", "remove", urlA});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "forgot the match of " + urlA + "\n");
    EXPECT_EQ(run({"ipsw", "list"}).output, urlB + "\t" + b + "\n");
}

TEST_F(StoresRestoreToolTest, IpswRemoveAndFindOfAnUnknownAddressAreNotFound) {
    const std::string a = firmware("a.ipsw");
    ASSERT_EQ(run({"ipsw", "add", urlA, a}).status, 0);
    const auto before = ageFile(ipswFile());
    const ToolResult remove = run({"ipsw", "remove", urlB});
    EXPECT_EQ(remove.status, 1);
    EXPECT_EQ(remove.errors, "pallix: " + urlB +
                                 ": no local file matched (a match whose file is gone is not read, "
                                 "and goes at the next change)\n");
    EXPECT_EQ(stateOf(ipswFile()), before);
    const ToolResult find = run({"ipsw", "find", urlB, "--json"});
    EXPECT_EQ(find.status, 1);
    EXPECT_EQ(find.output, "");
}

TEST_F(StoresRestoreToolTest, IpswListOfAMalformedFileFailsWith2) {
    TemporaryDirectory::write(ipswFile(),
                              "<Rilo>\n<MATCH>\n<MATCH URL=\"a\" LOCAL=\"/\">\n</Rilo>\n");
    const ToolResult result = run({"ipsw", "list"});
    EXPECT_EQ(result.status, 2);
    EXPECT_TRUE(contains(result.errors, ipswFile() + ": not well-formed XML")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "the library reads nothing from this file"))
        << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(run({"ipsw", "find", "a"}).status, 2);
}

TEST_F(StoresRestoreToolTest, IpswListShowsWhatTheLibraryKeeps) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    TemporaryDirectory::write(ipswFile(), "<Rilo><MATCH>"
                                          "<MATCH URL=\"" +
                                              urlA +
                                              "\" LOCAL=\"/gone.ipsw\"/>"
                                              "<MATCH URL=\"" +
                                              urlA + "\" LOCAL=\"" + a +
                                              "\"/>"
                                              "<MATCH URL=\"" +
                                              urlA + "\" LOCAL=\"" + b +
                                              "\"/>"
                                              "</MATCH></Rilo>");
    const ToolResult result = run({"ipsw", "list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, urlA + "\t" + a + "\n");
    EXPECT_EQ(result.errors, "");
}
