#include "FileKind.h"

#include "CloudFormat.h"
#include "ConfigurationFormat.h"
#include "SourceFile.h"
#include "StoreFormats.h"
#include "TableFormats.h"
#include "ValueRules.h"

#include <algorithm>
#include <iterator>

namespace pallix::check {

namespace {

namespace cfg = format::configuration;

// Each kind's name and root, in the order of FileKind.
const std::pair<const char*, const char*> kKinds[] = {
    {"cloud", format::cloud::kRoot},
    {"cpid", format::cpid::kRoot},
    {"crash", format::crash::kRoot},
    {"restore-error", format::restore_error::kRoot},
    {"mapping", format::plugin_mapping::kRoot},
    {"config", cfg::kRoot},
    {"legacy-config", cfg::legacy::kRoot},
    {"notify", format::notify::kRoot},
    {"portbind", format::portbind::kRoot},
    {"factory", nullptr},
    {"ipsw", format::custom_firmware::kRoot},
    {"version", cfg::version::kRoot},
    {"old-notify", format::notify::kOldRoot},
};

template <typename Names> bool hasAnyChild(const pugi::xml_node& node, const Names& names) {
    return std::any_of(std::begin(names), std::end(names),
                       [&node](const char* name) { return static_cast<bool>(node.child(name)); });
}

// The kinds that share the cloud document's root, each told by children that only it has.
std::optional<FileKind> detectNevorKind(const pugi::xml_node& root) {
    const char* const cloudParts[] = {format::cloud::kApplication, format::cloud::kCooperate,
                                      format::cloud::kDevice};
    if (root.child(format::notify::kList)) {
        return FileKind::Notify;
    }
    if (hasAnyChild(root, cloudParts)) {
        return FileKind::Cloud;
    }
    if (hasAnyChild(root, cfg::kScalars) || hasAnyChild(root, cfg::kLists)) {
        return FileKind::Config;
    }
    for (pugi::xml_node row = root.first_child(); row; row = row.next_sibling()) {
        if (row.attribute(format::plugin_mapping::kVersion) ||
            row.attribute(format::plugin_mapping::kMapping)) {
            return FileKind::Mapping;
        }
    }
    return std::nullopt;
}

} // namespace

const std::vector<std::string>& fileKindNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const auto& kind : kKinds) {
            all.emplace_back(kind.first);
        }
        return all;
    }();
    return names;
}

std::string nameOf(FileKind kind) {
    return kKinds[static_cast<std::size_t>(kind)].first;
}

const char* rootOf(FileKind kind) {
    return kKinds[static_cast<std::size_t>(kind)].second;
}

std::optional<FileKind> fileKindFromName(const std::string& name) {
    const auto& names = fileKindNames();
    const auto found = std::find(names.begin(), names.end(), name);
    return found == names.end() ? std::nullopt
                                : std::optional<FileKind>(FileKind(found - names.begin()));
}

bool looksLikeJson(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    return first != std::string::npos && (text[first] == '{' || text[first] == '[');
}

std::optional<FileKind> detectXmlKind(SourceFile& file, std::string& ambiguity) {
    const pugi::xml_node root = file.document().document_element();
    const std::string name = root.name();
    if (name == format::portbind::kRoot || name == format::custom_firmware::kRoot) {
        if (root.child(format::portbind::kList)) {
            return FileKind::Portbind;
        }
        if (root.child(format::custom_firmware::kList)) {
            return FileKind::Ipsw;
        }
        ambiguity = "cannot tell whether this is the port bindings or the custom firmware list: "
                    "its root " +
                    inQuotes(name) + " has neither " + inQuotes(format::portbind::kList) + " nor " +
                    inQuotes(format::custom_firmware::kList) + "; name its kind with --kind";
        return std::nullopt;
    }
    if (name == format::cloud::kRoot || name == cfg::kRoot || name == format::notify::kRoot ||
        name == format::plugin_mapping::kRoot) {
        const std::optional<FileKind> kind = detectNevorKind(root);
        if (!kind) {
            ambiguity = "cannot tell what kind of file this is: its root " + inQuotes(name) +
                        " is shared by the cloud document, the plug-in mapping, the "
                        "configuration and the notifications; name its kind with --kind";
        }
        return kind;
    }
    for (const auto& kind : kKinds) {
        if (kind.second != nullptr && name == kind.second) {
            return FileKind(&kind - kKinds);
        }
    }
    // Every reader of the library looks for a root of its own and reads nothing without it.
    file.error(file.offsetOf(root),
               "the root element " + inQuotes(name) +
                   " is none that the library reads: no table, document or store takes "
                   "anything from this file; name its kind with --kind to check it as one");
    return std::nullopt;
}

std::optional<FileKind> detectFileKind(SourceFile& file) {
    if (looksLikeJson(file.text())) {
        return FileKind::Factory;
    }
    std::string ambiguity;
    const std::optional<FileKind> kind =
        file.parseXml() ? detectXmlKind(file, ambiguity) : std::nullopt;
    if (!ambiguity.empty()) {
        file.error(0, ambiguity);
    }
    return kind;
}

} // namespace pallix::check
