#include "ReadOnlyDirectory.h"
#include "TemporaryDirectory.h"
#include "VirtualSlot.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <climits>
#include <map>
#include <string>
#include <utility>
#include <vector>

using pallix::test::TemporaryDirectory;
using pallix::test::virtualSlot;

namespace {

using Json = nlohmann::ordered_json;
using Devices = std::map<unsigned long long, NDeviceInfoFactory>;

NDeviceInfoFactory record(const std::vector<std::pair<std::string, std::string>>& values) {
    NDeviceInfoFactory info;
    for (const auto& [key, value] : values) {
        info.append(NString(key), NByteArray(value));
    }
    return info;
}

Devices contents(PRuntimeFactory& store) {
    Devices devices;
    store.traverse([&devices](unsigned long long id, const NDeviceInfoFactory& info) {
        devices.emplace(id, info);
    });
    return devices;
}

std::vector<unsigned long long> ids(PRuntimeFactory& store) {
    std::vector<unsigned long long> result;
    store.traverse(
        [&result](unsigned long long id, const NDeviceInfoFactory&) { result.push_back(id); });
    return result;
}

// The text of a factory file whose members have the given names, built with the framework's
// own JSON object so that byte values are encoded as the store expects them.
std::string factoryText(const std::vector<std::pair<std::string, NDeviceInfoFactory>>& members) {
    NJsonObject document;
    for (const auto& [name, info] : members) {
        NJsonObject values;
        info.traverse(
            [&values](const NString& key, const NByteArray& value) { values.append(key, value); });
        document.append(NString(name), values);
    }
    return document.toString().toStdString();
}

std::vector<std::string> memberNames(const Json& object) {
    std::vector<std::string> names;
    for (const auto& member : object.items()) {
        names.push_back(member.key());
    }
    return names;
}

// Exposes the internal operations so that their slots can be named.
class FactoryProbe : public PRuntimeFactory {
public:
    using PRuntimeFactory::_read;
    using PRuntimeFactory::_write;
};

// Counts the calls that the store makes through its own virtual slots.
class CountingFactory : public PRuntimeFactory {
public:
    int reads = 0;
    int writes = 0;
    int initializes = 0;

protected:
    void _read() override {
        ++reads;
        PRuntimeFactory::_read();
    }
    void _write() override {
        ++writes;
        PRuntimeFactory::_write();
    }

public:
    void initialize() override {
        ++initializes;
        PRuntimeFactory::initialize();
    }
};

class FactoryStoreTest : public ::testing::Test {
protected:
    void SetUp() override { NApplication::setDirectoryConfig(NString(directory.path())); }

    std::string factoryFile() const { return directory.file("Factory.json"); }
    void writeFactoryFile(const std::string& text) const {
        TemporaryDirectory::write(factoryFile(), text);
    }
    Json readFactoryFile() const {
        return Json::parse(TemporaryDirectory::read(factoryFile()), nullptr, false);
    }

    TemporaryDirectory directory{"pallix-factory"};
};

} // namespace

TEST(FactoryStoreSlots, VirtualOperationsAreInTheirSlotOrder) {
    EXPECT_EQ(virtualSlot(&FactoryProbe::_read), 3u);
    EXPECT_EQ(virtualSlot(&FactoryProbe::_write), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeFactory::initialize), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeFactory::empty), 6u);
    EXPECT_EQ(virtualSlot(&PRuntimeFactory::exist), 7u);
    EXPECT_EQ(virtualSlot(&PRuntimeFactory::append), 8u);
    EXPECT_EQ(virtualSlot(&PRuntimeFactory::find), 9u);
    EXPECT_EQ(virtualSlot(&PRuntimeFactory::remove), 10u);
    EXPECT_EQ(virtualSlot(&PRuntimeFactory::traverse), 11u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeFactory>);
}

TEST_F(FactoryStoreTest, DeviceIdIsWrittenAsSixteenUpperCaseHexadecimalDigits) {
    PRuntimeFactory store;
    store.append(0x1A2B, record({{"SerialNumber", "F2LXK0QJHG7F"}}));
    const Json file = readFactoryFile();
    ASSERT_TRUE(file.is_object());
    EXPECT_EQ(memberNames(file), std::vector<std::string>{"0000000000001A2B"});
}

