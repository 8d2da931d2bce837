// "pallix cpid", "pallix crash", "pallix restore-error", "pallix mapping": load a reference
// table through the library and show the row that answers a query.

#include "Commands.h"

#include "Conversions.h"
#include "Failure.h"
#include "FileGuard.h"
#include "NString.h"
#include "PRuntimeCpid.h"
#include "PRuntimeCrashCode.h"
#include "PRuntimePluginMapping.h"
#include "PRuntimeRestoreError.h"
#include "TableFormats.h"
#include "ToolOutput.h"
#include "Values.h"

#include <algorithm>
#include <climits>
#include <iostream>
#include <memory>
#include <string>
#include <vector>

namespace pallix::tool {

namespace {

const char* const kStatuses = "Exit status: 0 a row matched; 1 no row matched; 2 a usage error or "
                              "a table that cannot be read.";

const char* const kDecimalOrHex = "decimal, or hexadecimal after 0x";

struct Lookup {
    std::string table;
    std::string text;     // crash, mapping
    long long number = 0; // cpid's chip, restore-error's code
    long long board = 0;  // cpid
    bool json = false;
};

// One field of a row: its label in the text view (the file's attribute), its name in JSON, its
// value.
struct Field {
    const char* label;
    const char* key;
    nlohmann::ordered_json value;
};

std::string shown(const nlohmann::ordered_json& value) {
    if (value.is_boolean()) {
        return value.get<bool>() ? "yes" : "no";
    }
    return value.is_string() ? value.get<std::string>() : value.dump();
}

// Shows the row that answered, or says that none did: `document` holds the query, and gains
// "found" and "row" (null when nothing matched). `missed` completes "no row matched ...".
void answer(const Lookup& lookup, nlohmann::ordered_json document, const std::vector<Field>& row,
            const std::string& missed, const std::string& note = std::string()) {
    document["found"] = !row.empty();
    document["row"] = nullptr;
    for (const Field& field : row) {
        document["row"][field.key] = field.value;
    }
    if (lookup.json) {
        printJson(document);
        exitStatus() = row.empty() ? kNotFound : kSuccess;
        return;
    }
    if (row.empty()) {
        failNotFound("no row matched " + missed);
    }
    std::size_t width = 0;
    for (const Field& field : row) {
        width = std::max(width, std::string(field.label).size());
    }
    for (const Field& field : row) {
        const std::string label = std::string(field.label) + ":";
        std::cout << label << std::string(width + 2 - label.size(), ' ') << shown(field.value)
                  << '\n';
    }
    if (!note.empty()) {
        std::cout << note << '\n';
    }
}

// Loads the table after making sure that it is one; the library would read anything else as
// an empty table.
template <typename Table> void load(Table& table, const std::string& path, check::FileKind kind) {
    requireFileKind(path, kind);
    if (!table.format(NString(path))) {
        failUnreadable(path + ": the library could not read the table");
    }
}

void runCpid(const Lookup& lookup) {
    // The library looks chips and boards up as unsigned int, printed in hexadecimal.
    const auto chip = static_cast<unsigned int>(lookup.number);
    const auto board = static_cast<unsigned int>(lookup.board);
    PRuntimeCpid table;
    load(table, lookup.table, check::FileKind::Cpid);
    // The texts that the rows are matched against, for the messages.
    const std::string chipText = format::chipText(chip);
    const std::string boardText = format::boardText(board);
    PRuntimeInfoCpid row;
    const bool found = table.find(NDeviceInfoRecovery(chip, board), row);
    const bool fallback = found && row.bdid().toStdString() != boardText;
    std::vector<Field> fields;
    if (found) {
        fields = {{format::cpid::kChip, "cpid", row.cpid().toStdString()},
                  {format::cpid::kBoard, "bdid", row.bdid().toStdString()},
                  {format::cpid::kModel, "mode", row.mode().toStdString()},
                  {format::cpid::kNetwork, "network", row.network().toStdString()},
                  {format::cpid::kProduct, "product", row.product().toStdString()},
                  {format::cpid::kSupport, "support", row.support()}};
    }
    answer(lookup, {{"chip", chip}, {"board", board}, {"boardDefault", fallback}}, fields,
           "chip " + chipText + " board " + boardText +
               (board == format::kFallbackBoard
                    ? std::string()
                    : ", nor a board " + format::boardText(format::kFallbackBoard) +
                          " row of the chip"),
           fallback ? "(no row for board " + boardText + "; this is the chip's default row)"
                    : std::string());
}

void runCrash(const Lookup& lookup) {
    if (lookup.text.empty()) {
        failUsage("TEXT: an empty text matches no row");
    }
    PRuntimeCrashCode table;
    load(table, lookup.table, check::FileKind::Crash);
    std::vector<Field> fields;
    table.find(NString(lookup.text), [&fields](const PRuntimeInfoCrash& row) {
        fields = {{format::crash::kKey, "key", row.key().toStdString()},
                  {format::crash::kReason, "reason", row.reason().toStdString()},
                  {format::crash::kSolution, "solution", row.solution().toStdString()}};
    });
    answer(lookup, {{"text", lookup.text}}, fields, "the text \"" + lookup.text + "\"");
}

void runRestoreError(const Lookup& lookup) {
    const long long code = lookup.number;
    // Normally owned by the restore component; the tool needs only the table itself.
    PRuntimeRestoreError table;
    load(table, lookup.table, check::FileKind::RestoreError);
    std::vector<Field> fields;
    table.find(code, [&fields](const PRuntimeInfoRestoreError& row) {
        fields = {{format::restore_error::kCode, "code", row.code()},
                  {format::restore_error::kDescription, "describe", row.describe().toStdString()},
                  {format::restore_error::kSolution, "solution", row.solution().toStdString()}};
    });
    answer(lookup, {{"code", code}}, fields, "code " + std::to_string(code));
}

void runMapping(const Lookup& lookup) {
    if (lookup.text.empty()) {
        failUsage("VERSION: the library never looks up an empty version");
    }
    PRuntimePluginMapping table;
    load(table, lookup.table, check::FileKind::Mapping);
    NString mapping;
    std::vector<Field> fields;
    if (table.find(NString(lookup.text), mapping)) {
        fields = {{format::plugin_mapping::kVersion, "version", lookup.text},
                  {format::plugin_mapping::kMapping, "mapping", mapping.toStdString()}};
    }
    answer(lookup, {{"version", lookup.text}}, fields, "version \"" + lookup.text + "\"");
}

// Adds a lookup subcommand with TABLE and --json, its help ending with what --json prints
// (`json`), the exit statuses and the example; the caller adds the query's arguments.
CLI::App* addLookup(CLI::App& app, const char* name, const char* description, const char* tableHelp,
                    const std::shared_ptr<Lookup>& lookup, void (*run)(const Lookup&),
                    const std::string& json, const std::string& example) {
    CLI::App* command = app.add_subcommand(name, description);
    command->add_option("TABLE", lookup->table, tableHelp)->required();
    addJsonFlag(*command, lookup->json);
    endHelp(*command, "With --json: " + json + ".\n" + kStatuses, example);
    command->callback([lookup, run] { run(*lookup); });
    return command;
}

} // namespace

void registerTableCommands(CLI::App& app) {
    auto cpid = std::make_shared<Lookup>();
    CLI::App* command = addLookup(
        app, "cpid", "Find the device model of a chip and board identifier",
        "Chip identifier table", cpid, runCpid,
        "{\"chip\": NUMBER, \"board\": NUMBER, \"boardDefault\": BOOL (the row is the chip's "
        "board 00 row), \"found\": BOOL, \"row\": {\"cpid\", \"bdid\", \"mode\", \"network\", "
        "\"product\": TEXT, \"support\": BOOL} or null}",
        "pallix cpid samples/cpid.xml 0x8101 0x0C");
    const CLI::Validator identifier = IntegerIn(0, UINT_MAX, kDecimalOrHex, Digits::DecimalOrHex);
    command->add_option("CHIP", cpid->number, "Chip identifier, decimal or 0x hexadecimal")
        ->required()
        ->transform(identifier);
    command->add_option("BOARD", cpid->board, "Board identifier, decimal or 0x hexadecimal")
        ->required()
        ->transform(identifier);

    auto crash = std::make_shared<Lookup>();
    command = addLookup(app, "crash", "Find the reason and solution of a failure text",
                        "Crash code table", crash, runCrash,
                        "{\"text\": TEXT, \"found\": BOOL, \"row\": {\"key\", \"reason\", "
                        "\"solution\": TEXT} or null}",
                        "pallix crash samples/crash.xml AMRestore");
    command->add_option("TEXT", crash->text, "Failure text or key fragment (case ignored)")
        ->required();

    auto restore = std::make_shared<Lookup>();
    command =
        addLookup(app, "restore-error", "Find the description and solution of a restore error code",
                  "Restore error table", restore, runRestoreError,
                  "{\"code\": NUMBER, \"found\": BOOL, \"row\": {\"code\": NUMBER, "
                  "\"describe\", \"solution\": TEXT} or null}",
                  "pallix restore-error samples/restore-error.xml -35");
    command
        ->add_option("CODE", restore->number,
                     "Error code (signed 64-bit), decimal or 0x hexadecimal, with an optional "
                     "minus")
        ->required()
        ->transform(IntegerIn(LLONG_MIN, LLONG_MAX, kDecimalOrHex, Digits::DecimalOrHex));

    auto mapping = std::make_shared<Lookup>();
    command = addLookup(
        app, "mapping", "Find the plug-in version that a version is mapped to",
        "Plug-in mapping table", mapping, runMapping,
        "{\"version\": TEXT, \"found\": BOOL, \"row\": {\"version\", \"mapping\": TEXT} or null}",
        "pallix mapping samples/plugin-mapping.xml 16.4.1");
    command->add_option("VERSION", mapping->text, "Version text, matched exactly")->required();
}

} // namespace pallix::tool
