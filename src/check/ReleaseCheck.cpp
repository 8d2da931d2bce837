#include "ReleaseCheck.h"

#include "Checkers.h"
#include "CloudFormat.h"
#include "ValueRules.h"

#include <QByteArray>
#include <QCryptographicHash>

#include <algorithm>
#include <filesystem>
#include <optional>

namespace pallix::check {

namespace {

namespace cloud = format::cloud;

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

// The first entry of each reference name, in document order.
std::vector<Reference> referencesOf(const pugi::xml_document& document) {
    std::vector<Reference> references;
    const pugi::xml_node list =
        document.child(cloud::kRoot).child(cloud::kApplication).child(cloud::kHash);
    for (pugi::xml_node entry = list.first_child(); entry; entry = entry.next_sibling()) {
        const std::string name = entry.attribute(cloud::kName).value();
        const bool seen = std::any_of(references.begin(), references.end(),
                                      [&name](const Reference& r) { return r.name == name; });
        if (entry.type() == pugi::node_element && isReferenceName(name) && !seen) {
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
        std::error_code ignored;
        document.error(at, reference.name + " names " + reference.path + ", which " +
                               (std::filesystem::exists(reference.path, ignored)
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
    const std::optional<FileKind> kind = detectFileKind(probe);
    if (kind && kind != expected) {
        reference.file->error(0, "this is " + describe(*kind) + ", but the " + reference.name +
                                     " entry of " + document.path() + " calls for " +
                                     describe(*expected));
        return;
    }
    checkFile(*reference.file, expected);
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

} // namespace

bool Reference::digestDiffers() const {
    return file != nullptr && lowerCase(digest) != actualDigest;
}

std::vector<std::string> cloudDocumentsIn(const std::string& directory, std::error_code& error) {
    std::vector<std::string> found;
    for (const auto& entry : std::filesystem::directory_iterator(directory, error)) {
        std::error_code ignored;
        if (!entry.is_regular_file(ignored)) {
            continue;
        }
        SourceFile file(entry.path().string());
        if (file.readable() && detectFileKind(file) == FileKind::Cloud) {
            found.push_back(entry.path().string());
        }
    }
    std::sort(found.begin(), found.end());
    return found;
}

bool isReferenceName(const std::string& name) {
    return std::find(std::begin(cloud::kReferenceNames), std::end(cloud::kReferenceNames), name) !=
           std::end(cloud::kReferenceNames);
}

std::vector<Reference> checkReferences(SourceFile& document, const std::string& directory,
                                       const std::map<std::string, std::string>& named,
                                       bool compareDigests) {
    std::vector<Reference> references = referencesOf(document.document());
    for (Reference& reference : references) {
        checkReference(reference, document, directory, named);
        // A digest that is not 32 hexadecimal digits is the document's own finding already.
        const bool wellFormed = reference.digest.size() == 32 && isHexDigits(reference.digest);
        if (compareDigests && wellFormed && reference.digestDiffers()) {
            document.error(document.offsetOf(reference.entry, cloud::kDigest),
                           "the digest of " + reference.name + " is \"" + reference.digest +
                               "\", but " + reference.path + " has MD5 " + reference.actualDigest);
        }
    }
    return references;
}

std::string withDigests(const SourceFile& document, const std::vector<Reference>& references) {
    std::vector<Edit> edits;
    for (const Reference& reference : references) {
        if (!reference.file) {
            continue;
        }
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

} // namespace pallix::check
