#include "Commands.h"

namespace pallix::tool {

void registerUtilityCommands(CLI::App& /*app*/) {}

} // namespace pallix::tool
