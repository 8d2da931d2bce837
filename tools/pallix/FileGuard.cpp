#include "FileGuard.h"

#include "Failure.h"
#include "ReadingProblem.h"
#include "ToolOutput.h"

namespace pallix::tool {

void guardFile(const std::string& path, check::FileKind kind, bool force) {
    using Cause = check::ReadingProblem::Cause;
    const std::optional<check::ReadingProblem> problem = check::readingProblem(path, kind);
    if (!problem || problem->cause == Cause::Missing) {
        return;
    }
    if (problem->cause == Cause::NotRegular) {
        failUnreadable(path + ": is not a regular file; not replacing it");
    }
    if (force) {
        reportWarning(path + ": " + problem->message + "; replacing it, as --force asks");
        return;
    }
    failUnreadable(path + ": " + problem->message + "; not changing it (run 'pallix check " + path +
                   "' to see why, or pass --force to replace it)");
}

std::string fileProblem(const std::string& path, check::FileKind kind) {
    const std::optional<check::ReadingProblem> problem = check::readingProblem(path, kind);
    return !problem || problem->cause == check::ReadingProblem::Cause::Missing ? std::string()
                                                                               : problem->message;
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
