// Checks of the local stores' files: notifications, port bindings, the custom firmware list
// and factory information.

#include "Checkers.h"
#include "Conversions.h"
#include "SourceFile.h"
#include "StoreFormats.h"
#include "ValueRules.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pallix::check {

namespace {

// Walks the entries of a store file: root element, container, one element per entry.
template <typename EachEntry>
void forEachEntry(SourceFile& file, const pugi::xml_document& document, const char* rootName,
                  const char* containerName, const char* textConsequence, EachEntry eachEntry) {
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
    warnAboutTextEntries(file, container, textConsequence);
    for (pugi::xml_node entry = container.first_child(); entry; entry = entry.next_sibling()) {
        if (entry.type() == pugi::node_element) {
            eachEntry(entry);
        }
    }
}

// The values of one notification, kept under `node` as one child element per value; the two
// layouts differ only in the name of the time.
void checkNotification(SourceFile& file, const pugi::xml_node& node, const char* timeElement) {
    const pugi::xml_node id = node.child("ID");
    if (!id.attribute("VALUE")) {
        file.error(file.offsetOf(node), "the notification has no ID; it is kept under id 0");
    } else {
        checkIntegerAttribute(file, id, "VALUE", IntegerWidth::UInt64,
                              "the notification is kept under id " +
                                  std::to_string(id.attribute("VALUE").as_ullong()));
    }
    checkIntegerAttribute(file, node.child("UserID"), "VALUE", IntegerWidth::UInt64,
                          "it is read as " +
                              std::to_string(node.child("UserID").attribute("VALUE").as_ullong()));
    checkIntegerAttribute(
        file, node.child(timeElement), "VALUE", IntegerWidth::Int64,
        "it is read as " + std::to_string(node.child(timeElement).attribute("VALUE").as_llong()));
    for (const char* flag : {"Read", "Popup", "AlreadyPopup", "Remove"}) {
        checkBooleanAttribute(file, node.child(flag), "VALUE");
    }
}

using Json = nlohmann::ordered_json;

constexpr std::size_t kNoObject = static_cast<std::size_t>(-1);

// One member name of a JSON text, where it stands. Objects are numbered in the order in which
// they open, the top-level object being 0.
struct JsonName {
    std::size_t offset = 0;              // of the opening quote
    std::size_t object = 0;              // the object that holds the member
    std::size_t valueObject = kNoObject; // the object that is its value, if it is one
    std::string name;                    // decoded
};

// Every member name of a text that is known to parse, in the order written. The parsed value
// cannot give them: it keeps one member of a repeated name, and no positions.
std::vector<JsonName> jsonNames(const std::string& text) {
    struct Open {
        bool isObject;
        std::size_t object;
        std::size_t pendingName; // index of the name whose value comes next, or kNoObject
    };
    std::vector<JsonName> names;
    std::vector<Open> open;
    std::size_t objects = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        const char c = text[at];
        if (c == '"') {
            std::size_t end = at + 1;
            while (end < text.size() && text[end] != '"') {
                end += text[end] == '\\' ? 2 : 1;
            }
            std::size_t after = end + 1;
            while (after < text.size() && std::strchr(" \t\r\n", text[after]) != nullptr) {
                ++after;
            }
            if (!open.empty() && open.back().isObject && after < text.size() &&
                text[after] == ':') {
                JsonName name;
                name.offset = at;
                name.object = open.back().object;
                name.name = Json::parse(text.substr(at, end + 1 - at)).get<std::string>();
                open.back().pendingName = names.size();
                names.push_back(std::move(name));
            }
            at = end;
        } else if (c == '{' || c == '[') {
            const std::size_t object = c == '{' ? objects++ : kNoObject;
            if (!open.empty() && open.back().pendingName != kNoObject) {
                names[open.back().pendingName].valueObject = object;
                open.back().pendingName = kNoObject;
            }
            open.push_back(Open{c == '{', object, kNoObject});
        } else if (c == '}' || c == ']') {
            if (!open.empty()) {
                open.pop_back();
            }
        } else if (c == ',' && !open.empty()) {
            open.back().pendingName = kNoObject;
        }
    }
    return names;
}

const JsonName* findName(const std::vector<JsonName>& names, std::size_t object,
                         const std::string& name, bool last) {
    const JsonName* found = nullptr;
    for (const JsonName& candidate : names) {
        if (candidate.object == object && candidate.name == name) {
            found = &candidate;
            if (!last) {
                break;
            }
        }
    }
    return found;
}

