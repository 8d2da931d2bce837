#include "Checkers.h"

#include "SourceFile.h"

namespace pallix::check {

namespace {

void checkXml(SourceFile& file, const pugi::xml_document& document, FileKind kind) {
    switch (kind) {
    case FileKind::Cloud:
        return checkCloud(file, document);
    case FileKind::Cpid:
        return checkCpid(file, document);
    case FileKind::Crash:
        return checkCrash(file, document);
    case FileKind::RestoreError:
        return checkRestoreError(file, document);
    case FileKind::Mapping:
        return checkMapping(file, document);
    case FileKind::Config:
        return checkConfig(file, document);
    case FileKind::LegacyConfig:
        return checkLegacyConfig(file, document);
    case FileKind::Notify:
        return checkNotify(file, document);
    case FileKind::OldNotify:
        return checkOldNotify(file, document);
    case FileKind::Portbind:
        return checkPortbind(file, document);
    case FileKind::Ipsw:
        return checkIpsw(file, document);
    case FileKind::Version:
        return checkVersion(file, document);
    case FileKind::Factory:
        return;
    }
}

} // namespace

std::string checkFile(SourceFile& file, std::optional<FileKind> kind) {
    if (kind == FileKind::Factory || (!kind && looksLikeJson(file.text()))) {
        checkFactory(file);
        return std::string();
    }
    // Parsed once with the library's options; every check below sees what the library sees.
    pugi::xml_document document;
    if (!parseXml(file, document)) {
        return std::string();
    }
    if (!kind) {
        const Detection detection = detectXmlKind(file, document);
        if (!detection.ambiguity.empty()) {
            return detection.ambiguity;
        }
        kind = detection.kind;
    }
    checkXmlSyntax(file, document);
    if (kind) {
        checkXml(file, document, *kind);
    }
    return std::string();
}

} // namespace pallix::check
