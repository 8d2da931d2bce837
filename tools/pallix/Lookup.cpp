#include "Lookup.h"

#include "Failure.h"
#include "ReadingProblem.h"

namespace pallix::tool {

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
