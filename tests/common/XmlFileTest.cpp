// XmlFile::save() writes exactly what pugixml's own save to a stream gives for the same
// document, with the library's layout (a tab per level, indented formatting only, UTF-8).

#include "XmlFile.h"
#include "TemporaryDirectory.h"
#include "XmlText.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sstream>
#include <string>

using pallix::XmlFile;
using pallix::test::TemporaryDirectory;

namespace {

std::string streamed(const pugi::xml_document& document) {
    std::ostringstream text;
    document.save(text, "\t", pugi::format_indent, pugi::encoding_utf8);
    return text.str();
}

class XmlFileTest : public ::testing::Test {
protected:
    // What XmlFile::save() put in the file.
    std::string saved(const pugi::xml_document& document) {
        EXPECT_TRUE(XmlFile::save(document, NString(m_file)));
        return TemporaryDirectory::read(m_file);
    }

    TemporaryDirectory m_directory{"pallix-xml-file"};
    std::string m_file = m_directory.file("document.xml");
};

} // namespace

TEST_F(XmlFileTest, DocumentWithItsDeclaration) {
    pugi::xml_document document;
    pugi::xml_node root = document.append_child("Nevor");
    XmlFile::prependDeclaration(document, "utf-8", false);
    root.append_child("Value").append_attribute("Value").set_value("a & b <c> \"d\" 'e'\t\n\r");
    root.append_child("Number").append_attribute("Value").set_value(18446744073709551615ull);
    root.append_child("Flag").append_attribute("Value").set_value(true);
    root.append_child("Double").append_attribute("Value").set_value(0.1);
    root.append_child("Empty");
    EXPECT_EQ(saved(document), streamed(document));
}

TEST_F(XmlFileTest, DocumentWithAStandaloneDeclaration) {
    pugi::xml_document document;
    document.append_child("Rilo").append_child("BIND");
    XmlFile::prependDeclaration(document, "UTF-8", true);
    EXPECT_EQ(saved(document), streamed(document));
}

TEST_F(XmlFileTest, DocumentWithoutADeclarationGetsPugixmlsDefaultOne) {
    pugi::xml_document document;
    document.append_child("ROOT").append_attribute("A").set_value("\xe4\xb8\xad\xe6\x96\x87");
    const std::string bytes = saved(document);
    EXPECT_EQ(bytes, streamed(document));
    EXPECT_EQ(bytes.rfind("<?xml version=\"1.0\"?>\n", 0), 0u);
}

TEST_F(XmlFileTest, EmptyDocument) {
    const pugi::xml_document document;
    EXPECT_EQ(saved(document), streamed(document));
}

TEST_F(XmlFileTest, DeepNesting) {
    pugi::xml_document document;
    XmlFile::prependDeclaration(document, "utf-8", false);
    pugi::xml_node node = document;
    for (int depth = 0; depth < 300; ++depth) {
        node = node.append_child("Level");
        node.append_attribute("Depth").set_value(depth);
    }
    node.append_child(pugi::node_pcdata).set_value("bottom & <end>");
    EXPECT_EQ(saved(document), streamed(document));
}

TEST_F(XmlFileTest, EveryKindOfNode) {
    pugi::xml_document document;
    XmlFile::prependDeclaration(document, "utf-8", false);
    document.append_child(pugi::node_comment).set_value(" a comment ");
    document.append_child(pugi::node_doctype).set_value("Nevor");
    pugi::xml_node root = document.append_child("Nevor");
    root.append_child(pugi::node_pi).set_name("target");
    root.append_child(pugi::node_cdata).set_value("raw <text> & ]]> end");
    pugi::xml_node mixed = root.append_child("Mixed");
    mixed.append_child(pugi::node_pcdata).set_value("text ");
    mixed.append_child("Inner").append_child(pugi::node_pcdata).set_value("inner");
    mixed.append_child(pugi::node_pcdata).set_value(" tail");
    EXPECT_EQ(saved(document), streamed(document));
}

// Larger than any buffer pugixml writes through at once, with characters of several bytes
// across the chunks' boundaries.
TEST_F(XmlFileTest, LargeDocument) {
    pugi::xml_document document;
    XmlFile::prependDeclaration(document, "utf-8", false);
    pugi::xml_node root = document.append_child("Nevor");
    for (int i = 0; i < 5000; ++i) {
        pugi::xml_node item = root.append_child("Item");
        item.append_attribute("ID").set_value(i);
        item.append_attribute("Title").set_value(std::string(static_cast<std::size_t>(i % 7), 'x')
                                                     .append("\xe6\x96\xb0 & \xf0\x9f\x93\xb1 <")
                                                     .c_str());
    }
    EXPECT_EQ(saved(document), streamed(document));
}

TEST_F(XmlFileTest, ReplaceOrRemoveWritesTheSameBytes) {
    pugi::xml_document document;
    document.append_child("Rilo").append_child("MATCH").append_attribute("URL").set_value("u&v");
    XmlFile::prependDeclaration(document, "utf-8", false);
    EXPECT_TRUE(XmlFile::replaceOrRemove(document, NString(m_file)));
    EXPECT_EQ(TemporaryDirectory::read(m_file), streamed(document));
}

// A list's elements rendered one by one at their depth are, put together, the list's part of
// the whole document's text: what the notification store relies on to render only the items
// that changed.
TEST(XmlTextTest, ElementsRenderAsInTheirDocument) {
    pugi::xml_document document;
    pugi::xml_node list = document.append_child("Nevor").append_child("Notify");
    XmlFile::prependDeclaration(document, "utf-8", false);
    for (int i = 0; i < 50; ++i) {
        pugi::xml_node item = list.append_child("Item");
        item.append_child("ID").append_attribute("VALUE").set_value(i);
        item.append_child("Title").append_attribute("VALUE").set_value(
            std::string(static_cast<std::size_t>(i), '&').append("\xe6\x96\xb0 <\"'>\t").c_str());
        if (i % 5 == 0) {
            item.append_child("Empty");
        }
        if (i % 7 == 0) {
            item.append_child(pugi::node_pcdata).set_value("text");
        }
    }
    std::string whole;
    pallix::XmlText::appendDocument(whole, document);
    EXPECT_EQ(whole, streamed(document));

    std::string items;
    for (pugi::xml_node item = list.first_child(); item; item = item.next_sibling()) {
        pallix::XmlText::appendNode(items, item, 2);
    }
    EXPECT_EQ(whole, "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n<Nevor>\n\t<Notify>\n" + items +
                         "\t</Notify>\n</Nevor>\n");
}
