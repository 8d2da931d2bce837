#include "NotifyPortbindTestSupport.h"
#include "VirtualSlot.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sys/resource.h>
#include <sys/stat.h>

#include <climits>
#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using pallix::test::ConfigDirectory;
using pallix::test::fileExists;
using pallix::test::makeItem;
using pallix::test::TemporaryDirectory;
using pallix::test::Unprivileged;
using pallix::test::virtualSlot;

namespace {

// Gives the tests a name for the internal operations and counts the writes.
class NotifyProbe : public PRuntimeNotify {
public:
    using PRuntimeNotify::_read;
    using PRuntimeNotify::_read_old;
    using PRuntimeNotify::_write;
};

class CountingNotify : public PRuntimeNotify {
public:
    int writes() const { return m_writes; }

protected:
    void _write() const override {
        ++m_writes;
        PRuntimeNotify::_write();
    }

private:
    mutable int m_writes = 0;
};

using Entries = std::vector<std::pair<unsigned long long, PRuntimeNotifyItem>>;

Entries entriesOf(const PRuntimeNotify& store) {
    Entries entries;
    store.traverse([&](unsigned long long id, const PRuntimeNotifyItem& item) {
        entries.emplace_back(id, item);
    });
    return entries;
}

std::vector<unsigned long long> idsOf(const PRuntimeNotify& store) {
    std::vector<unsigned long long> ids;
    for (const auto& entry : entriesOf(store)) {
        ids.push_back(entry.first);
    }
    return ids;
}

std::string itemXml(unsigned long long id, const std::string& title,
                    const std::string& extra = "") {
    return "<Item><ID VALUE=\"" + std::to_string(id) + "\"/><Title VALUE=\"" + title + "\"/>" +
           extra + "</Item>";
}

std::string notifyXml(const std::string& items) {
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Nevor>\n<Notify>\n" + items +
           "</Notify>\n</Nevor>\n";
}

std::string oldItemXml(unsigned long long id, const std::string& title) {
    return "<?xml version=\"1.0\"?>\n<ROOT><ID VALUE=\"" + std::to_string(id) +
           "\"/><Title VALUE=\"" + title + "\"/></ROOT>\n";
}

class NotifyStoreTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }

    std::string notifyPath() const { return config.file("/notify.xml"); }
    std::string oldDirectory() const { return config.file("/Notify"); }
    std::string readNotify() const { return TemporaryDirectory::read(notifyPath()); }
    void writeNotify(const std::string& text) const {
        TemporaryDirectory::write(notifyPath(), text);
    }
    void makeOldDirectory() const { ::mkdir(oldDirectory().c_str(), 0755); }
    void writeOld(const std::string& name, const std::string& text) const {
        TemporaryDirectory::write(oldDirectory() + "/" + name, text);
    }

    // The "Item" elements of the written file.
    std::vector<pugi::xml_node> writtenItems(pugi::xml_document& document) const {
        EXPECT_TRUE(document.load_file(notifyPath().c_str())) << readNotify();
        std::vector<pugi::xml_node> items;
        for (pugi::xml_node node : document.child("Nevor").child("Notify").children()) {
            items.push_back(node);
        }
        return items;
    }

    static std::string valueIn(const pugi::xml_node& item, const char* element) {
        return item.child(element).attribute("VALUE").as_string("<missing>");
    }

    ConfigDirectory config;
};

} // namespace

TEST_F(NotifyStoreTest, VirtualOperationsAreInTheirSlots) {
    EXPECT_EQ(virtualSlot(&NotifyProbe::_read_old), 3u);
    EXPECT_EQ(virtualSlot(&NotifyProbe::_read), 4u);
    EXPECT_EQ(virtualSlot(&NotifyProbe::_write), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotify::traverse), 6u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotify::exist), 7u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotify::find), 8u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotify::append), 9u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotify::update), 10u);
    EXPECT_EQ(virtualSlot(&PRuntimeNotify::remove), 11u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimeNotify>);
    EXPECT_FALSE(std::is_copy_constructible_v<PRuntimeNotify>);
}

TEST_F(NotifyStoreTest, RootHandsOutAStoreLoadedFromTheConfigurationDirectory) {
    writeNotify(notifyXml(itemXml(11, "from the root")));
    PRuntimeNotify* store = PRuntime::getInstance()->notify();
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(PRuntime::getInstance()->notify(), store);
    EXPECT_EQ(store->find(11).title(), NString("from the root"));
}

TEST_F(NotifyStoreTest, WithoutAnyFileTheStoreIsEmptyAndWritesNothing) {
    PRuntimeNotify store;
    EXPECT_FALSE(store.exist(0));
    EXPECT_FALSE(fileExists(notifyPath()));
    EXPECT_FALSE(fileExists(oldDirectory()));
}

TEST_F(NotifyStoreTest, TraverseOfAnEmptyStoreNeverCallsTheCallback) {
    PRuntimeNotify store;
    int calls = 0;
    store.traverse([&](unsigned long long, const PRuntimeNotifyItem&) { ++calls; });
    EXPECT_EQ(calls, 0);
}

