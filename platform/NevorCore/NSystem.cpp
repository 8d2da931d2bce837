#include "NSystem.h"

#include <pwd.h>
#include <unistd.h>

#include <cstdlib>
#include <vector>

namespace NSystem {

NString userHome() {
    const char* home = std::getenv("HOME");
    if (home != nullptr && *home != '\0') {
        return NString(home);
    }
    long size = ::sysconf(_SC_GETPW_R_SIZE_MAX);
    std::vector<char> buffer(size > 0 ? static_cast<std::size_t>(size) : 16384);
    passwd entry{};
    passwd* result = nullptr;
    if (::getpwuid_r(::getuid(), &entry, buffer.data(), buffer.size(), &result) == 0 &&
        result != nullptr && result->pw_dir != nullptr) {
        return NString(result->pw_dir);
    }
    return NString();
}

} // namespace NSystem
