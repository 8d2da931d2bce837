#pragma once

#include <CLI/CLI.hpp>

// Every subsystem registers its subcommands on the tool's application object. A subcommand
// reports its result by setting the exit status it is given through ToolOutput (ToolOutput.h).
namespace pallix::tool {

void registerRuntimeCommands(CLI::App& app);
void registerConfigCommands(CLI::App& app);
void registerCloudCommands(CLI::App& app);
void registerTableCommands(CLI::App& app);
void registerStoreCommands(CLI::App& app);
void registerRestoreCommands(CLI::App& app);
void registerUtilityCommands(CLI::App& app);
void registerCheckCommands(CLI::App& app);
void registerReleaseCommands(CLI::App& app);
void registerDemoCommands(CLI::App& app);

} // namespace pallix::tool
