#include "NShell.h"

#include <sys/wait.h>

#include <cstdlib>

namespace NShell {

int system(const NString& command) {
    if (command.empty()) {
        return -1;
    }
    const int status = std::system(command.data());
    if (status == -1 || !WIFEXITED(status)) {
        return -1;
    }
    return WEXITSTATUS(status);
}

} // namespace NShell
