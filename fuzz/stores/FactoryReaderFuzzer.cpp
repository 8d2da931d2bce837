// Feeds arbitrary bytes to the factory store as its "/Factory.json", then checks that what it
// read survives its own rewrite unchanged.

#include "FuzzConfigDirectory.h"

#include "PRuntimeFactory.h"

#include <cstdlib>
#include <map>

namespace {

using Devices = std::map<unsigned long long, NDeviceInfoFactory>;

Devices contents(PRuntimeFactory& store) {
    Devices devices;
    store.traverse([&devices](unsigned long long id, const NDeviceInfoFactory& info) {
        devices.emplace(id, info);
    });
    return devices;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    pallix::fuzz::writeInput("Factory.json", data, size);
    Devices read;
    {
        PRuntimeFactory store;
        read = contents(store);
        // Everything the reader keeps has a device id and at least one value.
        for (const auto& [id, info] : read) {
            if (id == 0 || !info.exist() || !store.find(id)) {
                std::abort();
            }
        }
        if (store.empty() != read.empty() || store.exist() == read.empty()) {
            std::abort();
        }
        // Rewrites the file without changing the contents.
        store.remove(0);
    }
    PRuntimeFactory reloaded;
    if (contents(reloaded) != read) {
        std::abort();
    }
    return 0;
}
