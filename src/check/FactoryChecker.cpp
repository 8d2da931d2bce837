// Checks of the factory information, JSON: device ids, base64 values and member names written
// twice, which JSON readers disagree about.

#include "Checkers.h"
#include "ValueRules.h"

#include "Conversions.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <utility>
#include <vector>

namespace pallix::check {

namespace {

using Json = nlohmann::ordered_json;

constexpr std::size_t kNone = static_cast<std::size_t>(-1);

// One member name, where it stands. Objects are numbered in the order in which they open, the
// top-level one being 0.
struct JsonName {
    std::size_t object; // the object that holds the member
    std::size_t value;  // the object that is its value, or kNone
    std::string name;
    std::size_t offset = 0; // of its opening quote
};

// Parses the text as the factory store does, so that a repeated name collapses the same way
// (the last one's value in the place of the first), and collects every member name in the
// order written, which the parsed value cannot give.
Json parse(const std::string& text, std::vector<JsonName>& names) {
    std::vector<std::size_t> open;
    std::size_t objects = 0;
    bool afterKey = false;
    Json document = Json::parse(text, [&](int, Json::parse_event_t event, Json& parsed) {
        if (event == Json::parse_event_t::object_start) {
            if (afterKey) {
                names.back().value = objects;
            }
            open.push_back(objects++);
        } else if (event == Json::parse_event_t::object_end) {
            open.pop_back();
        } else if (event == Json::parse_event_t::key) {
            names.push_back(JsonName{open.back(), kNone, parsed.get<std::string>()});
        }
        afterKey = event == Json::parse_event_t::key;
        return true;
    });
    // The names stand, in the same order, where a string is followed by a colon.
    std::size_t next = 0;
    for (std::size_t at = text.find('"'); at != std::string::npos && next < names.size();
         at = text.find('"', at + 1)) {
        std::size_t end = at + 1;
        while (end < text.size() && text[end] != '"') {
            end += text[end] == '\\' ? 2 : 1;
        }
        const std::size_t after = text.find_first_not_of(" \t\r\n", end + 1);
        if (after != std::string::npos && text[after] == ':') {
            names[next++].offset = at;
        }
        at = end;
    }
    return document;
}

// Where and why the parser gives up on a text. A number too large for a double is an
// out_of_range error, which carries no position, so the text is parsed again by a reader that
// accepts every value and keeps what the parser says on stopping.
struct ParserStop : nlohmann::json_sax<Json> {
    std::size_t offset = 0;
    std::string reason = "the parser stopped";

    bool null() override { return true; }
    bool boolean(bool) override { return true; }
    bool number_integer(number_integer_t) override { return true; }
    bool number_unsigned(number_unsigned_t) override { return true; }
    bool number_float(number_float_t, const string_t&) override { return true; }
    bool string(string_t&) override { return true; }
    bool binary(binary_t&) override { return true; }
    bool start_object(std::size_t) override { return true; }
    bool key(string_t&) override { return true; }
    bool end_object() override { return true; }
    bool start_array(std::size_t) override { return true; }
    bool end_array() override { return true; }
    bool parse_error(std::size_t position, const std::string& token,
                     const nlohmann::detail::exception& error) override {
        // The parser counts from 1 the byte it stopped at: the one it could not take, or the
        // last one of a number it could not hold, whose first byte is the better place.
        const bool number = dynamic_cast<const nlohmann::detail::out_of_range*>(&error) != nullptr;
        const std::size_t back = number ? token.size() : 1;
        offset = position >= back ? position - back : 0;
        // The parser's text follows its "[json.exception.NAME.ID] " prefix, and a syntax
        // error's own "parse error at line L, column C: " prefix, which a finding gives itself.
        const std::string what = error.what();
        const std::size_t prefix = what.find("] ");
        reason = what.substr(prefix == std::string::npos ? 0 : prefix + 2);
        const std::size_t located = reason.find(": ", reason.find(", column "));
        if (reason.rfind("parse error", 0) == 0 && located != std::string::npos) {
            reason = reason.substr(located + 2);
        }
        return false;
    }
};

} // namespace

void checkFactory(SourceFile& file) {
    std::vector<JsonName> names;
    Json document;
    try {
        document = parse(file.text(), names);
    } catch (const Json::exception&) {
        ParserStop stop;
        Json::sax_parse(file.text(), &stop);
        file.malformed(stop.offset, "not well-formed JSON: " + stop.reason +
                                        "; the factory store reads nothing from this file");
        return;
    }
    if (!document.is_object()) {
        file.error(0, "the top level is not a JSON object; nothing in the file is read");
        return;
    }
    // Where a member of an object first stands, and the object that its last one holds. Other
    // JSON readers may keep the first member of a name or refuse the file.
    std::map<std::pair<std::size_t, std::string>, std::pair<std::size_t, std::size_t>> places;
    for (const JsonName& name : names) {
        const auto [place, added] = places.emplace(std::make_pair(name.object, name.name),
                                                   std::make_pair(name.offset, name.value));
        place->second.second = name.value;
        if (!added) {
            file.warning(name.offset,
                         std::string(name.object == 0 ? "device member " : "value ") +
                             inQuotes(name.name) +
                             " is written again in the same object: the factory store keeps only "
                             "the last one's value (in the place of the first); other JSON "
                             "readers may keep the first or refuse the file");
        }
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
