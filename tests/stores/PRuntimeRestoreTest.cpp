#include "ReadOnlyDirectory.h"
#include "TemporaryDirectory.h"
#include "VirtualSlot.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <climits>
#include <csignal>
#include <cstdint>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

using pallix::test::TemporaryDirectory;
using pallix::test::virtualSlot;

namespace {

using CustomFind = bool (PRuntimeRestoreCustomFirmware::*)(
    const NString&, const PRuntimeRestoreCustomFirmware::Visitor&);
using CustomFindInto = bool (PRuntimeRestoreCustomFirmware::*)(const NString&, NString&);
using CustomFindText = NString (PRuntimeRestoreCustomFirmware::*)(const NString&);
using OtherFind = bool (PRuntimeRestoreOtherFirmware::*)(
    const NString&, const PRuntimeRestoreOtherFirmware::Visitor&);
using OtherFindInto = bool (PRuntimeRestoreOtherFirmware::*)(const NString&, NString&);
using OtherFindText = NString (PRuntimeRestoreOtherFirmware::*)(const NString&);

// Exposes the internal operations so that their slots can be named.
class CustomFirmwareProbe : public PRuntimeRestoreCustomFirmware {
public:
    using PRuntimeRestoreCustomFirmware::_read;
    using PRuntimeRestoreCustomFirmware::_write;
};

// Counts the calls that the store makes through its own virtual slots, and can stop the
// reload so that the table that an operation left in memory can be looked at.
class CountingCustomFirmware : public PRuntimeRestoreCustomFirmware {
public:
    int reads = 0;
    int writes = 0;
    bool reload = true;

protected:
    void _read() override {
        ++reads;
        if (reload) {
            PRuntimeRestoreCustomFirmware::_read();
        }
    }
    void _write() override {
        ++writes;
        PRuntimeRestoreCustomFirmware::_write();
    }
};

// Answers find(name) itself, to show that the two-argument forms go through that slot.
class FixedOtherFirmware : public PRuntimeRestoreOtherFirmware {
public:
    NString answer;
    int calls = 0;
    NString find(const NString&) override {
        ++calls;
        return answer;
    }
    using PRuntimeRestoreOtherFirmware::find;
};

struct Entry {
    std::string url;
    std::string local;
    bool operator==(const Entry& other) const { return url == other.url && local == other.local; }
};

std::ostream& operator<<(std::ostream& out, const Entry& entry) {
    return out << entry.url << " -> " << entry.local;
}

class RestoreStoreTest : public ::testing::Test {
protected:
    void SetUp() override { NApplication::setDirectoryConfig(NString(directory.path())); }

    std::string ipswFile() const { return directory.file("RestoreIpsw.xml"); }

    // A firmware file on disk, so that an entry pointing at it survives the reload.
    std::string firmware(const std::string& name) const {
        const std::string path = directory.file(name);
        TemporaryDirectory::write(path, "made-up firmware image " + name);
        return path;
    }

    void writeIpswFile(const std::vector<Entry>& entries) const {
        std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
                           "<Rilo>\n\t<MATCH>\n";
        for (const Entry& entry : entries) {
            text += "\t\t<MATCH URL=\"" + entry.url + "\" LOCAL=\"" + entry.local + "\" />\n";
        }
        text += "\t</MATCH>\n</Rilo>\n";
        TemporaryDirectory::write(ipswFile(), text);
    }

    // The entries of the file as they stand, read with pugixml.
    std::vector<Entry> fileEntries() const {
        pugi::xml_document document;
        std::vector<Entry> entries;
        if (!document.load_file(ipswFile().c_str())) {
            ADD_FAILURE() << ipswFile() << " does not load";
            return entries;
        }
        for (pugi::xml_node entry : document.child("Rilo").child("MATCH").children()) {
            entries.push_back(
                {entry.attribute("URL").as_string(), entry.attribute("LOCAL").as_string()});
        }
        return entries;
    }

    TemporaryDirectory directory{"pallix-restore"};
};

const char* const urlA = "https://updates.example.com/ipsw/iPhone15,2_17.1_21B80_Restore.ipsw";
const char* const urlB = "https://updates.example.com/ipsw/iPad13,18_16.6_20G75_Restore.ipsw";
const char* const urlC = "https://updates.example.com/ipsw/iPhone12,8_15.7_19H12_Restore.ipsw";

} // namespace