TEST_F(FactoryStoreTest, LowerCaseMemberNameIsTheSameDeviceAndIsRenamedAtTheNextWrite) {
    writeFactoryFile(factoryText({{"1a2b", record({{"ModelNumber", "MQ3D2"}})}}));
    PRuntimeFactory store;
    EXPECT_TRUE(store.find(0x1A2B));
    store.append(0x77, record({{"ModelNumber", "MLL82"}}));
    const Json file = readFactoryFile();
    EXPECT_EQ(memberNames(file),
              (std::vector<std::string>{"0000000000000077", "0000000000001A2B"}));
}

TEST_F(FactoryStoreTest, MemberNamedWithSixteenZeroDigitsIsDropped) {
    writeFactoryFile(factoryText({{"0000000000000000", record({{"Region", "LL/A"}})},
                                  {"00000000000000A1", record({{"Region", "ZP/A"}})}}));
    PRuntimeFactory store;
    EXPECT_FALSE(store.find(0));
    EXPECT_EQ(ids(store), std::vector<unsigned long long>{0xA1});
}

TEST_F(FactoryStoreTest, MemberWhoseNameIsNotHexadecimalIsDropped) {
    writeFactoryFile(factoryText({{"not-a-device", record({{"Region", "LL/A"}})},
                                  {"serial", record({{"Region", "LL/A"}})},
                                  {"00000000000000B2", record({{"Region", "B/A"}})}}));
    PRuntimeFactory store;
    EXPECT_EQ(ids(store), std::vector<unsigned long long>{0xB2});
}

TEST_F(FactoryStoreTest, MemberNamesAreParsedLikeStrtoull) {
    writeFactoryFile(factoryText({{"0x1f", record({{"k", "prefix"}})},
                                  {"  2E", record({{"k", "space"}})},
                                  {"3Dzz", record({{"k", "stops"}})},
                                  {"1FFFFFFFFFFFFFFFFF", record({{"k", "overflow"}})},
                                  {"de-vice", record({{"k", "prefix digits"}})}}));
    PRuntimeFactory store;
    const Devices devices = contents(store);
    const Devices expected{{0x1F, record({{"k", "prefix"}})},
                           {0x2E, record({{"k", "space"}})},
                           {0x3D, record({{"k", "stops"}})},
                           {ULLONG_MAX, record({{"k", "overflow"}})},
                           {0xDE, record({{"k", "prefix digits"}})}};
    EXPECT_EQ(devices, expected);
}

TEST_F(FactoryStoreTest, MemberWhoseValueIsNotAnObjectIsDropped) {
    writeFactoryFile(R"({"0000000000000001":"text","0000000000000002":[1,2],)"
                     R"("0000000000000003":7,"0000000000000004":null,)"
                     R"("0000000000000005":{"Color":"Z29sZA=="}})");
    PRuntimeFactory store;
    const Devices expected{{5, record({{"Color", "gold"}})}};
    EXPECT_EQ(contents(store), expected);
}

TEST_F(FactoryStoreTest, InnerObjectWithoutMembersIsDropped) {
    writeFactoryFile(R"({"0000000000000001":{},"0000000000000002":{"Color":"Z29sZA=="}})");
    PRuntimeFactory store;
    EXPECT_FALSE(store.find(1));
    EXPECT_TRUE(store.find(2));
}

TEST_F(FactoryStoreTest, OfTwoNamesForOneDeviceTheFirstInTheFileWins) {
    writeFactoryFile(factoryText({{"00000000000000c4", record({{"Color", "first"}})},
                                  {"00000000000000C4", record({{"Color", "second"}})}}));
    PRuntimeFactory store;
    const Devices expected{{0xC4, record({{"Color", "first"}})}};
    EXPECT_EQ(contents(store), expected);
}

TEST_F(FactoryStoreTest, AppendOfAnExistingIdReplacesTheWholeRecord) {
    PRuntimeFactory store;
    store.append(9, record({{"SerialNumber", "C02XK"}, {"ModelNumber", "A2338"}}));
    store.append(9, record({{"Region", "CH/A"}}));
    const Devices expected{{9, record({{"Region", "CH/A"}})}};
    EXPECT_EQ(contents(store), expected);
    PRuntimeFactory reloaded;
    EXPECT_EQ(contents(reloaded), expected);
}

