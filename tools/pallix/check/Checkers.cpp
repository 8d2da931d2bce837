#include "Checkers.h"

#include "ValueRules.h"

#include <algorithm>
#include <utility>

namespace pallix::check {

namespace {

using Checker = void (*)(SourceFile&, const pugi::xml_node&);

const std::pair<FileKind, Checker> kCheckers[] = {
    {FileKind::Cloud, checkCloud},
    {FileKind::Cpid, checkCpid},
    {FileKind::Crash, checkCrash},
    {FileKind::RestoreError, checkRestoreError},
    {FileKind::Mapping, checkMapping},
    {FileKind::Config, checkConfig},
    {FileKind::LegacyConfig, checkLegacyConfig},
    {FileKind::Version, checkVersion},
    {FileKind::Notify, checkNotify},
    {FileKind::OldNotify, checkOldNotify},
    {FileKind::Portbind, checkPortbind},
    {FileKind::Ipsw, checkIpsw},
};

} // namespace

std::string checkFile(SourceFile& file, std::optional<FileKind> kind) {
    if (kind == FileKind::Factory || (!kind && looksLikeJson(file.text()))) {
        checkFactory(file);
        return std::string();
    }
    // Parsed once, as the library parses it: every check below sees what the library sees.
    if (!file.parseXml()) {
        return std::string();
    }
    std::string ambiguity;
    if (!kind && !(kind = detectXmlKind(file, ambiguity)) && !ambiguity.empty()) {
        return ambiguity;
    }
    checkXmlSyntax(file);
    const pugi::xml_node root = kind ? requireRoot(file, rootOf(*kind)) : pugi::xml_node();
    for (const auto& [checked, check] : kCheckers) {
        if (root && checked == *kind) {
            check(file, root);
        }
    }
    return std::string();
}

std::vector<Finding> checkBytes(const std::string& name, const std::string& bytes, FileKind kind) {
    SourceFile file(name, bytes);
    checkFile(file, kind);
    return file.findings();
}

} // namespace pallix::check