TEST_F(NotifyStoreTest, TraverseWithAnEmptyCallbackDoesNothing) {
    PRuntimeNotify store;
    store.append(1, makeItem(1, "one"));
    store.traverse(PRuntimeNotify::Visitor());
    EXPECT_TRUE(store.exist(1));
}

TEST_F(NotifyStoreTest, FindOfAnAbsentIdGivesTheDefaultItem) {
    PRuntimeNotify store;
    PRuntimeNotifyItem stored = makeItem(5, "five", 9, 10);
    stored.setIsSystem(true);
    stored.setRemove(true);
    store.append(5, stored);
    const PRuntimeNotifyItem item = store.find(6);
    EXPECT_EQ(item.id(), 0u);
    EXPECT_FALSE(item.isSystem());
    EXPECT_TRUE(item.title().empty());
    EXPECT_TRUE(item.url().empty());
    EXPECT_FALSE(item.isPopup());
    EXPECT_EQ(item.timestamp(), 0);
    EXPECT_EQ(item.userID(), 0u);
    EXPECT_FALSE(item.isAlreadyRead());
    EXPECT_FALSE(item.isAlreadyPopup());
    EXPECT_FALSE(item.isRemove());
}

TEST_F(NotifyStoreTest, AppendInsertsAndWritesTheFileAtOnce) {
    PRuntimeNotify store;
    store.append(3, makeItem(3, "three"));
    EXPECT_TRUE(store.exist(3));
    EXPECT_EQ(store.find(3).title(), NString("three"));
    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(valueIn(items[0], "ID"), "3");
    EXPECT_EQ(valueIn(items[0], "Title"), "three");
}

TEST_F(NotifyStoreTest, AppendOfAnExistingIdReplacesTheItemAndRewritesTheFile) {
    CountingNotify store;
    store.append(4, makeItem(4, "first", 1, 100));
    const std::string before = readNotify();
    PRuntimeNotifyItem replacement = makeItem(4, "second", 2, 200);
    replacement.setIsPopup(true);
    store.append(4, replacement);
    EXPECT_EQ(store.writes(), 2);
    const PRuntimeNotifyItem found = store.find(4);
    EXPECT_EQ(found.title(), NString("second"));
    EXPECT_EQ(found.userID(), 2u);
    EXPECT_EQ(found.timestamp(), 200);
    EXPECT_TRUE(found.isPopup());
    EXPECT_EQ(idsOf(store), std::vector<unsigned long long>{4});
    EXPECT_NE(readNotify(), before);
    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(valueIn(items[0], "Title"), "second");
    EXPECT_EQ(valueIn(items[0], "Popup"), "true");
}

TEST_F(NotifyStoreTest, AppendOfAnItemEqualToTheStoredOneStillRewritesTheFile) {
    CountingNotify store;
    store.append(4, makeItem(4, "same"));
    // Changed behind the store's back; the store does not read it again, but rewrites it.
    writeNotify(notifyXml(""));
    store.append(4, makeItem(4, "same"));
    EXPECT_EQ(store.writes(), 2);
    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(valueIn(items[0], "Title"), "same");
}

TEST_F(NotifyStoreTest, UpdateOfAnAbsentIdReturnsFalseAndLeavesTheFileUntouched) {
    {
        PRuntimeNotify seed;
        seed.append(1, makeItem(1, "kept"));
    }
    const std::string before = readNotify();
    struct stat beforeInfo {};
    ASSERT_EQ(::stat(notifyPath().c_str(), &beforeInfo), 0);

    CountingNotify store;
    EXPECT_FALSE(store.update(2, makeItem(2, "never")));
    EXPECT_EQ(store.writes(), 0);
    EXPECT_FALSE(store.exist(2));
    EXPECT_EQ(readNotify(), before);
    struct stat afterInfo {};
    ASSERT_EQ(::stat(notifyPath().c_str(), &afterInfo), 0);
    // Not replaced either: the atomic writer would have given the file a new inode.
    EXPECT_EQ(afterInfo.st_ino, beforeInfo.st_ino);
}

TEST_F(NotifyStoreTest, UpdateOfAnAbsentIdInAnEmptyStoreCreatesNoFile) {
    PRuntimeNotify store;
    EXPECT_FALSE(store.update(9, makeItem(9, "never")));
    EXPECT_FALSE(fileExists(notifyPath()));
}

TEST_F(NotifyStoreTest, UpdateOfAPresentIdReplacesTheItemWritesAndReturnsTrue) {
    CountingNotify store;
    store.append(8, makeItem(8, "unread"));
    PRuntimeNotifyItem read = store.find(8);
    read.setAlreadyRead(true);
    EXPECT_TRUE(store.update(8, read));
    EXPECT_EQ(store.writes(), 2);
    EXPECT_TRUE(store.find(8).isAlreadyRead());
    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(valueIn(items[0], "Read"), "true");
}

