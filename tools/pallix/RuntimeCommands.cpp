#include "Commands.h"
#include "ToolOutput.h"

#include "PRuntime.h"
#include "PRuntimeValue.h"

#include <iostream>

namespace pallix::tool {

// "pallix runtime": shows that the library loads and hands out its root and value store.
void registerRuntimeCommands(CLI::App& app) {
    CLI::App* runtime = app.add_subcommand("runtime", "Load the library and show its root object");
    runtime->callback([] {
        PRuntime* root = PRuntime::getInstance();
        if (root == nullptr || root->value() == nullptr) {
            reportError("the runtime root could not be created");
            exitStatus() = 1;
            return;
        }
        std::cout << "libPallixRuntime " << PALLIX_VERSION << ": root ready, value store ready\n";
        PRuntime::freeInstance();
    });
}

} // namespace pallix::tool
