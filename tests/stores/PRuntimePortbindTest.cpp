#include "NotifyPortbindTestSupport.h"
#include "VirtualSlot.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <cstdio>
#include <filesystem>
#include <string>
#include <utility>
#include <vector>

using pallix::test::ConfigDirectory;
using pallix::test::fileExists;
using pallix::test::TemporaryDirectory;
using pallix::test::Unprivileged;
using pallix::test::virtualSlot;

namespace {

class PortbindProbe : public PRuntimePortbind {
public:
    using PRuntimePortbind::_initialize;
    using PRuntimePortbind::_read;
    using PRuntimePortbind::_write;
};

// Counts the internal operations as the store calls them through their virtual slots.
class CountingPortbind : public PRuntimePortbind {
public:
    int reads = 0;
    int writes = 0;
    int initializations = 0;

protected:
    void _read() override {
        ++reads;
        PRuntimePortbind::_read();
    }
    void _write() override {
        ++writes;
        PRuntimePortbind::_write();
    }
    void _initialize() override {
        ++initializations;
        PRuntimePortbind::_initialize();
    }
};

using Bindings = std::vector<std::pair<std::string, std::string>>;

Bindings bindingsOf(PRuntimePortbind& store) {
    Bindings bindings;
    store.traverse([&](const NString& source, const NString& target) {
        bindings.emplace_back(source.toStdString(), target.toStdString());
    });
    return bindings;
}

std::string portbindXml(const std::string& items) {
    return "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n<Rilo>\n<BIND>\n" +
           items + "</BIND>\n</Rilo>\n";
}

std::string itemXml(const std::string& source, const std::string& target) {
    return "<Item SOURCE=\"" + source + "\" TARGET=\"" + target + "\"/>\n";
}

class PortbindStoreTest : public ::testing::Test {
protected:
    void TearDown() override { PRuntime::freeInstance(); }

    std::string bindPath() const { return config.file("/PortBind.xml"); }
    std::string readBind() const { return TemporaryDirectory::read(bindPath()); }
    void writeBind(const std::string& text) const { TemporaryDirectory::write(bindPath(), text); }

    // The bindings of the written file, read back with the XML library.
    Bindings writtenBindings() const {
        pugi::xml_document document;
        EXPECT_TRUE(document.load_file(bindPath().c_str())) << readBind();
        Bindings bindings;
        for (pugi::xml_node node : document.child("Rilo").child("BIND").children()) {
            bindings.emplace_back(node.attribute("SOURCE").as_string(),
                                  node.attribute("TARGET").as_string());
        }
        return bindings;
    }

    ConfigDirectory config;
};

} // namespace

TEST_F(PortbindStoreTest, VirtualOperationsAreInTheirSlots) {
    EXPECT_EQ(virtualSlot(&PortbindProbe::_read), 3u);
    EXPECT_EQ(virtualSlot(&PortbindProbe::_write), 4u);
    EXPECT_EQ(virtualSlot(&PortbindProbe::_initialize), 5u);
    EXPECT_EQ(virtualSlot(&PRuntimePortbind::append), 6u);
    EXPECT_EQ(virtualSlot(&PRuntimePortbind::remove), 7u);
    EXPECT_EQ(virtualSlot(&PRuntimePortbind::find), 8u);
    EXPECT_EQ(virtualSlot(&PRuntimePortbind::traverse), 9u);
    EXPECT_EQ(virtualSlot(&PRuntimePortbind::exist), 10u);
    EXPECT_TRUE(std::has_virtual_destructor_v<PRuntimePortbind>);
    EXPECT_FALSE(std::is_copy_constructible_v<PRuntimePortbind>);
}

TEST_F(PortbindStoreTest, RootHandsOutOneStoreReadingTheConfigurationDirectory) {
    writeBind(portbindXml(itemXml("usb-1", "tcp:62078")));
    PRuntimePortbind* store = PRuntime::getInstance()->portbind();
    ASSERT_NE(store, nullptr);
    EXPECT_EQ(PRuntime::getInstance()->portbind(), store);
    EXPECT_EQ(store->find("usb-1"), NString("tcp:62078"));
}

TEST_F(PortbindStoreTest, ConstructionReadsNothing) {
    CountingPortbind store;
    // Written after construction: the first operation still sees it.
    writeBind(portbindXml(itemXml("a", "1")));
    EXPECT_EQ(store.reads, 0);
    EXPECT_EQ(store.find("a"), NString("1"));
    EXPECT_EQ(store.reads, 1);
}

