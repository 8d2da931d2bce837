#include "Commands.h"
#include "Failure.h"
#include "ToolOutput.h"

#include "PRuntime.h"
#include "PRuntimeValue.h"

#include <iostream>

namespace pallix::tool {

// "pallix runtime": shows that the library loads and hands out its root and value store.
void registerRuntimeCommands(CLI::App& app) {
    CLI::App* runtime = app.add_subcommand("runtime", "Load the library and show its root object");
    finishHelp(*runtime,
               "0 the root and the value store are ready; 1 the library could not create them.",
               "pallix runtime");
    runtime->callback([] {
        PRuntime* root = PRuntime::getInstance();
        const bool ready = root != nullptr && root->value() != nullptr;
        PRuntime::freeInstance();
        if (!ready) {
            failRejected("the runtime root could not be created");
        }
        std::cout << "libPallixRuntime " << PALLIX_VERSION << ": root ready, value store ready\n";
    });
}

} // namespace pallix::tool
