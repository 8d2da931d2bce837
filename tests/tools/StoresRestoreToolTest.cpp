#include "ReadOnlyDirectory.h"
#include "TemporaryDirectory.h"
#include "ToolRunner.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <vector>

using pallix::test::runTool;
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
}

TEST_F(StoresRestoreToolTest, FactoryAddThenListShowsTheDevicesInIdOrder) {
    ASSERT_EQ(run({"factory", "add", "8101", "SerialNumber=DNPXK2ABHG7F", "Color=1"}).status, 0);
    const ToolResult added = run({"factory", "add", "0x1a2b", "ModelNumber=MQ3D2LL/A"});
    EXPECT_EQ(added.status, 0) << added.errors;
    const ToolResult result = run({"factory", "list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "0000000000001A2B\n"
                             "\tModelNumber: MQ3D2LL/A\n"
                             "0000000000008101\n"
                             "\tSerialNumber: DNPXK2ABHG7F\n"
                             "\tColor: 1\n");
    // What the tool wrote is what the library reads.
    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimeFactory store;
    EXPECT_TRUE(store.find(0x1A2B));
    EXPECT_TRUE(store.find(0x8101));
}

TEST_F(StoresRestoreToolTest, FactoryAddReplacesTheWholeRecord) {
    ASSERT_EQ(run({"factory", "add", "42", "A=1", "B=2"}).status, 0);
    ASSERT_EQ(run({"factory", "add", "42", "C=3"}).status, 0);
    EXPECT_EQ(run({"factory", "list"}).output, "0000000000000042\n\tC: 3\n");
}

TEST_F(StoresRestoreToolTest, FactoryAddKeepsEverythingAfterTheFirstEqualsSign) {
    ASSERT_EQ(run({"factory", "add", "7", "Note=a=b", "Empty="}).status, 0);
    EXPECT_EQ(run({"factory", "list"}).output, "0000000000000007\n\tNote: a=b\n\tEmpty: \n");
}

TEST_F(StoresRestoreToolTest, FactoryAddRefusesABadDeviceIdentifier) {
    for (const char* id : {"0", "0x0", "xyz", "12G", "11112222333344445", ""}) {
        const ToolResult result = run({"factory", "add", id, "A=1"});
        EXPECT_EQ(result.status, 1) << id;
        EXPECT_TRUE(contains(result.errors, "not a device identifier")) << result.errors;
    }
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
}

TEST_F(StoresRestoreToolTest, FactoryAddRefusesAValueWithoutKey) {
    for (const char* pair : {"novalue", "=value"}) {
        const ToolResult result = run({"factory", "add", "12", pair});
        EXPECT_EQ(result.status, 1) << pair;
        EXPECT_TRUE(contains(result.errors, "not KEY=VALUE")) << result.errors;
    }
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
}

TEST_F(StoresRestoreToolTest, FactoryAddNeedsAtLeastOneValue) {
    const ToolResult result = run({"factory", "add", "12"});
    EXPECT_NE(result.status, 0);
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
}

TEST_F(StoresRestoreToolTest, FactoryRemoveForgetsADevice) {
    ASSERT_EQ(run({"factory", "add", "1", "A=1"}).status, 0);
    ASSERT_EQ(run({"factory", "add", "2", "B=2"}).status, 0);
    const ToolResult result = run({"factory", "remove", "0x01"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(run({"factory", "list"}).output, "0000000000000002\n\tB: 2\n");
}

TEST_F(StoresRestoreToolTest, FactoryRemoveOfAnUnknownDeviceFailsAndWritesNothing) {
    const ToolResult result = run({"factory", "remove", "99"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "no factory information for device 0000000000000099"))
        << result.errors;
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
}

TEST_F(StoresRestoreToolTest, FactoryListShowsBinaryValuesInHexadecimal) {
    NApplication::setDirectoryConfig(NString(directory.path()));
    {
        PRuntimeFactory store;
        NDeviceInfoFactory info;
        info.append(NString("Nonce"), NByteArray(std::string("\x00\x7F\xFF", 3)));
        store.append(0xAB, info);
    }
    EXPECT_EQ(run({"factory", "list"}).output, "00000000000000AB\n\tNonce: hex:007fff\n");
}

TEST_F(StoresRestoreToolTest, FactoryListOfAMalformedFileFails) {
    TemporaryDirectory::write(factoryFile(), "{\"0000000000000001\": {");
    const ToolResult result = run({"factory", "list"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "Factory.json: not a JSON object")) << result.errors;
    EXPECT_EQ(result.output, "");
}

TEST_F(StoresRestoreToolTest, FactoryListSaysWhichMembersTheStoreSkips) {
    TemporaryDirectory::write(factoryFile(), R"({"1a2b":{"A":"MQ=="},"serial":{"A":"MQ=="},)"
                                             R"("0000000000000003":"text",)"
                                             R"("0000000000000004":{},)"
                                             R"("0000000000001A2B":{"B":"Mg=="}})");
    const ToolResult result = run({"factory", "list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "0000000000001A2B\n\tA: 1\n");
    EXPECT_TRUE(contains(result.errors, "\"serial\" is not a device identifier")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "\"0000000000000003\" is not an object")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "\"0000000000000004\" holds no values")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "\"0000000000001A2B\" names device 0000000000001A2B again"))
        << result.errors;
}

TEST_F(StoresRestoreToolTest, FactoryCommandsRefuseAMissingConfigurationDirectory) {
    const std::string missing = directory.file("missing");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"factory", "list"},
          std::vector<std::string>{"factory", "add", "1", "A=1"},
          std::vector<std::string>{"factory", "remove", "1"}}) {
        std::vector<std::string> full = arguments;
        full.push_back("--config-dir");
        full.push_back(missing);
        const ToolResult result = runTool(full);
        EXPECT_EQ(result.status, 1) << arguments[1];
        EXPECT_TRUE(contains(result.errors, missing + ": no such directory")) << result.errors;
    }
    EXPECT_FALSE(std::filesystem::exists(missing));
}

