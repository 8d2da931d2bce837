#include "FileGuard.h"

#include "Checkers.h"
#include "Failure.h"
#include "ReadingProblem.h"
#include "SourceFile.h"
#include "ToolOutput.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>

namespace pallix::tool {

std::string firstError(check::SourceFile& file, check::FileKind kind) {
    if (!file.readable()) {
        return file.path() + ": " + file.problem();
    }
    check::checkFile(file, kind);
    const auto isError = [](const check::Finding& f) {
        return f.severity == check::Severity::Error;
    };
    const std::vector<check::Finding>& findings = file.findings();
    const auto first = std::find_if(findings.begin(), findings.end(), isError);
    if (first == findings.end()) {
        return "";
    }
    const auto errors = std::count_if(findings.begin(), findings.end(), isError);
    return file.path() + ":" + std::to_string(first->line) + ":" + std::to_string(first->column) +
           ": " + escapeField(first->message) +
           (errors > 1 ? " (and " + std::to_string(errors - 1) + " more)" : "");
}

std::string firstError(const std::string& path, check::FileKind kind) {
    check::SourceFile file(path);
    return firstError(file, kind);
}

void guardFile(const std::string& path, check::FileKind kind, bool force) {
    using Cause = check::ReadingProblem::Cause;
    const std::optional<check::ReadingProblem> problem = check::readingProblem(path, kind);
    if (problem && problem->cause == Cause::Missing) {
        return;
    }
    if (problem && problem->cause == Cause::NotRegular) {
        failUnreadable(path + ": is not a regular file; not replacing it");
    }
    if (problem) {
        if (force) {
            reportWarning(path + ": " + problem->message + "; replacing it, as --force asks");
            return;
        }
        failUnreadable(path + ": " + problem->message + "; not changing it (run 'pallix check " +
                       path + "' to see why, or pass --force to replace it)");
    }
    // Read, but perhaps otherwise than written: the change would write back what was read.
    const std::string error = firstError(path, kind);
    if (error.empty()) {
        return;
    }
    if (force) {
        reportWarning(error + "; writing back what the library read, as --force asks");
        return;
    }
    failUnreadable(error + "; the change would write back what the library read, so not " +
                   "changing it (run 'pallix check " + path + "' to see all, or pass --force to " +
                   "go on)");
}

void guardImportLosses(const std::vector<std::string>& losses, const std::string& old,
                       const std::string& directory, bool force) {
    if (losses.empty()) {
        return;
    }
    const std::string more =
        losses.size() > 1 ? " and " + std::to_string(losses.size() - 1) + " more" : "";
    if (force) {
        reportWarning(losses.front() + "; importing " + old + " all the same, as --force asks" +
                      (more.empty() ? "" : " (it loses this" + more + ")"));
        return;
    }
    failUnreadable(losses.front() + "; the import of " + old + " would lose this" + more +
                   ", so nothing is imported (run 'pallix check --config-dir " + directory +
                   "' to see all, or pass --force to import it anyway)");
}

std::string fileProblem(const std::string& path, check::FileKind kind) {
    const std::optional<check::ReadingProblem> problem = check::readingProblem(path, kind);
    return !problem || problem->cause == check::ReadingProblem::Cause::Missing ? std::string()
                                                                               : problem->message;
}

void guardImport(const std::string& path, const std::string& old) {
    const std::string loss =
        ", so the import of " + old + " could not be written and it would be lost";
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0 && !S_ISREG(info.st_mode)) {
        failUnreadable(path + ": is not a regular file" + loss);
    }
    const std::string directory = std::filesystem::path(path).parent_path().string();
    if (::access(directory.c_str(), W_OK) != 0) {
        failUnreadable(directory + ": cannot be written (" + std::strerror(errno) + ")" + loss);
    }
}

void addForceFlag(CLI::App& command, bool& force) {
    command.add_flag("--force", force,
                     "Replace the file even when it cannot be read as it is (its content is lost), "
                     "or write back what was read of it otherwise than written");
}

void guardReading(const std::string& path, check::FileKind kind) {
    const std::string problem = fileProblem(path, kind);
    if (!problem.empty()) {
        // A parser's message may say already that nothing is read.
        const bool said = problem.find("reads nothing") != std::string::npos;
        failUnreadable(path + ": " + problem + (said ? "" : "; the library reads it as empty") +
                       " (run 'pallix check " + path + "' to see why)");
    }
}

void requireFileKind(const std::string& path, check::FileKind expected) {
    const std::optional<check::ReadingProblem> problem = check::readingProblem(path, expected);
    if (!problem) {
        return;
    }
    if (problem->cause == check::ReadingProblem::Cause::OtherKind) {
        failUsage(path + " " + problem->message);
    }
    if (problem->line == 0) {
        failUnreadable(path + ": " + problem->message);
    }
    failUnreadable(path + ":" + std::to_string(problem->line) + ":" +
                   std::to_string(problem->column) + ": " + problem->message +
                   " (run 'pallix check --kind " + check::nameOf(expected) + " " + path + "')");
}

} // namespace pallix::tool
