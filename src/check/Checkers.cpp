// What the checker knows of each kind of file: its name, the root its reader looks for, how it
// is told from the kinds that share its root, and its checker.

#include "Checkers.h"

#include "CloudFormat.h"
#include "ConfigurationFormat.h"
#include "StoreFormats.h"
#include "TableFormats.h"
#include "ValueRules.h"

#include <algorithm>
#include <iterator>

namespace pallix::check {

namespace {

namespace cfg = format::configuration;

struct Kind {
    const char* name;
    const char* description;
    const char* root; // null for factory information, JSON
    void (*check)(SourceFile&, const pugi::xml_node& root);
};

// In the order of FileKind.
const Kind kKinds[] = {
    {"cloud", "a cloud document", format::cloud::kRoot, checkCloud},
    {"cpid", "a chip table", format::cpid::kRoot, checkCpid},
    {"crash", "a crash code table", format::crash::kRoot, checkCrash},
    {"restore-error", "a restore error table", format::restore_error::kRoot, checkRestoreError},
    {"mapping", "a plug-in mapping table", format::plugin_mapping::kRoot, checkMapping},
    {"config", "a configuration file", cfg::kRoot, checkConfig},
    {"legacy-config", "a legacy configuration file", cfg::legacy::kRoot, checkLegacyConfig},
    {"notify", "a notification store", format::notify::kRoot, checkNotify},
    {"portbind", "a port binding store", format::portbind::kRoot, checkPortbind},
    {"factory", "a factory information store", nullptr, nullptr},
    {"ipsw", "a restore firmware store", format::custom_firmware::kRoot, checkIpsw},
    {"version", "a version file", cfg::version::kRoot, checkVersion},
    {"old-notify", "a notification of the old layout", format::notify::kOldRoot, checkOldNotify},
};

const Kind& kindOf(FileKind kind) {
    return kKinds[static_cast<std::size_t>(kind)];
}

template <typename Names> bool hasAnyChild(const pugi::xml_node& node, const Names& names) {
    return std::any_of(std::begin(names), std::end(names),
                       [&node](const char* name) { return static_cast<bool>(node.child(name)); });
}

// The kinds that share the cloud document's root, each told by children that only it has.
std::optional<FileKind> nevorKind(const pugi::xml_node& root) {
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

// The kind of a parsed XML file, or nothing: `ambiguity` says why, or a finding that no reader
// takes the root.
std::optional<FileKind> xmlKind(SourceFile& file, std::string& ambiguity) {
    const pugi::xml_node root = file.document().document_element();
    const std::string name = root.name();
    if (name == format::portbind::kRoot || name == format::custom_firmware::kRoot) {
        if (root.child(format::portbind::kList) || root.child(format::custom_firmware::kList)) {
            return root.child(format::portbind::kList) ? FileKind::Portbind : FileKind::Ipsw;
        }
        ambiguity = "cannot tell whether this is the port bindings or the custom firmware list: "
                    "its root " +
                    inQuotes(name) + " has neither " + inQuotes(format::portbind::kList) + " nor " +
                    inQuotes(format::custom_firmware::kList) +
                    "; 'pallix check --kind KIND' checks it as one of them";
        return std::nullopt;
    }
    if (name == format::cloud::kRoot || name == cfg::kRoot || name == format::notify::kRoot ||
        name == format::plugin_mapping::kRoot) {
        const std::optional<FileKind> kind = nevorKind(root);
        if (!kind) {
            ambiguity =
                "cannot tell what kind of file this is: its root " + inQuotes(name) +
                " is shared by the cloud document, the plug-in mapping, the "
                "configuration and the notifications; 'pallix check --kind KIND' checks it as "
                "one of them";
        }
        return kind;
    }
    for (const Kind& kind : kKinds) {
        if (kind.root != nullptr && name == kind.root) {
            return FileKind(&kind - kKinds);
        }
    }
    // Every reader of the library looks for a root of its own and reads nothing without it.
    file.error(file.offsetOf(root),
               "the root element " + inQuotes(name) +
                   " is none that the library reads: no table, document or store takes "
                   "anything from this file ('pallix check --kind KIND' checks it as one of them)");
    return std::nullopt;
}

bool looksLikeJson(const std::string& text) {
    const auto first = text.find_first_not_of(" \t\r\n");
    return first != std::string::npos && (text[first] == '{' || text[first] == '[');
}

} // namespace

const std::vector<std::string>& fileKindNames() {
    static const std::vector<std::string> names = [] {
        std::vector<std::string> all;
        for (const Kind& kind : kKinds) {
            all.emplace_back(kind.name);
        }
        return all;
    }();
    return names;
}

std::string nameOf(FileKind kind) {
    return kindOf(kind).name;
}

std::string describe(FileKind kind) {
    return kindOf(kind).description;
}

std::optional<FileKind> fileKindFromName(const std::string& name) {
    const auto found = std::find(fileKindNames().begin(), fileKindNames().end(), name);
    return found == fileKindNames().end()
               ? std::nullopt
               : std::optional(FileKind(found - fileKindNames().begin()));
}

std::optional<FileKind> detectFileKind(SourceFile& file) {
    if (looksLikeJson(file.text())) {
        return FileKind::Factory;
    }
    std::string ambiguity;
    const std::optional<FileKind> kind = file.parseXml() ? xmlKind(file, ambiguity) : std::nullopt;
    if (!ambiguity.empty()) {
        file.error(0, ambiguity);
    }
    return kind;
}

std::string checkFile(SourceFile& file, std::optional<FileKind> kind) {
    if (kind == FileKind::Factory || (!kind && looksLikeJson(file.text()))) {
        checkFactory(file);
        return std::string();
    }
    // Parsed once, as the library parses it: every check below sees what the library sees.
    if (!file.parseXml()) {
        return std::string();
    }
    if (!kind) {
        std::string ambiguity;
        kind = xmlKind(file, ambiguity);
        if (!ambiguity.empty()) {
            return ambiguity;
        }
    }
    checkXmlSyntax(file, kind ? kindOf(*kind).root : nullptr);
    // Without its own root (or, for a root no reader takes, any kind) nothing more is read.
    const pugi::xml_node root = kind ? requireRoot(file, kindOf(*kind).root) : pugi::xml_node();
    if (root) {
        kindOf(*kind).check(file, root);
    }
    return std::string();
}

std::vector<Finding> checkBytes(const std::string& name, const std::string& bytes, FileKind kind) {
    SourceFile file(name, bytes);
    checkFile(file, kind);
    return file.findings();
}

} // namespace pallix::check
