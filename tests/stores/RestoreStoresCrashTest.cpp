// A child process rewrites a store's file in a loop, one numbered state after the other, and is
// killed with SIGKILL at a random moment, over and over. After every kill the file must be
// well-formed and hold either the last state the child finished writing or the one it was
// writing when it died: never a mix, never a part, never no file; and at most a couple of
// stray temporaries may stand beside it.

#include "KillLoop.h"
#include "TemporaryDirectory.h"

#include "PallixRuntime.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <pugixml.hpp>

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

using pallix::test::kMostStrayTemporaries;
using pallix::test::strayTemporaries;
using pallix::test::TemporaryDirectory;

namespace {

constexpr int killCount = pallix::test::kKillRounds;

// Shared between the test and its child: the number of the state the child is writing and of
// the last one it finished.
struct Progress {
    std::atomic<long> begun{0};
    std::atomic<long> done{0};
};

class SharedProgress {
public:
    SharedProgress() {
        void* memory = ::mmap(nullptr, sizeof(Progress), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        m_progress = memory == MAP_FAILED ? nullptr : new (memory) Progress();
    }
    ~SharedProgress() {
        if (m_progress != nullptr) {
            m_progress->~Progress();
            ::munmap(m_progress, sizeof(Progress));
        }
    }
    SharedProgress(const SharedProgress&) = delete;
    SharedProgress& operator=(const SharedProgress&) = delete;

    Progress& operator*() const { return *m_progress; }
    explicit operator bool() const { return m_progress != nullptr; }

private:
    Progress* m_progress = nullptr;
};

struct KillOutcome {
    bool killed = false;   // the child was still running and died of SIGKILL
    long begun = 0;        // the state it was writing
    long done = 0;         // the last state it finished
    bool midWrite = false; // it died between starting and finishing a state
};

// Starts a child that runs `writeStates(progress, from)` (which never returns), waits until the
// child has started writing a state after `from`, lets it run for a random while, and kills it.
template <typename Writer>
KillOutcome killWhileWriting(Progress& progress, long from, std::mt19937& random,
                             Writer writeStates) {
    progress.begun = from;
    progress.done = from;
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        writeStates(progress, from);
        ::_exit(3);
    }
    KillOutcome outcome;
    if (child < 0) {
        return outcome;
    }
    // Wait for the first write to start, so that every kill falls inside the writing loop. One
    // kill in four waits for that write to finish instead, so that the states move on however
    // long a write takes (a sanitizer's build makes the first one outlast the random moment).
    const bool afterFirstWrite = random() % 4 == 0;
    std::atomic<long>& awaited = afterFirstWrite ? progress.done : progress.begun;
    bool exited = false;
    for (int waited = 0; awaited.load() == from; ++waited) {
        int status = 0;
        if (::waitpid(child, &status, WNOHANG) == child || waited > 200000) {
            exited = true;
            break;
        }
        ::usleep(50);
    }
    if (!exited) {
        ::usleep(static_cast<useconds_t>(random() % 4000));
        ::kill(child, SIGKILL);
        int status = 0;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        outcome.killed = WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL;
    } else {
        ::kill(child, SIGKILL);
        ::waitpid(child, nullptr, 0);
    }
    outcome.begun = progress.begun.load();
    outcome.done = progress.done.load();
    outcome.midWrite = outcome.begun != outcome.done;
    return outcome;
}

class StoresCrashTest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(progress);
        NApplication::setDirectoryConfig(NString(directory.path()));
    }

    TemporaryDirectory directory{"pallix-crash"};
    SharedProgress progress;
    std::mt19937 random{20240607};
};

// ---------------------------------------------------------------------------------------------
// Factory information

constexpr unsigned long long stepDevice = 0x8030001E2D3A0001ULL;

NDeviceInfoFactory fixedDevice(int index) {
    NDeviceInfoFactory info;
    info.append(NString("SerialNumber"), NByteArray("F2LXK0QJHG" + std::to_string(index)));
    info.append(NString("ModelNumber"), NByteArray("MQ3D2LL/A"));
    info.append(NString("Blob"), NByteArray(std::string(300, static_cast<char>('a' + index))));
    return info;
}

