#include "NevorFrameworkConfigDirectoryDefault.h"

#include "_PALLIX_RUNTIME_CONFIG.h"

void NevorFrameworkConfigDirectoryDefault(const NString& name,
                                          const NString& defaultPath) noexcept {
    std::map<NString, NString>& directory = _globalFrameworkConfig.directory;
    const auto found = directory.find(name);
    if (found != directory.end()) {
        if (found->second.exist()) {
            return;
        }
        directory.erase(found);
    }
    directory.emplace(name, defaultPath);
}
