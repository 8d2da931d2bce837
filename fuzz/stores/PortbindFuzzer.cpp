// Feeds arbitrary bytes to the port binding store as its "/PortBind.xml".

#include "FuzzConfigDirectory.h"

#include "PRuntimePortbind.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string& directory = pallix::fuzz::configDirectory();
    pallix::fuzz::writeFile(directory + "/PortBind.xml", data, size);
    PRuntimePortbind store;
    NString previous;
    bool first = true;
    store.traverse([&](const NString& source, const NString& target) {
        // Sources ascend without repeats, and each non-empty one finds its own target.
        if (!first && !(previous < source)) {
            __builtin_trap();
        }
        if (source.exist() && (!store.exist(source) || store.find(source) != target)) {
            __builtin_trap();
        }
        first = false;
        previous = source;
    });
    return 0;
}
