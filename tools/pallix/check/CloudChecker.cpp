// Checks of the cloud document: the five reference-file entries that the application needs,
// their digests and addresses, the partner port, plug-in versions and process rules.

#include "Checkers.h"

#include "CloudFormat.h"
#include "Conversions.h"
#include "SourceFile.h"
#include "ValueRules.h"

#include <algorithm>
#include <cctype>
#include <cstring>
#include <iterator>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace pallix::check {

namespace {

const auto& kReferenceFiles = format::cloud::kReferenceNames;

bool isWebAddress(const std::string& url) {
    const auto schemeEnd = url.find("://");
    if (schemeEnd == std::string::npos || schemeEnd + 3 >= url.size()) {
        return false;
    }
    std::string scheme = url.substr(0, schemeEnd);
    for (char& c : scheme) {
        c = static_cast<char>(c >= 'A' && c <= 'Z' ? c - 'A' + 'a' : c);
    }
    return scheme == "http" || scheme == "https";
}

bool isDigest(const std::string& text) {
    return text.size() == 32 && isHexDigits(text, false);
}

// The name that a lookup would have found had the case been right, if any.
const char* sameNameIgnoringCase(const std::string& name) {
    for (const char* known : kReferenceFiles) {
        if (name.size() == std::strlen(known) &&
            std::equal(name.begin(), name.end(), known, [](char a, char b) {
                return std::tolower(static_cast<unsigned char>(a)) ==
                       std::tolower(static_cast<unsigned char>(b));
            })) {
            return known;
        }
    }
    return nullptr;
}

void checkReferenceFiles(SourceFile& file, const pugi::xml_node& root) {
    const pugi::xml_node hash = root.child("Application").child("Hash");
    std::map<std::string, std::size_t> names;
    if (hash) {
        warnAboutTextEntries(file, hash, kTextIsNotRead);
    }
    for (pugi::xml_node entry = hash.first_child(); entry; entry = entry.next_sibling()) {
        if (entry.type() != pugi::node_element) {
            continue;
        }
        const std::string name = entry.attribute("Name").value();
        const std::string digest = entry.attribute("MD5").value();
        const std::string url = entry.attribute("Url").value();
        const std::size_t at = file.offsetOf(entry);
        const bool known = std::find(std::begin(kReferenceFiles), std::end(kReferenceFiles),
                                     name) != std::end(kReferenceFiles);
        if (!known) {
            // The lookups compare names exactly, case included.
            const char* meant = sameNameIgnoringCase(name);
            file.warning(
                file.offsetOf(entry, "Name"),
                "reference file " + inQuotes(name) + " is not one that the application looks up (" +
                    (meant != nullptr ? "names are case-sensitive: it is not " + inQuotes(meant)
                                      : std::string("CPID, CrashCode, RestoreCode, "
                                                    "RestoreVersion, "
                                                    "DeveloperPluginMapping")) +
                    "); this entry is never used");
        } else if (!names.emplace(name, at).second) {
            file.warning(file.offsetOf(entry, "Name"),
                         "reference file " + inQuotes(name) +
                             " is listed again; only the first entry is used");
        }
        if (!isDigest(digest)) {
            file.error(file.offsetOf(entry, "MD5"), "the MD5 digest of " + inQuotes(name) + " is " +
                                                        inQuotes(digest) +
                                                        ", not 32 hexadecimal digits");
        }
        if (!isWebAddress(url)) {
            file.error(file.offsetOf(entry, "Url"), "the address of " + inQuotes(name) + " is " +
                                                        inQuotes(url) +
                                                        ", not an http or https address");
        }
    }
    const std::size_t missingAt = hash ? file.offsetOf(hash) : file.offsetOf(root);
    for (const char* name : kReferenceFiles) {
        if (!names.count(name)) {
            file.error(missingAt, std::string("the reference file ") + inQuotes(name) +
                                      " is missing from Application/Hash");
        }
    }
}

void checkPartner(SourceFile& file, const pugi::xml_node& root) {
    const pugi::xml_node hsb = root.child("Cooperate").child("HSB");
    checkBooleanAttribute(file, hsb.child("SellStatus"), "VALUE");
    const pugi::xml_node authorize = hsb.child("Authorize");
    const pugi::xml_attribute port = authorize.attribute("ServicePort");
    if (!port) {
        return;
    }
    const std::optional<IntegerText> value = parseInteger(port.value());
    if (!value || value->negative || value->overflow || value->magnitude > 65535) {
        file.error(file.offsetOf(authorize, "ServicePort"),
                   "ServicePort " + inQuotes(port.value()) +
                       " is not a port number from 0 to 65535; it is read as " +
                       std::to_string(format::readPort(port)));
    }
}

void checkPlugins(SourceFile& file, const pugi::xml_node& list) {
    if (!list) {
        return;
    }
    warnAboutTextEntries(file, list, kTextIsNotRead);
    std::set<std::string> versions;
    for (pugi::xml_node item = list.first_child(); item; item = item.next_sibling()) {
        if (item.type() != pugi::node_element) {
            continue;
        }
        const std::string version = item.attribute("Version").value();
        const std::string digest = item.attribute("Hash").value();
        const std::string url = item.attribute("Url").value();
        if (!isDigest(digest)) {
            file.error(file.offsetOf(item, "Hash"),
                       "the digest of plug-in package " + inQuotes(version) + " is " +
                           inQuotes(digest) + ", not 32 hexadecimal digits (an MD5 digest)");
        }
        if (!isWebAddress(url)) {
            file.error(file.offsetOf(item, "Url"), "the address of plug-in package " +
                                                       inQuotes(version) + " is " + inQuotes(url) +
                                                       ", not an http or https address");
        }
        if (version.empty()) {
            file.warning(file.offsetOf(item), "a plug-in package without a Version is never "
                                              "found: lookups of an empty version find nothing");
        } else if (!versions.insert(version).second) {
            file.warning(file.offsetOf(item, "Version"),
                         "plug-in version " + inQuotes(version) + " in " + inQuotes(list.name()) +
                             " is listed again; only the first package is used");
        }
    }
}

void checkProcessRules(SourceFile& file, const pugi::xml_node& list) {
    if (!list) {
        return;
    }
    warnAboutTextEntries(file, list, kTextIsNotRead);
    for (pugi::xml_node rule = list.first_child(); rule; rule = rule.next_sibling()) {
        if (rule.type() != pugi::node_element) {
            continue;
        }
        const bool matchesAll = !*rule.attribute("StartsWith").value() &&
                                !*rule.attribute("Contains").value() &&
                                !*rule.attribute("EndsWith").value();
        if (matchesAll && rule.next_sibling()) {
            file.warning(file.offsetOf(rule),
                         "this " + inQuotes(list.name()) +
                             " rule has no pattern and matches every name; the rules after it "
                             "are never reached");
        }
    }
}

// Every element of the document is looked up as the first child of its name; the tree below
// names each one with the elements under it.
struct Element {
    const char* name;
    std::vector<Element> children;
};

void checkRepeatedElements(SourceFile& file, const pugi::xml_node& parent,
                           const std::vector<Element>& elements) {
    for (const Element& element : elements) {
        warnAboutRepeatedElements(file, parent, {element.name}, nullptr);
        checkRepeatedElements(file, parent.child(element.name), element.children);
    }
}

void checkRepeatedElements(SourceFile& file, const pugi::xml_node& root) {
    static const std::vector<Element> tree = {
        {"Application",
         {{"Advertisement", {{"IosApplication", {}}}},
          {"Applet", {{"VerifyGuide", {}}}},
          {"Hash", {}}}},
        {"Cooperate",
         {{"HSB",
           {{"SellStatus", {}},
            {"SellTextDeviceInfo", {}},
            {"SellTextDeviceVerify", {}},
            {"Authorize", {}}}}}},
        {"Device",
         {{"DeveloperPlugins", {}},
          {"DeveloperPlugins_RVQ", {}},
          {"Drive", {{"Version", {}}, {"iTunes", {{"X86", {}}, {"X64", {}}}}}},
          {"ProcessManager", {{"Plugins", {}}, {"Process", {}}}}}},
    };
    checkRepeatedElements(file, root, tree);
}

} // namespace

void checkCloud(SourceFile& file, const pugi::xml_document& document) {
    const pugi::xml_node root = requireRoot(file, document, "Nevor");
    if (!root) {
        return;
    }
    const pugi::xml_node application = root.child("Application");
    const pugi::xml_node iosApp = application.child("Advertisement").child("IosApplication");
    checkBooleanAttribute(file, iosApp, "AutoPopup");
    checkBooleanAttribute(file, iosApp, "AutoInstall");
    checkBooleanAttribute(file, application.child("Applet").child("VerifyGuide"), "Status");
    checkReferenceFiles(file, root);
    checkPartner(file, root);
    const pugi::xml_node device = root.child("Device");
    checkPlugins(file, device.child("DeveloperPlugins"));
    checkPlugins(file, device.child("DeveloperPlugins_RVQ"));
    const pugi::xml_node processes = device.child("ProcessManager");
    checkProcessRules(file, processes.child("Plugins"));
    checkProcessRules(file, processes.child("Process"));
    checkRepeatedElements(file, root);
}

} // namespace pallix::check
