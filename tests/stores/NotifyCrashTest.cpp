// A process rewriting the notification file is killed at random moments, a thousand times:
// the file left behind must always be there and whole, hold either the last state the process
// finished writing or the one it was writing, and have at most a couple of stray temporaries
// beside it.

#include "KillLoop.h"
#include "NotifyPortbindTestSupport.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <sys/stat.h>

#include <algorithm>
#include <cstdio>
#include <iostream>
#include <string>

using pallix::test::ConfigDirectory;
using pallix::test::fileExists;
using pallix::test::killRepeatedly;
using pallix::test::kKillRounds;
using pallix::test::kMostStrayTemporaries;
using pallix::test::makeItem;
using pallix::test::strayTemporaries;
using pallix::test::TemporaryDirectory;
using pallix::test::WriterProgress;

namespace {

constexpr unsigned long long kCounterId = 1;

// State k: twenty fixed notifications, and from k = 1 on the counter notification holding k.
void appendSeeds(PRuntimeNotify& store) {
    for (unsigned long long id = 1000; id < 1020; ++id) {
        PRuntimeNotifyItem item = makeItem(id, "Fixed notification " + std::to_string(id), id % 3,
                                           static_cast<long long>(id) * 1000);
        item.setIsPopup(id % 2 == 0);
        item.setAlreadyRead(id % 4 == 0);
        store.append(id, item);
    }
}

PRuntimeNotifyItem counterItem(long long state) {
    PRuntimeNotifyItem item = makeItem(kCounterId, "state " + std::to_string(state), 7, state);
    item.setAlreadyRead(state % 2 == 0);
    return item;
}

// The exact bytes the store writes for state k, produced by a store of its own in a scratch
// configuration directory that starts from the seeded file.
std::string expectedFile(const ConfigDirectory& config, const std::string& seeded,
                         long long state) {
    if (state == 0) {
        return seeded;
    }
    const std::string scratch = config.outside("scratch");
    ::mkdir(scratch.c_str(), 0755);
    TemporaryDirectory::write(scratch + "/notify.xml", seeded);
    NApplication::setDirectoryConfig(NString(scratch));
    {
        PRuntimeNotify store;
        store.append(kCounterId, counterItem(state));
    }
    NApplication::setDirectoryConfig(NString(config.path()));
    return TemporaryDirectory::read(scratch + "/notify.xml");
}

} // namespace

TEST(NotifyCrash, AFileRewrittenWhileKilledIsAlwaysWholeAndTheLastOrNextState) {
    ConfigDirectory config;
    const std::string path = config.file("/notify.xml");
    {
        PRuntimeNotify seed;
        appendSeeds(seed);
    }
    const std::string seeded = TemporaryDirectory::read(path);
    ASSERT_EQ(seeded.find("state"), std::string::npos);

    const auto writer = [](WriterProgress& progress) {
        PRuntimeNotify store;
        for (long long state = progress.done.load() + 1;; ++state) {
            progress.started.store(state);
            store.append(kCounterId, counterItem(state));
            progress.done.store(state);
        }
    };
    int mostStrays = 0;
    const auto check = [&](long long started, long long done) {
        // The file is replaced atomically: it is always there.
        ASSERT_TRUE(fileExists(path));
        const int strays = strayTemporaries(config.path(), "notify.xml");
        mostStrays = std::max(mostStrays, strays);
        ASSERT_LE(strays, kMostStrayTemporaries);
        const std::string text = TemporaryDirectory::read(path);
        pugi::xml_document document;
        const pugi::xml_parse_result parsed = document.load_buffer(text.data(), text.size());
        ASSERT_TRUE(parsed) << parsed.description() << "\n" << text;
        long long state = 0;
        int items = 0;
        for (pugi::xml_node item : document.child("Nevor").child("Notify").children("Item")) {
            ++items;
            if (item.child("ID").attribute("VALUE").as_ullong() == kCounterId) {
                state = item.child("Timestamp").attribute("VALUE").as_llong();
            }
        }
        EXPECT_EQ(items, state > 0 ? 21 : 20);
        const bool last = state == done;
        const bool next = started == done + 1 && state == started;
        ASSERT_TRUE(last || next) << "file holds state " << state << ", writer had finished "
                                  << done << " and started " << started;
        ASSERT_EQ(text, expectedFile(config, seeded, state));
    };
    const auto statistics = killRepeatedly(kKillRounds, 20240601u, writer, check);
    EXPECT_EQ(statistics.rounds, kKillRounds);
    std::cout << statistics.rounds << " kills, " << statistics.duringWrite
              << " while a write was under way, at most " << mostStrays << " stray temporaries\n";

    // The writers made progress, and a store reading the file now sees the last state.
    PRuntimeNotify reloaded;
    const PRuntimeNotifyItem counter = reloaded.find(kCounterId);
    EXPECT_GT(counter.timestamp(), 0);
    EXPECT_EQ(counter.title(), NString("state " + std::to_string(counter.timestamp())));
}
