#include "Commands.h"
#include "ToolOutput.h"

#include "NString.h"
#include "PRuntime.h"
#include "PRuntimeCpid.h"
#include "PRuntimeCrashCode.h"
#include "PRuntimePluginMapping.h"
#include "PRuntimeRestoreError.h"

#include <pugixml.hpp>

#include <cctype>
#include <climits>
#include <iostream>
#include <memory>
#include <string>

namespace pallix::tool {

namespace {

// Digits of a number given on the command line: "0x" or "0X" then hexadecimal digits, or
// decimal digits. The value must fit in `limit`; false for anything else.
bool parseMagnitude(const std::string& text, unsigned long long limit, unsigned long long& value) {
    std::size_t at = 0;
    unsigned base = 10;
    if (text.size() > 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X')) {
        base = 16;
        at = 2;
    }
    if (at >= text.size()) {
        return false;
    }
    value = 0;
    for (; at < text.size(); ++at) {
        const unsigned char c = static_cast<unsigned char>(text[at]);
        unsigned digit = 0;
        if (std::isdigit(c)) {
            digit = c - '0';
        } else if (base == 16 && std::isxdigit(c)) {
            digit = static_cast<unsigned>(std::tolower(c) - 'a' + 10);
        } else {
            return false;
        }
        if (value > (limit - digit) / base) {
            return false;
        }
        value = value * base + digit;
    }
    return true;
}

bool parseUnsigned(const std::string& text, unsigned int& value) {
    unsigned long long parsed = 0;
    if (!parseMagnitude(text, UINT_MAX, parsed)) {
        return false;
    }
    value = static_cast<unsigned int>(parsed);
    return true;
}

// A signed 64-bit code: an optional minus, then decimal or 0x hexadecimal digits.
bool parseSigned(const std::string& text, long long& value) {
    const bool negative = !text.empty() && text[0] == '-';
    const std::string digits = negative ? text.substr(1) : text;
    const unsigned long long limit =
        negative ? static_cast<unsigned long long>(LLONG_MAX) + 1 : LLONG_MAX;
    unsigned long long magnitude = 0;
    if (!parseMagnitude(digits, limit, magnitude)) {
        return false;
    }
    if (!negative) {
        value = static_cast<long long>(magnitude);
    } else if (magnitude == static_cast<unsigned long long>(LLONG_MAX) + 1) {
        value = LLONG_MIN;
    } else {
        value = -static_cast<long long>(magnitude);
    }
    return true;
}

void badArgument(const std::string& name, const std::string& text, const char* expected) {
    reportError(name + ": expected " + expected + ", got '" + text + "'");
    exitStatus() = 2;
}

// The library is silent about unusable files, so the tool looks at the file itself first:
// missing, not well-formed (with line and column) or without the table's root element.
bool usableTable(const std::string& path, const char* rootName) {
    const std::string problem = describeXmlProblem(path);
    if (!problem.empty()) {
        reportError(problem);
        exitStatus() = 2;
        return false;
    }
    pugi::xml_document document;
    if (!document.load_file(path.c_str(), pugi::parse_default, pugi::encoding_utf8)) {
        reportError(path + ": cannot be read");
        exitStatus() = 2;
        return false;
    }
    if (!document.child(rootName)) {
        const pugi::xml_node actual = document.document_element();
        reportError(path + ": not a table of this kind: the root element is <" +
                    std::string(actual ? actual.name() : "") + ">, expected <" + rootName + ">");
        exitStatus() = 2;
        return false;
    }
    return true;
}

// The root's component, or null when the root itself could not be created.
template <typename Component> Component* component(Component* (PRuntime::*accessor)()) {
    PRuntime* root = PRuntime::getInstance();
    return root != nullptr ? (root->*accessor)() : nullptr;
}

void notLoaded(const std::string& path) {
    reportError(path + ": the table could not be loaded");
    exitStatus() = 2;
}

void noRow(const std::string& what) {
    std::cout << "no row matched " << what << '\n';
    exitStatus() = 1;
}

void printField(const char* name, const NString& value) {
    std::cout << name << value.data() << '\n';
}

struct CpidArguments {
    std::string table;
    std::string chip;
    std::string board;
};

struct TextArguments {
    std::string table;
    std::string text;
};

void runCpid(const CpidArguments& arguments) {
    unsigned int chip = 0;
    unsigned int board = 0;
    if (!parseUnsigned(arguments.chip, chip)) {
        badArgument("CHIP", arguments.chip, "a decimal or 0x hexadecimal number");
        return;
    }
    if (!parseUnsigned(arguments.board, board)) {
        badArgument("BOARD", arguments.board, "a decimal or 0x hexadecimal number");
        return;
    }
    if (!usableTable(arguments.table, "DEVICE")) {
        return;
    }
    PRuntimeCpid* table = component(&PRuntime::cpid);
    if (table == nullptr || !table->format(arguments.table.c_str())) {
        notLoaded(arguments.table);
        return;
    }
    const NString chipText = NString::format("%04X", chip);
    const NString boardText = NString::format("%02X", board);
    PRuntimeInfoCpid row;
    if (!table->find(NDeviceInfoRecovery(chip, board), row)) {
        noRow("chip " + chipText.toStdString() + " board " + boardText.toStdString() +
              ", nor a board 00 row of the chip");
        return;
    }
    printField("CPID:    ", row.cpid());
    printField("BDID:    ", row.bdid());
    printField("MODE:    ", row.mode());
    printField("NETWORK: ", row.network());
    printField("PRODUCT: ", row.product());
    std::cout << "SUPPORT: " << (row.support() ? "yes" : "no") << '\n';
    if (row.bdid() != boardText) {
        std::cout << "(no row for board " << boardText.data()
                  << "; this is the chip's default row)\n";
    }
}

void runCrash(const TextArguments& arguments) {
    if (!usableTable(arguments.table, "CRASH")) {
        return;
    }
    PRuntimeCrashCode* table = component(&PRuntime::crashCode);
    if (table == nullptr || !table->format(arguments.table.c_str())) {
        notLoaded(arguments.table);
        return;
    }
    bool found = false;
    table->find(arguments.text.c_str(), [&found](const PRuntimeInfoCrash& row) {
        found = true;
        printField("KEY:      ", row.key());
        printField("REASON:   ", row.reason());
        printField("SOLUTION: ", row.solution());
    });
    if (!found) {
        noRow("the text \"" + arguments.text + "\"");
    }
}

void runRestoreError(const TextArguments& arguments) {
    long long code = 0;
    if (!parseSigned(arguments.text, code)) {
        badArgument("CODE", arguments.text, "a signed 64-bit decimal or 0x hexadecimal number");
        return;
    }
    if (!usableTable(arguments.table, "APPLE")) {
        return;
    }
    // Normally owned by the restore component; the tool needs only the table itself.
    PRuntimeRestoreError table;
    if (!table.format(arguments.table.c_str())) {
        notLoaded(arguments.table);
        return;
    }
    bool found = false;
    table.find(code, [&found](const PRuntimeInfoRestoreError& row) {
        found = true;
        std::cout << "CODE:     " << row.code() << '\n';
        printField("DESCRIBE: ", row.describe());
        printField("SOLUTION: ", row.solution());
    });
    if (!found) {
        noRow("code " + std::to_string(code));
    }
}

void runMapping(const TextArguments& arguments) {
    if (!usableTable(arguments.table, "Nevor")) {
        return;
    }
    PRuntimePluginMapping* table = component(&PRuntime::pluginMapping);
    if (table == nullptr || !table->format(arguments.table.c_str())) {
        notLoaded(arguments.table);
        return;
    }
    NString mapping;
    if (!table->find(arguments.text.c_str(), mapping)) {
        noRow("version \"" + arguments.text + "\"");
        return;
    }
    std::cout << "Version: " << arguments.text << '\n';
    printField("Mapping: ", mapping);
}

// Runs a subcommand's work and lets the root go afterwards, whatever the outcome.
template <typename Arguments>
void withRoot(void (*work)(const Arguments&), const Arguments& arguments) {
    work(arguments);
    PRuntime::freeInstance();
}

} // namespace

// "pallix cpid", "pallix crash", "pallix restore-error", "pallix mapping": load a reference
// table through the library and print the row that answers a query. Exit status 0 with a row,
// 1 when no row matched, 2 when the table or an argument cannot be used.
void registerTableCommands(CLI::App& app) {
    auto cpidArguments = std::make_shared<CpidArguments>();
    CLI::App* cpid = app.add_subcommand(
        "cpid", "Find the device model of a chip and board identifier in a chip table");
    cpid->add_option("TABLE", cpidArguments->table, "Chip identifier table (root DEVICE)")
        ->required();
    cpid->add_option("CHIP", cpidArguments->chip, "Chip identifier, decimal or 0x hexadecimal")
        ->required();
    cpid->add_option("BOARD", cpidArguments->board, "Board identifier, decimal or 0x hexadecimal")
        ->required();
    cpid->callback([cpidArguments] { withRoot(runCpid, *cpidArguments); });

    auto crashArguments = std::make_shared<TextArguments>();
    CLI::App* crash = app.add_subcommand(
        "crash", "Find the reason and solution of a failure text in a crash code table");
    crash->add_option("TABLE", crashArguments->table, "Crash code table (root CRASH)")->required();
    crash->add_option("TEXT", crashArguments->text, "Failure text or key fragment")->required();
    crash->callback([crashArguments] { withRoot(runCrash, *crashArguments); });

    auto restoreArguments = std::make_shared<TextArguments>();
    CLI::App* restore = app.add_subcommand(
        "restore-error", "Find the description and solution of a restore error code");
    restore->add_option("TABLE", restoreArguments->table, "Restore error table (root APPLE)")
        ->required();
    restore
        ->add_option("CODE", restoreArguments->text,
                     "Error code, decimal or 0x hexadecimal, with an optional minus")
        ->required();
    restore->callback([restoreArguments] { withRoot(runRestoreError, *restoreArguments); });

    auto mappingArguments = std::make_shared<TextArguments>();
    CLI::App* mapping =
        app.add_subcommand("mapping", "Find the mapped plug-in version of a version");
    mapping->add_option("TABLE", mappingArguments->table, "Plug-in mapping table (root Nevor)")
        ->required();
    mapping->add_option("VERSION", mappingArguments->text, "Version text, matched exactly")
        ->required();
    mapping->callback([mappingArguments] { withRoot(runMapping, *mappingArguments); });
}

} // namespace pallix::tool
