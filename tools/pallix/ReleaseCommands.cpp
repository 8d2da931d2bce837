// "pallix release": checks a whole release before it ships: the cloud document, the reference
// files it names, and whether each digest in the document is that of the file published beside
// it. Optionally writes a copy of the document whose digests match the files.

#include "Checkers.h"
#include "CloudFormat.h"
#include "Commands.h"
#include "Directories.h"
#include "Failure.h"
#include "FileGuard.h"
#include "ReleaseCheck.h"
#include "Suggestion.h"
#include "ToolOutput.h"
#include "Values.h"

#include "NFileSystem.h"

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

using check::FileKind;
using check::SourceFile;

struct ReleaseOptions {
    std::string directory;
    std::string cloudDocument;
    std::vector<std::string> files; // NAME=PATH
    std::string writeDigests;
    bool json = false;
};

// The files the user named with --file NAME=PATH.
std::map<std::string, std::string> namedFiles(const std::vector<std::string>& pairs) {
    std::map<std::string, std::string> files;
    for (const std::string& pair : pairs) {
        const auto equals = pair.find('=');
        const std::string name = pair.substr(0, equals);
        if (equals == std::string::npos || equals + 1 == pair.size()) {
            failUsage("--file: '" + pair + "' is not NAME=PATH");
        }
        if (!check::isReferenceName(name)) {
            const std::vector<std::string> names(std::begin(format::cloud::kReferenceNames),
                                                 std::end(format::cloud::kReferenceNames));
            failUsage("--file: '" + name + "' is not a reference file name (" + joined(names) +
                      ")" + didYouMean(name, names));
        }
        if (!files.emplace(name, pair.substr(equals + 1)).second) {
            failUsage("--file: " + name + " is given twice");
        }
    }
    return files;
}

// The cloud document of the release: the one named, or the only one in the directory.
std::string findCloudDocument(const ReleaseOptions& options) {
    if (!options.cloudDocument.empty()) {
        requireFileKind(options.cloudDocument, FileKind::Cloud);
        return options.cloudDocument;
    }
    std::error_code error;
    const std::vector<std::string> found = check::cloudDocumentsIn(options.directory, error);
    if (error) {
        failUnreadable(options.directory + ": cannot be read (" + error.message() + ")");
    }
    if (found.empty()) {
        failUsage(options.directory + ": no cloud document in the directory; name it with --cloud");
    }
    if (found.size() > 1) {
        failUsage(options.directory + ": " + std::to_string(found.size()) + " cloud documents (" +
                  joined(found) + "); name one with --cloud");
    }
    return found.front();
}

// Writes the corrected copy to `out`, which must be none of the files the check read: the
// document or a file it names, which the release still needs as they are.
void writeDocument(const std::string& out, const std::vector<const SourceFile*>& read,
                   const std::string& text) {
    std::error_code error;
    for (const SourceFile* file : read) {
        if (std::filesystem::equivalent(out, file->path(), error)) {
            failUsage("--write-digests: " + out +
                      (file == read.front() ? " is the cloud document itself"
                                            : " is a file of the release (" + file->path() + ")") +
                      "; the files checked are never changed, name another file");
        }
    }
    if (std::filesystem::exists(out, error) && !std::filesystem::is_regular_file(out, error)) {
        failUsage("--write-digests: " + out + " is not a regular file");
    }
    if (!NFileSystem::file::fromBytes(NFileSystem::path(NString(out)), NByteArray(text))) {
        failRejected("--write-digests: could not write " + out);
    }
}

