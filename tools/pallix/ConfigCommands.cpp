#include "Commands.h"

namespace pallix::tool {

void registerConfigCommands(CLI::App& /*app*/) {}

} // namespace pallix::tool