// ---------------------------------------------------------------------------------------------
// Slot order

TEST(RestoreSlots, RestoreComponentOperationsAreInTheirSlotOrder) {
    EXPECT_EQ(virtualSlot(&PRuntimeRestore::autoActivate), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestore::customFirmware), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestore::otherFirmware), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestore::restoreError), 6u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeRestore>);
}

TEST(RestoreSlots, AutoActivateOperationsAreInTheirSlotOrder) {
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreAutoActivate::exist), 3u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreAutoActivate::append), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreAutoActivate::remove), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreAutoActivate::find), 6u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeRestoreAutoActivate>);
}

TEST(RestoreSlots, CustomFirmwareOperationsAreInTheirSlotOrder) {
    EXPECT_EQ(virtualSlot(&CustomFirmwareProbe::_read), 3u);
    EXPECT_EQ(virtualSlot(&CustomFirmwareProbe::_write), 4u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreCustomFirmware::append), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreCustomFirmware::remove), 6u);
    EXPECT_EQ(virtualSlot(static_cast<CustomFind>(&PRuntimeRestoreCustomFirmware::find)), 7u);
    EXPECT_EQ(virtualSlot(static_cast<CustomFindInto>(&PRuntimeRestoreCustomFirmware::find)), 8u);
    EXPECT_EQ(virtualSlot(static_cast<CustomFindText>(&PRuntimeRestoreCustomFirmware::find)), 9u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeRestoreCustomFirmware>);
}

TEST(RestoreSlots, OtherFirmwareOperationsAreInTheirSlotOrder) {
    EXPECT_EQ(virtualSlot(&PRuntimeRestoreOtherFirmware::append), 3u);
    EXPECT_EQ(virtualSlot(static_cast<OtherFind>(&PRuntimeRestoreOtherFirmware::find)), 4u);
    EXPECT_EQ(virtualSlot(static_cast<OtherFindInto>(&PRuntimeRestoreOtherFirmware::find)), 5u);
    EXPECT_EQ(virtualSlot(static_cast<OtherFindText>(&PRuntimeRestoreOtherFirmware::find)), 6u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeRestoreOtherFirmware>);
}

// ---------------------------------------------------------------------------------------------
// The restore component

TEST_F(RestoreStoreTest, AccessorsHandOutTheOwnedPartsThemselves) {
    PRuntimeRestore restore;
    ASSERT_NE(restore.autoActivate(), nullptr);
    ASSERT_NE(restore.customFirmware(), nullptr);
    ASSERT_NE(restore.otherFirmware(), nullptr);
    ASSERT_NE(restore.restoreError(), nullptr);
    EXPECT_EQ(restore.autoActivate(), restore.autoActivate());
    EXPECT_EQ(restore.customFirmware(), restore.customFirmware());
    EXPECT_EQ(restore.otherFirmware(), restore.otherFirmware());
    EXPECT_EQ(restore.restoreError(), restore.restoreError());
    // Each part lies inside the component: owned by value, not allocated apart.
    const auto* begin = reinterpret_cast<const unsigned char*>(&restore);
    const auto* end = begin + sizeof(PRuntimeRestore);
    for (const void* part : {static_cast<const void*>(restore.autoActivate()),
                             static_cast<const void*>(restore.customFirmware()),
                             static_cast<const void*>(restore.otherFirmware()),
                             static_cast<const void*>(restore.restoreError())}) {
        const auto* at = static_cast<const unsigned char*>(part);
        EXPECT_TRUE(at >= begin && at < end);
    }
}

TEST_F(RestoreStoreTest, PartsAreLaidOutInConstructionOrder) {
    // Members are built in the order of their addresses and destroyed in the reverse one.
    PRuntimeRestore restore;
    const auto address = [](const void* part) { return reinterpret_cast<std::uintptr_t>(part); };
    EXPECT_LT(address(restore.autoActivate()), address(restore.customFirmware()));
    EXPECT_LT(address(restore.customFirmware()), address(restore.otherFirmware()));
    EXPECT_LT(address(restore.otherFirmware()), address(restore.restoreError()));
}

TEST_F(RestoreStoreTest, ConstructionReadsNothingAndWritesNothing) {
    writeIpswFile({{urlA, "/"}});
    {
        PRuntimeRestore restore;
        std::filesystem::remove(ipswFile());
        // Nothing was kept from the file at construction: the first answer comes from disk.
        EXPECT_EQ(restore.customFirmware()->find(NString(urlA)), NString());
    }
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory.path())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_TRUE(names.empty());
}