TEST_F(FactoryStoreTest, RemoveOfAnAbsentIdStillRewritesTheFile) {
    writeFactoryFile(factoryText({{"1a2b", record({{"ModelNumber", "MQ3D2"}})}}));
    PRuntimeFactory store;
    store.remove(0xFFFF);
    // The rewrite shows in the member name, which the store always writes in upper case.
    EXPECT_EQ(memberNames(readFactoryFile()), std::vector<std::string>{"0000000000001A2B"});
}

TEST_F(FactoryStoreTest, RemoveOfAnAbsentIdWritesAnEmptyObjectWhenThereWasNoFile) {
    PRuntimeFactory store;
    store.remove(5);
    ASSERT_TRUE(NFileSystem::file::exist(NString(factoryFile())));
    EXPECT_EQ(TemporaryDirectory::read(factoryFile()), "{}");
}

TEST_F(FactoryStoreTest, RemoveErasesThePresentDeviceFromMemoryAndFile) {
    PRuntimeFactory store;
    store.append(1, record({{"a", "1"}}));
    store.append(2, record({{"b", "2"}}));
    store.remove(1);
    EXPECT_FALSE(store.find(1));
    EXPECT_TRUE(store.find(2));
    EXPECT_EQ(memberNames(readFactoryFile()), std::vector<std::string>{"0000000000000002"});
}

TEST_F(FactoryStoreTest, MissingFileGivesAnEmptyStore) {
    PRuntimeFactory store;
    EXPECT_FALSE(store.find(0x1A2B));
    EXPECT_TRUE(store.empty());
    EXPECT_FALSE(store.exist());
    EXPECT_FALSE(NFileSystem::file::exist(NString(factoryFile())));
}

TEST_F(FactoryStoreTest, EmptyAndExistFollowTheContents) {
    PRuntimeFactory store;
    store.append(3, record({{"a", "b"}}));
    EXPECT_FALSE(store.empty());
    EXPECT_TRUE(store.exist());
    store.remove(3);
    EXPECT_TRUE(store.empty());
    EXPECT_FALSE(store.exist());
}

TEST_F(FactoryStoreTest, NotLoadedAtConstructionButAtTheFirstOperation) {
    PRuntimeFactory store;
    writeFactoryFile(factoryText({{"0000000000000042", record({{"a", "b"}})}}));
    EXPECT_TRUE(store.find(0x42));
}

TEST_F(FactoryStoreTest, LoadedOnceOnly) {
    writeFactoryFile(factoryText({{"0000000000000042", record({{"a", "b"}})}}));
    PRuntimeFactory store;
    EXPECT_TRUE(store.exist());
    writeFactoryFile(factoryText({{"0000000000000043", record({{"a", "b"}})}}));
    EXPECT_TRUE(store.find(0x42));
    EXPECT_FALSE(store.find(0x43));
}

TEST_F(FactoryStoreTest, ALoadThatFindsNothingIsNotRetried) {
    PRuntimeFactory store;
    EXPECT_TRUE(store.empty());
    writeFactoryFile(factoryText({{"0000000000000042", record({{"a", "b"}})}}));
    EXPECT_FALSE(store.find(0x42));
    EXPECT_TRUE(store.empty());
}

TEST_F(FactoryStoreTest, ExplicitInitializeLoadsAndLaterCallsDoNothing) {
    writeFactoryFile(factoryText({{"0000000000000042", record({{"a", "b"}})}}));
    CountingFactory store;
    store.initialize();
    EXPECT_EQ(store.reads, 1);
    store.initialize();
    store.empty();
    store.find(0x42);
    EXPECT_EQ(store.reads, 1);
    EXPECT_TRUE(store.find(0x42));
}

TEST_F(FactoryStoreTest, OperationsGoThroughTheVirtualSlots) {
    CountingFactory store;
    EXPECT_TRUE(store.empty());
    EXPECT_EQ(store.initializes, 1);
    EXPECT_EQ(store.reads, 1);
    EXPECT_EQ(store.writes, 0);
    store.exist();
    store.find(1);
    store.traverse(nullptr);
    EXPECT_EQ(store.initializes, 4);
    EXPECT_EQ(store.writes, 0);
    store.append(1, record({{"a", "b"}}));
    EXPECT_EQ(store.writes, 1);
    store.remove(1);
    store.remove(1);
    EXPECT_EQ(store.writes, 3);
    EXPECT_EQ(store.initializes, 7);
    EXPECT_EQ(store.reads, 1);
}

