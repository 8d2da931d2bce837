#include "XmlFile.h"

#include "NFileSystem.h"
#include "WriteOutcome.h"
#include "XmlText.h"

#include <utility>

namespace pallix {

pugi::xml_parse_result XmlFile::load(pugi::xml_document& document, const NString& path) {
    // The framework's reader takes only regular files and never blocks: a FIFO, a device or a
    // directory where a file should be reads as nothing, which fails to parse like a missing
    // file, and the caller goes on.
    const NByteArray bytes = NFileSystem::file::toBytes(NFileSystem::path(path));
    return document.load_buffer(bytes.data(), bytes.size(), pugi::parse_default,
                                pugi::encoding_utf8);
}

bool XmlFile::save(const pugi::xml_document& document, const NString& path) {
    std::string text;
    text.reserve(XmlText::kSmallFile);
    XmlText::appendDocument(text, document);
    return saveText(std::move(text), path);
}

bool XmlFile::saveText(std::string text, const NString& path) {
    const bool written =
        NFileSystem::file::fromBytes(NFileSystem::path(path), NByteArray(std::move(text)));
    recordWrite(written);
    return written;
}

bool XmlFile::replaceOrRemove(const pugi::xml_document& document, const NString& path) {
    if (save(document, path)) {
        return true;
    }
    // Only a regular file can hold stale content; a FIFO or a directory that made the save
    // fail is the user's and stays.
    const NFileSystem::path file(path);
    if (NFileSystem::file::exist(file)) {
        NFileSystem::file::remove(file);
    }
    return false;
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
