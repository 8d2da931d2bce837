#include "Lookup.h"

#include "Failure.h"
#include "ToolOutput.h"
#include "check/SourceFile.h"

#include <sys/stat.h>

#include <cerrno>
#include <cstring>

namespace pallix::tool {

std::string describeKind(check::FileKind kind) {
    switch (kind) {
    case check::FileKind::Cloud:
        return "a cloud document";
    case check::FileKind::Cpid:
        return "a chip table";
    case check::FileKind::Crash:
        return "a crash code table";
    case check::FileKind::RestoreError:
        return "a restore error table";
    case check::FileKind::Mapping:
        return "a plug-in mapping table";
    case check::FileKind::Config:
        return "a configuration file";
    case check::FileKind::LegacyConfig:
        return "a legacy configuration file";
    case check::FileKind::Notify:
        return "a notification store";
    case check::FileKind::Portbind:
        return "a port binding store";
    case check::FileKind::Factory:
        return "a factory information store";
    case check::FileKind::Ipsw:
        return "a restore firmware store";
    case check::FileKind::Version:
        return "a version file";
    case check::FileKind::OldNotify:
        return "a notification of the old layout";
    }
    return "a file of kind " + check::nameOf(kind);
}

void requireFileKind(const std::string& path, check::FileKind expected) {
    // Looked at before reading: reading a pipe or a device could wait for ever.
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        failUnreadable(path + (errno == ENOENT ? std::string(": no such file")
                                               : ": cannot be read (" +
                                                     std::string(std::strerror(errno)) + ")"));
    }
    if (S_ISDIR(info.st_mode)) {
        failUnreadable(path + ": is a directory");
    }
    if (!S_ISREG(info.st_mode)) {
        failUnreadable(path + ": is not a regular file");
    }
    check::SourceFile file(path);
    const std::optional<check::FileKind> kind =
        file.readable() ? check::detectFileKind(file) : std::nullopt;
    if (kind == expected) {
        return;
    }
    if (kind) {
        failUsage(path + " is " + describeKind(*kind) + ", not " + describeKind(expected));
    }
    // Unreadable, not well-formed, or of a kind that its content does not tell: the first
    // finding says which.
    if (file.findings().empty()) {
        failUnreadable(path + ": cannot be read");
    }
    const check::Finding& finding = file.findings().front();
    if (!file.readable()) {
        failUnreadable(path + ": " + finding.message);
    }
    failUnreadable(path + ":" + std::to_string(finding.line) + ":" +
                   std::to_string(finding.column) + ": " + finding.message +
                   " (run 'pallix check --kind " + check::nameOf(expected) + " " + path + "')");
}

} // namespace pallix::tool
