#include "CpidIndexes.h"

#include <memory>
#include <mutex>
#include <shared_mutex>
#include <unordered_map>

namespace pallix::tables {

namespace {

struct Registry {
    std::shared_mutex lock;
    // Each index on the heap of its own, so that the map's rehashing never moves an index
    // that a table is using outside the lock.
    std::unordered_map<const PRuntimeCpid*, std::unique_ptr<CpidIndex>> indexes;
};

// Made on first use and never destroyed: a table that is a global of the host may be destroyed
// after every static of the library, and its destructor still comes here.
Registry& registry() {
    static Registry* const instance = new Registry;
    return *instance;
}

} // namespace

CpidIndex& CpidIndexes::of(const PRuntimeCpid* table) {
    Registry& shared = registry();
    {
        const std::shared_lock<std::shared_mutex> reading(shared.lock);
        const auto found = shared.indexes.find(table);
        if (found != shared.indexes.end()) {
            return *found->second;
        }
    }
    const std::unique_lock<std::shared_mutex> writing(shared.lock);
    std::unique_ptr<CpidIndex>& index = shared.indexes[table];
    if (!index) {
        index = std::make_unique<CpidIndex>();
    }
    return *index;
}

const CpidIndex* CpidIndexes::find(const PRuntimeCpid* table) {
    Registry& shared = registry();
    const std::shared_lock<std::shared_mutex> reading(shared.lock);
    const auto found = shared.indexes.find(table);
    return found != shared.indexes.end() ? found->second.get() : nullptr;
}

void CpidIndexes::forget(const PRuntimeCpid* table) noexcept {
    Registry& shared = registry();
    std::unique_ptr<CpidIndex> gone;
    {
        const std::unique_lock<std::shared_mutex> writing(shared.lock);
        const auto found = shared.indexes.find(table);
        if (found == shared.indexes.end()) {
            return;
        }
        gone = std::move(found->second);
        shared.indexes.erase(found);
    }
}

} // namespace pallix::tables