TEST_F(FactoryStoreTest, EveryFieldSurvivesARoundTripThroughTheFile) {
    const std::string binary("\x00\x01\xFF\xFE\x7F\"\\\n", 8);
    const Devices written{
        {0x1, record({{"SerialNumber", "DNPXK2ABHG7F"}, {"ModelNumber", "MQ3D2LL/A"}})},
        {0x8101, record({{"Binary", binary}, {"Empty", ""}, {"Unicode", "Größe – 大小"}})},
        {0x00008030001E2D3A, record({{"Key with \"quotes\" and \\", "value"}})},
        {ULLONG_MAX, record({{"Last", "device"}})}};
    {
        PRuntimeFactory store;
        for (const auto& [id, info] : written) {
            store.append(id, info);
        }
    }
    PRuntimeFactory reloaded;
    const Devices read = contents(reloaded);
    EXPECT_EQ(read, written);
    // Values come back in the order in which the record held them.
    std::vector<std::string> keys;
    read.at(0x8101).traverse(
        [&keys](const NString& key, const NByteArray&) { keys.push_back(key.toStdString()); });
    EXPECT_EQ(keys, (std::vector<std::string>{"Binary", "Empty", "Unicode"}));
    EXPECT_EQ(read.at(0x8101).value("Binary").toStdString(), binary);
}

TEST_F(FactoryStoreTest, FileHoldsDevicesInAscendingIdOrderWithTheirValuesInRecordOrder) {
    PRuntimeFactory store;
    store.append(0x30, record({{"Zeta", "1"}, {"Alpha", "2"}, {"Mid", "3"}}));
    store.append(0x2, record({{"One", "1"}}));
    store.append(0x1FFFFFFFFFFFFFFF, record({{"Two", "2"}}));
    const Json file = readFactoryFile();
    ASSERT_TRUE(file.is_object());
    EXPECT_EQ(memberNames(file), (std::vector<std::string>{"0000000000000002", "0000000000000030",
                                                           "1FFFFFFFFFFFFFFF"}));
    EXPECT_EQ(memberNames(file.at("0000000000000030")),
              (std::vector<std::string>{"Zeta", "Alpha", "Mid"}));
    const NJsonObject framework(NByteArray(TemporaryDirectory::read(factoryFile())));
    EXPECT_EQ(framework.toObject("0000000000000030").toBytes("Alpha").toStdString(), "2");
}

TEST_F(FactoryStoreTest, EmptyRecordIsKeptInMemoryButNotWritten) {
    PRuntimeFactory store;
    store.append(7, NDeviceInfoFactory());
    store.append(8, record({{"a", "b"}}));
    EXPECT_TRUE(store.find(7));
    EXPECT_EQ(ids(store), (std::vector<unsigned long long>{7, 8}));
    EXPECT_EQ(memberNames(readFactoryFile()), std::vector<std::string>{"0000000000000008"});
    PRuntimeFactory reloaded;
    EXPECT_FALSE(reloaded.find(7));
}

TEST_F(FactoryStoreTest, DeviceZeroIsKeptInMemoryWrittenButNotReadBack) {
    PRuntimeFactory store;
    store.append(0, record({{"a", "b"}}));
    EXPECT_TRUE(store.find(0));
    EXPECT_EQ(memberNames(readFactoryFile()), std::vector<std::string>{"0000000000000000"});
    PRuntimeFactory reloaded;
    EXPECT_FALSE(reloaded.find(0));
    EXPECT_TRUE(reloaded.empty());
}

TEST_F(FactoryStoreTest, MalformedJsonGivesAnEmptyStore) {
    writeFactoryFile(R"({"0000000000000001":{"a":"Yg=="})");
    PRuntimeFactory store;
    EXPECT_TRUE(store.empty());
}

TEST_F(FactoryStoreTest, TopLevelThatIsNotAnObjectGivesAnEmptyStore) {
    writeFactoryFile(R"([{"0000000000000001":{"a":"Yg=="}}])");
    PRuntimeFactory store;
    EXPECT_TRUE(store.empty());
}