TEST_F(NotifyStoreTest, RemoveKeepsTheEntryMarkedInMemoryAndInTheFile) {
    CountingNotify store;
    store.append(12, makeItem(12, "to delete"));
    store.append(13, makeItem(13, "to keep"));
    store.remove(12);
    EXPECT_EQ(store.writes(), 3);
    EXPECT_TRUE(store.exist(12));
    const PRuntimeNotifyItem removed = store.find(12);
    EXPECT_TRUE(removed.isRemove());
    EXPECT_EQ(removed.title(), NString("to delete"));
    EXPECT_FALSE(store.find(13).isRemove());

    const Entries entries = entriesOf(store);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].first, 12u);
    EXPECT_TRUE(entries[0].second.isRemove());

    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(valueIn(items[0], "ID"), "12");
    EXPECT_EQ(valueIn(items[0], "Remove"), "true");
    EXPECT_EQ(valueIn(items[1], "Remove"), "false");

    PRuntimeNotify reloaded;
    EXPECT_TRUE(reloaded.find(12).isRemove());
    EXPECT_FALSE(reloaded.find(13).isRemove());
}

TEST_F(NotifyStoreTest, RemoveOfAnAbsentIdDoesNothing) {
    CountingNotify store;
    store.append(1, makeItem(1, "one"));
    const std::string before = readNotify();
    store.remove(2);
    EXPECT_EQ(store.writes(), 1);
    EXPECT_FALSE(store.exist(2));
    EXPECT_EQ(readNotify(), before);
}

TEST_F(NotifyStoreTest, RemoveOfAnAlreadyRemovedItemRewritesTheFile) {
    CountingNotify store;
    store.append(1, makeItem(1, "one"));
    store.remove(1);
    store.remove(1);
    EXPECT_EQ(store.writes(), 3);
    EXPECT_TRUE(store.find(1).isRemove());
}

TEST_F(NotifyStoreTest, ReadAfterWriteGivesAlreadyPopupFromTheReadFlag) {
    {
        PRuntimeNotify store;
        PRuntimeNotifyItem read = makeItem(1, "read, never shown");
        read.setAlreadyRead(true);
        read.setAlreadyPopup(false);
        store.append(1, read);
        PRuntimeNotifyItem shown = makeItem(2, "shown, never read");
        shown.setAlreadyRead(false);
        shown.setAlreadyPopup(true);
        store.append(2, shown);
        // In memory the flags are as they were given.
        EXPECT_FALSE(store.find(1).isAlreadyPopup());
        EXPECT_TRUE(store.find(2).isAlreadyPopup());
    }
    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 2u);
    EXPECT_EQ(valueIn(items[0], "AlreadyPopup"), "true");
    EXPECT_EQ(valueIn(items[1], "AlreadyPopup"), "false");

    PRuntimeNotify reloaded;
    EXPECT_TRUE(reloaded.find(1).isAlreadyRead());
    EXPECT_TRUE(reloaded.find(1).isAlreadyPopup());
    EXPECT_FALSE(reloaded.find(2).isAlreadyRead());
    EXPECT_FALSE(reloaded.find(2).isAlreadyPopup());
}

TEST_F(NotifyStoreTest, IsSystemIsNeverWrittenAndReadsBackFalse) {
    {
        PRuntimeNotify store;
        PRuntimeNotifyItem item = makeItem(1, "system");
        item.setIsSystem(true);
        store.append(1, item);
        EXPECT_TRUE(store.find(1).isSystem());
    }
    EXPECT_EQ(readNotify().find("System"), std::string::npos);
    PRuntimeNotify reloaded;
    ASSERT_TRUE(reloaded.exist(1));
    EXPECT_FALSE(reloaded.find(1).isSystem());
}

TEST_F(NotifyStoreTest, EveryFieldSurvivesARoundTripThroughTheFile) {
    PRuntimeNotifyItem a;
    a.setID(ULLONG_MAX);
    a.setUserID(ULLONG_MAX - 1);
    a.setTitle("Système «mis à jour» — 更新 & <b>\"quoted\"</b> 'single'");
    a.setURL("https://example.invalid/path?x=1&y=<2>#frag");
    a.setTimestamp(LLONG_MIN);
    a.setIsPopup(true);
    a.setAlreadyRead(true);
    a.setAlreadyPopup(true);
    a.setRemove(true);
    PRuntimeNotifyItem b;
    b.setID(0);
    b.setUserID(0);
    b.setTimestamp(LLONG_MAX);
    PRuntimeNotifyItem c = makeItem(1234567890123ULL, "  spaced  ", 77, -5);
    c.setIsPopup(false);
    c.setRemove(false);
    {
        PRuntimeNotify store;
        store.append(a.id(), a);
        store.append(b.id(), b);
        store.append(c.id(), c);
    }
    PRuntimeNotify reloaded;
    const Entries entries = entriesOf(reloaded);
    ASSERT_EQ(entries.size(), 3u);
    for (const PRuntimeNotifyItem* expected : {&b, &c, &a}) {
        const PRuntimeNotifyItem got = reloaded.find(expected->id());
        SCOPED_TRACE(expected->id());
        EXPECT_EQ(got.id(), expected->id());
        EXPECT_EQ(got.userID(), expected->userID());
        EXPECT_EQ(got.title(), expected->title());
        EXPECT_EQ(got.url(), expected->url());
        EXPECT_EQ(got.timestamp(), expected->timestamp());
        EXPECT_EQ(got.isPopup(), expected->isPopup());
        EXPECT_EQ(got.isAlreadyRead(), expected->isAlreadyRead());
        EXPECT_EQ(got.isAlreadyPopup(), expected->isAlreadyRead());
        EXPECT_EQ(got.isRemove(), expected->isRemove());
        EXPECT_FALSE(got.isSystem());
    }
}

