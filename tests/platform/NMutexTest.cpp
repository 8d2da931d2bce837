#include "NMutex.h"

#include <gtest/gtest.h>

#include <thread>

TEST(NMutex, NonRecursiveIsTheDefault) {
    NMutex mutex;
    EXPECT_EQ(mutex.mode(), NMutex::NonRecursive);
    EXPECT_EQ(static_cast<int>(NMutex::Recursive), 0);
}

TEST(NMutex, RecursiveMutexCanBeLockedAgainByItsOwner) {
    NMutex mutex(NMutex::Recursive);
    mutex.lock();
    EXPECT_TRUE(mutex.tryLock());
    mutex.unlock();
    mutex.unlock();
    bool other = false;
    std::thread([&] {
        other = mutex.tryLock();
        if (other) {
            mutex.unlock();
        }
    }).join();
    EXPECT_TRUE(other);
}

TEST(NMutex, LockedMutexRefusesOtherThreads) {
    NMutex mutex;
    NMutexAuto guard(mutex);
    bool other = true;
    std::thread([&] { other = mutex.tryLock(); }).join();
    EXPECT_FALSE(other);
}

TEST(NMutex, GuardSerialisesIncrements) {
    NMutex mutex;
    long counter = 0;
    std::thread threads[4];
    for (auto& thread : threads) {
        thread = std::thread([&] {
            for (int i = 0; i < 10000; ++i) {
                NMutexAuto guard(mutex);
                ++counter;
            }
        });
    }
    for (auto& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(counter, 40000);
}
