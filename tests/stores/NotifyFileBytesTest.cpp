// The bytes of "/notify.xml": the same content must always give the same file, byte for byte,
// whatever way the store reached that content. The golden file was written by the library
// before its writer kept anything between two writes; the reference below renders the whole
// document with pugixml's own save to a stream, the straightforward way.

#include "GoldenFile.h"
#include "NotifyPortbindTestSupport.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <climits>
#include <random>
#include <sstream>
#include <string>

using pallix::test::ConfigDirectory;
using pallix::test::matchesGolden;
using pallix::test::TemporaryDirectory;

namespace {

// Gives the tests a name for the internal operations.
class NotifyProbe : public PRuntimeNotify {
public:
    using PRuntimeNotify::_read;
    using PRuntimeNotify::_write;
};

PRuntimeNotifyItem fullItem(unsigned long long id, unsigned long long userID, long long timestamp,
                            const std::string& title, const std::string& url, bool popup, bool read,
                            bool alreadyPopup, bool removed, bool system = false) {
    PRuntimeNotifyItem item;
    item.setID(id);
    item.setUserID(userID);
    item.setTimestamp(timestamp);
    item.setTitle(NString(title));
    item.setURL(NString(url));
    item.setIsPopup(popup);
    item.setAlreadyRead(read);
    item.setAlreadyPopup(alreadyPopup);
    item.setRemove(removed);
    item.setIsSystem(system);
    return item;
}

// The file as the store's content gives it: the whole document built and saved with pugixml to
// a stream, with the layout of the file (declaration, a tab per level, indented formatting only).
std::string referenceBytes(const PRuntimeNotify& store) {
    pugi::xml_document document;
    pugi::xml_node list = document.append_child("Nevor").append_child("Notify");
    pugi::xml_node declaration = document.prepend_child(pugi::node_declaration);
    declaration.append_attribute("version").set_value("1.0");
    declaration.append_attribute("encoding").set_value("utf-8");
    store.traverse([&](unsigned long long, const PRuntimeNotifyItem& item) {
        pugi::xml_node node = list.append_child("Item");
        node.append_child("ID").append_attribute("VALUE").set_value(item.id());
        node.append_child("UserID").append_attribute("VALUE").set_value(item.userID());
        node.append_child("Title").append_attribute("VALUE").set_value(item.title().data());
        node.append_child("Timestamp").append_attribute("VALUE").set_value(item.timestamp());
        node.append_child("URL").append_attribute("VALUE").set_value(item.url().data());
        node.append_child("Read").append_attribute("VALUE").set_value(item.isAlreadyRead());
        node.append_child("Popup").append_attribute("VALUE").set_value(item.isPopup());
        node.append_child("AlreadyPopup").append_attribute("VALUE").set_value(item.isAlreadyRead());
        node.append_child("Remove").append_attribute("VALUE").set_value(item.isRemove());
    });
    std::ostringstream text;
    document.save(text, "\t", pugi::format_indent, pugi::encoding_utf8);
    return text.str();
}

// Every field set, texts that need escaping, text beyond ASCII, the extremes of the numbers,
// and the read flag apart from the pop-up flag, reached through every mutation.
void fillEveryField(PRuntimeNotify& store) {
    store.append(42, fullItem(42, 7, 1700000000123LL, "first version of 42", "https://a.invalid/",
                              false, false, false, false));
    store.append(ULLONG_MAX,
                 fullItem(ULLONG_MAX, ULLONG_MAX, LLONG_MIN,
                          "Quotes \" and ' and <tags> & entities &amp; \t tab\nnew line\r\x01",
                          "https://example.invalid/path?a=1&b=<2>&c=\"3\"", true, true, false,
                          false));
    store.append(1, fullItem(1, 0, 0, "", "", false, false, false, false));
    store.append(42, fullItem(42, 1234567890123ULL, LLONG_MAX,
                              "\xe6\x96\xb0\xe5\x9b\xba\xe4\xbb\xb6 \xe2\x80\x94 "
                              "\xc3\xa9\xc3\xa0\xc3\xbc \xf0\x9f\x93\xb1 e\xcc\x81",
                              "https://example.invalid/\xe9\x80\x9a\xe7\x9f\xa5?id=42", true, false,
                              true, false));
    store.append(7, fullItem(7, 3, -1, "  leading and trailing spaces  ", "relative/path", false,
                             true, true, false, true));
    store.append(1000, fullItem(1000, 5, 86400, "to be removed", "x", true, true, true, false));
    EXPECT_TRUE(store.update(1, fullItem(1, 99, 5, "updated ]]> --> <!-- ?>", "mailto:a@b.invalid",
                                         true, false, false, true)));
    store.remove(1000);
}

} // namespace

