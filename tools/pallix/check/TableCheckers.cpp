// Checks of the reference tables: chip identifiers, crash codes, restore errors, plug-in
// mapping. Each finding names what the library would do with the row.

#include "Checkers.h"
#include "SourceFile.h"
#include "ValueRules.h"

#include "NString.h"

#include <map>
#include <set>
#include <string>

namespace pallix::check {

namespace {

// The chip text that "%04X" can print: four digits, or more without a leading zero, at most
// eight (32 bits).
bool isPrintableChip(const std::string& text) {
    if (!isHexDigits(text, true) || text.size() < 4 || text.size() > 8) {
        return false;
    }
    return text.size() == 4 || text[0] != '0';
}

// The crash table compares keys ignoring case as the framework string folds them.
std::string folded(const std::string& text) {
    return NString(text).foldCase().toStdString();
}

bool loadRoot(SourceFile& file, const pugi::xml_document& document, const char* rootName,
              pugi::xml_node& root) {
    root = requireRoot(file, document, rootName);
    if (!root) {
        return false;
    }
    // The tables take only elements as rows.
    warnAboutTextEntries(file, root, kTextIsNotRead);
    return true;
}

// A text that the interface shows for the row: missing or empty, the user sees nothing there.
void warnAboutMissingText(SourceFile& file, const pugi::xml_node& row, const char* attribute,
                          const std::string& rowName, const std::string& shownAs) {
    const pugi::xml_attribute text = row.attribute(attribute);
    if (*text.value() != '\0') {
        return;
    }
    file.warning(text ? file.offsetOf(row, attribute) : file.offsetOf(row),
                 rowName + " has " + (text ? "an empty " : "no ") + attribute + ": " + shownAs +
                     " is shown as an empty text");
}

} // namespace

void checkCpid(SourceFile& file, const pugi::xml_document& document) {
    pugi::xml_node root;
    if (!loadRoot(file, document, "DEVICE", root)) {
        return;
    }
    std::map<std::pair<std::string, std::string>, std::size_t> firstRow; // pair -> offset
    std::map<std::string, std::size_t> chips;                            // chip -> first offset
    std::set<std::string> chipsWithDefault;
    for (pugi::xml_node row = root.first_child(); row; row = row.next_sibling()) {
        if (row.type() != pugi::node_element) {
            continue;
        }
        const std::string chip = row.attribute("CPID").value();
        const std::string board = row.attribute("BDID").value();
        const std::size_t at = file.offsetOf(row);
        bool findable = true;
        if (!isPrintableChip(chip)) {
            file.error(file.offsetOf(row, "CPID"),
                       "CPID " + inQuotes(chip) +
                           " is never found: a chip is looked up as four or more upper-case "
                           "hexadecimal digits without extra leading zeros");
            findable = false;
        }
        if (!(board.size() == 2 && isHexDigits(board, true))) {
            file.error(file.offsetOf(row, "BDID"),
                       "BDID " + inQuotes(board) +
                           " is never found: a board is looked up as two upper-case "
                           "hexadecimal digits");
            findable = false;
        }
        checkBooleanAttribute(file, row, "SUPPORT");
        const std::string rowName =
            "the row of chip " + inQuotes(chip) + " board " + inQuotes(board);
        warnAboutMissingText(file, row, "MODE", rowName, "the device's model name");
        warnAboutMissingText(file, row, "PRODUCT", rowName, "the device's product type");
        warnAboutMissingText(file, row, "NETWORK", rowName, "the device's network variant");
        if (!findable) {
            continue;
        }
        const auto inserted = firstRow.emplace(std::make_pair(chip, board), at);
        if (!inserted.second) {
            file.warning(at, "chip " + chip + " with board " + board +
                                 " repeats an earlier row; this later row is never found");
        }
        chips.emplace(chip, at);
        if (board == "00") {
            chipsWithDefault.insert(chip);
        }
    }
    for (const auto& [chip, at] : chips) {
        if (!chipsWithDefault.count(chip)) {
            file.warning(at, "chip " + chip +
                                 " has no board-00 default row: its other boards are not found");
        }
    }
}

void checkCrash(SourceFile& file, const pugi::xml_document& document) {
    pugi::xml_node root;
    if (!loadRoot(file, document, "CRASH", root)) {
        return;
    }
    std::map<std::string, std::string> keys; // folded key -> key as first written
    bool shadowedByEmpty = false;
    for (pugi::xml_node row = root.first_child(); row; row = row.next_sibling()) {
        if (row.type() != pugi::node_element) {
            continue;
        }
        const std::size_t at = file.offsetOf(row);
        const std::string key = row.attribute("KEY").value();
        const std::string rowName = "the row of KEY " + inQuotes(key);
        warnAboutMissingText(file, row, "REASON", rowName, "the reason of a failure it matches");
        warnAboutMissingText(file, row, "SOLUTION", rowName,
                             "the solution offered for a failure it matches");
        if (shadowedByEmpty) {
            file.warning(at, "this row is never found: an earlier row with an empty KEY "
                             "matches every text first");
            continue;
        }
        if (key.empty()) {
            if (row.next_sibling()) {
                file.error(file.offsetOf(row, "KEY"),
                           "empty KEY matches every text, so every row after it is never found");
            }
            shadowedByEmpty = true;
            continue;
        }
        const auto inserted = keys.emplace(folded(key), key);
        if (!inserted.second) {
            file.warning(file.offsetOf(row, "KEY"),
                         "KEY " + inQuotes(key) + " repeats " + inQuotes(inserted.first->second) +
                             " (case ignored); this later row is never found");
        }
    }
}

void checkRestoreError(SourceFile& file, const pugi::xml_document& document) {
    pugi::xml_node root;
    if (!loadRoot(file, document, "APPLE", root)) {
        return;
    }
    std::set<long long> codes;
    for (pugi::xml_node row = root.first_child(); row; row = row.next_sibling()) {
        if (row.type() != pugi::node_element) {
            continue;
        }
        const std::size_t at = file.offsetOf(row);
        const pugi::xml_attribute code = row.attribute("CODE");
        if (!code) {
            file.error(at, "the row has no CODE; it is stored under code 0");
        } else {
            checkIntegerAttribute(file, row, "CODE", IntegerWidth::Int64,
                                  "the row is stored under code " +
                                      std::to_string(code.as_llong()));
        }
        const long long value = code.as_llong();
        const std::string rowName = "the row of code " + std::to_string(value);
        warnAboutMissingText(file, row, "DESCRIBE", rowName, "the description of the error");
        warnAboutMissingText(file, row, "SOLUTION", rowName, "the solution offered for the error");
        if (!codes.insert(value).second) {
            file.warning(code ? file.offsetOf(row, "CODE") : at,
                         "code " + std::to_string(value) +
                             " repeats an earlier row; this later row is ignored");
        }
    }
}

void checkMapping(SourceFile& file, const pugi::xml_document& document) {
    pugi::xml_node root;
    if (!loadRoot(file, document, "Nevor", root)) {
        return;
    }
    std::set<std::string> versions;
    for (pugi::xml_node row = root.first_child(); row; row = row.next_sibling()) {
        if (row.type() != pugi::node_element) {
            continue;
        }
        const std::size_t at = file.offsetOf(row);
        const std::string version = row.attribute("Version").value();
        const std::string mapping = row.attribute("Mapping").value();
        if (version.empty() || mapping.empty()) {
            file.error(at, std::string("the row is skipped: its ") +
                               (version.empty() ? "\"Version\"" : "\"Mapping\"") +
                               " is missing or empty");
            continue;
        }
        if (!versions.insert(version).second) {
            file.warning(file.offsetOf(row, "Version"),
                         "Version " + inQuotes(version) +
                             " repeats an earlier row; this later row is ignored");
        }
    }
}

} // namespace pallix::check
