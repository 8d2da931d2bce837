#include "FileGuard.h"

#include "Failure.h"
#include "ToolOutput.h"
#include "check/SourceFile.h"

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace pallix::tool {

namespace {

std::string firstError(const check::SourceFile& file) {
    for (const check::Finding& finding : file.findings()) {
        if (finding.severity == check::Severity::Error) {
            return finding.message;
        }
    }
    return "cannot be read";
}

// Why the library could not read the file as `kind`, or nothing.
std::string readingProblem(const std::string& path, check::FileKind kind) {
    // Opened without blocking: the kind of file was checked by name, and may have changed.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return std::string("cannot be read (") + std::strerror(errno) + ")";
    }
    ::close(descriptor);

    check::SourceFile file(path);
    if (!file.readable()) {
        return firstError(file);
    }
    if (kind == check::FileKind::Factory) {
        const auto document = nlohmann::json::parse(file.text(), nullptr, false);
        if (document.is_discarded()) {
            return "is not valid JSON";
        }
        return document.is_object() ? std::string() : "does not hold a JSON object";
    }
    const std::optional<check::FileKind> found = check::detectFileKind(file);
    if (!found) {
        return firstError(file);
    }
    if (*found != kind) {
        return "is a " + check::nameOf(*found) + " file, not a " + check::nameOf(kind) + " file";
    }
    return std::string();
}

} // namespace

void guardFile(const std::string& path, check::FileKind kind, bool force) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        if (errno == ENOENT) {
            return;
        }
        failUnreadable(path + ": cannot be read (" + std::strerror(errno) + "); not changing it");
    }
    if (!S_ISREG(info.st_mode)) {
        failUnreadable(path + ": is not a regular file; not replacing it");
    }
    const std::string problem = readingProblem(path, kind);
    if (problem.empty()) {
        return;
    }
    if (force) {
        reportWarning(path + ": " + problem + "; replacing it, as --force asks");
        return;
    }
    failUnreadable(path + ": " + problem + "; not changing it (run 'pallix check " + path +
                   "' to see why, or pass --force to replace it)");
}

std::string fileProblem(const std::string& path, check::FileKind kind) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return errno == ENOENT ? std::string()
                               : std::string("cannot be read (") + std::strerror(errno) + ")";
    }
    if (!S_ISREG(info.st_mode)) {
        return "is not a regular file";
    }
    return readingProblem(path, kind);
}

void addForceFlag(CLI::App& command, bool& force) {
    command.add_flag("--force", force,
                     "Replace the file even when it cannot be read as it is (its content is lost)");
}

void guardReading(const std::string& path, check::FileKind kind) {
    const std::string problem = fileProblem(path, kind);
    if (!problem.empty()) {
        failUnreadable(path + ": " + problem +
                       "; the library reads it as empty (run 'pallix check " + path +
                       "' to see why)");
    }
}

} // namespace pallix::tool