TEST(NotifyFileBytesTest, EveryFieldWritesTheGoldenFile) {
    ConfigDirectory directory;
    PRuntimeNotify store;
    fillEveryField(store);
    const std::string written = TemporaryDirectory::read(directory.file("/notify.xml"));
    std::string actual;
    EXPECT_TRUE(matchesGolden("stores/notify-every-field.xml", written, actual))
        << "the file as written is in " << actual;
    EXPECT_EQ(written, referenceBytes(store));
}

TEST(NotifyFileBytesTest, AStoreLoadedFromTheGoldenFileWritesItBackUnchanged) {
    ConfigDirectory directory;
    TemporaryDirectory::write(directory.file("/notify.xml"),
                              pallix::test::goldenBytes("stores/notify-every-field.xml"));
    PRuntimeNotify store;
    // alreadyPopup is read from what the read flag wrote, so the loaded items write the same.
    ASSERT_TRUE(store.update(42, store.find(42)));
    std::string actual;
    EXPECT_TRUE(matchesGolden("stores/notify-every-field.xml",
                              TemporaryDirectory::read(directory.file("/notify.xml")), actual))
        << "the file as written is in " << actual;
}

// Random mutations, each followed by a comparison of the file with the reference rendering:
// inserts at the front, middle and end, replacements of the same and of other lengths, updates,
// removals, writes asked for directly, and stores loaded from the file in between. Each item
// is stored under its own id, as callers keep them.
TEST(NotifyFileBytesTest, EveryWriteMatchesTheReferenceRenderingOverRandomMutations) {
    const std::string alphabet[] = {"a",
                                    "Z",
                                    "0",
                                    " ",
                                    "&",
                                    "<",
                                    ">",
                                    "\"",
                                    "'",
                                    "\t",
                                    "\n",
                                    "\r",
                                    "\x7f",
                                    "\xc3\xa9",
                                    "\xe4\xb8\xad",
                                    "\xf0\x9f\x98\x80",
                                    "\xff"};
    for (unsigned int seed = 1; seed <= 6; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        ConfigDirectory directory;
        const std::string file = directory.file("/notify.xml");
        std::mt19937_64 random(seed);
        const auto text = [&](std::size_t longest) {
            std::string result;
            const std::size_t length = random() % (longest + 1);
            for (std::size_t i = 0; i < length; ++i) {
                result += alphabet[random() % (sizeof alphabet / sizeof alphabet[0])];
            }
            return result;
        };
        const auto anyItem = [&](unsigned long long id) {
            return fullItem(id, random(), static_cast<long long>(random()), text(40), text(20),
                            random() % 2 == 0, random() % 2 == 0, random() % 2 == 0,
                            random() % 2 == 0, random() % 2 == 0);
        };
        auto store = std::make_unique<NotifyProbe>();
        for (int step = 0; step < 120; ++step) {
            const unsigned long long id = random() % 40;
            switch (random() % 8) {
            case 0:
                store->update(id, anyItem(id));
                break;
            case 1:
                store->remove(id);
                break;
            case 2:
                // The stored item again, unchanged.
                if (store->exist(id)) {
                    store->append(id, store->find(id));
                }
                break;
            case 3:
                store->_write();
                break;
            case 4:
                // A new store from the file, whose first write renders everything afresh.
                store.reset();
                store = std::make_unique<NotifyProbe>();
                store->_write();
                break;
            default:
                store->append(id, anyItem(id));
                break;
            }
            if (!pallix::test::fileExists(file)) {
                continue;
            }
            ASSERT_EQ(TemporaryDirectory::read(file), referenceBytes(*store)) << "step " << step;
        }
    }
}

// Two stores of the same directory, alive at once, each writing its own content.
TEST(NotifyFileBytesTest, StoresAliveAtOnceEachWriteTheirOwnContent) {
    ConfigDirectory directory;
    const std::string file = directory.file("/notify.xml");
    PRuntimeNotify first;
    PRuntimeNotify second;
    first.append(1, fullItem(1, 1, 1, "first", "one", false, false, false, false));
    second.append(2, fullItem(2, 2, 2, "second", "two", true, true, true, true));
    EXPECT_EQ(TemporaryDirectory::read(file), referenceBytes(second));
    first.append(3, fullItem(3, 3, 3, "third", "three", false, true, false, true));
    EXPECT_EQ(TemporaryDirectory::read(file), referenceBytes(first));
    EXPECT_FALSE(first.exist(2));
}