TEST_F(PortbindStoreTest, TheFileIsReadOnceOnlyAndNotAgainWhenChangedByOthers) {
    writeBind(portbindXml(itemXml("a", "1")));
    CountingPortbind store;
    EXPECT_TRUE(store.exist("a"));
    writeBind(portbindXml(itemXml("a", "2") + itemXml("b", "3")));
    EXPECT_EQ(store.find("a"), NString("1"));
    EXPECT_FALSE(store.exist("b"));
    store.append("c", "4");
    store.remove("c");
    bindingsOf(store);
    EXPECT_EQ(store.reads, 1);
    EXPECT_GE(store.initializations, 5);
}

TEST_F(PortbindStoreTest, TheFirstTraverseLoadsTheFile) {
    writeBind(portbindXml(itemXml("a", "1")));
    CountingPortbind store;
    EXPECT_EQ(bindingsOf(store), (Bindings{{"a", "1"}}));
    EXPECT_EQ(store.reads, 1);
}

TEST_F(PortbindStoreTest, AppendWithAnEmptyTargetChangesAndWritesNothing) {
    writeBind(portbindXml(itemXml("a", "1")));
    const std::string before = readBind();
    CountingPortbind store;
    store.append("a", "");
    store.append("b", "");
    EXPECT_EQ(store.initializations, 0);
    EXPECT_EQ(store.reads, 0);
    EXPECT_EQ(store.writes, 0);
    EXPECT_EQ(readBind(), before);
    EXPECT_EQ(store.find("a"), NString("1"));
    EXPECT_FALSE(store.exist("b"));
}

TEST_F(PortbindStoreTest, AppendWithAnEmptySourceChangesAndWritesNothing) {
    CountingPortbind store;
    store.append("", "target");
    EXPECT_EQ(store.initializations, 0);
    EXPECT_EQ(store.writes, 0);
    EXPECT_FALSE(fileExists(bindPath()));
    EXPECT_TRUE(bindingsOf(store).empty());
}

TEST_F(PortbindStoreTest, AppendBindsAndWritesTheFileAtOnce) {
    CountingPortbind store;
    store.append("usb-3", "tcp:5000");
    EXPECT_EQ(store.writes, 1);
    EXPECT_TRUE(store.exist("usb-3"));
    EXPECT_EQ(store.find("usb-3"), NString("tcp:5000"));
    EXPECT_EQ(writtenBindings(), (Bindings{{"usb-3", "tcp:5000"}}));
}

TEST_F(PortbindStoreTest, AppendingASourceAgainReplacesItsTarget) {
    PRuntimePortbind store;
    store.append("A", "X");
    store.append("A", "Y");
    EXPECT_EQ(store.find("A"), NString("Y"));
    EXPECT_EQ(bindingsOf(store), (Bindings{{"A", "Y"}}));
    EXPECT_EQ(writtenBindings(), (Bindings{{"A", "Y"}}));
}

TEST_F(PortbindStoreTest, AppendingTheSameBindingAgainStillRewritesTheFile) {
    CountingPortbind store;
    store.append("A", "X");
    // Changed behind the store's back; the store does not read it again, but rewrites it.
    writeBind("<Rilo><BIND/></Rilo>");
    store.append("A", "X");
    EXPECT_EQ(store.writes, 2);
    EXPECT_EQ(writtenBindings(), (Bindings{{"A", "X"}}));
}

TEST_F(PortbindStoreTest, RemoveErasesTheBindingAndRewritesTheFile) {
    PRuntimePortbind store;
    store.append("a", "1");
    store.append("b", "2");
    store.remove("a");
    EXPECT_FALSE(store.exist("a"));
    EXPECT_TRUE(store.find("a").empty());
    EXPECT_EQ(writtenBindings(), (Bindings{{"b", "2"}}));
}

TEST_F(PortbindStoreTest, RemoveOfAnUnboundSourceStillRewritesTheFile) {
    writeBind("<Rilo><BIND>" + itemXml("a", "1") + "</BIND></Rilo>");
    CountingPortbind store;
    store.remove("unbound");
    EXPECT_EQ(store.writes, 1);
    // Rewritten in the store's own layout.
    EXPECT_EQ(readBind().rfind("<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>", 0),
              0u);
    EXPECT_EQ(writtenBindings(), (Bindings{{"a", "1"}}));
}

