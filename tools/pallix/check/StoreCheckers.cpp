// Checks of the local stores' files: notifications, port bindings, the custom firmware list
// and factory information.

#include "Checkers.h"
#include "SourceFile.h"
#include "ValueRules.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <map>
#include <set>
#include <string>

namespace pallix::check {

namespace {

// Factory values are bytes written as base64 text with padding.
bool isBase64(const std::string& text) {
    if (text.size() % 4 != 0) {
        return false;
    }
    const std::size_t padding = text.find_first_of('=');
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        const bool letter = (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') ||
                            (c >= '0' && c <= '9') || c == '+' || c == '/';
        if (i < padding ? !letter : (c != '=' || i + 2 < text.size())) {
            return false;
        }
    }
    return true;
}

// Walks the entries of a store file: root element, container, one element per entry.
template <typename EachEntry>
void forEachEntry(SourceFile& file, const char* rootName, const char* containerName,
                  EachEntry eachEntry) {
    pugi::xml_document document;
    if (!parseXml(file, document)) {
        return;
    }
    const pugi::xml_node root = requireRoot(file, document, rootName);
    if (!root) {
        return;
    }
    const pugi::xml_node container = root.child(containerName);
    if (!container) {
        file.error(file.offsetOf(root), inQuotes(rootName) + " has no element " +
                                            inQuotes(containerName) + "; the store reads nothing");
        return;
    }
    warnAboutTextEntries(file, container);
    for (pugi::xml_node entry = container.first_child(); entry; entry = entry.next_sibling()) {
        if (entry.type() == pugi::node_element) {
            eachEntry(entry);
        }
    }
}

} // namespace

void checkNotify(SourceFile& file) {
    std::set<unsigned long long> ids;
    forEachEntry(file, "Nevor", "Notify", [&](const pugi::xml_node& item) {
        const pugi::xml_node id = item.child("ID");
        if (!id.attribute("VALUE")) {
            file.error(file.offsetOf(item), "the notification has no ID; it is kept under id 0");
        } else {
            checkIntegerAttribute(file, id, "VALUE", IntegerWidth::UInt64,
                                  "the notification is kept under id " +
                                      std::to_string(id.attribute("VALUE").as_ullong()));
        }
        const unsigned long long value = id.attribute("VALUE").as_ullong();
        if (!ids.insert(value).second) {
            file.warning(file.offsetOf(item), "notification " + std::to_string(value) +
                                                  " is listed again; only the first is kept");
        }
        checkIntegerAttribute(file, item.child("UserID"), "VALUE", IntegerWidth::UInt64,
                              "it is not read as written");
        checkIntegerAttribute(file, item.child("Timestamp"), "VALUE", IntegerWidth::Int64,
                              "it is not read as written");
        for (const char* flag : {"Read", "Popup", "AlreadyPopup", "Remove"}) {
            checkBooleanAttribute(file, item.child(flag), "VALUE");
        }
    });
}

void checkPortbind(SourceFile& file) {
    std::set<std::string> sources;
    forEachEntry(file, "Rilo", "BIND", [&](const pugi::xml_node& item) {
        const std::string source = item.attribute("SOURCE").value();
        const std::string target = item.attribute("TARGET").value();
        if (source.empty()) {
            file.warning(file.offsetOf(item), "a binding without a SOURCE is never found");
        } else if (!sources.insert(source).second) {
            file.warning(file.offsetOf(item, "SOURCE"),
                         "SOURCE " + inQuotes(source) +
                             " is bound again; only the first binding is kept");
        }
        if (target.empty() && !source.empty()) {
            file.warning(file.offsetOf(item), "SOURCE " + inQuotes(source) +
                                                  " is bound to an empty TARGET, which reads "
                                                  "like no binding at all");
        }
    });
}

void checkIpsw(SourceFile& file) {
    std::set<std::string> urls;
    forEachEntry(file, "Rilo", "MATCH", [&](const pugi::xml_node& entry) {
        const std::string url = entry.attribute("URL").value();
        const std::string local = entry.attribute("LOCAL").value();
        if (!urls.insert(url).second) {
            file.warning(file.offsetOf(entry, "URL"),
                         "URL " + inQuotes(url) +
                             " is listed again; only the first entry whose "
                             "file exists is kept");
        }
        // Whether the file exists is the user's machine's business, not the file's; an
        // empty path can never exist.
        if (local.empty()) {
            file.warning(file.offsetOf(entry), "URL " + inQuotes(url) +
                                                   " has no LOCAL file; the entry is dropped "
                                                   "when the list is read");
        }
    });
}

void checkFactory(SourceFile& file) {
    using Json = nlohmann::ordered_json;
    Json document;
    try {
        document = Json::parse(file.text());
    } catch (const Json::parse_error& error) {
        // The parser counts the byte it stopped at from 1.
        const std::size_t at = error.byte > 0 ? error.byte - 1 : 0;
        std::string description = error.what();
        const auto colon = description.rfind(": ");
        if (colon != std::string::npos) {
            description = description.substr(colon + 2);
        }
        file.error(at, "not well-formed JSON: " + description);
        return;
    }
    if (!document.is_object()) {
        file.error(0, "the top level is not a JSON object; nothing in the file is read");
        return;
    }
    // Member names carry no position in the parsed value; find each in the text in turn.
    std::size_t searchFrom = 0;
    auto positionOf = [&](const std::string& name) {
        const std::string needle = Json(name).dump();
        const std::size_t at = file.text().find(needle, searchFrom);
        if (at == std::string::npos) {
            return searchFrom;
        }
        searchFrom = at + needle.size();
        return at;
    };
    std::map<unsigned long long, std::string> ids;
    for (const auto& member : document.items()) {
        const std::string name = member.key();
        const std::size_t at = positionOf(name);
        const unsigned long long id = std::strtoull(name.c_str(), nullptr, 16);
        char canonical[17];
        std::snprintf(canonical, sizeof canonical, "%016llX", id);
        if (id == 0) {
            file.error(at, "member " + inQuotes(name) +
                               " is not a device id of sixteen hexadecimal digits; it is dropped");
            continue;
        }
        if (name != canonical) {
            file.warning(at, "member " + inQuotes(name) +
                                 " is not sixteen upper-case hexadecimal digits; it is read as " +
                                 canonical + " and renamed so on the next write");
        }
        if (!member.value().is_object()) {
            file.error(at, "the value of " + inQuotes(name) + " is not an object; it is dropped");
            continue;
        }
        if (member.value().empty()) {
            file.warning(at, "device " + std::string(canonical) +
                                 " has no values; it is dropped when the file is read");
            continue;
        }
        const auto inserted = ids.emplace(id, name);
        if (!inserted.second) {
            file.warning(at, "member " + inQuotes(name) + " names the same device as " +
                                 inQuotes(inserted.first->second) + "; only the first is kept");
        }
        for (const auto& value : member.value().items()) {
            const std::size_t valueAt = positionOf(value.key());
            if (!value.value().is_string() || !isBase64(value.value().get<std::string>())) {
                file.error(valueAt, "value " + inQuotes(value.key()) + " of device " + canonical +
                                        " is not base64 text; it reads as empty bytes");
            }
        }
    }
}

} // namespace pallix::check
