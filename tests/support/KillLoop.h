#pragma once

// Kills a writing process at random moments, over and over: the harness of the crash-safety
// tests of the stores.

#include <gtest/gtest.h>

#include <dirent.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <atomic>
#include <csignal>
#include <cstdint>
#include <functional>
#include <random>
#include <string>

namespace pallix::test {

// Progress of the writing child, shared with the parent: the number of the state that the
// child is writing (started) and of the last state whose write returned (done). Between two
// writes they are equal; during one, started is done + 1.
struct WriterProgress {
    std::atomic<long long> started{0};
    std::atomic<long long> done{0};
};

class SharedProgress {
public:
    SharedProgress() {
        void* memory = ::mmap(nullptr, sizeof(WriterProgress), PROT_READ | PROT_WRITE,
                              MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (memory != MAP_FAILED) {
            m_progress = new (memory) WriterProgress();
        }
    }
    ~SharedProgress() {
        if (m_progress != nullptr) {
            m_progress->~WriterProgress();
            ::munmap(m_progress, sizeof(WriterProgress));
        }
    }
    SharedProgress(const SharedProgress&) = delete;
    SharedProgress& operator=(const SharedProgress&) = delete;

    bool valid() const { return m_progress != nullptr; }
    WriterProgress& operator*() const { return *m_progress; }

private:
    WriterProgress* m_progress = nullptr;
};

// Kills per store file in the crash tests.
constexpr int kKillRounds = 1000;
// What crashes may leave beside a file, however many: the writer keeps it to the temporary of
// the last save interrupted; two is the most a user may ever find.
constexpr int kMostStrayTemporaries = 2;

// The hidden companions of `fileName` in `directory` (".<fileName>." followed by anything):
// the temporaries that interrupted saves left behind.
inline int strayTemporaries(const std::string& directory, const std::string& fileName) {
    const std::string prefix = "." + fileName + ".";
    int count = 0;
    if (DIR* handle = ::opendir(directory.c_str())) {
        while (const dirent* entry = ::readdir(handle)) {
            if (std::string(entry->d_name).rfind(prefix, 0) == 0) {
                ++count;
            }
        }
        ::closedir(handle);
    }
    return count;
}

struct KillStatistics {
    int rounds = 0;
    int duringWrite = 0; // kills that found a write under way
};

// Forks `rounds` children that each run `writer` (which loops forever), kills each with SIGKILL
// after a random moment and then calls `check(started, done)` with the child's last progress.
// Some children are killed before they begin to write, most while they rewrite the file.
inline KillStatistics killRepeatedly(int rounds, unsigned seed,
                                     const std::function<void(WriterProgress&)>& writer,
                                     const std::function<void(long long, long long)>& check) {
    KillStatistics statistics;
    SharedProgress shared;
    EXPECT_TRUE(shared.valid());
    if (!shared.valid()) {
        return statistics;
    }
    WriterProgress& progress = *shared;
    std::mt19937 random(seed);
    for (int round = 0; round < rounds; ++round) {
        const long long startedBefore = progress.started.load();
        const pid_t child = ::fork();
        EXPECT_GE(child, 0);
        if (child < 0) {
            break;
        }
        if (child == 0) {
            writer(progress);
            ::_exit(0);
        }
        const bool early = random() % 10 == 0;
        if (!early) {
            // Wait until the child is writing, then let it go on for a moment.
            while (progress.started.load() == startedBefore &&
                   ::waitpid(child, nullptr, WNOHANG) == 0) {
                ::usleep(50);
            }
        }
        ::usleep(static_cast<useconds_t>(random() % (early ? 2000 : 25000)));
        ::kill(child, SIGKILL);
        int status = 0;
        while (::waitpid(child, &status, 0) < 0 && errno == EINTR) {
        }
        EXPECT_TRUE(WIFSIGNALED(status) && WTERMSIG(status) == SIGKILL)
            << "the writer ended on its own in round " << round;
        const long long started = progress.started.load();
        const long long done = progress.done.load();
        ++statistics.rounds;
        if (started != done) {
            ++statistics.duringWrite;
        }
        check(started, done);
        if (::testing::Test::HasFatalFailure()) {
            break;
        }
    }
    return statistics;
}

} // namespace pallix::test
