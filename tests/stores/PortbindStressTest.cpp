// Many threads share one port binding store and mix every operation; afterwards the file must
// hold exactly the store's state. Run under ThreadSanitizer as well.

#include "NotifyPortbindTestSupport.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>

#include <atomic>
#include <random>
#include <string>
#include <thread>
#include <utility>
#include <vector>

using pallix::test::ConfigDirectory;
using pallix::test::fileExists;
using pallix::test::TemporaryDirectory;

namespace {

constexpr int kThreads = 10;
constexpr int kOperationsPerThread = 120;
constexpr unsigned kSources = 20;

using Bindings = std::vector<std::pair<std::string, std::string>>;

Bindings bindingsOf(PRuntimePortbind& store) {
    Bindings bindings;
    store.traverse([&](const NString& source, const NString& target) {
        bindings.emplace_back(source.toStdString(), target.toStdString());
    });
    return bindings;
}

std::string sourceName(unsigned index) {
    return "usb-" + std::to_string(index);
}

// Targets name their source, so a target found under the wrong source is noticed.
std::string targetFor(const std::string& source, int thread, int step) {
    return source + "->tcp:" + std::to_string(thread * 1000 + step);
}

bool belongsTo(const NString& target, const std::string& source) {
    return target.startsWith(NString(source + "->tcp:"));
}

} // namespace

TEST(PortbindStress, ThreadsMixingEveryOperationLeaveTheFileEqualToTheState) {
    ConfigDirectory config;
    // Bindings that are there before the first operation: loaded once, by whichever thread
    // comes first.
    TemporaryDirectory::write(config.file("/PortBind.xml"),
                              "<Rilo><BIND><Item SOURCE=\"usb-0\" TARGET=\"usb-0->tcp:seed\"/>"
                              "<Item SOURCE=\"seed\" TARGET=\"kept\"/></BIND></Rilo>");
    PRuntimePortbind* store = PRuntime::getInstance()->portbind();
    ASSERT_NE(store, nullptr);

    std::atomic<int> failures{0};
    std::atomic<int> nestedCalls{0};
    std::vector<std::thread> threads;
    for (int thread = 0; thread < kThreads; ++thread) {
        threads.emplace_back([&, thread] {
            std::mt19937 random(static_cast<unsigned>(thread) * 104729u + 3u);
            for (int step = 0; step < kOperationsPerThread; ++step) {
                const std::string source = sourceName(random() % kSources);
                switch (random() % 7) {
                case 0:
                case 1:
                    store->append(source, targetFor(source, thread, step));
                    break;
                case 2:
                    store->remove(source);
                    break;
                case 3: {
                    const NString target = store->find(source);
                    if (target.exist() && !belongsTo(target, source)) {
                        ++failures;
                    }
                    break;
                }
                case 4:
                    if (!store->exist("seed") || store->find("seed") != NString("kept")) {
                        ++failures;
                    }
                    store->exist(source);
                    break;
                case 5:
                    // Refused: never reaches the table.
                    store->append(source, "");
                    store->append("", "nothing");
                    break;
                default: {
                    NString previous;
                    store->traverse([&](const NString& from, const NString& to) {
                        if ((previous.exist() && !(previous < from)) ||
                            (from != NString("seed") && !belongsTo(to, from.toStdString()))) {
                            ++failures;
                        }
                        previous = from;
                        // Calling back into the store from the callback.
                        if (from.endsWith(NString(std::to_string(thread % 10)))) {
                            store->append(from, targetFor(from.toStdString(), thread, step));
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

    ASSERT_TRUE(fileExists(config.file("/PortBind.xml")));
    const Bindings state = bindingsOf(*store);
    EXPECT_FALSE(state.empty());
    PRuntimePortbind reloaded;
    EXPECT_EQ(bindingsOf(reloaded), state);
    PRuntime::freeInstance();
}
