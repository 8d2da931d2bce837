// Threads sharing one store each, mixing every operation. Every thread works on keys of its own
// (plus, where the store allows it, keys that all of them touch), keeps a model of what its own
// keys must hold, and checks the store's answers against it as it goes; at the end the store and
// its file must hold exactly the union of the models.

#include "TemporaryDirectory.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <map>
#include <random>
#include <set>
#include <string>
#include <thread>
#include <vector>

using pallix::test::TemporaryDirectory;

namespace {

constexpr int threadCount = 8;

template <typename Body> void runThreads(Body body) {
    std::vector<std::thread> threads;
    for (int t = 0; t < threadCount; ++t) {
        threads.emplace_back(body, t);
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
}

NDeviceInfoFactory deviceRecord(int thread, int step) {
    NDeviceInfoFactory info;
    info.append(NString("SerialNumber"), NByteArray("C02T" + std::to_string(thread)));
    info.append(NString("Step"), NByteArray(std::to_string(step)));
    info.append(NString("Binary"), NByteArray(std::string("\x00\xFF", 2) + std::to_string(step)));
    return info;
}

std::map<unsigned long long, NDeviceInfoFactory> contents(PRuntimeFactory& store) {
    std::map<unsigned long long, NDeviceInfoFactory> devices;
    store.traverse([&devices](unsigned long long id, const NDeviceInfoFactory& info) {
        devices.emplace(id, info);
    });
    return devices;
}

class StoresStressTest : public ::testing::Test {
protected:
    void SetUp() override { NApplication::setDirectoryConfig(NString(directory.path())); }

    TemporaryDirectory directory{"pallix-stress"};
};

} // namespace

TEST_F(StoresStressTest, FactoryStoreSharedByEightThreadsEndsWithFileEqualToState) {
    PRuntimeFactory store;
    std::vector<std::map<unsigned long long, NDeviceInfoFactory>> models(threadCount);
    std::atomic<int> mismatches{0};

    runThreads([&](int t) {
        std::mt19937 random(static_cast<unsigned>(1000 + t));
        auto& model = models[static_cast<std::size_t>(t)];
        const unsigned long long base = (static_cast<unsigned long long>(t) + 1) << 32;
        for (int step = 0; step < 80; ++step) {
            const unsigned long long id = base + random() % 6;
            switch (random() % 8) {
            case 0:
            case 1:
                store.append(id, deviceRecord(t, step));
                model[id] = deviceRecord(t, step);
                break;
            case 2:
                store.remove(id);
                model.erase(id);
                break;
            case 3:
                if (store.find(id) != (model.count(id) == 1)) {
                    ++mismatches;
                }
                break;
            case 4:
                // Other threads only add to what this one keeps, never take it away.
                if (!model.empty() && (store.empty() || !store.exist())) {
                    ++mismatches;
                }
                break;
            case 5:
                store.traverse([&](unsigned long long seen, const NDeviceInfoFactory& info) {
                    if (seen >= base && seen < base + (1ULL << 32)) {
                        const auto found = model.find(seen);
                        if (found == model.end() || found->second != info) {
                            ++mismatches;
                        }
                    }
                    // Calling back into the store from the walk must not deadlock.
                    store.find(seen);
                });
                break;
            case 6:
                store.initialize();
                store.exist();
                break;
            default: {
                // The walk sees every device this thread keeps.
                std::size_t own = 0;
                store.traverse([&](unsigned long long seen, const NDeviceInfoFactory&) {
                    own += (seen >= base && seen < base + (1ULL << 32)) ? 1 : 0;
                });
                if (own != model.size()) {
                    ++mismatches;
                }
                break;
            }
            }
        }
    });

    EXPECT_EQ(mismatches.load(), 0);
    std::map<unsigned long long, NDeviceInfoFactory> expected;
    for (const auto& model : models) {
        expected.insert(model.begin(), model.end());
    }
    EXPECT_FALSE(expected.empty());
    EXPECT_EQ(contents(store), expected);
    PRuntimeFactory reloaded;
    EXPECT_EQ(contents(reloaded), expected);
}

TEST_F(StoresStressTest, CustomFirmwareSharedByEightThreadsEndsWithFileEqualToState) {
    PRuntimeRestore restore;
    PRuntimeRestoreCustomFirmware& store = *restore.customFirmware();
    std::vector<std::string> locals;
    for (int i = 0; i < 4; ++i) {
        locals.push_back(directory.file("firmware-" + std::to_string(i) + ".ipsw"));
        TemporaryDirectory::write(locals.back(), "made-up firmware " + std::to_string(i));
    }
    std::vector<std::map<std::string, std::string>> models(threadCount);
    std::atomic<int> mismatches{0};

    runThreads([&](int t) {
        std::mt19937 random(static_cast<unsigned>(2000 + t));
        auto& model = models[static_cast<std::size_t>(t)];
        for (int step = 0; step < 60; ++step) {
            const std::string url = "https://t" + std::to_string(t) + ".example.com/restore-" +
                                    std::to_string(random() % 5) + ".ipsw";
            const auto known = model.find(url);
            const std::string expected = known == model.end() ? std::string() : known->second;
            switch (random() % 6) {
            case 0:
            case 1: {
                const std::string& local = locals[random() % locals.size()];
                store.append(NString(url), NString(local));
                model[url] = local;
                break;
            }
            case 2:
                store.remove(NString(url));
                model.erase(url);
                break;
            case 3:
                if (store.find(NString(url)).toStdString() != expected) {
                    ++mismatches;
                }
                break;
            case 4: {
                NString local;
                const bool found = store.find(NString(url), local);
                if (found != (known != model.end()) || local.toStdString() != expected) {
                    ++mismatches;
                }
                break;
            }
            default: {
                bool called = false;
                const bool found = store.find(NString(url), [&](const NString& local) {
                    called = true;
                    // The lock is recursive: the callback may use the store again.
                    if (local.toStdString() != expected ||
                        store.find(NString(url)).toStdString() != expected) {
                        ++mismatches;
                    }
                });
                if (found != (known != model.end()) || called != found) {
                    ++mismatches;
                }
                break;
            }
            }
        }
    });

    EXPECT_EQ(mismatches.load(), 0);
    std::map<std::string, std::string> expected;
    for (const auto& model : models) {
        expected.insert(model.begin(), model.end());
    }
    EXPECT_FALSE(expected.empty());

    pugi::xml_document document;
    ASSERT_TRUE(document.load_file(directory.file("RestoreIpsw.xml").c_str()));
    std::map<std::string, std::string> inFile;
    std::vector<std::string> order;
    for (pugi::xml_node entry : document.child("Rilo").child("MATCH").children()) {
        inFile.emplace(entry.attribute("URL").as_string(), entry.attribute("LOCAL").as_string());
        order.emplace_back(entry.attribute("URL").as_string());
    }
    EXPECT_EQ(inFile, expected);
    EXPECT_EQ(order.size(), expected.size());
    EXPECT_TRUE(std::is_sorted(order.begin(), order.end()));

    PRuntimeRestoreCustomFirmware fresh;
    for (const auto& [url, local] : expected) {
        EXPECT_EQ(fresh.find(NString(url)).toStdString(), local) << url;
        EXPECT_EQ(store.find(NString(url)).toStdString(), local) << url;
    }
}

TEST_F(StoresStressTest, AutoActivationSharedByEightThreadsEndsWithTheModel) {
    PRuntimeRestore restore;
    PRuntimeRestoreAutoActivate& choices = *restore.autoActivate();
    std::vector<std::map<unsigned long long, bool>> models(threadCount);
    std::atomic<int> mismatches{0};
    const unsigned long long shared = 0xFFFF;

    runThreads([&](int t) {
        std::mt19937 random(static_cast<unsigned>(3000 + t));
        auto& model = models[static_cast<std::size_t>(t)];
        const unsigned long long base = static_cast<unsigned long long>(t) * 100;
        for (int step = 0; step < 4000; ++step) {
            const unsigned long long id = base + random() % 10;
            switch (random() % 6) {
            case 0: {
                const bool activate = random() % 2 == 0;
                choices.append(id, activate);
                model[id] = activate;
                break;
            }
            case 1:
                choices.remove(id);
                model.erase(id);
                break;
            case 2:
                if (choices.exist(id) != (model.count(id) == 1)) {
                    ++mismatches;
                }
                break;
            case 3: {
                bool activate = step % 2 == 0;
                const bool before = activate;
                const bool found = choices.find(id, activate);
                const auto known = model.find(id);
                if (found != (known != model.end()) ||
                    (found ? activate != known->second : activate != before)) {
                    ++mismatches;
                }
                break;
            }
            case 4:
                // A key every thread changes: only the absence of races is checked.
                choices.append(shared, t % 2 == 0);
                break;
            default: {
                bool activate = false;
                choices.find(shared, activate);
                choices.exist(shared);
                if (random() % 4 == 0) {
                    choices.remove(shared);
                }
                break;
            }
            }
        }
    });

    EXPECT_EQ(mismatches.load(), 0);
    for (int t = 0; t < threadCount; ++t) {
        const unsigned long long base = static_cast<unsigned long long>(t) * 100;
        for (unsigned long long id = base; id < base + 10; ++id) {
            const auto& model = models[static_cast<std::size_t>(t)];
            bool activate = false;
            const bool found = choices.find(id, activate);
            ASSERT_EQ(found, model.count(id) == 1) << id;
            if (found) {
                EXPECT_EQ(activate, model.at(id)) << id;
            }
        }
    }
}

TEST_F(StoresStressTest, OtherFirmwareSharedByEightThreadsFindsEveryFileUnderItsDirectory) {
    PRuntimeRestore restore;
    PRuntimeRestoreOtherFirmware& other = *restore.otherFirmware();
    constexpr int directoriesPerThread = 6;
    auto directoryOf = [this](int t, int k) {
        return directory.file("t" + std::to_string(t) + "-d" + std::to_string(k));
    };
    auto nameOf = [](int t, int k) {
        return "t" + std::to_string(t) + "-d" + std::to_string(k) + ".ipsw";
    };
    for (int t = 0; t < threadCount; ++t) {
        for (int k = 0; k < directoriesPerThread; ++k) {
            std::filesystem::create_directory(directoryOf(t, k));
            TemporaryDirectory::write(directoryOf(t, k) + "/" + nameOf(t, k), "x");
            TemporaryDirectory::write(directoryOf(t, k) + "/common.ipsw", "x");
        }
    }
    std::atomic<int> mismatches{0};

    runThreads([&](int t) {
        std::mt19937 random(static_cast<unsigned>(4000 + t));
        int appended = 0;
        for (int step = 0; step < 600; ++step) {
            const int k = static_cast<int>(random() % directoriesPerThread);
            const std::string name = nameOf(t, k);
            const std::string expected = k < appended ? directoryOf(t, k) + "/" + name : "";
            switch (random() % 5) {
            case 0:
                if (appended < directoriesPerThread) {
                    other.append(NString(directoryOf(t, appended)));
                    ++appended;
                }
                break;
            case 1:
                if (other.find(NString(name)).toStdString() != expected) {
                    ++mismatches;
                }
                break;
            case 2: {
                NString path("before");
                const bool found = other.find(NString(name), path);
                if (found != !expected.empty() ||
                    path.toStdString() != (found ? expected : std::string("before"))) {
                    ++mismatches;
                }
                break;
            }
            case 3: {
                std::string seen;
                const bool found = other.find(NString(name), [&](const NString& path) {
                    seen = path.toStdString();
                    // Called with no lock held: the list may be used again.
                    other.find(NString("common.ipsw"));
                });
                if (found != !expected.empty() || seen != expected) {
                    ++mismatches;
                }
                break;
            }
            default: {
                // Whatever directory comes first, the answer lies in one of them.
                const std::string common = other.find(NString("common.ipsw")).toStdString();
                if (appended > 0 && (common.size() < 12 ||
                                     common.compare(common.size() - 12, 12, "/common.ipsw") != 0)) {
                    ++mismatches;
                }
                break;
            }
            }
        }
        while (appended < directoriesPerThread) {
            other.append(NString(directoryOf(t, appended)));
            ++appended;
        }
    });

    EXPECT_EQ(mismatches.load(), 0);
    for (int t = 0; t < threadCount; ++t) {
        for (int k = 0; k < directoriesPerThread; ++k) {
            EXPECT_EQ(other.find(NString(nameOf(t, k))).toStdString(),
                      directoryOf(t, k) + "/" + nameOf(t, k));
        }
    }
}
