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

bool XmlText::textAround(const pugi::xml_document& document, const pugi::xml_node& marker,
                         unsigned int depth, std::string& head, std::string& tail) {
    std::string whole;
    appendDocument(whole, document);
    std::string own;
    appendNode(own, marker, depth);
    const std::size_t at = whole.find(own);
    if (own.empty() || at == std::string::npos) {
        return false;
    }
    head = whole.substr(0, at);
    tail = whole.substr(at + own.size());
    return true;
}

} // namespace pallix
