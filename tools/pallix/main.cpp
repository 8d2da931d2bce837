// pallix: the command-line companion of libPallixRuntime. Each subsystem of the library adds
// its subcommands; they all go through the library's public interface.

#include "Commands.h"
#include "ToolOutput.h"

#include <iostream>

int main(int argc, char** argv) {
    CLI::App app{"pallix: inspect and exercise the Pallix runtime library", "pallix"};
    app.set_version_flag("--version", std::string("pallix ") + PALLIX_VERSION);
    app.require_subcommand(0, 1);

    pallix::tool::registerRuntimeCommands(app);
    pallix::tool::registerConfigCommands(app);
    pallix::tool::registerCloudCommands(app);
    pallix::tool::registerTableCommands(app);
    pallix::tool::registerStoreCommands(app);
    pallix::tool::registerRestoreCommands(app);
    pallix::tool::registerUtilityCommands(app);
    pallix::tool::registerCheckCommands(app);
    pallix::tool::registerDemoCommands(app);

    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error);
    }
    if (app.get_subcommands().empty()) {
        std::cout << app.help();
        return 0;
    }
    return pallix::tool::exitStatus();
}
