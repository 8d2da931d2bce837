#pragma once

#include "SourceFile.h"

#include <pugixml.hpp>

#include <map>
#include <memory>
#include <string>
#include <system_error>
#include <vector>

// A release as it ships: a cloud document and the reference files it names, each published
// beside it under the last segment of its address, each with the MD5 digest that the document
// gives for it.
namespace pallix::check {

// One reference entry as the library uses it (the first entry of each name), and its file.
struct Reference {
    std::string name;
    pugi::xml_node entry;
    std::string digest;       // as the document gives it
    std::string path;         // the file it names; empty when none can be told
    std::string actualDigest; // the file's MD5 in lower-case hexadecimal, when it could be read
    // The file, checked as the kind that the entry calls for; null when it is missing or cannot
    // be read (a finding on the document says which).
    std::unique_ptr<SourceFile> file;

    // The file was read, and its digest is not the one that the document gives (case aside).
    bool digestDiffers() const;
};

// The regular files of `directory` that are cloud documents, sorted by name.
std::vector<std::string> cloudDocumentsIn(const std::string& directory, std::error_code& error);

// Whether `name` is the name of a reference entry that a release publishes a file for.
bool isReferenceName(const std::string& name);

// Finds, reads and checks the file of every reference entry of `document`, a cloud document that
// parsed: the file that `named` gives for the entry's name, or else the one in `directory` named
// by the last segment of the entry's address. Problems in finding or reading a file are findings
// on the document, at the entry; with `compareDigests`, so is a digest that is not the file's.
std::vector<Reference> checkReferences(SourceFile& document, const std::string& directory,
                                       const std::map<std::string, std::string>& named,
                                       bool compareDigests);

// The document's text with the digest of every reference whose file was read replaced by the
// file's own (added where the entry has none); the rest of the text, comments and layout
// included, stays byte for byte.
std::string withDigests(const SourceFile& document, const std::vector<Reference>& references);

} // namespace pallix::check