TEST_F(PortbindStoreTest, RemoveOfAnUnboundSourceCreatesTheFileWhenThereWasNone) {
    PRuntimePortbind store;
    store.remove("unbound");
    ASSERT_TRUE(fileExists(bindPath()));
    EXPECT_TRUE(writtenBindings().empty());
}

TEST_F(PortbindStoreTest, RemoveWithAnEmptySourceDoesNothing) {
    writeBind(portbindXml(itemXml("", "empty source") + itemXml("a", "1")));
    const std::string before = readBind();
    CountingPortbind store;
    store.remove("");
    EXPECT_EQ(store.initializations, 0);
    EXPECT_EQ(store.writes, 0);
    EXPECT_EQ(readBind(), before);
}

TEST_F(PortbindStoreTest, FindAndExistWithAnEmptySourceDoNotLoadTheFile) {
    writeBind(portbindXml(itemXml("", "bound to nothing")));
    CountingPortbind store;
    EXPECT_TRUE(store.find("").empty());
    EXPECT_FALSE(store.exist(""));
    EXPECT_EQ(store.initializations, 0);
    EXPECT_EQ(store.reads, 0);
}

TEST_F(PortbindStoreTest, FindOfAnUnboundSourceGivesAnEmptyText) {
    PRuntimePortbind store;
    store.append("a", "1");
    EXPECT_TRUE(store.find("b").empty());
    EXPECT_FALSE(store.exist("b"));
    // Comparison is exact.
    EXPECT_FALSE(store.exist("A"));
    EXPECT_FALSE(store.exist("a "));
}

TEST_F(PortbindStoreTest, TwoItemsWithTheSameSourceKeepTheFirst) {
    writeBind(portbindXml(itemXml("a", "first") + itemXml("b", "other") + itemXml("a", "second")));
    PRuntimePortbind store;
    EXPECT_EQ(store.find("a"), NString("first"));
    EXPECT_EQ(bindingsOf(store), (Bindings{{"a", "first"}, {"b", "other"}}));
}

TEST_F(PortbindStoreTest, ARootOtherThanRiloGivesAnEmptyTableThatTheFirstAppendReplaces) {
    writeBind("<?xml version=\"1.0\"?><Nevor><BIND>" + itemXml("old", "1") + "</BIND></Nevor>");
    PRuntimePortbind store;
    EXPECT_TRUE(bindingsOf(store).empty());
    store.append("new", "2");
    EXPECT_EQ(writtenBindings(), (Bindings{{"new", "2"}}));
    EXPECT_EQ(readBind().find("Nevor"), std::string::npos);
}

TEST_F(PortbindStoreTest, RiloWithoutBindGivesAnEmptyTableThatTheFirstAppendReplaces) {
    writeBind("<?xml version=\"1.0\"?><Rilo><MATCH>" + itemXml("old", "1") + "</MATCH></Rilo>");
    PRuntimePortbind store;
    EXPECT_FALSE(store.exist("old"));
    store.append("new", "2");
    EXPECT_EQ(writtenBindings(), (Bindings{{"new", "2"}}));
    EXPECT_EQ(readBind().find("MATCH"), std::string::npos);
}

TEST_F(PortbindStoreTest, AMalformedOrEmptyFileGivesAnEmptyTable) {
    writeBind(portbindXml(itemXml("a", "1")).substr(0, 70));
    PRuntimePortbind broken;
    EXPECT_TRUE(bindingsOf(broken).empty());
    writeBind("");
    PRuntimePortbind empty;
    EXPECT_TRUE(bindingsOf(empty).empty());
}

TEST_F(PortbindStoreTest, EntriesAreReadWhateverTheirNameAndMissingAttributesAreEmpty) {
    writeBind(portbindXml("<Port SOURCE=\"named\" TARGET=\"any\"/>\n"
                          "<Item TARGET=\"no source\"/>\n"
                          "<Item SOURCE=\"no target\"/>\n"
                          "<Item TARGET=\"second empty source\"/>\n"));
    PRuntimePortbind store;
    EXPECT_EQ(store.find("named"), NString("any"));
    // A binding to an empty target cannot be told from no binding by find, only by exist.
    EXPECT_TRUE(store.exist("no target"));
    EXPECT_TRUE(store.find("no target").empty());
    // The empty source is kept (the first one) but cannot be asked for.
    EXPECT_EQ(bindingsOf(store),
              (Bindings{{"", "no source"}, {"named", "any"}, {"no target", ""}}));
    // Kept as they are when the file is written again.
    store.append("new", "1");
    EXPECT_EQ(writtenBindings(),
              (Bindings{{"", "no source"}, {"named", "any"}, {"new", "1"}, {"no target", ""}}));
}

