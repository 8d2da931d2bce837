#include "Commands.h"

namespace pallix::tool {

void registerCheckCommands(CLI::App& /*app*/) {}

} // namespace pallix::tool