TEST_F(NotifyStoreTest, WrittenFileHasTheExactLayout) {
    {
        PRuntimeNotify store;
        PRuntimeNotifyItem item = makeItem(20, "twenty", 5, 1700000000);
        item.setIsPopup(true);
        item.setAlreadyRead(false);
        item.setAlreadyPopup(true);
        store.append(20, item);
        store.append(3, makeItem(3, "three", 6, -1));
    }
    const std::string text = readNotify();
    EXPECT_EQ(
        text.rfind("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Nevor>\n\t<Notify>\n\t\t<Item>\n"
                   "\t\t\t<ID VALUE=\"3\" />\n",
                   0),
        0u)
        << text;

    pugi::xml_document document;
    ASSERT_TRUE(
        document.load_file(notifyPath().c_str(), pugi::parse_default | pugi::parse_declaration));
    pugi::xml_node declaration = document.first_child();
    ASSERT_EQ(declaration.type(), pugi::node_declaration);
    std::vector<std::pair<std::string, std::string>> attributes;
    for (pugi::xml_attribute attribute : declaration.attributes()) {
        attributes.emplace_back(attribute.name(), attribute.value());
    }
    const std::vector<std::pair<std::string, std::string>> expectedDeclaration{
        {"version", "1.0"}, {"encoding", "utf-8"}};
    EXPECT_EQ(attributes, expectedDeclaration);

    pugi::xml_node root = declaration.next_sibling();
    EXPECT_STREQ(root.name(), "Nevor");
    EXPECT_FALSE(root.next_sibling());
    EXPECT_FALSE(root.first_attribute());
    pugi::xml_node list = root.first_child();
    EXPECT_STREQ(list.name(), "Notify");
    EXPECT_FALSE(list.next_sibling());

    const std::vector<std::string> names{"ID",   "UserID", "Title",        "Timestamp", "URL",
                                         "Read", "Popup",  "AlreadyPopup", "Remove"};
    const std::vector<std::vector<std::string>> values{
        {"3", "6", "three", "-1", "https://example.invalid/n/3", "false", "false", "false",
         "false"},
        {"20", "5", "twenty", "1700000000", "https://example.invalid/n/20", "false", "true",
         "false", "false"}};
    std::size_t index = 0;
    for (pugi::xml_node item = list.first_child(); item; item = item.next_sibling(), ++index) {
        ASSERT_LT(index, values.size());
        EXPECT_STREQ(item.name(), "Item");
        EXPECT_FALSE(item.first_attribute());
        std::size_t field = 0;
        for (pugi::xml_node child = item.first_child(); child;
             child = child.next_sibling(), ++field) {
            ASSERT_LT(field, names.size());
            EXPECT_EQ(child.type(), pugi::node_element);
            EXPECT_EQ(child.name(), names[field]);
            EXPECT_FALSE(child.first_child()) << names[field] << " has content";
            pugi::xml_attribute value = child.first_attribute();
            EXPECT_STREQ(value.name(), "VALUE");
            EXPECT_EQ(value.value(), values[index][field]) << names[field];
            EXPECT_FALSE(value.next_attribute());
        }
        EXPECT_EQ(field, names.size());
    }
    EXPECT_EQ(index, values.size());
}

TEST_F(NotifyStoreTest, TheMapKeyIsTheAppendArgumentAndTheFileKeepsTheItemsOwnId) {
    {
        PRuntimeNotify store;
        store.append(7, makeItem(9, "keyed by seven"));
        EXPECT_TRUE(store.exist(7));
        EXPECT_FALSE(store.exist(9));
        EXPECT_EQ(store.find(7).id(), 9u);
        EXPECT_EQ(idsOf(store), std::vector<unsigned long long>{7});
    }
    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(valueIn(items[0], "ID"), "9");
    PRuntimeNotify reloaded;
    EXPECT_FALSE(reloaded.exist(7));
    EXPECT_TRUE(reloaded.exist(9));
}

