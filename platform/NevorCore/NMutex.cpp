#include "NMutex.h"

#include <mutex>
#include <variant>

struct NMutex::Impl {
    std::variant<std::recursive_mutex, std::mutex> mutex;
    explicit Impl(RecursionMode mode) {
        if (mode == NonRecursive) {
            mutex.emplace<std::mutex>();
        }
    }
};

NMutex::NMutex(RecursionMode mode) : m_mode(mode), m_impl(std::make_unique<Impl>(mode)) {}

NMutex::~NMutex() = default;

void NMutex::lock() {
    std::visit([](auto& mutex) { mutex.lock(); }, m_impl->mutex);
}

void NMutex::unlock() {
    std::visit([](auto& mutex) { mutex.unlock(); }, m_impl->mutex);
}

bool NMutex::tryLock() {
    return std::visit([](auto& mutex) { return mutex.try_lock(); }, m_impl->mutex);
}
