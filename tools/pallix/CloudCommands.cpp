#include "Commands.h"

namespace pallix::tool {

void registerCloudCommands(CLI::App& /*app*/) {}

} // namespace pallix::tool
