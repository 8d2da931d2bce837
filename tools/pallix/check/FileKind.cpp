#include "FileKind.h"

#include "CloudFormat.h"
#include "ConfigurationFormat.h"
#include "SourceFile.h"
#include "StoreFormats.h"
#include "TableFormats.h"
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
    if (root.child(format::notify::kList)) {
        return FileKind::Notify;
    }
    if (hasAnyChild(root, {format::cloud::kApplication, format::cloud::kCooperate,
                           format::cloud::kDevice})) {
        return FileKind::Cloud;
    }
    namespace configuration = format::configuration;
    if (hasAnyChild(root, {configuration::kLastVersion, configuration::kPopupTimeADAPP,
                           configuration::kSameTimeDownloadNumber, configuration::kDownloadMaxSpeed,
                           configuration::kLastSkin, configuration::kLastLanguage,
                           configuration::kRestoreCore, configuration::kStatus,
                           configuration::kDirectory, configuration::kTools,
                           configuration::kCustomBackup, configuration::kFileFavorites,
                           configuration::kAutoImport, configuration::kVirtualLocation,
                           configuration::kLocationFavorites, configuration::kUserDir})) {
        return FileKind::Config;
    }
    for (pugi::xml_node child = root.first_child(); child; child = child.next_sibling()) {
        if (child.attribute(format::plugin_mapping::kVersion) ||
            child.attribute(format::plugin_mapping::kMapping)) {
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
    if (name == format::cpid::kRoot) {
        detection.kind = FileKind::Cpid;
    } else if (name == format::crash::kRoot) {
        detection.kind = FileKind::Crash;
    } else if (name == format::restore_error::kRoot) {
        detection.kind = FileKind::RestoreError;
    } else if (name == format::configuration::version::kRoot) {
        detection.kind = FileKind::Version;
    } else if (name == format::configuration::legacy::kRoot) {
        detection.kind = FileKind::LegacyConfig;
    } else if (name == format::notify::kOldRoot) {
        detection.kind = FileKind::OldNotify;
    } else if (name == format::portbind::kRoot || name == format::custom_firmware::kRoot) {
        if (root.child(format::portbind::kList)) {
            detection.kind = FileKind::Portbind;
        } else if (root.child(format::custom_firmware::kList)) {
            detection.kind = FileKind::Ipsw;
        } else {
            detection.ambiguity = "cannot tell whether this is the port bindings or the custom "
                                  "firmware list: its root \"Rilo\" has neither \"BIND\" nor "
                                  "\"MATCH\"; name its kind with --kind";
        }
    } else if (name == format::cloud::kRoot || name == format::configuration::kRoot ||
               name == format::notify::kRoot || name == format::plugin_mapping::kRoot) {
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
