#include "Commands.h"

namespace pallix::tool {

void registerRestoreCommands(CLI::App& /*app*/) {}

} // namespace pallix::tool
