#include "ReadingProblem.h"

#include "SourceFile.h"

#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

namespace pallix::check {

namespace {

using Cause = ReadingProblem::Cause;

std::string cannotBeRead(int error) {
    return std::string("cannot be read (") + std::strerror(error) + ")";
}

// The first error found on the file: why its kind could not be told.
ReadingProblem firstError(const SourceFile& file, Cause cause) {
    for (const Finding& finding : file.findings()) {
        if (finding.severity == Severity::Error) {
            return {cause, finding.message, finding.line, finding.column};
        }
    }
    return {Cause::Unreadable, "cannot be read"};
}

// Factory information is JSON, which the store reads only as a whole object.
std::optional<ReadingProblem> jsonProblem(const std::string& text) {
    const auto document = nlohmann::json::parse(text, nullptr, false);
    if (document.is_discarded()) {
        return ReadingProblem{Cause::Malformed, "is not valid JSON"};
    }
    if (!document.is_object()) {
        return ReadingProblem{Cause::Malformed, "does not hold a JSON object"};
    }
    return std::nullopt;
}

} // namespace

std::optional<ReadingProblem> readingProblem(const std::string& path, FileKind kind) {
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) {
        return errno == ENOENT ? ReadingProblem{Cause::Missing, "no such file"}
                               : ReadingProblem{Cause::Unreadable, cannotBeRead(errno)};
    }
    if (!S_ISREG(info.st_mode)) {
        return ReadingProblem{Cause::NotRegular,
                              S_ISDIR(info.st_mode) ? "is a directory" : "is not a regular file"};
    }
    // What was looked at by name may have changed since: never wait on what is opened.
    const int descriptor = ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC);
    if (descriptor < 0) {
        return ReadingProblem{Cause::Unreadable, cannotBeRead(errno)};
    }
    ::close(descriptor);

    SourceFile file(path);
    if (!file.readable()) {
        return ReadingProblem{Cause::Unreadable, file.problem()};
    }
    if (kind == FileKind::Factory) {
        return jsonProblem(file.text());
    }
    const std::optional<FileKind> found = detectFileKind(file);
    if (!found) {
        return firstError(file, Cause::Malformed);
    }
    if (*found != kind) {
        return ReadingProblem{Cause::OtherKind,
                              "is " + describe(*found) + ", not " + describe(kind)};
    }
    return std::nullopt;
}

} // namespace pallix::check