TEST_F(NotifyStoreTest, TwoItemsWithTheSameIdKeepTheFirst) {
    writeNotify(notifyXml(itemXml(5, "first") + itemXml(6, "other") + itemXml(5, "second")));
    PRuntimeNotify store;
    EXPECT_EQ(store.find(5).title(), NString("first"));
    EXPECT_EQ(idsOf(store), (std::vector<unsigned long long>{5, 6}));
}

TEST_F(NotifyStoreTest, ARootOtherThanNevorGivesAnEmptyStore) {
    writeNotify("<?xml version=\"1.0\"?><Other><Notify>" + itemXml(1, "x") + "</Notify></Other>");
    PRuntimeNotify store;
    EXPECT_TRUE(entriesOf(store).empty());
}

TEST_F(NotifyStoreTest, NevorWithoutNotifyGivesAnEmptyStore) {
    writeNotify("<?xml version=\"1.0\"?><Nevor><Items>" + itemXml(1, "x") + "</Items></Nevor>");
    PRuntimeNotify store;
    EXPECT_TRUE(entriesOf(store).empty());
}

TEST_F(NotifyStoreTest, AMalformedFileGivesAnEmptyStoreAndIsReplacedByTheNextChange) {
    writeNotify(notifyXml(itemXml(1, "x")).substr(0, 60));
    PRuntimeNotify store;
    EXPECT_TRUE(entriesOf(store).empty());
    store.append(2, makeItem(2, "new"));
    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(valueIn(items[0], "ID"), "2");
}

TEST_F(NotifyStoreTest, AnEmptyFileGivesAnEmptyStore) {
    writeNotify("");
    PRuntimeNotify store;
    EXPECT_TRUE(entriesOf(store).empty());
}

TEST_F(NotifyStoreTest, ChildrenOfNotifyAreItemsWhateverTheirName) {
    writeNotify(notifyXml("<Entry><ID VALUE=\"4\"/><Title VALUE=\"named entry\"/></Entry>"
                          "<!-- a comment --><Item><ID VALUE=\"5\"/></Item>"));
    PRuntimeNotify store;
    EXPECT_EQ(store.find(4).title(), NString("named entry"));
    EXPECT_TRUE(store.exist(5));
}

TEST_F(NotifyStoreTest, MissingElementsAndAttributesReadAsDefaults) {
    writeNotify(notifyXml("<Item><ID VALUE=\"3\"/><Title/><URL OTHER=\"x\"/></Item>"
                          "<Item><Title VALUE=\"no id\"/></Item>"));
    PRuntimeNotify store;
    const PRuntimeNotifyItem item = store.find(3);
    EXPECT_EQ(item.id(), 3u);
    EXPECT_TRUE(item.title().empty());
    EXPECT_TRUE(item.url().empty());
    EXPECT_EQ(item.userID(), 0u);
    EXPECT_EQ(item.timestamp(), 0);
    EXPECT_FALSE(item.isPopup());
    EXPECT_FALSE(item.isAlreadyRead());
    EXPECT_FALSE(item.isAlreadyPopup());
    EXPECT_FALSE(item.isRemove());
    // An item without "ID" is the notification 0.
    EXPECT_EQ(store.find(0).title(), NString("no id"));
}

TEST_F(NotifyStoreTest, BooleansAreTrueWhenTheyStartWithOneTOrY) {
    const std::vector<std::pair<std::string, bool>> cases{
        {"true", true}, {"1", true},   {"T", true},      {"t", true},  {"yes", true},
        {"Y", true},    {"10", true},  {"false", false}, {"0", false}, {"no", false},
        {"", false},    {" t", false}, {"on", false},    {"x", false}};
    std::string items;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        const std::string& value = cases[i].first;
        items += itemXml(i + 1, "b",
                         "<Read VALUE=\"" + value + "\"/><Popup VALUE=\"" + value +
                             "\"/><AlreadyPopup VALUE=\"" + value + "\"/><Remove VALUE=\"" + value +
                             "\"/>");
    }
    writeNotify(notifyXml(items));
    PRuntimeNotify store;
    for (std::size_t i = 0; i < cases.size(); ++i) {
        SCOPED_TRACE("\"" + cases[i].first + "\"");
        const PRuntimeNotifyItem item = store.find(i + 1);
        EXPECT_EQ(item.isAlreadyRead(), cases[i].second);
        EXPECT_EQ(item.isPopup(), cases[i].second);
        EXPECT_EQ(item.isAlreadyPopup(), cases[i].second);
        EXPECT_EQ(item.isRemove(), cases[i].second);
    }
}

