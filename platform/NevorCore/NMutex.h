#pragma once

#include "NevorCoreExport.h"

#include <memory>

// The framework's mutex. In the recursive mode (value 0) the owning thread may lock it again;
// each lock needs its unlock.
class NEVORCORE_EXPORT NMutex {
public:
    enum RecursionMode { Recursive = 0, NonRecursive = 1 };

    explicit NMutex(RecursionMode mode = NonRecursive);
    ~NMutex();
    NMutex(const NMutex&) = delete;
    NMutex& operator=(const NMutex&) = delete;

    RecursionMode mode() const noexcept { return m_mode; }
    void lock();
    void unlock();
    bool tryLock();

private:
    struct Impl;
    RecursionMode m_mode;
    std::unique_ptr<Impl> m_impl;
};

// Scope guard: locks on construction, unlocks on destruction.
class NEVORCORE_EXPORT NMutexAuto {
public:
    explicit NMutexAuto(NMutex& mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~NMutexAuto() { m_mutex.unlock(); }
    NMutexAuto(const NMutexAuto&) = delete;
    NMutexAuto& operator=(const NMutexAuto&) = delete;

private:
    NMutex& m_mutex;
};
