// "pallix release": checks a whole release before it ships: the cloud document, the reference
// files it names, and whether each digest in the document is that of the file published beside
// it. Optionally writes a copy of the document whose digests match the files.

#include "CloudFormat.h"
#include "Commands.h"
#include "Directories.h"
#include "Failure.h"
#include "Lookup.h"
#include "Suggestion.h"
#include "ToolOutput.h"
#include "check/Checkers.h"
#include "check/SourceFile.h"
#include "check/ValueRules.h"

#include "NFileSystem.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

namespace cloud = format::cloud;
using check::FileKind;
using check::SourceFile;

struct ReleaseOptions {
    std::string directory;
    std::string cloudDocument;
    std::vector<std::string> files; // NAME=PATH
    std::string writeDigests;
    bool json = false;
};

// The kind of file each reference entry names. The restore versions' file has no reader in the
// library: only its presence, its digest and its XML are checked.
std::optional<FileKind> referencedKind(const std::string& name) {
    static const std::map<std::string, FileKind> kinds = {
        {cloud::kReferenceCpid, FileKind::Cpid},
        {cloud::kReferenceCrashCode, FileKind::Crash},
        {cloud::kReferenceRestoreCode, FileKind::RestoreError},
        {cloud::kReferencePluginMapping, FileKind::Mapping}};
    const auto found = kinds.find(name);
    return found == kinds.end() ? std::nullopt : std::optional<FileKind>(found->second);
}

std::vector<std::string> referenceNames() {
    return std::vector<std::string>(std::begin(cloud::kReferenceNames),
                                    std::end(cloud::kReferenceNames));
}

std::string md5Of(const std::string& bytes) {
    const QByteArray data = QByteArray::fromRawData(bytes.data(), static_cast<int>(bytes.size()));
    return QCryptographicHash::hash(data, QCryptographicHash::Md5).toHex().toStdString();
}

std::string lowerCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

// The file that an address publishes: its path's last segment, without query or fragment.
std::string lastSegment(const std::string& url) {
    const std::string path = url.substr(0, url.find_first_of("?#"));
    const auto slash = path.rfind('/');
    const auto scheme = path.find("://");
    if (slash == std::string::npos || (scheme != std::string::npos && slash < scheme + 3)) {
        return std::string();
    }
    return path.substr(slash + 1);
}

// One reference entry as the library uses it: the first entry of each name.
struct Reference {
    std::string name;
    pugi::xml_node entry;
    std::string digest;
    std::string path;         // the file it names, empty when no file can be told
    std::string actualDigest; // of the file, when it could be read
    std::unique_ptr<SourceFile> file;
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
        if (!referencedKind(name) && name != cloud::kReferenceRestoreVersion) {
            failUsage("--file: '" + name + "' is not a reference file name (" +
                      joined(referenceNames()) + ")" + didYouMean(name, referenceNames()));
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
    std::vector<std::string> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(options.directory, error)) {
        std::error_code ignored;
        if (!entry.is_regular_file(ignored)) {
            continue;
        }
        SourceFile file(entry.path().string());
        if (file.readable() && check::detectFileKind(file) == FileKind::Cloud) {
            found.push_back(entry.path().string());
        }
    }
    if (error) {
        failUnreadable(options.directory + ": cannot be read (" + error.message() + ")");
    }
    if (found.empty()) {
        failUsage(options.directory + ": no cloud document in the directory; name it with --cloud");
    }
    if (found.size() > 1) {
        std::sort(found.begin(), found.end());
        failUsage(options.directory + ": " + std::to_string(found.size()) + " cloud documents (" +
                  joined(found) + "); name one with --cloud");
    }
    return found.front();
}

