#include "FileKind.h"

#include "SourceFile.h"
#include "ValueRules.h"

#include <pugixml.hpp>

namespace pallix::check {

namespace {

// Children of the root "Nevor" that only one kind of file has.
bool hasAnyChild(const pugi::xml_node& node, std::initializer_list<const char*> names) {
    for (const char* name : names) {
        if (node.child(name)) {
            return true;
        }
    }
    return false;
}

std::optional<FileKind> detectNevorKind(const pugi::xml_node& root) {
    if (root.child("Notify")) {
        return FileKind::Notify;
    }
    if (hasAnyChild(root, {"Application", "Cooperate", "Device"})) {
        return FileKind::Cloud;
    }
    if (hasAnyChild(root, {"LastVersion", "PopupTimeADAPP", "SameTimeDownloadNumber",
                           "DownloadMaxSpeed", "LastSkin", "LastLanguage", "RestoreCore", "Status",
                           "Directory", "Tools", "CustomBackup", "FileFavorites", "AutoImport",
                           "VirtualLocation", "LocationFavorites", "UserDir"})) {
        return FileKind::Config;
    }
    for (pugi::xml_node child = root.first_child(); child; child = child.next_sibling()) {
        if (child.attribute("Version") || child.attribute("Mapping")) {
            return FileKind::Mapping;
        }
    }
    return std::nullopt;
}

} // namespace

const std::vector<std::string>& fileKindNames() {
    static const std::vector<std::string> names = {
        "cloud",         "cpid",   "crash",    "restore-error", "mapping", "config",
        "legacy-config", "notify", "portbind", "factory",       "ipsw",    "version"};
    return names;
}

std::string nameOf(FileKind kind) {
    return fileKindNames()[static_cast<std::size_t>(kind)];
}

std::optional<FileKind> fileKindFromName(const std::string& name) {
    const auto& names = fileKindNames();
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (names[i] == name) {
            return static_cast<FileKind>(i);
        }
    }
    return std::nullopt;
}

std::optional<FileKind> detectFileKind(SourceFile& file) {
    const std::string& text = file.text();
    const auto first = text.find_first_not_of(" \t\r\n");
    if (first != std::string::npos && (text[first] == '{' || text[first] == '[')) {
        return FileKind::Factory;
    }
    pugi::xml_document document;
    if (!parseXml(file, document)) {
        return std::nullopt;
    }
    const pugi::xml_node root = document.document_element();
    const std::string name = root.name();
    std::optional<FileKind> kind;
    if (name == "DEVICE") {
        kind = FileKind::Cpid;
    } else if (name == "CRASH") {
        kind = FileKind::Crash;
    } else if (name == "APPLE") {
        kind = FileKind::RestoreError;
    } else if (name == "root") {
        kind = FileKind::Version;
    } else if (name == "Config") {
        kind = FileKind::LegacyConfig;
    } else if (name == "Rilo") {
        if (root.child("BIND")) {
            kind = FileKind::Portbind;
        } else if (root.child("MATCH")) {
            kind = FileKind::Ipsw;
        }
    } else if (name == "Nevor") {
        kind = detectNevorKind(root);
    }
    if (!kind) {
        file.error(root ? file.offsetOf(root) : 0,
                   root ? "cannot tell what kind of file this is from its root element " +
                              inQuotes(name) + "; name it with --kind"
                        : "the document has no root element");
    }
    return kind;
}

} // namespace pallix::check