TEST_F(PortbindStoreTest, TraverseOfAnEmptyTableNeverCallsTheCallback) {
    PRuntimePortbind store;
    int calls = 0;
    store.traverse([&](const NString&, const NString&) { ++calls; });
    EXPECT_EQ(calls, 0);
}

TEST_F(PortbindStoreTest, TraverseWithAnEmptyCallbackStillLoads) {
    writeBind(portbindXml(itemXml("a", "1")));
    CountingPortbind store;
    store.traverse(PRuntimePortbind::Visitor());
    EXPECT_EQ(store.reads, 1);
}

TEST_F(PortbindStoreTest, TraverseAndTheFileFollowTheByteOrderOfTheTexts) {
    PRuntimePortbind store;
    for (const char* source : {"b", "é", "B", "a", "10", "9", "ab"}) {
        store.append(source, std::string("to-") + source);
    }
    const Bindings expected{{"10", "to-10"}, {"9", "to-9"}, {"B", "to-B"}, {"a", "to-a"},
                            {"ab", "to-ab"}, {"b", "to-b"}, {"é", "to-é"}};
    EXPECT_EQ(bindingsOf(store), expected);
    EXPECT_EQ(writtenBindings(), expected);
}

TEST_F(PortbindStoreTest, ATraverseCallbackMayCallBackIntoTheStore) {
    PRuntimePortbind store;
    store.append("a", "1");
    store.append("b", "2");
    store.append("c", "3");
    Bindings seen;
    store.traverse([&](const NString& source, const NString& target) {
        seen.emplace_back(source.toStdString(), target.toStdString());
        EXPECT_TRUE(store.exist(source));
        EXPECT_EQ(store.find(source), target);
        store.remove(source);
        store.append(source + "-moved", target);
        EXPECT_GE(bindingsOf(store).size(), 3u);
    });
    EXPECT_EQ(seen, (Bindings{{"a", "1"}, {"b", "2"}, {"c", "3"}}));
    const Bindings expected{{"a-moved", "1"}, {"b-moved", "2"}, {"c-moved", "3"}};
    EXPECT_EQ(bindingsOf(store), expected);
    EXPECT_EQ(writtenBindings(), expected);
}

TEST_F(PortbindStoreTest, WrittenFileHasTheExactLayout) {
    {
        PRuntimePortbind store;
        store.append("usb-2", "tcp:62078");
        store.append("usb-1", "tcp:5555");
    }
    const std::string text = readBind();
    EXPECT_EQ(text, "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"no\"?>\n"
                    "<Rilo>\n"
                    "\t<BIND>\n"
                    "\t\t<Item SOURCE=\"usb-1\" TARGET=\"tcp:5555\" />\n"
                    "\t\t<Item SOURCE=\"usb-2\" TARGET=\"tcp:62078\" />\n"
                    "\t</BIND>\n"
                    "</Rilo>\n");

    pugi::xml_document document;
    ASSERT_TRUE(
        document.load_file(bindPath().c_str(), pugi::parse_default | pugi::parse_declaration));
    pugi::xml_node declaration = document.first_child();
    ASSERT_EQ(declaration.type(), pugi::node_declaration);
    std::vector<std::pair<std::string, std::string>> attributes;
    for (pugi::xml_attribute attribute : declaration.attributes()) {
        attributes.emplace_back(attribute.name(), attribute.value());
    }
    const std::vector<std::pair<std::string, std::string>> expectedDeclaration{
        {"version", "1.0"}, {"encoding", "UTF-8"}, {"standalone", "no"}};
    EXPECT_EQ(attributes, expectedDeclaration);
    pugi::xml_node root = declaration.next_sibling();
    EXPECT_STREQ(root.name(), "Rilo");
    EXPECT_FALSE(root.next_sibling());
    pugi::xml_node list = root.first_child();
    EXPECT_STREQ(list.name(), "BIND");
    EXPECT_FALSE(list.next_sibling());
    int count = 0;
    for (pugi::xml_node item : list.children()) {
        ++count;
        EXPECT_STREQ(item.name(), "Item");
        EXPECT_FALSE(item.first_child());
        pugi::xml_attribute source = item.first_attribute();
        EXPECT_STREQ(source.name(), "SOURCE");
        pugi::xml_attribute target = source.next_attribute();
        EXPECT_STREQ(target.name(), "TARGET");
        EXPECT_FALSE(target.next_attribute());
    }
    EXPECT_EQ(count, 2);
}