TEST_F(RestoreStoreTest, TheRootHandsOutOneRestoreComponent) {
    PRuntimeRestore* restore = PRuntime::getInstance()->restore();
    ASSERT_NE(restore, nullptr);
    EXPECT_EQ(PRuntime::getInstance()->restore(), restore);
    const std::string local = firmware("root.ipsw");
    restore->customFirmware()->append(NString(urlA), NString(local));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlA, local}}));
    PRuntime::freeInstance();
}

TEST_F(RestoreStoreTest, TheOwnedRestoreErrorTableExplainsErrorCodes) {
    PRuntimeRestore restore;
    PRuntimeRestoreError* table = restore.restoreError();
    ASSERT_TRUE(table->format(NString(PALLIX_SAMPLES_DIR "/restore-error.xml")));
    std::string description;
    table->find(-1, [&description](const PRuntimeInfoRestoreError& row) {
        description = row.describe().toStdString();
    });
    EXPECT_FALSE(description.empty());
    // The table belongs to this component: another one starts empty.
    PRuntimeRestore other;
    bool found = false;
    other.restoreError()->find(-1, [&found](const PRuntimeInfoRestoreError&) { found = true; });
    EXPECT_FALSE(found);
}

// ---------------------------------------------------------------------------------------------
// Auto-activation choices

TEST(RestoreAutoActivate, AppendTrueThenFalseLeavesFalse) {
    PRuntimeRestoreAutoActivate choices;
    choices.append(0x8030, true);
    choices.append(0x8030, false);
    bool activate = true;
    EXPECT_TRUE(choices.find(0x8030, activate));
    EXPECT_FALSE(activate);
}

TEST(RestoreAutoActivate, FindOnAnAbsentIdReturnsFalseAndLeavesTheOutArgument) {
    PRuntimeRestoreAutoActivate choices;
    choices.append(1, false);
    bool activate = true;
    EXPECT_FALSE(choices.find(2, activate));
    EXPECT_TRUE(activate);
    bool other = false;
    EXPECT_FALSE(choices.find(3, other));
    EXPECT_FALSE(other);
}

TEST(RestoreAutoActivate, ExistAppendAndRemove) {
    PRuntimeRestoreAutoActivate choices;
    EXPECT_FALSE(choices.exist(0));
    choices.append(0, true);
    choices.append(ULLONG_MAX, true);
    EXPECT_TRUE(choices.exist(0));
    EXPECT_TRUE(choices.exist(ULLONG_MAX));
    choices.remove(0);
    choices.remove(12345);
    EXPECT_FALSE(choices.exist(0));
    bool activate = false;
    EXPECT_TRUE(choices.find(ULLONG_MAX, activate));
    EXPECT_TRUE(activate);
}

class RemoveCountingAutoActivate : public PRuntimeRestoreAutoActivate {
public:
    std::vector<unsigned long long> removed;
    void remove(unsigned long long id) override {
        removed.push_back(id);
        PRuntimeRestoreAutoActivate::remove(id);
    }
};

TEST(RestoreAutoActivate, AppendRemovesThroughItsVirtualSlotFirst) {
    RemoveCountingAutoActivate choices;
    choices.append(5, true);
    choices.append(5, false);
    EXPECT_EQ(choices.removed, (std::vector<unsigned long long>{5, 5}));
}

TEST_F(RestoreStoreTest, AutoActivationIsMemoryOnly) {
    {
        PRuntimeRestore restore;
        restore.autoActivate()->append(7, true);
        restore.otherFirmware()->append(NString(directory.path()));
    }
    EXPECT_TRUE(std::filesystem::is_empty(directory.path()));
    PRuntimeRestore again;
    EXPECT_FALSE(again.autoActivate()->exist(7));
}

// ---------------------------------------------------------------------------------------------
// Custom firmware

TEST_F(RestoreStoreTest, EntryWhoseLocalFileIsMissingIsDroppedByTheReloadButStaysInTheFile) {
    PRuntimeRestoreCustomFirmware store;
    const std::string missing = directory.file("never-downloaded.ipsw");
    store.append(NString(urlA), NString(missing));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlA, missing}}));
    EXPECT_EQ(store.find(NString(urlA)), NString());
    // Finding writes nothing: the file keeps the entry until the next write.
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlA, missing}}));
    const std::string local = firmware("b.ipsw");
    store.append(NString(urlB), NString(local));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlB, local}}));
}