TEST_F(FactoryStoreTest, ValueThatIsNotByteTextReadsAsEmptyBytes) {
    writeFactoryFile(R"({"0000000000000001":{"Number":12,"Text":"Yg=="}})");
    PRuntimeFactory store;
    const Devices devices = contents(store);
    ASSERT_EQ(devices.count(1), 1u);
    EXPECT_EQ(devices.at(1), record({{"Number", ""}, {"Text", "b"}}));
}

TEST_F(FactoryStoreTest, TraverseOnAnEmptyStoreNeverCallsBack) {
    PRuntimeFactory store;
    int calls = 0;
    store.traverse([&calls](unsigned long long, const NDeviceInfoFactory&) { ++calls; });
    EXPECT_EQ(calls, 0);
}

TEST_F(FactoryStoreTest, TraverseWithoutCallbackStillLoads) {
    writeFactoryFile(factoryText({{"0000000000000042", record({{"a", "b"}})}}));
    CountingFactory store;
    store.traverse(nullptr);
    EXPECT_EQ(store.reads, 1);
}

TEST_F(FactoryStoreTest, TraverseCallbackMayCallBackIntoTheStore) {
    PRuntimeFactory store;
    store.append(1, record({{"a", "1"}}));
    store.append(2, record({{"a", "2"}}));
    std::vector<unsigned long long> seen;
    store.traverse([&](unsigned long long id, const NDeviceInfoFactory& info) {
        seen.push_back(id);
        // Runs outside the lock: every operation is allowed, and the walk goes on over the
        // copy taken before it started.
        EXPECT_TRUE(store.find(id));
        store.remove(id);
        store.append(id + 100, info);
        EXPECT_FALSE(store.empty());
    });
    EXPECT_EQ(seen, (std::vector<unsigned long long>{1, 2}));
    EXPECT_EQ(ids(store), (std::vector<unsigned long long>{101, 102}));
    PRuntimeFactory reloaded;
    EXPECT_EQ(ids(reloaded), (std::vector<unsigned long long>{101, 102}));
}

TEST_F(FactoryStoreTest, TraverseHandsOutACopy) {
    PRuntimeFactory store;
    store.append(1, record({{"a", "1"}}));
    const NDeviceInfoFactory* handed = nullptr;
    store.traverse([&](unsigned long long, const NDeviceInfoFactory& info) {
        handed = &info;
        store.append(1, record({{"a", "changed"}}));
        EXPECT_EQ(info, record({{"a", "1"}}));
    });
    EXPECT_NE(handed, nullptr);
}

TEST_F(FactoryStoreTest, MissingConfigurationDirectoryKeepsTheChangeInMemory) {
    const std::string missing = directory.file("does/not/exist");
    NApplication::setDirectoryConfig(NString(missing));
    PRuntimeFactory store;
    store.append(0x10, record({{"a", "b"}}));
    EXPECT_TRUE(store.find(0x10));
    store.remove(0x11);
    EXPECT_EQ(ids(store), std::vector<unsigned long long>{0x10});
    EXPECT_FALSE(NFileSystem::path::exist(NString(missing)));
}

TEST_F(FactoryStoreTest, ReadOnlyDirectoryAndFileKeepTheChangeInMemoryAndTheFileAsItWas) {
    const std::string original = factoryText({{"0000000000000001", record({{"a", "b"}})}});
    writeFactoryFile(original);
    // Neither the directory nor the file may be written: no save can happen at all.
    ASSERT_EQ(::chmod(factoryFile().c_str(), 0444), 0);
    const int status = pallix::test::runWithReadOnlyDirectory(directory.path(), [] {
        PRuntimeFactory store;
        store.append(2, record({{"c", "d"}}));
        store.remove(1);
        return !store.find(1) && store.find(2) && ids(store) == std::vector<unsigned long long>{2};
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(TemporaryDirectory::read(factoryFile()), original);
}

TEST_F(FactoryStoreTest, TheRootHandsOutOneFactoryStoreOverTheConfigurationDirectory) {
    PRuntimeFactory* store = PRuntime::getInstance()->factory();
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(PRuntime::getInstance()->factory(), store);
    store->append(0xABC, record({{"a", "b"}}));
    EXPECT_EQ(memberNames(readFactoryFile()), std::vector<std::string>{"0000000000000ABC"});
    PRuntime::freeInstance();
}
