// Many threads share one notification store and mix every operation; afterwards the file must
// hold exactly the store's state. Run under ThreadSanitizer as well.

#include "NotifyPortbindTestSupport.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

using pallix::test::ConfigDirectory;
using pallix::test::fileExists;
using pallix::test::makeItem;

namespace {

constexpr int kThreads = 10;
constexpr int kOperationsPerThread = 120;
constexpr unsigned long long kIds = 24;

struct Entry {
    unsigned long long key;
    PRuntimeNotifyItem item;
};

std::vector<Entry> entriesOf(const PRuntimeNotify& store) {
    std::vector<Entry> entries;
    store.traverse([&](unsigned long long id, const PRuntimeNotifyItem& item) {
        entries.push_back({id, item});
    });
    return entries;
}

// Every item a thread stores carries its key as id and a title naming the key, so that any
// item read back can be checked against the key it was found under.
PRuntimeNotifyItem itemFor(unsigned long long id, int thread, int step) {
    PRuntimeNotifyItem item =
        makeItem(id, "n" + std::to_string(id) + " by " + std::to_string(thread), thread, step);
    item.setIsPopup(step % 2 == 0);
    item.setAlreadyRead(step % 3 == 0);
    item.setAlreadyPopup(step % 5 == 0);
    item.setIsSystem(step % 7 == 0);
    return item;
}

bool belongsTo(const PRuntimeNotifyItem& item, unsigned long long id) {
    return item.id() == id && item.title().startsWith(NString("n" + std::to_string(id) + " by "));
}

} // namespace

TEST(NotifyStress, ThreadsMixingEveryOperationLeaveTheFileEqualToTheState) {
    ConfigDirectory config;
    PRuntimeNotify* store = PRuntime::getInstance()->notify();
    ASSERT_NE(store, nullptr);

    std::atomic<int> failures{0};
    std::atomic<int> nestedCalls{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            std::mt19937 random(static_cast<unsigned>(thread) * 7919u + 1u);
            std::set<unsigned long long> appended;
            for (int step = 0; step < kOperationsPerThread; ++step) {
                const unsigned long long id = random() % kIds;
                switch (random() % 7) {
                case 0:
                case 1:
                    store->append(id, itemFor(id, thread, step));
                    appended.insert(id);
                    break;
                case 2: {
                    const bool present = store->exist(id);
                    const bool updated = store->update(id, itemFor(id, thread, step));
                    // Entries never leave the store, so what was present stays present.
                    if (present && !updated) {
                        ++failures;
                    }
                    break;
                }
                case 3:
                    store->remove(id);
                    break;
                case 4: {
                    const PRuntimeNotifyItem found = store->find(id);
                    const bool known = appended.count(id) != 0;
                    if (known && !belongsTo(found, id)) {
                        ++failures;
                    }
                    if (!belongsTo(found, id) && (found.id() != 0 || found.title().exist())) {
                        ++failures;
                    }
                    break;
                }
                case 5:
                    for (unsigned long long mine : appended) {
                        if (!store->exist(mine)) {
                            ++failures;
                        }
                    }
                    break;
                default: {
                    unsigned long long previous = 0;
                    bool first = true;
                    store->traverse([&](unsigned long long key, const PRuntimeNotifyItem& item) {
                        if ((!first && key <= previous) || !belongsTo(item, key)) {
                            ++failures;
                        }
                        first = false;
                        previous = key;
                        // Calling back into the store from the callback.
                        if (key % 5 == static_cast<unsigned long long>(thread % 5)) {
                            PRuntimeNotifyItem read = store->find(key);
                            read.setAlreadyRead(true);
                            store->update(key, read);
                            ++nestedCalls;
                        }
                    });
                    break;
                }
                }
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(failures.load(), 0);
    EXPECT_GT(nestedCalls.load(), 0);

    ASSERT_TRUE(fileExists(config.file("/notify.xml")));
    const std::vector<Entry> state = entriesOf(*store);
    EXPECT_FALSE(state.empty());
    PRuntimeNotify reloaded;
    const std::vector<Entry> file = entriesOf(reloaded);
    ASSERT_EQ(file.size(), state.size());
    for (std::size_t i = 0; i < state.size(); ++i) {
        const PRuntimeNotifyItem& expected = state[i].item;
        const PRuntimeNotifyItem& got = file[i].item;
        SCOPED_TRACE(state[i].key);
        EXPECT_EQ(file[i].key, state[i].key);
        EXPECT_EQ(got.id(), expected.id());
        EXPECT_EQ(got.userID(), expected.userID());
        EXPECT_EQ(got.title(), expected.title());
        EXPECT_EQ(got.url(), expected.url());
        EXPECT_EQ(got.timestamp(), expected.timestamp());
        EXPECT_EQ(got.isPopup(), expected.isPopup());
        EXPECT_EQ(got.isAlreadyRead(), expected.isAlreadyRead());
        EXPECT_EQ(got.isAlreadyPopup(), expected.isAlreadyRead());
        EXPECT_EQ(got.isRemove(), expected.isRemove());
        EXPECT_FALSE(got.isSystem());
    }
    PRuntime::freeInstance();
}