TEST_F(RestoreStoreTest, RemoveOfAnAbsentUrlRewritesTheFileAndDropsEntriesWhoseFileIsGone) {
    const std::string kept = firmware("kept.ipsw");
    writeIpswFile({{urlA, directory.file("gone.ipsw")}, {urlB, kept}});
    PRuntimeRestoreCustomFirmware store;
    store.remove(NString(urlC));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlB, kept}}));
}

TEST_F(RestoreStoreTest, RemoveWritesTheFileEvenWhenThereWasNone) {
    PRuntimeRestoreCustomFirmware store;
    store.remove(NString(urlC));
    ASSERT_TRUE(std::filesystem::exists(ipswFile()));
    EXPECT_TRUE(fileEntries().empty());
}

TEST_F(RestoreStoreTest, RemoveErasesThePresentUrl) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    PRuntimeRestoreCustomFirmware store;
    store.append(NString(urlA), NString(a));
    store.append(NString(urlB), NString(b));
    store.remove(NString(urlA));
    EXPECT_FALSE(store.find(NString(urlA), nullptr));
    EXPECT_EQ(store.find(NString(urlB)), NString(b));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlB, b}}));
}

TEST_F(RestoreStoreTest, OfTwoEntriesWithOneUrlTheFirstWhoseLocalFileExistsIsKept) {
    const std::string second = firmware("second.ipsw");
    const std::string third = firmware("third.ipsw");
    writeIpswFile({{urlA, directory.file("first-gone.ipsw")}, {urlA, second}, {urlA, third}});
    PRuntimeRestoreCustomFirmware store;
    EXPECT_EQ(store.find(NString(urlA)), NString(second));
}

TEST_F(RestoreStoreTest, OfTwoLiveEntriesWithOneUrlTheFirstIsKept) {
    const std::string first = firmware("first.ipsw");
    const std::string second = firmware("second.ipsw");
    writeIpswFile({{urlA, first}, {urlA, second}});
    PRuntimeRestoreCustomFirmware store;
    EXPECT_EQ(store.find(NString(urlA)), NString(first));
    store.remove(NString(urlC));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlA, first}}));
}

TEST_F(RestoreStoreTest, AppendReplacesTheLocalPathOfAUrl) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    PRuntimeRestoreCustomFirmware store;
    store.append(NString(urlA), NString(a));
    store.append(NString(urlA), NString(b));
    EXPECT_EQ(store.find(NString(urlA)), NString(b));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlA, b}}));
}

TEST_F(RestoreStoreTest, FileHasTheExactLayout) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    PRuntimeRestoreCustomFirmware store;
    store.append(NString("https://z.example.com/last.ipsw"), NString(a));
    store.append(NString("https://a.example.com/first.ipsw"), NString(b));

    pugi::xml_document document;
    ASSERT_TRUE(
        document.load_file(ipswFile().c_str(), pugi::parse_default | pugi::parse_declaration));
    pugi::xml_node declaration = document.first_child();
    ASSERT_EQ(declaration.type(), pugi::node_declaration);
    std::vector<std::pair<std::string, std::string>> declared;
    for (pugi::xml_attribute attribute : declaration.attributes()) {
        declared.emplace_back(attribute.name(), attribute.value());
    }
    EXPECT_EQ(declared, (std::vector<std::pair<std::string, std::string>>{
                            {"version", "1.0"}, {"encoding", "UTF-8"}, {"standalone", "no"}}));
    pugi::xml_node root = declaration.next_sibling();
    EXPECT_STREQ(root.name(), "Rilo");
    EXPECT_FALSE(root.next_sibling());
    pugi::xml_node container = root.first_child();
    EXPECT_STREQ(container.name(), "MATCH");
    EXPECT_FALSE(container.next_sibling());
    std::vector<std::string> seen;
    for (pugi::xml_node entry : container.children()) {
        EXPECT_STREQ(entry.name(), "MATCH");
        EXPECT_FALSE(entry.first_child());
        std::vector<std::string> names;
        for (pugi::xml_attribute attribute : entry.attributes()) {
            names.emplace_back(attribute.name());
        }
        EXPECT_EQ(names, (std::vector<std::string>{"URL", "LOCAL"}));
        seen.push_back(entry.attribute("URL").as_string());
    }
    // Entries in the byte order of their addresses.
    EXPECT_EQ(seen, (std::vector<std::string>{"https://a.example.com/first.ipsw",
                                              "https://z.example.com/last.ipsw"}));

    const std::string expected = "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
                                 "<Rilo>\n"
                                 "\t<MATCH>\n"
                                 "\t\t<MATCH URL=\"https://a.example.com/first.ipsw\" LOCAL=\"" +
                                 b +
                                 "\" />\n"
                                 "\t\t<MATCH URL=\"https://z.example.com/last.ipsw\" LOCAL=\"" +
                                 a +
                                 "\" />\n"
                                 "\t</MATCH>\n"
                                 "</Rilo>\n";
    EXPECT_EQ(TemporaryDirectory::read(ipswFile()), expected);
}