TEST_F(PortbindStoreTest, EveryTextSurvivesARoundTripThroughTheFile) {
    const Bindings bindings{{"usb:0x05ac/0x12a8 «iPhone»", "tcp://127.0.0.1:62078?a=1&b=<2>"},
                            {"quotes \" and ' and \t tab", "端口 — ports"},
                            {" leading and trailing ", "  "}};
    {
        PRuntimePortbind store;
        for (const auto& binding : bindings) {
            store.append(binding.first, binding.second);
        }
    }
    PRuntimePortbind reloaded;
    for (const auto& binding : bindings) {
        EXPECT_EQ(reloaded.find(binding.first), NString(binding.second)) << binding.first;
    }
    EXPECT_EQ(bindingsOf(reloaded).size(), bindings.size());
}

TEST_F(PortbindStoreTest, TheDestructorWritesNothing) {
    {
        PRuntimePortbind store;
        store.append("a", "1");
        ASSERT_EQ(std::remove(bindPath().c_str()), 0);
    }
    EXPECT_FALSE(fileExists(bindPath()));
}

TEST_F(PortbindStoreTest, AMissingConfigurationDirectoryKeepsChangesInMemory) {
    const std::string missing = config.outside("missing/config");
    NApplication::setDirectoryConfig(NString(missing));
    PRuntimePortbind store;
    store.append("a", "1");
    store.append("b", "2");
    store.remove("a");
    EXPECT_EQ(bindingsOf(store), (Bindings{{"b", "2"}}));
    EXPECT_FALSE(fileExists(missing));
    EXPECT_FALSE(fileExists(config.outside("missing")));
}

TEST_F(PortbindStoreTest, AReadOnlyDirectoryAndFileKeepChangesInMemoryAndTheFile) {
    {
        PRuntimePortbind seed;
        seed.append("a", "1");
    }
    const std::string before = readBind();
    config.openToEveryone();
    // Neither the directory nor the file may be written: no save can happen at all.
    ASSERT_EQ(::chmod(bindPath().c_str(), 0444), 0);
    ASSERT_EQ(::chmod(config.path().c_str(), 0555), 0);
    {
        Unprivileged guard;
        ASSERT_TRUE(guard.effective());
        PRuntimePortbind store;
        store.append("b", "2");
        store.remove("a");
        EXPECT_EQ(bindingsOf(store), (Bindings{{"b", "2"}}));
    }
    // Neither deleted nor replaced: the directory refused both.
    EXPECT_EQ(readBind(), before);
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(config.path())) {
        names.push_back(entry.path().filename().string());
    }
    EXPECT_EQ(names, std::vector<std::string>{"PortBind.xml"});
}

TEST_F(PortbindStoreTest, AFailedSaveLeavesNoFileAndTheNextSaveRestoresIt) {
    PRuntimePortbind store;
    store.append("a", "1");
    ASSERT_TRUE(fileExists(bindPath()));
    // Files may not grow past a few bytes: the old file is deleted, the new one cannot be
    // written.
    std::signal(SIGXFSZ, SIG_IGN);
    rlimit original{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &original), 0);
    rlimit tiny = original;
    tiny.rlim_cur = 16;
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &tiny), 0);
    store.append("b", "2");
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &original), 0);
    EXPECT_FALSE(fileExists(bindPath()));
    EXPECT_EQ(store.find("b"), NString("2"));

    store.append("c", "3");
    EXPECT_EQ(writtenBindings(), (Bindings{{"a", "1"}, {"b", "2"}, {"c", "3"}}));
}

TEST_F(PortbindStoreTest, StrayTextInsideBindCountsAsAnEmptyBinding) {
    // Every child node is taken, text included; having no attributes, it binds "" to "".
    writeBind(portbindXml("stray text" + itemXml("a", "1")));
    PRuntimePortbind store;
    EXPECT_EQ(bindingsOf(store), (Bindings{{"", ""}, {"a", "1"}}));
}