// ---------------------------------------------------------------------------------------------
// pallix ipsw

TEST_F(StoresRestoreToolTest, IpswListOfAnEmptyDirectoryPrintsNothing) {
    const ToolResult result = run({"ipsw", "list"});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(result.output, "");
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
}

TEST_F(StoresRestoreToolTest, IpswAddThenListAndFind) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    ASSERT_EQ(run({"ipsw", "add", urlA, a}).status, 0);
    ASSERT_EQ(run({"ipsw", "add", urlB, b}).status, 0);
    const ToolResult list = run({"ipsw", "list"});
    EXPECT_EQ(list.status, 0) << list.errors;
    // In file order, which is the byte order of the addresses.
    EXPECT_EQ(list.output, urlB + " -> " + b + "\n" + urlA + " -> " + a + "\n");
    const ToolResult find = run({"ipsw", "find", urlA});
    EXPECT_EQ(find.status, 0) << find.errors;
    EXPECT_EQ(find.output, a + "\n");
    // What the tool wrote is what the library reads.
    NApplication::setDirectoryConfig(NString(directory.path()));
    PRuntimeRestoreCustomFirmware store;
    EXPECT_EQ(store.find(NString(urlB)).toStdString(), b);
}

TEST_F(StoresRestoreToolTest, IpswAddReplacesAnEarlierMatch) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    ASSERT_EQ(run({"ipsw", "add", urlA, a}).status, 0);
    ASSERT_EQ(run({"ipsw", "add", urlA, b}).status, 0);
    EXPECT_EQ(run({"ipsw", "list"}).output, urlA + " -> " + b + "\n");
}

TEST_F(StoresRestoreToolTest, IpswAddKeepsTheLocalFileAsAnAbsolutePath) {
    firmware("relative.ipsw");
    const ToolResult result = pallix::test::runProgram(
        "/bin/sh", {"-c", "cd \"$0\" && exec \"$1\" ipsw add --config-dir . \"$2\" ./relative.ipsw",
                    directory.path(), PALLIX_TOOL_PATH, urlA});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(run({"ipsw", "find", urlA}).output, directory.file("relative.ipsw") + "\n");
}

TEST_F(StoresRestoreToolTest, IpswAddRefusesALocalFileThatDoesNotExist) {
    const ToolResult result = run({"ipsw", "add", urlA, directory.file("never.ipsw")});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "never.ipsw: no such file")) << result.errors;
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
}