TEST_F(RestoreStoreTest, EveryFieldSurvivesARoundTripThroughTheFile) {
    const std::string local = firmware("Größe & <\"Ü\"> 'firmware'.ipsw");
    const std::string url = "https://example.com/ipsw?model=iPhone15,2&build=21B80&q=\"x\"<y>";
    {
        PRuntimeRestoreCustomFirmware store;
        store.append(NString(url), NString(local));
    }
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{url, local}}));
    PRuntimeRestoreCustomFirmware fresh;
    NString found;
    EXPECT_TRUE(fresh.find(NString(url), found));
    EXPECT_EQ(found.toStdString(), local);
}

TEST_F(RestoreStoreTest, EntryElementNamesPlayNoPartAndMissingAttributesReadEmpty) {
    const std::string local = firmware("any.ipsw");
    TemporaryDirectory::write(ipswFile(), "<?xml version=\"1.0\"?><Rilo><MATCH>"
                                          "<Item URL=\"" +
                                              std::string(urlA) + "\" LOCAL=\"" + local +
                                              "\"/>"
                                              "<Other LOCAL=\"" +
                                              local +
                                              "\"/>"
                                              "<Third URL=\"" +
                                              std::string(urlB) +
                                              "\"/>"
                                              "</MATCH></Rilo>");
    PRuntimeRestoreCustomFirmware store;
    EXPECT_EQ(store.find(NString(urlA)), NString(local));
    // The entry without an address is kept under the empty text.
    EXPECT_EQ(store.find(NString()), NString(local));
    // The entry without a local path points at nothing, so it is dropped.
    EXPECT_FALSE(store.find(NString(urlB), nullptr));
}

TEST_F(RestoreStoreTest, EmptyTextsAreAcceptedAndStored) {
    const std::string local = firmware("x.ipsw");
    PRuntimeRestoreCustomFirmware store;
    store.append(NString(), NString(local));
    EXPECT_EQ(store.find(NString()), NString(local));
    store.append(NString(urlA), NString());
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{"", local}, {urlA, ""}}));
    // An empty local path names nothing on disk, so the next reload drops it.
    EXPECT_FALSE(store.find(NString(urlA), nullptr));
}

TEST_F(RestoreStoreTest, LocalPathMayNameADirectory) {
    const std::string folder = directory.file("unpacked");
    std::filesystem::create_directory(folder);
    PRuntimeRestoreCustomFirmware store;
    store.append(NString(urlA), NString(folder));
    EXPECT_EQ(store.find(NString(urlA)), NString(folder));
}

TEST_F(RestoreStoreTest, ChangesByAnotherInstanceOrByHandAreSeenAtOnce) {
    const std::string a = firmware("a.ipsw");
    PRuntimeRestoreCustomFirmware first;
    PRuntimeRestoreCustomFirmware second;
    EXPECT_FALSE(second.find(NString(urlA), nullptr));
    first.append(NString(urlA), NString(a));
    EXPECT_EQ(second.find(NString(urlA)), NString(a));
    std::filesystem::remove(a);
    EXPECT_EQ(first.find(NString(urlA)), NString());
    writeIpswFile({{urlB, directory.path()}});
    EXPECT_EQ(second.find(NString(urlB)), NString(directory.path()));
    std::filesystem::remove(ipswFile());
    EXPECT_EQ(second.find(NString(urlB)), NString());
}