// The first entry of each reference name, in document order.
std::vector<Reference> referencesOf(const pugi::xml_document& document) {
    std::vector<Reference> references;
    const pugi::xml_node list =
        document.child(cloud::kRoot).child(cloud::kApplication).child(cloud::kHash);
    for (pugi::xml_node entry = list.first_child(); entry; entry = entry.next_sibling()) {
        const std::string name = entry.attribute(cloud::kName).value();
        const bool known =
            std::find(std::begin(cloud::kReferenceNames), std::end(cloud::kReferenceNames), name) !=
            std::end(cloud::kReferenceNames);
        const bool seen = std::any_of(references.begin(), references.end(),
                                      [&name](const Reference& r) { return r.name == name; });
        if (entry.type() == pugi::node_element && known && !seen) {
            Reference reference;
            reference.name = name;
            reference.entry = entry;
            reference.digest = entry.attribute(cloud::kDigest).value();
            references.push_back(std::move(reference));
        }
    }
    return references;
}

// Reads the file an entry names and checks it as the kind the entry calls for. Problems with
// finding or reading the file are recorded on the cloud document, at the entry.
void checkReference(Reference& reference, SourceFile& document, const std::string& directory,
                    const std::map<std::string, std::string>& named) {
    const auto given = named.find(reference.name);
    const std::string url = reference.entry.attribute(cloud::kAddress).value();
    const std::size_t at = document.offsetOf(reference.entry, cloud::kAddress);
    if (given == named.end() && lastSegment(url).empty()) {
        document.error(at, "cannot tell the file of " + reference.name + " from its address \"" +
                               url + "\"; give it with --file " + reference.name + "=PATH");
        return;
    }
    reference.path = given != named.end() ? given->second : directory + "/" + lastSegment(url);
    reference.file = std::make_unique<SourceFile>(reference.path);
    if (!reference.file->readable()) {
        document.error(at, reference.name + " names " + reference.path + ", which " +
                               (std::filesystem::exists(reference.path)
                                    ? "cannot be read (" + reference.file->problem() + ")"
                                    : std::string("is not in the release")));
        reference.file.reset();
        return;
    }
    reference.actualDigest = md5Of(reference.file->text());
    const std::optional<FileKind> expected = referencedKind(reference.name);
    if (!expected) {
        reference.file->parseXml();
        return;
    }
    // The kind is told on a copy, so that the findings of telling it are not made twice.
    SourceFile probe(reference.path, reference.file->text());
    const std::optional<FileKind> kind = check::detectFileKind(probe);
    if (kind && kind != expected) {
        reference.file->error(0, "this is " + describeKind(*kind) + ", but the " + reference.name +
                                     " entry of " + document.path() + " calls for " +
                                     describeKind(*expected));
        return;
    }
    check::checkFile(*reference.file, expected);
}

struct Edit {
    std::size_t begin;
    std::size_t end;
    std::string text;
};

// Where the value of an attribute stands in the text: between the quotes after its name. The
// parsed value cannot tell, since references in it were replaced.
Edit valueOf(const SourceFile& document, const pugi::xml_attribute& attribute) {
    const std::string& text = document.text();
    std::size_t at = text.find('=', document.offsetOf(attribute));
    at = text.find_first_of("\"'", at);
    const std::size_t end = text.find(text[at], at + 1);
    return {at + 1, end, std::string()};
}

// The document's text with every digest replaced by that of its file: the rest of the text,
// comments and layout included, stays byte for byte.
std::string withDigests(const SourceFile& document, const std::vector<Reference>& references) {
    std::vector<Edit> edits;
    for (const Reference& reference : references) {
        const pugi::xml_attribute digest = reference.entry.attribute(cloud::kDigest);
        if (digest) {
            Edit edit = valueOf(document, digest);
            edit.text = reference.actualDigest;
            edits.push_back(edit);
            continue;
        }
        // No digest at all: one goes after the last attribute, or after the element's name.
        const pugi::xml_attribute last = reference.entry.last_attribute();
        const std::size_t after = last ? valueOf(document, last).end + 1
                                       : document.offsetOf(reference.entry) + 1 +
                                             std::string(reference.entry.name()).size();
        edits.push_back(
            {after, after,
             std::string(" ") + cloud::kDigest + "=\"" + reference.actualDigest + "\""});
    }
    std::sort(edits.begin(), edits.end(),
              [](const Edit& a, const Edit& b) { return a.begin > b.begin; });
    std::string text = document.text();
    for (const Edit& edit : edits) {
        text.replace(edit.begin, edit.end - edit.begin, edit.text);
    }
    return text;
}

