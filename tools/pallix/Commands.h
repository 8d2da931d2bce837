#pragma once

#include <CLI/CLI.hpp>

// Every subsystem registers its subcommands on the tool's application object. A subcommand
// reports its result by setting the exit status it is given through ToolOutput (ToolOutput.h).
namespace pallix::tool {

void registerRuntimeCommands(CLI::App& app);
void registerConfigCommands(CLI::App& app);
void registerCloudCommands(CLI::App& app);
void registerTableCommands(CLI::App& app);
void registerNotifyCommands(CLI::App& app);
void registerPortbindCommands(CLI::App& app);
void registerFactoryCommands(CLI::App& app);
void registerIpswCommands(CLI::App& app);
void registerUtilityCommands(CLI::App& app);
void registerCheckCommands(CLI::App& app);
void registerReleaseCommands(CLI::App& app);
void registerDemoCommands(CLI::App& app);

} // namespace pallix::tool
