// Checks of the reference tables: chip identifiers, crash codes, restore errors, plug-in
// mapping. Each finding names what the library would do with the row.

#include "Checkers.h"
#include "ValueRules.h"

#include "Conversions.h"
#include "NString.h"
#include "TableFormats.h"

#include <cstdlib>
#include <deque>
#include <initializer_list>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace pallix::check {

namespace {

using format::ValueKind;

// Texts that the interface shows for the row, each with what it is shown as: missing or empty,
// the user sees nothing there.
void warnAboutMissingTexts(SourceFile& file, const pugi::xml_node& row, const std::string& rowName,
                           std::initializer_list<std::pair<const char*, const char*>> texts) {
    for (const auto& [name, shownAs] : texts) {
        const pugi::xml_attribute text = row.attribute(name);
        if (*text.value() == '\0') {
            file.warning(text ? file.offsetOf(text) : file.offsetOf(row),
                         rowName + " has " + (text ? "an empty " : "no ") + name + ": " + shownAs +
                             " is shown as an empty text");
        }
    }
}

// Whether a lookup, which turns a number into text with `toText`, can ever produce this text.
bool isLookedUp(const std::string& text, std::string (*toText)(unsigned)) {
    return toText(static_cast<unsigned>(std::strtoull(text.c_str(), nullptr, 16))) == text;
}

} // namespace

void checkCpid(SourceFile& file, const pugi::xml_node& root) {
    namespace cpid = format::cpid;
    const std::string fallback = format::boardText(format::kFallbackBoard);
    std::set<std::pair<std::string, std::string>> pairs;
    std::map<std::string, std::size_t> chips; // chip -> its first row
    std::set<std::string> chipsWithFallback;
    for (const pugi::xml_node& row : entries(file, root, kTextIsNotRead)) {
        const std::string chip = row.attribute(cpid::kChip).value();
        const std::string board = row.attribute(cpid::kBoard).value();
        // Looked up as the library turns a device's numbers into text, which keeps every digit
        // of a board wider than two.
        const bool chipFound = isLookedUp(chip, format::chipText);
        const bool boardFound = isLookedUp(board, format::boardText);
        if (!chipFound) {
            file.error(file.offsetOf(row, cpid::kChip),
                       std::string(cpid::kChip) + " " + inQuotes(chip) +
                           " is never found: a chip is looked up as four or more upper-case "
                           "hexadecimal digits without extra leading zeros");
        }
        if (!boardFound) {
            file.error(file.offsetOf(row, cpid::kBoard),
                       std::string(cpid::kBoard) + " " + inQuotes(board) +
                           " is never found: a board is looked up as two upper-case "
                           "hexadecimal digits");
        }
        checkValue(file, row, cpid::kSupport, ValueKind::Boolean);
        warnAboutMissingTexts(file, row,
                              "the row of chip " + inQuotes(chip) + " board " + inQuotes(board),
                              {{cpid::kModel, "the device's model name"},
                               {cpid::kProduct, "the device's product type"},
                               {cpid::kNetwork, "the device's network variant"}});
        if (!chipFound || !boardFound) {
            continue;
        }
        if (!pairs.emplace(chip, board).second) {
            file.warning(file.offsetOf(row), "chip " + chip + " with board " + board +
                                                 " repeats an earlier row; this later row is "
                                                 "never found");
        }
        chips.emplace(chip, file.offsetOf(row));
        if (board == fallback) {
            chipsWithFallback.insert(chip);
        }
    }
    for (const auto& [chip, at] : chips) {
        if (chipsWithFallback.count(chip) == 0) {
            file.warning(at, "chip " + chip + " has no board-" + fallback +
                                 " default row: its other boards are not found");
        }
    }
}

// The earliest of the keys seen so far that a folded key contains, other than itself: every
// text that contains the key contains that one too. Looked up window by window, one window
// length per length of the keys seen, so a table of thousands of rows stays quick.
class EarlierKeys {
public:
    // Adds the key; false when it repeats one already seen.
    bool add(const std::string& folded, const std::string& written) {
        m_texts.push_back(folded);
        if (!m_keys.emplace(m_texts.back(), Key{m_keys.size(), written}).second) {
            m_texts.pop_back();
            return false;
        }
        m_lengths.insert(folded.size());
        return true;
    }
    const std::string& written(const std::string& folded) const {
        return m_keys.at(folded).written;
    }

