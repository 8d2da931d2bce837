#include "Commands.h"

namespace pallix::tool {

void registerStoreCommands(CLI::App& /*app*/) {}

} // namespace pallix::tool
