// Feeds arbitrary bytes to the notification store as its "/notify.xml".

#include "FuzzConfigDirectory.h"

#include "PRuntimeNotify.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string& directory = pallix::fuzz::configDirectory();
    pallix::fuzz::writeFile(directory + "/notify.xml", data, size);
    PRuntimeNotify store;
    unsigned long long previous = 0;
    bool first = true;
    store.traverse([&](unsigned long long id, const PRuntimeNotifyItem& item) {
        // Keys ascend, each is the item's own id, nothing read is a system notification, and
        // every key can be found again.
        if ((!first && id <= previous) || item.id() != id || item.isSystem() || !store.exist(id) ||
            store.find(id).title() != item.title()) {
            __builtin_trap();
        }
        first = false;
        previous = id;
    });
    return 0;
}