    // The earliest key, before this one, that `folded` contains; null when there is none.
    const std::string* containedIn(const std::string& folded) const {
        const std::string_view text(folded);
        const Key* earliest = nullptr;
        for (const std::size_t length : m_lengths) {
            if (length >= text.size()) {
                break;
            }
            for (std::size_t at = 0; at + length <= text.size(); ++at) {
                const auto found = m_keys.find(text.substr(at, length));
                if (found != m_keys.end() &&
                    (earliest == nullptr || found->second.row < earliest->row)) {
                    earliest = &found->second;
                }
            }
        }
        return earliest != nullptr ? &earliest->written : nullptr;
    }

private:
    struct Key {
        std::size_t row;
        std::string written;
    };
    std::deque<std::string> m_texts; // the folded keys, where the map's views point
    std::unordered_map<std::string_view, Key> m_keys;
    std::set<std::size_t> m_lengths;
};

void checkCrash(SourceFile& file, const pugi::xml_node& root) {
    namespace crash = format::crash;
    const std::string key = crash::kKey;
    EarlierKeys keys;
    bool shadowed = false;
    for (const pugi::xml_node& row : entries(file, root, kTextIsNotRead)) {
        const std::string text = row.attribute(crash::kKey).value();
        warnAboutMissingTexts(
            file, row, "the row of " + key + " " + inQuotes(text),
            {{crash::kReason, "the reason of a failure it matches"},
             {crash::kSolution, "the solution offered for a failure it matches"}});
        if (shadowed) {
            file.warning(file.offsetOf(row), "this row is never found: an earlier row with an "
                                             "empty " +
                                                 key + " matches every text first");
            continue;
        }
        if (text.empty()) {
            // The table finds the first row whose key the failure's text contains, or which
            // contains the text.
            if (row.next_sibling()) {
                file.error(file.offsetOf(row, crash::kKey),
                           "empty " + key +
                               " matches every text, so every row after it is never "
                               "found");
            }
            shadowed = true;
            continue;
        }
        // Compared ignoring case as the framework's string folds it.
        const std::string folded = NString(text).foldCase().toStdString();
        if (!keys.add(folded, text)) {
            file.warning(file.offsetOf(row, crash::kKey),
                         key + " " + inQuotes(text) + " repeats " + inQuotes(keys.written(folded)) +
                             " (case ignored); this later row is never found");
        } else if (const std::string* earlier = keys.containedIn(folded)) {
            // A text that contains this key finds the earlier row; a text that this key
            // contains may still find this row.
            file.warning(file.offsetOf(row, crash::kKey),
                         "this row is found only for a text that its " + key +
                             " contains: every text that contains " + key + " " + inQuotes(text) +
                             " also contains the earlier " + key + " " + inQuotes(*earlier) +
                             ", whose row comes first");
        }
    }
}

void checkRestoreError(SourceFile& file, const pugi::xml_node& root) {
    namespace restore = format::restore_error;
    std::set<long long> codes;
    for (const pugi::xml_node& row : entries(file, root, kTextIsNotRead)) {
        const pugi::xml_attribute code = row.attribute(restore::kCode);
        const long long value = format::readInt64(code, 0);
        if (!code) {
            file.error(file.offsetOf(row), std::string("the row has no ") + restore::kCode +
                                               "; it is stored under code " +
                                               std::to_string(value));
        }
        checkValue(file, row, restore::kCode, restore::kCodeKind,
                   "the row is stored under code {}");
        warnAboutMissingTexts(file, row, "the row of code " + std::to_string(value),
                              {{restore::kDescription, "the description of the error"},
                               {restore::kSolution, "the solution offered for the error"}});
        if (!codes.insert(value).second) {
            file.warning(file.offsetOf(row, restore::kCode),
                         "code " + std::to_string(value) +
                             " repeats an earlier row; this later row is ignored");
        }
    }
}

void checkMapping(SourceFile& file, const pugi::xml_node& root) {
    namespace mapping = format::plugin_mapping;
    std::set<std::string> versions;
    for (const pugi::xml_node& row : entries(file, root, kTextIsNotRead)) {
        const std::string version = row.attribute(mapping::kVersion).value();
        const std::string target = row.attribute(mapping::kMapping).value();
        if (version.empty() || target.empty()) {
            file.error(file.offsetOf(row),
                       "the row is skipped: its " +
                           inQuotes(version.empty() ? mapping::kVersion : mapping::kMapping) +
                           " is missing or empty");
        } else if (!versions.insert(version).second) {
            file.warning(file.offsetOf(row, mapping::kVersion),
                         std::string(mapping::kVersion) + " " + inQuotes(version) +
                             " repeats an earlier row; this later row is ignored");
        }
    }
}

} // namespace pallix::check
