#include "TableRows.h"

#include "NFileSystem.h"
#include "XmlFile.h"

namespace pallix::tables {

bool loadTableFile(pugi::xml_document& document, const NString& path) {
    return NFileSystem::path::exist(NFileSystem::path(path)) && XmlFile::load(document, path);
}

} // namespace pallix::tables
