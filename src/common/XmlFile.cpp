#include "XmlFile.h"

#include "NFileSystem.h"

#include <sstream>

namespace pallix {

pugi::xml_parse_result XmlFile::load(pugi::xml_document& document, const NString& path) {
    // A directory opens like a file on some systems and then reports an absurd size, which
    // the parser would try to allocate; it can never be a document, so it fails here.
    if (NFileSystem::path::isDirectory(NFileSystem::path(path))) {
        pugi::xml_parse_result result;
        result.status = pugi::status_io_error;
        return result;
    }
    return document.load_file(path.data(), pugi::parse_default, pugi::encoding_utf8);
}

bool XmlFile::save(const pugi::xml_document& document, const NString& path) {
    std::ostringstream text;
    document.save(text, "\t", pugi::format_indent, pugi::encoding_utf8);
    const std::string bytes = text.str();
    return NFileSystem::file::fromBytes(NFileSystem::path(path), NByteArray(bytes));
}

void XmlFile::prependDeclaration(pugi::xml_document& document, const char* encoding,
                                 bool standalone) {
    pugi::xml_node declaration = document.prepend_child(pugi::node_declaration);
    declaration.append_attribute("version").set_value("1.0");
    declaration.append_attribute("encoding").set_value(encoding);
    if (standalone) {
        declaration.append_attribute("standalone").set_value("no");
    }
}

} // namespace pallix