void writeDocument(const std::string& out, const std::string& original, const std::string& text) {
    std::error_code error;
    if (std::filesystem::equivalent(out, original, error)) {
        failUsage("--write-digests: " + out +
                  " is the cloud document itself; the original is "
                  "never changed, name another file");
    }
    if (std::filesystem::exists(out, error) && !std::filesystem::is_regular_file(out, error)) {
        failUsage("--write-digests: " + out + " is not a regular file");
    }
    if (!NFileSystem::file::fromBytes(NFileSystem::path(NString(out)), NByteArray(text))) {
        failRejected("--write-digests: could not write " + out);
    }
}

const char* severityName(check::Severity severity) {
    return severity == check::Severity::Error ? "error" : "warning";
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

    std::vector<Reference> references = referencesOf(document.document());
    const bool rewriting = !options.writeDigests.empty();
    std::vector<std::string> changes;
    for (Reference& reference : references) {
        checkReference(reference, document, options.directory, named);
        if (!reference.file || lowerCase(reference.digest) == reference.actualDigest) {
            continue;
        }
        // A digest that is not 32 hexadecimal digits is the document's own finding already.
        const bool wellFormed =
            reference.digest.size() == 32 && check::isHexDigits(reference.digest);
        if (rewriting) {
            changes.push_back(reference.name + ": " +
                              (reference.digest.empty() ? "(none)" : reference.digest) + " -> " +
                              reference.actualDigest);
        } else if (wellFormed) {
            document.error(document.offsetOf(reference.entry, cloud::kDigest),
                           "the digest of " + reference.name + " is \"" + reference.digest +
                               "\", but " + reference.path + " has MD5 " + reference.actualDigest);
        }
    }
    const bool complete = std::all_of(references.begin(), references.end(),
                                      [](const Reference& r) { return r.file != nullptr; });
    if (rewriting && complete) {
        writeDocument(options.writeDigests, documentPath, withDigests(document, references));
    }

    std::vector<const SourceFile*> files{&document};
    for (const Reference& reference : references) {
        if (reference.file) {
            files.push_back(reference.file.get());
        }
    }
    std::size_t errors = 0;
    std::size_t warnings = 0;
    nlohmann::ordered_json findings = nlohmann::ordered_json::array();
    for (const SourceFile* file : files) {
        for (const check::Finding& finding : file->findings()) {
            ++(finding.severity == check::Severity::Error ? errors : warnings);
            if (options.json) {
                findings.push_back({{"file", file->path()},
                                    {"line", finding.line},
                                    {"column", finding.column},
                                    {"severity", severityName(finding.severity)},
                                    {"message", finding.message}});
            } else {
                std::cout << file->path() << ':' << finding.line << ':' << finding.column << ": "
                          << severityName(finding.severity) << ": " << finding.message << '\n';
            }
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
        if (written) {
            std::cout << "wrote " << options.writeDigests << " with the files' digests"
                      << (changes.empty() ? " (none changed)" : "") << '\n';
            for (const std::string& change : changes) {
                std::cout << "  " << change << '\n';
            }
        }
        std::cout << "release " << options.directory << ": " << files.size() << " file"
                  << (files.size() == 1 ? "" : "s") << " checked: " << errors << " error"
                  << (errors == 1 ? "" : "s") << ", " << warnings << " warning"
                  << (warnings == 1 ? "" : "s") << '\n';
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
        ->type_name("FILE");
    command
        ->add_option("--file", options->files,
                     "The file of a reference entry, where its address does not name one in DIR")
        ->type_name("NAME=PATH");
    command
        ->add_option("--write-digests", options->writeDigests,
                     "Write a copy of the cloud document whose digests are those of the files; "
                     "the original is never changed. A digest that differs is then no finding")
        ->type_name("OUT");
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