TEST_F(RestoreStoreTest, MalformedFileGivesAnEmptyTable) {
    TemporaryDirectory::write(ipswFile(), "<Rilo><MATCH><MATCH URL=\"a\" LOCAL=\"/\"></Rilo>");
    PRuntimeRestoreCustomFirmware store;
    EXPECT_FALSE(store.find(NString("a"), nullptr));
}

TEST_F(RestoreStoreTest, FileWithAnotherRootOrWithoutContainerGivesAnEmptyTable) {
    PRuntimeRestoreCustomFirmware store;
    TemporaryDirectory::write(ipswFile(),
                              "<Nevor><MATCH><MATCH URL=\"a\" LOCAL=\"/\"/></MATCH></Nevor>");
    EXPECT_FALSE(store.find(NString("a"), nullptr));
    TemporaryDirectory::write(ipswFile(),
                              "<Rilo><BIND><MATCH URL=\"a\" LOCAL=\"/\"/></BIND></Rilo>");
    EXPECT_FALSE(store.find(NString("a"), nullptr));
    TemporaryDirectory::write(ipswFile(),
                              "<Rilo><MATCH><MATCH URL=\"a\" LOCAL=\"/\"/></MATCH></Rilo>");
    EXPECT_TRUE(store.find(NString("a"), nullptr));
}

TEST_F(RestoreStoreTest, AppendAfterAMalformedFileReplacesIt) {
    TemporaryDirectory::write(ipswFile(), "not xml at all <");
    const std::string a = firmware("a.ipsw");
    PRuntimeRestoreCustomFirmware store;
    store.append(NString(urlA), NString(a));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlA, a}}));
}

TEST_F(RestoreStoreTest, FindWithCallbackCallsItWithTheLocalPath) {
    const std::string a = firmware("a.ipsw");
    PRuntimeRestoreCustomFirmware store;
    store.append(NString(urlA), NString(a));
    std::vector<std::string> calls;
    EXPECT_TRUE(store.find(
        NString(urlA), [&calls](const NString& local) { calls.push_back(local.toStdString()); }));
    EXPECT_EQ(calls, std::vector<std::string>{a});
    EXPECT_FALSE(store.find(
        NString(urlB), [&calls](const NString& local) { calls.push_back(local.toStdString()); }));
    EXPECT_EQ(calls.size(), 1u);
    // Without a callback the answer is the same.
    EXPECT_TRUE(store.find(NString(urlA), PRuntimeRestoreCustomFirmware::Visitor()));
}

TEST_F(RestoreStoreTest, FindCallbackMayCallBackIntoTheStore) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    PRuntimeRestoreCustomFirmware store;
    store.append(NString(urlA), NString(a));
    NString seen;
    EXPECT_TRUE(store.find(NString(urlA), [&](const NString& local) {
        // The lock is recursive; each of these reloads the table the caller is looking at.
        store.append(NString(urlB), NString(b));
        EXPECT_EQ(store.find(NString(urlB)), NString(b));
        store.remove(NString(urlA));
        seen = local;
    }));
    EXPECT_EQ(seen, NString(a));
    EXPECT_EQ(fileEntries(), (std::vector<Entry>{{urlB, b}}));
}

TEST_F(RestoreStoreTest, FindIntoAssignsOnlyWhenFound) {
    const std::string a = firmware("a.ipsw");
    PRuntimeRestoreCustomFirmware store;
    store.append(NString(urlA), NString(a));
    NString local("untouched");
    EXPECT_FALSE(store.find(NString(urlB), local));
    EXPECT_EQ(local, NString("untouched"));
    EXPECT_TRUE(store.find(NString(urlA), local));
    EXPECT_EQ(local, NString(a));
}

TEST_F(RestoreStoreTest, EveryCustomFirmwareOperationReloadsThroughItsVirtualSlot) {
    CountingCustomFirmware store;
    const std::string a = firmware("a.ipsw");
    store.append(NString(urlA), NString(a));
    EXPECT_EQ(store.reads, 1);
    EXPECT_EQ(store.writes, 1);
    store.find(NString(urlA));
    NString local;
    store.find(NString(urlA), local);
    store.find(NString(urlA), nullptr);
    EXPECT_EQ(store.reads, 4);
    EXPECT_EQ(store.writes, 1);
    store.remove(NString(urlB));
    EXPECT_EQ(store.reads, 5);
    EXPECT_EQ(store.writes, 2);
}

