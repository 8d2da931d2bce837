#pragma once

#include "SourceFile.h"

#include <CLI/CLI.hpp>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace pallix::tool {

// The exit status of a subcommand that ran to its end (check with findings, a query that found
// nothing while others were answered). A subcommand that cannot go on throws a Failure instead
// (Failure.h).
int& exitStatus();

// Messages on standard error: "pallix: MESSAGE", "pallix: warning: MESSAGE",
// "pallix: note: MESSAGE".
void reportError(const std::string& message);
void reportWarning(const std::string& message);
void reportNote(const std::string& message);

// Adds "--json" to a subcommand that prints results.
void addJsonFlag(CLI::App& command, bool& json);
// Prints a JSON document on standard output, indented, followed by a line feed. Text that is
// not UTF-8 (a file's bytes may be anything) is printed with U+FFFD in place of the bad bytes.
// Members keep the order in which they were added (a nlohmann::json converts, sorted by name).
void printJson(const nlohmann::ordered_json& document);
// Prints `document` with `json`, else `text` and a line feed: the two forms of one answer.
void printAnswer(bool json, const nlohmann::ordered_json& document, const std::string& text);

// One line of tab-separated fields. A tab, line feed, carriage return or backslash inside a
// field is written as \t, \n, \r or \\, so that every line is one record.
void printFields(const std::vector<std::string>& fields);
std::string escapeField(const std::string& field);

// Prints the file's findings as FILE:LINE:COLUMN: SEVERITY: MESSAGE, unless `json`, and counts
// them. Returns them as JSON: an array of {file, line, column, severity, message}.
nlohmann::ordered_json reportFindings(const check::SourceFile& file, bool json, std::size_t& errors,
                                      std::size_t& warnings);
// "3 files", "1 error".
std::string plural(std::size_t count, const char* word);

// "A, B or C" (with `last` "or"), or "A, B, C" without one: a closed set in a message.
std::string joined(const std::vector<std::string>& words, const char* last = nullptr);

// Colour for a terminal that shows it: never when the stream is not a terminal, when NO_COLOR
// is set (to anything) or when TERM is "dumb".
enum class Colour { Red, Yellow, Green, Bold };
std::string paint(Colour colour, const std::string& text, int fileDescriptor);

// Ends a help screen with an example (or several, one per line).
void setExample(CLI::App& command, const std::string& example);
// Ends a help screen with `notes` (what --json prints, the exit statuses), then the example.
void endHelp(CLI::App& command, const std::string& notes, const std::string& example);
// Ends a help screen with "Exit status: STATUSES", then the example.
void finishHelp(CLI::App& command, const std::string& statuses, const std::string& example);

} // namespace pallix::tool
