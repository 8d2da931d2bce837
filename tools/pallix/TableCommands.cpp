#include "Commands.h"

namespace pallix::tool {

void registerTableCommands(CLI::App& /*app*/) {}

} // namespace pallix::tool