// The factory store parses the file with nlohmann-json, which keeps one member of a repeated
// name: the last one's value, in the place of the first. Other JSON readers may keep the first
// or refuse the file, so the file means different things to different tools.
void warnAboutRepeatedNames(SourceFile& file, const std::vector<JsonName>& names) {
    std::set<std::pair<std::size_t, std::string>> seen;
    for (const JsonName& name : names) {
        if (seen.emplace(name.object, name.name).second) {
            continue;
        }
        file.warning(name.offset,
                     std::string(name.object == 0 ? "device member " : "value ") +
                         inQuotes(name.name) +
                         " is written again in the same object: the factory store keeps only "
                         "the last one's value (in the place of the first); other JSON readers "
                         "may keep the first or refuse the file");
    }
}

} // namespace

void checkNotify(SourceFile& file, const pugi::xml_document& document) {
    std::set<unsigned long long> ids;
    forEachEntry(
        file, document, format::notify::kRoot, format::notify::kList, kTextIsAnEmptyEntry,
        [&](const pugi::xml_node& item) {
            checkNotification(file, item, "Timestamp");
            const unsigned long long value = item.child("ID").attribute("VALUE").as_ullong();
            if (!ids.insert(value).second) {
                file.warning(file.offsetOf(item), "notification " + std::to_string(value) +
                                                      " is listed again; only the first is kept");
            }
        });
}

// One file of the old layout: a single notification under "ROOT".
void checkOldNotify(SourceFile& file, const pugi::xml_document& document) {
    const pugi::xml_node root = requireRoot(file, document, "ROOT");
    if (root) {
        checkNotification(file, root, "Time");
    }
}

void checkPortbind(SourceFile& file, const pugi::xml_document& document) {
    std::set<std::string> sources;
    forEachEntry(
        file, document, "Rilo", "BIND", kTextIsAnEmptyEntry, [&](const pugi::xml_node& item) {
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

void checkIpsw(SourceFile& file, const pugi::xml_document& document) {
    std::set<std::string> urls;
    forEachEntry(file, document, "Rilo", "MATCH",
                 "is read as an entry without a LOCAL file, which is dropped",
                 [&](const pugi::xml_node& entry) {
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
                         file.warning(file.offsetOf(entry),
                                      "URL " + inQuotes(url) +
                                          " has no LOCAL file; the entry is dropped "
                                          "when the list is read");
                     }
                 });
}

void checkFactory(SourceFile& file) {
    Json document;
    try {
        // Parsed as the factory store parses it, so that a repeated name collapses the same way.
        document = Json::parse(file.text());
    } catch (const Json::parse_error& error) {
        // The parser counts the byte it stopped at from 1.
        const std::size_t at = error.byte > 0 ? error.byte - 1 : 0;
        std::string description = error.what();
        const auto colon = description.rfind(": ");
        if (colon != std::string::npos) {
            description = description.substr(colon + 2);
        }
        file.malformed(at, "not well-formed JSON: " + description +
                               "; the factory store reads nothing from this file");
        return;
    }
    if (!document.is_object()) {
        file.error(0, "the top level is not a JSON object; nothing in the file is read");
        return;
    }
    const std::vector<JsonName> names = jsonNames(file.text());
    warnAboutRepeatedNames(file, names);
    std::map<unsigned long long, std::string> ids;
    for (const auto& member : document.items()) {
        const std::string name = member.key();
        // A repeated name keeps the place of its first occurrence and the value of its last.
        const JsonName* first = findName(names, 0, name, false);
        const JsonName* last = findName(names, 0, name, true);
        const std::size_t at = first != nullptr ? first->offset : 0;
        const unsigned long long id = format::readDeviceId(name.c_str());
        const std::string canonical = format::deviceIdText(id);
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
        const std::size_t values = last != nullptr ? last->valueObject : kNoObject;
        for (const auto& value : member.value().items()) {
            const JsonName* valueName = findName(names, values, value.key(), false);
            if (!value.value().is_string() || !format::isBase64(value.value().get<std::string>())) {
                file.error(valueName != nullptr ? valueName->offset : at,
                           "value " + inQuotes(value.key()) + " of device " + canonical +
                               " is not base64 text; it reads as empty bytes");
            }
        }
    }
}

} // namespace pallix::check