TEST_F(StoresRestoreToolTest, IpswRemoveForgetsAMatch) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    ASSERT_EQ(run({"ipsw", "add", urlA, a}).status, 0);
    ASSERT_EQ(run({"ipsw", "add", urlB, b}).status, 0);
    const ToolResult result = run({"ipsw", "remove", urlA});
    EXPECT_EQ(result.status, 0) << result.errors;
    EXPECT_EQ(run({"ipsw", "list"}).output, urlB + " -> " + b + "\n");
}

TEST_F(StoresRestoreToolTest, IpswRemoveAndFindOfAnUnknownAddressFail) {
    const ToolResult remove = run({"ipsw", "remove", urlA});
    EXPECT_EQ(remove.status, 1);
    EXPECT_TRUE(contains(remove.errors, urlA + ": no local file matched")) << remove.errors;
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
    const ToolResult find = run({"ipsw", "find", urlA});
    EXPECT_EQ(find.status, 1);
    EXPECT_EQ(find.output, "");
}

TEST_F(StoresRestoreToolTest, IpswListOfAMalformedFileGivesLineAndColumn) {
    TemporaryDirectory::write(ipswFile(),
                              "<Rilo>\n<MATCH>\n<MATCH URL=\"a\" LOCAL=\"/\">\n</Rilo>\n");
    const ToolResult result = run({"ipsw", "list"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "RestoreIpsw.xml:4:")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "not well-formed XML")) << result.errors;
    EXPECT_EQ(result.output, "");
}

TEST_F(StoresRestoreToolTest, IpswListOfAFileWithoutContainerFails) {
    TemporaryDirectory::write(ipswFile(), "<Rilo><BIND/></Rilo>");
    const ToolResult result = run({"ipsw", "list"});
    EXPECT_EQ(result.status, 1);
    EXPECT_TRUE(contains(result.errors, "no <Rilo><MATCH> container")) << result.errors;
}

TEST_F(StoresRestoreToolTest, IpswListSaysWhichEntriesTheStoreSkips) {
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
    EXPECT_EQ(result.output, urlA + " -> " + a + "\n");
    EXPECT_TRUE(contains(result.errors, "\"/gone.ipsw\" is gone")) << result.errors;
    EXPECT_TRUE(contains(result.errors, "matched again to \"" + b + "\"")) << result.errors;
}

TEST_F(StoresRestoreToolTest, IpswCommandsRefuseAMissingConfigurationDirectory) {
    const std::string missing = directory.file("missing");
    const std::string a = firmware("a.ipsw");
    for (const std::vector<std::string>& arguments :
         {std::vector<std::string>{"ipsw", "list"}, std::vector<std::string>{"ipsw", "find", urlA},
          std::vector<std::string>{"ipsw", "add", urlA, a},
          std::vector<std::string>{"ipsw", "remove", urlA}}) {
        std::vector<std::string> full = arguments;
        full.push_back("--config-dir");
        full.push_back(missing);
        const ToolResult result = runTool(full);
        EXPECT_EQ(result.status, 1) << arguments[1];
        EXPECT_TRUE(contains(result.errors, missing + ": no such directory")) << result.errors;
    }
    EXPECT_FALSE(std::filesystem::exists(missing));
}

TEST_F(StoresRestoreToolTest, SubcommandIsRequired) {
    EXPECT_NE(runTool({"factory"}).status, 0);
    EXPECT_NE(runTool({"ipsw"}).status, 0);
    const ToolResult help = runTool({"--help"});
    EXPECT_TRUE(contains(help.output, "factory"));
    EXPECT_TRUE(contains(help.output, "ipsw"));
}

TEST_F(StoresRestoreToolTest, ChangesThatCannotBeWrittenAreReported) {
    const std::string a = firmware("a.ipsw");
    const std::string dir = directory.path();
    const int status = pallix::test::runWithReadOnlyDirectory(dir, [&] {
        const ToolResult factory = runTool({"factory", "add", "1", "A=1", "--config-dir", dir});
        const ToolResult ipsw = runTool({"ipsw", "add", urlA, a, "--config-dir", dir});
        return factory.status == 1 &&
               contains(factory.errors, "Factory.json: could not be written") && ipsw.status == 1 &&
               contains(ipsw.errors, "RestoreIpsw.xml: could not be written");
    });
    EXPECT_EQ(status, 0);
    EXPECT_FALSE(std::filesystem::exists(factoryFile()));
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
}