TEST_F(RestoreStoreTest, MissingConfigurationDirectoryKeepsTheChangeInMemoryUntilTheNextReload) {
    const std::string missing = directory.file("no/such/directory");
    NApplication::setDirectoryConfig(NString(missing));
    const std::string a = firmware("a.ipsw");
    CountingCustomFirmware store;
    store.append(NString(urlA), NString(a));
    EXPECT_FALSE(std::filesystem::exists(missing));
    store.reload = false;
    EXPECT_EQ(store.find(NString(urlA)), NString(a));
    store.reload = true;
    EXPECT_EQ(store.find(NString(urlA)), NString());
}

TEST_F(RestoreStoreTest, ReadOnlyDirectoryAndFileKeepTheFileAndTheChangeInMemory) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    writeIpswFile({{urlA, a}});
    const std::string original = TemporaryDirectory::read(ipswFile());
    // Neither the directory nor the file may be written: no save can happen at all.
    ASSERT_EQ(::chmod(ipswFile().c_str(), 0444), 0);
    const int status = pallix::test::runWithReadOnlyDirectory(directory.path(), [&] {
        CountingCustomFirmware store;
        store.append(NString(urlB), NString(b));
        store.reload = false;
        const bool inMemory = store.find(NString(urlB)) == NString(b);
        store.reload = true;
        // The file could be neither replaced nor deleted: the next reload finds it as it was.
        const bool fileKept =
            store.find(NString(urlA)) == NString(a) && !store.find(NString(urlB), nullptr);
        return inMemory && fileKept;
    });
    EXPECT_EQ(status, 0);
    EXPECT_EQ(TemporaryDirectory::read(ipswFile()), original);
}

TEST_F(RestoreStoreTest, AFailedSaveLeavesNoFile) {
    const std::string a = firmware("a.ipsw");
    const std::string b = firmware("b.ipsw");
    writeIpswFile({{urlA, a}});
    // A child whose file-size limit is too small for the document cannot save it, while it can
    // still delete the old file.
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        std::signal(SIGXFSZ, SIG_IGN);
        const struct rlimit limit { 16, 16 };
        ::setrlimit(RLIMIT_FSIZE, &limit);
        CountingCustomFirmware store;
        store.append(NString(urlB), NString(b));
        store.reload = false;
        const bool inMemory =
            store.find(NString(urlA)) == NString(a) && store.find(NString(urlB)) == NString(b);
        ::_exit(inMemory ? 0 : 1);
    }
    ASSERT_GT(child, 0);
    int status = 0;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status));
    EXPECT_EQ(WEXITSTATUS(status), 0);
    EXPECT_FALSE(std::filesystem::exists(ipswFile()));
    PRuntimeRestoreCustomFirmware store;
    EXPECT_FALSE(store.find(NString(urlA), nullptr));
}

// ---------------------------------------------------------------------------------------------
// Other firmware directories

TEST_F(RestoreStoreTest, OtherFirmwareFindsTheFileUnderTheFirstDirectoryThatHasIt) {
    const std::string a = directory.file("A");
    const std::string b = directory.file("B");
    std::filesystem::create_directory(a);
    std::filesystem::create_directory(b);
    TemporaryDirectory::write(a + "/iPhone.ipsw", "a");
    TemporaryDirectory::write(b + "/iPhone.ipsw", "b");
    TemporaryDirectory::write(b + "/iPad.ipsw", "b");
    PRuntimeRestoreOtherFirmware other;
    other.append(NString(a));
    other.append(NString(b));
    EXPECT_EQ(other.find(NString("iPhone.ipsw")), NString(a + "/iPhone.ipsw"));
    EXPECT_EQ(other.find(NString("iPad.ipsw")), NString(b + "/iPad.ipsw"));
    EXPECT_EQ(other.find(NString("iPod.ipsw")), NString());
}

TEST(RestoreOtherFirmware, EmptyListFindsNothing) {
    PRuntimeRestoreOtherFirmware other;
    EXPECT_EQ(other.find(NString("iPhone.ipsw")), NString());
    NString path("untouched");
    EXPECT_FALSE(other.find(NString("iPhone.ipsw"), path));
    EXPECT_EQ(path, NString("untouched"));
    int calls = 0;
    EXPECT_FALSE(other.find(NString("iPhone.ipsw"), [&calls](const NString&) { ++calls; }));
    EXPECT_EQ(calls, 0);
}

