#pragma once

#include <string>

namespace pallix::tool {

// The exit status of the subcommand that ran; subcommands set it from their callbacks.
int& exitStatus();

// A problem with the tool's input (missing file, malformed XML, bad argument): printed on
// standard error as "pallix: <message>".
void reportError(const std::string& message);

// Describes why an XML file could not be used: missing, unreadable, or not well-formed
// (with its line and column). Returns an empty text when the file parses.
std::string describeXmlProblem(const std::string& path);

} // namespace pallix::tool