TEST_F(NotifyStoreTest, NumbersAreParsedByTheirType) {
    writeNotify(notifyXml("<Item><ID VALUE=\"18446744073709551615\"/><UserID VALUE=\"0x10\"/>"
                          "<Timestamp VALUE=\"-9223372036854775808\"/></Item>"
                          "<Item><ID VALUE=\"12abc\"/><Timestamp VALUE=\"not a number\"/></Item>"));
    PRuntimeNotify store;
    const PRuntimeNotifyItem big = store.find(ULLONG_MAX);
    EXPECT_EQ(big.id(), ULLONG_MAX);
    EXPECT_EQ(big.userID(), 16u);
    EXPECT_EQ(big.timestamp(), LLONG_MIN);
    const PRuntimeNotifyItem prefix = store.find(12);
    EXPECT_EQ(prefix.id(), 12u);
    EXPECT_EQ(prefix.timestamp(), 0);
}

TEST_F(NotifyStoreTest, TraverseGoesInAscendingOrderOfId) {
    PRuntimeNotify store;
    for (unsigned long long id : {50ULL, 2ULL, ULLONG_MAX, 0ULL, 17ULL}) {
        store.append(id, makeItem(id, "n" + std::to_string(id)));
    }
    const Entries entries = entriesOf(store);
    ASSERT_EQ(entries.size(), 5u);
    const std::vector<unsigned long long> expected{0, 2, 17, 50, ULLONG_MAX};
    for (std::size_t i = 0; i < entries.size(); ++i) {
        EXPECT_EQ(entries[i].first, expected[i]);
        EXPECT_EQ(entries[i].second.title(), NString("n" + std::to_string(expected[i])));
    }
}

TEST_F(NotifyStoreTest, ATraverseCallbackMayCallBackIntoTheStore) {
    PRuntimeNotify store;
    for (unsigned long long id = 1; id <= 4; ++id) {
        store.append(id, makeItem(id, "n" + std::to_string(id)));
    }
    std::vector<unsigned long long> seen;
    store.traverse([&](unsigned long long id, const PRuntimeNotifyItem& item) {
        seen.push_back(id);
        // Every operation, from inside the callback: no deadlock.
        EXPECT_TRUE(store.exist(id));
        PRuntimeNotifyItem read = store.find(id);
        read.setAlreadyRead(true);
        EXPECT_TRUE(store.update(id, read));
        if (id == 2) {
            store.remove(2);
        }
        // Added while traversing: not part of the copy being walked.
        store.append(100 + id, makeItem(100 + id, "added"));
        int inner = 0;
        store.traverse([&](unsigned long long, const PRuntimeNotifyItem&) { ++inner; });
        EXPECT_GE(inner, 5);
        // The callback's item is the copy taken before the change.
        EXPECT_FALSE(item.isAlreadyRead());
    });
    EXPECT_EQ(seen, (std::vector<unsigned long long>{1, 2, 3, 4}));
    EXPECT_EQ(entriesOf(store).size(), 8u);
    EXPECT_TRUE(store.find(3).isAlreadyRead());
    EXPECT_TRUE(store.find(2).isRemove());
    PRuntimeNotify reloaded;
    EXPECT_EQ(entriesOf(reloaded).size(), 8u);
    EXPECT_TRUE(reloaded.find(2).isRemove());
    EXPECT_TRUE(reloaded.find(4).isAlreadyRead());
}

TEST_F(NotifyStoreTest, TheDestructorWritesNothing) {
    {
        PRuntimeNotify store;
        store.append(1, makeItem(1, "one"));
        ASSERT_TRUE(fileExists(notifyPath()));
        ASSERT_EQ(std::remove(notifyPath().c_str()), 0);
    }
    EXPECT_FALSE(fileExists(notifyPath()));
}

TEST_F(NotifyStoreTest, AFileChangedByOthersIsNotReadAgain) {
    PRuntimeNotify store;
    writeNotify(notifyXml(itemXml(1, "written later")));
    EXPECT_FALSE(store.exist(1));
}

// The old layout.

TEST_F(NotifyStoreTest, TheOldDirectoryIsImportedWithEveryFieldAndThenDeleted) {
    makeOldDirectory();
    writeOld("1001.xml",
             "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<ROOT>\n"
             "<ID VALUE=\"1001\"/><UserID VALUE=\"77\"/><Title VALUE=\"Old &amp; kept\"/>"
             "<Time VALUE=\"-42\"/><URL VALUE=\"https://example.invalid/old\"/>"
             "<Read VALUE=\"true\"/><Popup VALUE=\"true\"/><AlreadyPopup VALUE=\"false\"/>"
             "<Remove VALUE=\"true\"/><Timestamp VALUE=\"999\"/></ROOT>\n");
    writeOld("1002.xml", oldItemXml(1002, "second"));
    CountingNotify store;
    EXPECT_FALSE(fileExists(oldDirectory()));
    // Nothing written yet: the import reaches the file with the next change.
    EXPECT_FALSE(fileExists(notifyPath()));
    EXPECT_EQ(store.writes(), 0);

    const PRuntimeNotifyItem item = store.find(1001);
    EXPECT_EQ(item.id(), 1001u);
    EXPECT_EQ(item.userID(), 77u);
    EXPECT_EQ(item.title(), NString("Old & kept"));
    EXPECT_EQ(item.timestamp(), -42);
    EXPECT_EQ(item.url(), NString("https://example.invalid/old"));
    EXPECT_TRUE(item.isAlreadyRead());
    EXPECT_TRUE(item.isPopup());
    EXPECT_FALSE(item.isAlreadyPopup());
    EXPECT_TRUE(item.isRemove());
    EXPECT_FALSE(item.isSystem());
    EXPECT_EQ(idsOf(store), (std::vector<unsigned long long>{1001, 1002}));

    store.append(5, makeItem(5, "new"));
    PRuntimeNotify reloaded;
    EXPECT_EQ(idsOf(reloaded), (std::vector<unsigned long long>{5, 1001, 1002}));
    EXPECT_EQ(reloaded.find(1001).timestamp(), -42);
}