TEST_F(RestoreStoreTest, OtherFirmwareTwoArgumentFormsReportTheFoundPath) {
    TemporaryDirectory::write(directory.file("fw.ipsw"), "x");
    PRuntimeRestoreOtherFirmware other;
    other.append(NString(directory.path()));
    NString path;
    EXPECT_TRUE(other.find(NString("fw.ipsw"), path));
    EXPECT_EQ(path.toStdString(), directory.file("fw.ipsw"));
    std::vector<std::string> calls;
    EXPECT_TRUE(other.find(NString("fw.ipsw"), [&calls](const NString& found) {
        calls.push_back(found.toStdString());
    }));
    EXPECT_EQ(calls, std::vector<std::string>{directory.file("fw.ipsw")});
    EXPECT_TRUE(other.find(NString("fw.ipsw"), PRuntimeRestoreOtherFirmware::Visitor()));
}

TEST_F(RestoreStoreTest, OtherFirmwareKeepsDuplicatesAndEmptyDirectoriesAndSkipsNonFiles) {
    std::filesystem::create_directory(directory.file("sub"));
    std::filesystem::create_directory(directory.file("sub/fw.ipsw"));
    TemporaryDirectory::write(directory.file("fw.ipsw"), "x");
    PRuntimeRestoreOtherFirmware other;
    other.append(NString());
    other.append(NString(directory.file("sub")));
    other.append(NString(directory.file("sub")));
    EXPECT_EQ(other.find(NString("fw.ipsw")), NString());
    other.append(NString(directory.path()));
    EXPECT_EQ(other.find(NString("fw.ipsw")), NString(directory.file("fw.ipsw")));
}

TEST_F(RestoreStoreTest, OtherFirmwareSeesFilesAsTheyAreNow) {
    PRuntimeRestoreOtherFirmware other;
    other.append(NString(directory.path()));
    EXPECT_EQ(other.find(NString("late.ipsw")), NString());
    TemporaryDirectory::write(directory.file("late.ipsw"), "x");
    EXPECT_EQ(other.find(NString("late.ipsw")), NString(directory.file("late.ipsw")));
}

TEST(RestoreOtherFirmware, TwoArgumentFormsGoThroughTheOneArgumentSlot) {
    FixedOtherFirmware other;
    other.answer = NString("/Volumes/Firmware/iPhone.ipsw");
    NString path;
    EXPECT_TRUE(other.find(NString("anything"), path));
    EXPECT_EQ(path, other.answer);
    NString seen;
    EXPECT_TRUE(other.find(NString("anything"), [&seen](const NString& found) { seen = found; }));
    EXPECT_EQ(seen, other.answer);
    other.answer = NString();
    EXPECT_FALSE(other.find(NString("anything"), path));
    EXPECT_EQ(other.calls, 3);
}

// ---------------------------------------------------------------------------------------------
// Every match at once

TEST_F(RestoreStoreTest, TraverseHandsOutEveryMatchByAddressAndSkipsGoneFiles) {
    const std::string first = firmware("a.ipsw");
    const std::string second = firmware("b.ipsw");
    writeIpswFile({{urlB, second}, {urlA, first}, {urlC, directory.file("gone.ipsw")}});
    PRuntimeRestoreCustomFirmware store;
    std::vector<Entry> seen;
    store.traverse([&seen](const NString& url, const NString& local) {
        seen.push_back({url.toStdString(), local.toStdString()});
    });
    // By address, as the store keeps them; the entry whose file has gone is not among them.
    const std::vector<Entry> expected{{urlB, second}, {urlA, first}};
    std::vector<Entry> sorted = expected;
    std::sort(sorted.begin(), sorted.end(),
              [](const Entry& a, const Entry& b) { return a.url < b.url; });
    EXPECT_EQ(seen, sorted);
}

TEST_F(RestoreStoreTest, TraverseReadsTheFileAgainAndLetsTheVisitorUseTheStore) {
    PRuntimeRestoreCustomFirmware store;
    int visits = 0;
    store.traverse([&visits](const NString&, const NString&) { ++visits; });
    EXPECT_EQ(visits, 0);
    const std::string local = firmware("a.ipsw");
    writeIpswFile({{urlA, local}});
    store.traverse([&](const NString& url, const NString&) {
        ++visits;
        EXPECT_EQ(store.find(url).toStdString(), local);
    });
    EXPECT_EQ(visits, 1);
}
