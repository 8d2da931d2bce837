// Feeds arbitrary bytes to the notification store as one file of the old "/Notify" directory.

#include "FuzzConfigDirectory.h"

#include "PRuntimeNotify.h"

#include <sys/stat.h>

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string& directory = pallix::fuzz::configDirectory();
    const std::string old = directory + "/Notify";
    ::mkdir(old.c_str(), 0755);
    pallix::fuzz::writeFile(old + "/1.xml", data, size);
    pallix::fuzz::writeFile(old + "/1.txt", data, size);
    PRuntimeNotify store;
    int count = 0;
    store.traverse([&](unsigned long long id, const PRuntimeNotifyItem& item) {
        if (item.id() != id || item.isSystem()) {
            __builtin_trap();
        }
        ++count;
    });
    // Both entries are read through "1.xml", so they give one notification at most; and the old
    // directory is gone after the import.
    struct stat info {};
    if (count > 1 || ::stat(old.c_str(), &info) == 0) {
        __builtin_trap();
    }
    return 0;
}
