#include "XmlText.h"

namespace pallix {

namespace {

constexpr char kIndent[] = "\t";
constexpr unsigned int kFormat = pugi::format_indent;

class StringWriter final : public pugi::xml_writer {
public:
    explicit StringWriter(std::string& text) : m_text(text) {}
    void write(const void* data, std::size_t size) override {
        m_text.append(static_cast<const char*>(data), size);
    }

private:
    std::string& m_text;
};

} // namespace

void XmlText::appendDocument(std::string& text, const pugi::xml_document& document) {
    StringWriter writer(text);
    document.save(writer, kIndent, kFormat, pugi::encoding_utf8);
}

void XmlText::appendNode(std::string& text, const pugi::xml_node& node, unsigned int depth) {
    StringWriter writer(text);
    node.print(writer, kIndent, kFormat, pugi::encoding_utf8, depth);
}

} // namespace pallix
