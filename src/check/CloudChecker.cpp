// Checks of the cloud document: the five reference-file entries that the application needs,
// their digests and addresses, the partner port, plug-in versions and process rules.

#include "Checkers.h"

#include "CloudFormat.h"
#include "ValueRules.h"

#include <strings.h>

#include <algorithm>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pallix::check {

namespace {

namespace cloud = format::cloud;
using format::ValueKind;

// An element that the reader looks up as the first child of its name, the values it reads from
// it, and the elements it looks up under it.
struct Element {
    const char* name;
    std::vector<std::pair<const char*, ValueKind>> values = {};
    std::vector<Element> children = {};
};

const std::vector<Element>& documentElements() {
    static const std::vector<Element> elements = {
        {cloud::kApplication,
         {},
         {{cloud::kAdvertisement,
           {},
           {{cloud::kIosApplication,
             {{cloud::kAutoPopup, ValueKind::Boolean},
              {cloud::kAutoInstall, ValueKind::Boolean}}}}},
          {cloud::kApplet, {}, {{cloud::kVerifyGuide, {{cloud::kStatus, ValueKind::Boolean}}}}},
          {cloud::kHash}}},
        {cloud::kCooperate,
         {},
         {{cloud::kHsb,
           {},
           {{cloud::kSellStatus, {{cloud::kValue, ValueKind::Boolean}}},
            {cloud::kSellTextDeviceInfo},
            {cloud::kSellTextDeviceVerify},
            {cloud::kAuthorize, {{cloud::kServicePort, ValueKind::Port}}}}}}},
        {cloud::kDevice,
         {},
         {{cloud::kDeveloperPlugins},
          {cloud::kDeveloperPluginsRvq},
          {cloud::kDrive,
           {},
           {{cloud::kVersion}, {cloud::kItunes, {}, {{cloud::kItunes32}, {cloud::kItunes64}}}}},
          {cloud::kProcessManager, {}, {{cloud::kPluginRules}, {cloud::kApplicationRules}}}}},
    };
    return elements;
}

// The elements in the order of the table, each looked up under its parent; a stack of the
// elements still to visit rather than recursion, as every walk of the checker.
void checkElements(SourceFile& file, const pugi::xml_node& root,
                   const std::vector<Element>& elements) {
    std::vector<std::pair<pugi::xml_node, const Element*>> pending;
    for (auto element = elements.rbegin(); element != elements.rend(); ++element) {
        pending.emplace_back(root, &*element);
    }
    while (!pending.empty()) {
        const auto [parent, element] = pending.back();
        pending.pop_back();
        warnAboutRepeatedElements(file, parent, {element->name}, nullptr);
        const pugi::xml_node node = parent.child(element->name);
        for (const auto& [attribute, kind] : element->values) {
            checkValue(file, node, attribute, kind);
        }
        for (auto child = element->children.rbegin(); child != element->children.rend(); ++child) {
            pending.emplace_back(node, &*child);
        }
    }
}

bool isWebAddress(const std::string& url) {
    return (strncasecmp(url.c_str(), "http://", 7) == 0 && url.size() > 7) ||
           (strncasecmp(url.c_str(), "https://", 8) == 0 && url.size() > 8);
}

bool isDigest(const std::string& text) {
    return text.size() == 32 && isHexDigits(text);
}

// A digest and an address that the application downloads and verifies.
void checkDownload(SourceFile& file, const pugi::xml_node& entry, const char* digest,
                   const std::string& digestOf, const std::string& of, const char* extra) {
    const std::string hash = entry.attribute(digest).value();
    const std::string url = entry.attribute(cloud::kAddress).value();
    if (!isDigest(hash)) {
        file.error(file.offsetOf(entry, digest),
                   digestOf + " is " + inQuotes(hash) + ", not 32 hexadecimal digits" + extra);
    }
    if (!isWebAddress(url)) {
        file.error(file.offsetOf(entry, cloud::kAddress), "the address of " + of + " is " +
                                                              inQuotes(url) +
                                                              ", not an http or https address");
    }
}

void checkReferenceFiles(SourceFile& file, const pugi::xml_node& root) {
    const pugi::xml_node hash = root.child(cloud::kApplication).child(cloud::kHash);
    std::string allNames;
    for (const char* name : cloud::kReferenceNames) {
        allNames += (allNames.empty() ? "" : ", ") + std::string(name);
    }
    std::set<std::string> names;
    for (const pugi::xml_node& entry : entries(file, hash, kTextIsNotRead)) {
        const std::string name = entry.attribute(cloud::kName).value();
        const auto known = std::find_if(
            std::begin(cloud::kReferenceNames), std::end(cloud::kReferenceNames),
            [&name](const char* known) { return strcasecmp(known, name.c_str()) == 0; });
        if (known == std::end(cloud::kReferenceNames) || name != *known) {
            // The lookups compare names exactly, case included.
            file.warning(file.offsetOf(entry, cloud::kName),
                         "reference file " + inQuotes(name) +
                             " is not one that the application looks up (" +
                             (known != std::end(cloud::kReferenceNames)
                                  ? "names are case-sensitive: it is not " + inQuotes(*known)
                                  : allNames) +
                             "); this entry is never used");
        } else if (!names.insert(name).second) {
            file.warning(file.offsetOf(entry, cloud::kName),
                         "reference file " + inQuotes(name) +
                             " is listed again; only the first entry is used");
        }
        checkDownload(file, entry, cloud::kDigest,
                      "the " + std::string(cloud::kDigest) + " digest of " + inQuotes(name),
                      inQuotes(name), "");
    }
    for (const char* name : cloud::kReferenceNames) {
        if (names.count(name) == 0) {
            file.error(file.offsetOf(hash ? hash : root),
                       "the reference file " + inQuotes(name) + " is missing from " +
                           cloud::kApplication + "/" + cloud::kHash);
        }
    }
}

void checkPlugins(SourceFile& file, const pugi::xml_node& list) {
    std::set<std::string> versions;
    for (const pugi::xml_node& item : entries(file, list, kTextIsNotRead)) {
        const std::string version = item.attribute(cloud::kVersion).value();
        const std::string package = "plug-in package " + inQuotes(version);
        checkDownload(file, item, cloud::kHash, "the digest of " + package, package,
                      " (an MD5 digest)");
        if (version.empty()) {
            file.warning(file.offsetOf(item), std::string("a plug-in package without a ") +
                                                  cloud::kVersion +
                                                  " is never found: lookups of an empty version "
                                                  "find nothing");
        } else if (!versions.insert(version).second) {
            file.warning(file.offsetOf(item, cloud::kVersion),
                         "plug-in version " + inQuotes(version) + " in " + inQuotes(list.name()) +
                             " is listed again; only the first package is used");
        }
    }
}

// The first rule that holds for a name wins, and an empty pattern holds for every name.
void checkProcessRules(SourceFile& file, const pugi::xml_node& list) {
    for (const pugi::xml_node& rule : entries(file, list, kTextIsNotRead)) {
        const bool matchesAll = !*rule.attribute(cloud::kStartsWith).value() &&
                                !*rule.attribute(cloud::kContains).value() &&
                                !*rule.attribute(cloud::kEndsWith).value();
        if (matchesAll && rule.next_sibling()) {
            file.warning(file.offsetOf(rule),
                         "this " + inQuotes(list.name()) +
                             " rule has no pattern and matches every name; the rules after it "
                             "are never reached");
        }
    }
}

} // namespace

void checkCloud(SourceFile& file, const pugi::xml_node& root) {
    checkReferenceFiles(file, root);
    const pugi::xml_node device = root.child(cloud::kDevice);
    checkPlugins(file, device.child(cloud::kDeveloperPlugins));
    checkPlugins(file, device.child(cloud::kDeveloperPluginsRvq));
    const pugi::xml_node processes = device.child(cloud::kProcessManager);
    checkProcessRules(file, processes.child(cloud::kPluginRules));
    checkProcessRules(file, processes.child(cloud::kApplicationRules));
    checkElements(file, root, documentElements());
}

} // namespace pallix::check