NDeviceInfoFactory stepRecord(long step) {
    NDeviceInfoFactory info;
    info.append(NString("Step"), NByteArray(std::to_string(step)));
    return info;
}

// The step held by a well-formed factory file with every fixed device intact, or -1.
long factoryFileStep(const std::string& path, std::string& problem) {
    const std::string text = TemporaryDirectory::read(path);
    const nlohmann::ordered_json parsed = nlohmann::ordered_json::parse(text, nullptr, false);
    if (!parsed.is_object()) {
        problem = "not a JSON object: \"" + text.substr(0, 80) + "\"";
        return -1;
    }
    const NJsonObject document{NByteArray(text)};
    for (int i = 1; i <= 20; ++i) {
        const NJsonObject device = document.toObject(NString::format("%016llX", 0x1000ULL + i));
        NDeviceInfoFactory info;
        device.traverse([&](const NString& key) { info.append(key, device.toBytes(key)); });
        if (info != fixedDevice(i)) {
            problem = "fixed device " + std::to_string(i) + " differs";
            return -1;
        }
    }
    if (parsed.size() != 21) {
        problem = "unexpected number of devices";
        return -1;
    }
    const NJsonObject step = document.toObject(NString::format("%016llX", stepDevice));
    const std::string value = step.toBytes(NString("Step")).toStdString();
    if (value.empty()) {
        problem = "no step device";
        return -1;
    }
    return std::stol(value);
}

} // namespace

TEST_F(StoresCrashTest, FactoryFileSurvivesKillsDuringRewrites) {
    {
        PRuntimeFactory store;
        for (int i = 1; i <= 20; ++i) {
            store.append(0x1000 + i, fixedDevice(i));
        }
        store.append(stepDevice, stepRecord(0));
    }
    const std::string path = directory.file("Factory.json");
    long state = 0;
    int midWrite = 0;
    int mostStrays = 0;
    for (int kill = 0; kill < killCount; ++kill) {
        const KillOutcome outcome =
            killWhileWriting(*progress, state, random, [](Progress& shared, long from) {
                PRuntimeFactory store;
                for (long step = from + 1;; ++step) {
                    shared.begun = step;
                    store.append(stepDevice, stepRecord(step));
                    shared.done = step;
                }
            });
        ASSERT_TRUE(outcome.killed) << "kill " << kill;
        midWrite += outcome.midWrite ? 1 : 0;
        const int strays = strayTemporaries(directory.path(), "Factory.json");
        mostStrays = std::max(mostStrays, strays);
        ASSERT_LE(strays, kMostStrayTemporaries) << "kill " << kill;
        std::string problem;
        const long found = factoryFileStep(path, problem);
        ASSERT_NE(found, -1) << "kill " << kill << ": " << problem;
        ASSERT_TRUE(found == outcome.done || found == outcome.begun)
            << "kill " << kill << ": file holds state " << found << ", child had finished "
            << outcome.done << " and begun " << outcome.begun;
        EXPECT_GE(found, state);
        state = found;
    }
    EXPECT_GT(state, 0);
    std::printf("%d kills, %d while a state was being written, %ld states written, at most %d "
                "stray temporaries\n",
                killCount, midWrite, state, mostStrays);
}

// ---------------------------------------------------------------------------------------------
// Custom firmware matches

