#include "Commands.h"

namespace pallix::tool {

void registerDemoCommands(CLI::App& /*app*/) {}

} // namespace pallix::tool
