// Checks of the cloud document: the five reference-file entries that the application needs,
// their digests and addresses, the partner port, plug-in versions and process rules.

#include "Checkers.h"
#include "SourceFile.h"
#include "ValueRules.h"

#include <map>
#include <set>
#include <string>

namespace pallix::check {

namespace {

const char* const kReferenceFiles[] = {"CPID", "CrashCode", "RestoreCode", "RestoreVersion",
                                       "DeveloperPluginMapping"};

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

void checkReferenceFiles(SourceFile& file, const pugi::xml_node& root) {
    const pugi::xml_node hash = root.child("Application").child("Hash");
    std::map<std::string, std::size_t> names;
    if (hash) {
        warnAboutTextEntries(file, hash);
    }
    for (pugi::xml_node entry = hash.first_child(); entry; entry = entry.next_sibling()) {
        if (entry.type() != pugi::node_element) {
            continue;
        }
        const std::string name = entry.attribute("Name").value();
        const std::string digest = entry.attribute("MD5").value();
        const std::string url = entry.attribute("Url").value();
        const std::size_t at = file.offsetOf(entry);
        if (!names.emplace(name, at).second) {
            file.warning(file.offsetOf(entry, "Name"),
                         "reference file " + inQuotes(name) +
                             " is listed again; only the first entry is used");
        }
        if (!(digest.size() == 32 && isHexDigits(digest, false))) {
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
                       std::to_string(static_cast<unsigned short>(port.as_uint())));
    }
}

void checkPlugins(SourceFile& file, const pugi::xml_node& list) {
    if (!list) {
        return;
    }
    warnAboutTextEntries(file, list);
    std::set<std::string> versions;
    for (pugi::xml_node item = list.first_child(); item; item = item.next_sibling()) {
        if (item.type() != pugi::node_element) {
            continue;
        }
        const std::string version = item.attribute("Version").value();
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
    warnAboutTextEntries(file, list);
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

} // namespace

void checkCloud(SourceFile& file) {
    pugi::xml_document document;
    if (!parseXml(file, document)) {
        return;
    }
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
}

} // namespace pallix::check
