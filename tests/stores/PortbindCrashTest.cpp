// A process rewriting the port binding file is killed at random moments, a thousand times: the
// file left behind must always be there and whole, hold either the last state the process
// finished writing or the one it was writing, and have at most a couple of stray temporaries
// beside it. The store removes its file only when a save fails, never before the new content
// is complete, so no kill may find the file missing.

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
using pallix::test::strayTemporaries;
using pallix::test::TemporaryDirectory;
using pallix::test::WriterProgress;

namespace {

// State k: twenty fixed bindings, and from k = 1 on "counter" bound to k.
void appendSeeds(PRuntimePortbind& store) {
    for (int port = 0; port < 20; ++port) {
        store.append("usb-" + std::to_string(port), "tcp:" + std::to_string(62078 + port));
    }
}

// The exact bytes the store writes for state k, produced by a store of its own in a scratch
// configuration directory that starts from `before` (the seeded file, or none).
std::string expectedFile(const ConfigDirectory& config, const std::string& before,
                         long long state) {
    if (state == 0) {
        return before;
    }
    const std::string scratch = config.outside("scratch");
    ::mkdir(scratch.c_str(), 0755);
    std::remove((scratch + "/PortBind.xml").c_str());
    if (!before.empty()) {
        TemporaryDirectory::write(scratch + "/PortBind.xml", before);
    }
    NApplication::setDirectoryConfig(NString(scratch));
    {
        PRuntimePortbind store;
        store.append("counter", std::to_string(state));
    }
    NApplication::setDirectoryConfig(NString(config.path()));
    return TemporaryDirectory::read(scratch + "/PortBind.xml");
}

} // namespace

TEST(PortbindCrash, AFileRewrittenWhileKilledIsAlwaysWholeAndTheLastOrNextState) {
    ConfigDirectory config;
    const std::string path = config.file("/PortBind.xml");
    {
        PRuntimePortbind seed;
        appendSeeds(seed);
    }
    const std::string base = TemporaryDirectory::read(path);
    ASSERT_NE(base.find("usb-19"), std::string::npos);

    const auto writer = [](WriterProgress& progress) {
        PRuntimePortbind store;
        for (long long state = progress.done.load() + 1;; ++state) {
            progress.started.store(state);
            store.append("counter", std::to_string(state));
            progress.done.store(state);
        }
    };
    int mostStrays = 0;
    const auto check = [&](long long started, long long done) {
        const bool writing = started == done + 1;
        ASSERT_TRUE(fileExists(path)) << "no file after a kill (state " << done << ", "
                                      << (writing ? "writing" : "between writes") << ")";
        const int strays = strayTemporaries(config.path(), "PortBind.xml");
        mostStrays = std::max(mostStrays, strays);
        ASSERT_LE(strays, kMostStrayTemporaries);
        const std::string text = TemporaryDirectory::read(path);
        pugi::xml_document document;
        const pugi::xml_parse_result parsed = document.load_buffer(text.data(), text.size());
        ASSERT_TRUE(parsed) << parsed.description() << "\n" << text;
        long long state = 0;
        int items = 0;
        for (pugi::xml_node item : document.child("Rilo").child("BIND").children("Item")) {
            ++items;
            if (std::string(item.attribute("SOURCE").as_string()) == "counter") {
                state = item.attribute("TARGET").as_llong();
            }
        }
        EXPECT_EQ(items, (state > 0 ? 1 : 0) + 20);
        const bool last = state == done;
        const bool next = writing && state == started;
        ASSERT_TRUE(last || next) << "file holds state " << state << ", writer had finished "
                                  << done << " and started " << started;
        ASSERT_EQ(text, expectedFile(config, base, state));
    };
    const auto statistics = killRepeatedly(kKillRounds, 20240602u, writer, check);
    EXPECT_EQ(statistics.rounds, kKillRounds);
    std::cout << statistics.rounds << " kills, " << statistics.duringWrite
              << " while a write was under way, at most " << mostStrays << " stray temporaries\n";

    // A last write by a store that is not killed keeps everything and clears the strays.
    PRuntimePortbind reloaded;
    reloaded.append("final", "1");
    EXPECT_TRUE(fileExists(path));
    PRuntimePortbind again;
    EXPECT_EQ(again.find("final"), NString("1"));
    EXPECT_TRUE(again.exist("usb-0"));
    EXPECT_EQ(strayTemporaries(config.path(), "PortBind.xml"), 0);
}
