// Checks of the factory information, JSON: device ids, base64 values and member names written
// twice, which JSON readers disagree about.

#include "Checkers.h"
#include "ValueRules.h"

#include "Conversions.h"

#include <nlohmann/json.hpp>

#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace pallix::check {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// One member name of the text, where it stands. Objects are numbered in the order in which they
// open, the top-level one being 0.
struct JsonName {
    std::size_t offset; // of its opening quote
    std::size_t object; // the object that holds the member
    std::size_t value;  // the object that is its value, or kNone
    std::string name;   // decoded
};

// Every member name of a text that parses, in the order written: the parsed value keeps one
// member of a repeated name, and no positions.
std::vector<JsonName> jsonNames(const std::string& text) {
    std::vector<JsonName> names;
    std::vector<std::size_t> open; // the objects around a position; kNone for an array
    std::size_t objects = 0;
    std::size_t pending = kNone; // the name whose value comes next
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] == '"') {
            std::size_t end = at + 1;
            while (end < text.size() && text[end] != '"') {
                end += text[end] == '\\' ? 2 : 1;
            }
            const std::size_t after = text.find_first_not_of(" \t\r\n", end + 1);
            if (!open.empty() && open.back() != kNone && after != std::string::npos &&
                text[after] == ':') {
                pending = names.size();
                names.push_back(
                    JsonName{at, open.back(), kNone,
                             Json::parse(text.substr(at, end + 1 - at)).get<std::string>()});
            }
            at = end;
        } else if (text[at] == '{' || text[at] == '[') {
            open.push_back(text[at] == '{' ? objects++ : kNone);
            if (pending != kNone) {
                names[pending].value = open.back();
            }
            pending = kNone;
        } else if ((text[at] == '}' || text[at] == ']') && !open.empty()) {
            open.pop_back();
        } else if (text[at] == ',') {
            pending = kNone;
        }
    }
    return names;
}

// The factory store parses the file with nlohmann-json, which keeps one member of a repeated
// name: the last one's value, in the place of the first. Other JSON readers may keep the first
// or refuse the file, so the file means different things to different tools.
void warnAboutRepeatedNames(SourceFile& file, const std::vector<JsonName>& names) {
    std::set<std::pair<std::size_t, std::string>> seen;
    for (const JsonName& name : names) {
        if (!seen.emplace(name.object, name.name).second) {
            file.warning(name.offset,
                         std::string(name.object == 0 ? "device member " : "value ") +
                             inQuotes(name.name) +
                             " is written again in the same object: the factory store keeps only "
                             "the last one's value (in the place of the first); other JSON "
                             "readers may keep the first or refuse the file");
        }
    }
}

} // namespace

void checkFactory(SourceFile& file) {
    Json document;
    try {
        // Parsed as the factory store parses it, so that a repeated name collapses the same way.
        document = Json::parse(file.text());
    } catch (const Json::parse_error& error) {
        // The parser counts the byte it stopped at from 1.
        const std::string description = error.what();
        file.malformed(error.byte > 0 ? error.byte - 1 : 0,
                       "not well-formed JSON: " + description.substr(description.rfind(": ") + 2) +
                           "; the factory store reads nothing from this file");
        return;
    }
    if (!document.is_object()) {
        file.error(0, "the top level is not a JSON object; nothing in the file is read");
        return;
    }
    const std::vector<JsonName> names = jsonNames(file.text());
    warnAboutRepeatedNames(file, names);
    // Where a member of an object first stands, and the object that its last one holds (the
    // one whose value the store keeps).
    std::map<std::pair<std::size_t, std::string>, std::pair<std::size_t, std::size_t>> places;
    for (const JsonName& name : names) {
        places.emplace(std::make_pair(name.object, name.name), std::make_pair(name.offset, kNone))
            .first->second.second = name.value;
    }
    const auto placeOf = [&places](std::size_t object, const std::string& name,
                                   std::size_t otherwise) {
        const auto found = places.find({object, name});
        return found != places.end() ? found->second : std::make_pair(otherwise, kNone);
    };
    std::map<unsigned long long, std::string> ids;
    for (const auto& member : document.items()) {
        const std::string& name = member.key();
        const auto [at, values] = placeOf(0, name, 0);
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
            file.warning(at, "device " + canonical +
                                 " has no values; it is dropped when the file is read");
            continue;
        }
        const auto [first, added] = ids.emplace(id, name);
        if (!added) {
            file.warning(at, "member " + inQuotes(name) + " names the same device as " +
                                 inQuotes(first->second) + "; only the first is kept");
        }
        for (const auto& value : member.value().items()) {
            if (!value.value().is_string() || !format::isBase64(value.value().get<std::string>())) {
                file.error(placeOf(values, value.key(), at).first,
                           "value " + inQuotes(value.key()) + " of device " + canonical +
                               " is not base64 text; it reads as empty bytes");
            }
        }
    }
}

} // namespace pallix::check
