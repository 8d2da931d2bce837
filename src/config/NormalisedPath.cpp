#include "NormalisedPath.h"

#include "NFileSystem.h"

namespace pallix::config {

NString normalisedPath(const NString& path) {
    return NFileSystem::path::format(NFileSystem::path(path)).data();
}

} // namespace pallix::config