TEST_F(NotifyStoreTest, WithBothLayoutsOnlyTheImportCountsAndTheFirstChangeOverwritesTheFile) {
    writeNotify(notifyXml(itemXml(1, "current file")));
    const std::string current = readNotify();
    makeOldDirectory();
    writeOld("2.xml", oldItemXml(2, "imported"));
    PRuntimeNotify store;
    EXPECT_EQ(idsOf(store), std::vector<unsigned long long>{2});
    EXPECT_FALSE(fileExists(oldDirectory()));
    EXPECT_EQ(readNotify(), current);

    EXPECT_FALSE(store.update(1, makeItem(1, "not there")));
    EXPECT_EQ(readNotify(), current);
    PRuntimeNotifyItem read = store.find(2);
    read.setAlreadyRead(true);
    EXPECT_TRUE(store.update(2, read));
    pugi::xml_document document;
    const auto items = writtenItems(document);
    ASSERT_EQ(items.size(), 1u);
    EXPECT_EQ(valueIn(items[0], "ID"), "2");
    EXPECT_EQ(valueIn(items[0], "Title"), "imported");
}

TEST_F(NotifyStoreTest, OldFilesAreReadThroughTheirBaseNameWithXml) {
    makeOldDirectory();
    // "a.txt" is read as "a.xml"; "b.dat" has no "b.xml" and is skipped.
    writeOld("a.txt", oldItemXml(1, "text file content, never read"));
    writeOld("a.xml", oldItemXml(2, "read through a.txt and a.xml"));
    writeOld("b.dat", oldItemXml(3, "never read"));
    writeOld("c", oldItemXml(4, "no extension"));
    writeOld("d.e.f", oldItemXml(5, "never read either"));
    writeOld("d.e.xml", oldItemXml(6, "read through d.e.f"));
    PRuntimeNotify store;
    EXPECT_EQ(idsOf(store), (std::vector<unsigned long long>{2, 6}));
    EXPECT_FALSE(fileExists(oldDirectory()));
}

TEST_F(NotifyStoreTest, BrokenOldFilesAndSubdirectoriesAreSkippedWithoutEndingTheImport) {
    makeOldDirectory();
    writeOld("01.xml", oldItemXml(1, "good"));
    writeOld("02.xml", "<ROOT><ID VALUE=\"2\"/>"); // not well-formed
    writeOld("03.xml", "");
    writeOld("04.xml", "<?xml version=\"1.0\"?><Nevor><ID VALUE=\"4\"/></Nevor>"); // no ROOT
    writeOld("05.xml", oldItemXml(5, "good too"));
    writeOld("06.xml", oldItemXml(6, "good as well"));
    // A subdirectory, even one named like a notification, is not a regular file.
    const std::string sub = oldDirectory() + "/07.xml";
    ASSERT_EQ(::mkdir(sub.c_str(), 0755), 0);
    TemporaryDirectory::write(sub + "/08.xml", oldItemXml(8, "inside a subdirectory"));
    const std::string other = oldDirectory() + "/nested";
    ASSERT_EQ(::mkdir(other.c_str(), 0755), 0);
    TemporaryDirectory::write(other + "/09.xml", oldItemXml(9, "inside another"));
    // A symbolic link to nowhere is not a regular file either.
    ASSERT_EQ(::symlink("/nonexistent/10.xml", (oldDirectory() + "/10.xml").c_str()), 0);

    PRuntimeNotify store;
    EXPECT_EQ(idsOf(store), (std::vector<unsigned long long>{1, 5, 6}));
    EXPECT_EQ(store.find(5).title(), NString("good too"));
    // The whole directory goes, subdirectories included.
    EXPECT_FALSE(fileExists(oldDirectory()));
}

TEST_F(NotifyStoreTest, OldFilesWithTheSameIdKeepOnlyOne) {
    makeOldDirectory();
    writeOld("x.xml", oldItemXml(3, "one"));
    writeOld("y.xml", oldItemXml(3, "other"));
    PRuntimeNotify store;
    ASSERT_EQ(idsOf(store), std::vector<unsigned long long>{3});
    const NString title = store.find(3).title();
    EXPECT_TRUE(title == NString("one") || title == NString("other"));
}