void runRelease(const ReleaseOptions& options) {
    requireDirectory(options.directory, "release");
    const std::map<std::string, std::string> named = namedFiles(options.files);
    const std::string documentPath = findCloudDocument(options);
    SourceFile document(documentPath);
    const std::string problem = check::checkFile(document, FileKind::Cloud);
    if (!problem.empty() || !document.parseXml()) {
        failUnreadable(documentPath + ": " +
                       (problem.empty()
                            ? "not well-formed XML (run 'pallix check " + documentPath + "')"
                            : problem));
    }

    const bool rewriting = !options.writeDigests.empty();
    // With --write-digests, a digest that differs is what gets written, not a finding.
    const std::vector<check::Reference> references =
        check::checkReferences(document, options.directory, named, !rewriting);
    std::vector<std::string> changes;
    for (const check::Reference& reference : references) {
        if (rewriting && reference.digestDiffers()) {
            changes.push_back(reference.name + ": " +
                              (reference.digest.empty() ? "(none)" : reference.digest) + " -> " +
                              reference.actualDigest);
        }
    }
    std::vector<const SourceFile*> files{&document};
    for (const check::Reference& reference : references) {
        if (reference.file) {
            files.push_back(reference.file.get());
        }
    }
    const bool complete = std::all_of(references.begin(), references.end(),
                                      [](const check::Reference& r) { return r.file != nullptr; });
    if (rewriting && complete) {
        writeDocument(options.writeDigests, files, check::withDigests(document, references));
    }
    std::size_t errors = 0;
    std::size_t warnings = 0;
    nlohmann::ordered_json findings = nlohmann::ordered_json::array();
    for (const SourceFile* file : files) {
        for (auto& finding : reportFindings(*file, options.json, errors, warnings)) {
            findings.push_back(std::move(finding));
        }
    }
    const bool written = rewriting && complete;
    if (rewriting && !complete) {
        reportError("--write-digests: " + options.writeDigests +
                    " not written: a file that the document names is missing or unreadable");
    }
    if (options.json) {
        nlohmann::ordered_json checked = nlohmann::ordered_json::array();
        for (const SourceFile* file : files) {
            checked.push_back(file->path());
        }
        printJson({{"cloud", documentPath},
                   {"files", checked},
                   {"errors", errors},
                   {"warnings", warnings},
                   {"findings", findings},
                   {"written", written ? nlohmann::ordered_json(options.writeDigests) : nullptr},
                   {"digestChanges", changes}});
    } else {
        // The differing digests are no findings when rewriting, so they are listed either way.
        if (written) {
            std::cout << "wrote " << options.writeDigests << " with the files' digests"
                      << (changes.empty() ? " (none changed)" : "") << '\n';
        } else if (!changes.empty()) {
            std::cout << "digests that differ from their files (not written):\n";
        }
        for (const std::string& change : changes) {
            std::cout << "  " << change << '\n';
        }
        std::cout << "release " << options.directory << ": " << plural(files.size(), "file")
                  << " checked: " << plural(errors, "error") << ", " << plural(warnings, "warning")
                  << '\n';
    }
    exitStatus() = errors + warnings > 0 || (rewriting && !complete) ? kRejected : kSuccess;
}

} // namespace

void registerReleaseCommands(CLI::App& app) {
    auto options = std::make_shared<ReleaseOptions>();
    CLI::App* command = app.add_subcommand(
        "release", "Check a release before it ships: a cloud document, the reference files it "
                   "names (matched by the last segment of each address) and their digests");
    command->add_option("DIR", options->directory, "Directory of the release")->required();
    command
        ->add_option("--cloud", options->cloudDocument,
                     "The cloud document (default: the one cloud document in DIR)")
        ->type_name("FILE")
        ->check(NonEmptyPath());
    command
        ->add_option("--file", options->files,
                     "The file of a reference entry, where its address does not name one in DIR")
        ->type_name("NAME=PATH");
    command
        ->add_option("--write-digests", options->writeDigests,
                     "Write a copy of the cloud document whose digests are those of the files; "
                     "the original is never changed. A digest that differs is then no finding")
        ->type_name("OUT")
        ->check(NonEmptyPath());
    addJsonFlag(*command, options->json);
    endHelp(*command,
            "Findings are printed as FILE:LINE:COLUMN: error|warning: message, then a summary.\n"
            "With --json: {\"cloud\", \"files\": [PATH], \"errors\", \"warnings\", \"findings\": "
            "[{\"file\", \"line\", \"column\", \"severity\", \"message\"}], \"written\": OUT or "
            "null, \"digestChanges\": [TEXT]}.\n"
            "Exit status: 0 the release is clean; 1 findings, or OUT not written; 2 a usage "
            "error, or a directory or cloud document that cannot be read.",
            "pallix release ./release --write-digests ./release-fixed-cloud.xml");
    command->callback([options] { runRelease(*options); });
}

} // namespace pallix::tool