namespace {

constexpr int localCount = 64;
const char* const stepUrl = "https://updates.example.com/ipsw/step/Restore.ipsw";

std::string fixedUrl(int index) {
    return "https://updates.example.com/ipsw/iPhone" + std::to_string(index) +
           ",1_17.1_21B80_Restore.ipsw";
}

// The local file of the step entry in state `step`. States are told apart by it modulo
// localCount, which is enough to tell the last finished state from the next one.
std::string stepLocal(const std::string& directory, long step) {
    return directory + "/local-" + std::to_string(step % localCount) + ".ipsw";
}

// The state number (modulo localCount) of a well-formed custom firmware file with every fixed
// entry intact, or -1.
long customFirmwareFileStep(const std::string& directory, std::string& problem) {
    const std::string path = directory + "/RestoreIpsw.xml";
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_file(path.c_str());
    if (!result) {
        problem = std::string("not well-formed: ") + result.description() + ": \"" +
                  TemporaryDirectory::read(path).substr(0, 80) + "\"";
        return -1;
    }
    std::map<std::string, std::string> entries;
    for (pugi::xml_node entry : document.child("Rilo").child("MATCH").children("MATCH")) {
        entries.emplace(entry.attribute("URL").as_string(), entry.attribute("LOCAL").as_string());
    }
    if (entries.size() != 21) {
        problem = "unexpected number of entries: " + std::to_string(entries.size());
        return -1;
    }
    for (int i = 1; i <= 20; ++i) {
        const auto found = entries.find(fixedUrl(i));
        if (found == entries.end() || found->second != stepLocal(directory, i)) {
            problem = "fixed entry " + std::to_string(i) + " differs";
            return -1;
        }
    }
    const auto step = entries.find(stepUrl);
    if (step == entries.end()) {
        problem = "no step entry";
        return -1;
    }
    for (long k = 0; k < localCount; ++k) {
        if (step->second == stepLocal(directory, k)) {
            return k;
        }
    }
    problem = "unknown step entry " + step->second;
    return -1;
}

} // namespace

TEST_F(StoresCrashTest, CustomFirmwareFileSurvivesKillsDuringRewrites) {
    const std::string dir = directory.path();
    const std::string path = directory.file("RestoreIpsw.xml");
    for (int k = 0; k < localCount; ++k) {
        TemporaryDirectory::write(stepLocal(dir, k), "made-up firmware " + std::to_string(k));
    }
    {
        PRuntimeRestoreCustomFirmware store;
        for (int i = 1; i <= 20; ++i) {
            store.append(NString(fixedUrl(i)), NString(stepLocal(dir, i)));
        }
        store.append(NString(stepUrl), NString(stepLocal(dir, 0)));
    }
    long state = 0;
    int midWrite = 0;
    int mostStrays = 0;
    for (int kill = 0; kill < killCount; ++kill) {
        const KillOutcome outcome =
            killWhileWriting(*progress, state, random, [&dir](Progress& shared, long from) {
                PRuntimeRestore restore;
                PRuntimeRestoreCustomFirmware& store = *restore.customFirmware();
                for (long step = from + 1;; ++step) {
                    shared.begun = step;
                    store.append(NString(stepUrl), NString(stepLocal(dir, step)));
                    shared.done = step;
                }
            });
        ASSERT_TRUE(outcome.killed) << "kill " << kill;
        midWrite += outcome.midWrite ? 1 : 0;
        ASSERT_TRUE(NFileSystem::path::exist(NString(path)))
            << "kill " << kill << ": no file (state " << outcome.done << ", "
            << (outcome.midWrite ? "writing" : "between writes") << ")";
        const int strays = strayTemporaries(dir, "RestoreIpsw.xml");
        mostStrays = std::max(mostStrays, strays);
        ASSERT_LE(strays, kMostStrayTemporaries) << "kill " << kill;
        std::string problem;
        const long found = customFirmwareFileStep(dir, problem);
        ASSERT_NE(found, -1) << "kill " << kill << ": " << problem;
        if (found == outcome.begun % localCount) {
            state = outcome.begun;
        } else if (found == outcome.done % localCount) {
            state = outcome.done;
        } else {
            FAIL() << "kill " << kill << ": file holds state " << found << " (modulo " << localCount
                   << "), child had finished " << outcome.done << " and begun " << outcome.begun;
        }
    }
    EXPECT_GT(state, 0);
    std::printf("%d kills, %d while a state was being written, %ld states written, at most %d "
                "stray temporaries\n",
                killCount, midWrite, state, mostStrays);
}