TEST_F(NotifyStoreTest, AnEmptyOldDirectoryIsDeletedAndTheCurrentFileIgnored) {
    writeNotify(notifyXml(itemXml(1, "ignored this time")));
    makeOldDirectory();
    PRuntimeNotify store;
    EXPECT_TRUE(entriesOf(store).empty());
    EXPECT_FALSE(fileExists(oldDirectory()));
    // The next store finds no old directory and reads the file, still as it was.
    PRuntimeNotify next;
    EXPECT_EQ(idsOf(next), std::vector<unsigned long long>{1});
}

TEST_F(NotifyStoreTest, AFileNamedNotifyIsNotTheOldDirectory) {
    writeNotify(notifyXml(itemXml(1, "current")));
    TemporaryDirectory::write(oldDirectory(), "not a directory");
    PRuntimeNotify store;
    EXPECT_EQ(idsOf(store), std::vector<unsigned long long>{1});
    EXPECT_TRUE(fileExists(oldDirectory()));
}

// Configuration directories that cannot be used.

TEST_F(NotifyStoreTest, AMissingConfigurationDirectoryKeepsChangesInMemory) {
    const std::string missing = config.outside("missing/config");
    NApplication::setDirectoryConfig(NString(missing));
    PRuntimeNotify store;
    store.append(1, makeItem(1, "memory only"));
    EXPECT_TRUE(store.update(1, makeItem(1, "updated")));
    store.remove(1);
    EXPECT_TRUE(store.exist(1));
    EXPECT_EQ(store.find(1).title(), NString("updated"));
    EXPECT_TRUE(store.find(1).isRemove());
    EXPECT_FALSE(fileExists(missing));
    EXPECT_FALSE(fileExists(config.outside("missing")));
}

TEST_F(NotifyStoreTest, AReadOnlyDirectoryAndFileKeepChangesInMemoryAndTheFileAsItWas) {
    {
        PRuntimeNotify seed;
        seed.append(1, makeItem(1, "before"));
    }
    const std::string before = readNotify();
    config.openToEveryone();
    // Neither the directory nor the file may be written: no save can happen at all.
    ASSERT_EQ(::chmod(notifyPath().c_str(), 0444), 0);
    ASSERT_EQ(::chmod(config.path().c_str(), 0555), 0);
    {
        Unprivileged guard;
        ASSERT_TRUE(guard.effective());
        PRuntimeNotify store;
        EXPECT_EQ(store.find(1).title(), NString("before"));
        store.append(2, makeItem(2, "memory only"));
        EXPECT_TRUE(store.update(1, makeItem(1, "changed")));
        store.remove(1);
        EXPECT_TRUE(store.exist(2));
        EXPECT_EQ(store.find(1).title(), NString("changed"));
        EXPECT_TRUE(store.find(1).isRemove());
    }
    EXPECT_EQ(readNotify(), before);
    // No temporary file was left behind either.
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(config.path())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(names, std::vector<std::string>{"notify.xml"});
}

TEST_F(NotifyStoreTest, AnOldDirectoryThatCannotBeDeletedIsStillImported) {
    makeOldDirectory();
    writeOld("1.xml", oldItemXml(1, "old"));
    config.openToEveryone();
    ASSERT_EQ(::chmod(config.path().c_str(), 0555), 0);
    ASSERT_EQ(::chmod(oldDirectory().c_str(), 0555), 0);
    Unprivileged guard;
    ASSERT_TRUE(guard.effective());
    PRuntimeNotify store;
    EXPECT_EQ(store.find(1).title(), NString("old"));
    EXPECT_TRUE(fileExists(oldDirectory() + "/1.xml"));
}

TEST_F(NotifyStoreTest, AFailedSaveLeavesTheOldFileAndTheNextSaveCatchesUp) {
    PRuntimeNotify store;
    store.append(1, makeItem(1, "saved"));
    const std::string before = readNotify();
    // Files may not grow past a few bytes: the new content cannot be written.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit original{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &original), 0);
    rlimit tiny = original;
    tiny.rlim_cur = 16;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tiny), 0);
    store.append(2, makeItem(2, "not saved"));
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &original), 0);
    EXPECT_EQ(readNotify(), before);
    EXPECT_TRUE(store.exist(2));

    store.append(3, makeItem(3, "saved again"));
    PRuntimeNotify reloaded;
    EXPECT_EQ(idsOf(reloaded), (std::vector<unsigned long long>{1, 2, 3}));
}

TEST_F(NotifyStoreTest, StrayTextInsideNotifyCountsAsADefaultNotification) {
    // Every child node is taken, text included; having no elements, it is notification 0.
    writeNotify(notifyXml("stray text" + itemXml(3, "three")));
    PRuntimeNotify store;
    EXPECT_EQ(idsOf(store), (std::vector<unsigned long long>{0, 3}));
    EXPECT_TRUE(store.find(0).title().empty());
}
