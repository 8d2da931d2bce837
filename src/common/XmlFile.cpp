#include "XmlFile.h"

#include "NFileSystem.h"
#include "NFileSystemBuffer.h"
#include "WriteOutcome.h"
#include "XmlText.h"

#include <utility>

namespace pallix {

pugi::xml_parse_result XmlFile::load(pugi::xml_document& document, const NString& path) {
    // The framework's reader takes only regular files and never blocks: a FIFO, a device or a
    // directory where a file should be reads as nothing, which fails to parse like a missing
    // file, and the caller goes on.
    char* bytes = nullptr;
    std::size_t size = 0;
    if (!NFileSystem::file::toBuffer(NFileSystem::path(path),
                                     pugi::get_memory_allocation_function(),
                                     pugi::get_memory_deallocation_function(), bytes, size)) {
        return document.load_buffer("", 0, pugi::parse_default, pugi::encoding_utf8);
    }
    // Read into the parser's own memory and parsed where the bytes lie, as pugixml's load_file
    // does, instead of being copied into a buffer of the parser first: for a large table the
    // copy cost a tenth of the load. The parser's copy would end with a NUL and count it; so
    // does this buffer, and the parser sees the very same input.
    bytes[size] = '\0';
    return document.load_buffer_inplace_own(bytes, size + 1, pugi::parse_default,
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
