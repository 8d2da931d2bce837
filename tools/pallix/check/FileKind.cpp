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
        "cloud",  "cpid",     "crash",   "restore-error", "mapping", "config",    "legacy-config",
        "notify", "portbind", "factory", "ipsw",          "version", "old-notify"};
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

bool looksLikeJson(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    return first != std::string::npos && (text[first] == '{' || text[first] == '[');
}

Detection detectXmlKind(SourceFile& file, const pugi::xml_document& document) {
    const pugi::xml_node root = document.document_element();
    const std::string name = root.name();
    Detection detection;
    if (name == "DEVICE") {
        detection.kind = FileKind::Cpid;
    } else if (name == "CRASH") {
        detection.kind = FileKind::Crash;
    } else if (name == "APPLE") {
        detection.kind = FileKind::RestoreError;
    } else if (name == "root") {
        detection.kind = FileKind::Version;
    } else if (name == "Config") {
        detection.kind = FileKind::LegacyConfig;
    } else if (name == "ROOT") {
        detection.kind = FileKind::OldNotify;
    } else if (name == "Rilo") {
        if (root.child("BIND")) {
            detection.kind = FileKind::Portbind;
        } else if (root.child("MATCH")) {
            detection.kind = FileKind::Ipsw;
        } else {
            detection.ambiguity = "cannot tell whether this is the port bindings or the custom "
                                  "firmware list: its root \"Rilo\" has neither \"BIND\" nor "
                                  "\"MATCH\"; name its kind with --kind";
        }
    } else if (name == "Nevor") {
        detection.kind = detectNevorKind(root);
        if (!detection.kind) {
            detection.ambiguity = "cannot tell what kind of file this is: its root \"Nevor\" is "
                                  "shared by the cloud document, the plug-in mapping, the "
                                  "configuration and the notifications; name its kind with --kind";
        }
    } else {
        // Every reader of the library looks for a root of its own and reads nothing without it.
        detection.unknownRoot = true;
        file.error(file.offsetOf(root),
                   "the root element " + inQuotes(name) +
                       " is none that the library reads: no table, document or store takes "
                       "anything from this file; name its kind with --kind to check it as one");
    }
    return detection;
}

std::optional<FileKind> detectFileKind(SourceFile& file) {
    if (looksLikeJson(file.text())) {
        return FileKind::Factory;
    }
    pugi::xml_document document;
    if (!parseXml(file, document)) {
        return std::nullopt;
    }
    const Detection detection = detectXmlKind(file, document);
    if (!detection.ambiguity.empty()) {
        file.error(0, detection.ambiguity);
    }
    return detection.kind;
}

} // namespace pallix::check
