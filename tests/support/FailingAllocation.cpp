#include "FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace {

// Counts allocations down while armed; the one that finds zero throws.
long g_failAfter = -1;

} // namespace

namespace pallix::test {

void failAllocation(long allowed) {
    g_failAfter = allowed;
}

void disarmAllocationFailure() {
    g_failAfter = -1;
}

long allocationsLeft() {
    return g_failAfter;
}

} // namespace pallix::test

__attribute__((visibility("default"))) void* operator new(std::size_t size) {
    if (g_failAfter >= 0 && g_failAfter-- == 0) {
        throw std::bad_alloc();
    }
    void* pointer = std::malloc(size == 0 ? 1 : size);
    if (pointer == nullptr) {
        throw std::bad_alloc();
    }
    return pointer;
}

// The non-throwing forms never fail on purpose; they are replaced only so that every
// allocation and every release of the program go through the same pair of malloc and free.
__attribute__((visibility("default"))) void* operator new(std::size_t size,
                                                          const std::nothrow_t&) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}

__attribute__((visibility("default"))) void operator delete(void* pointer,
                                                            const std::nothrow_t&) noexcept {
    std::free(pointer);
}

__attribute__((visibility("default"))) void operator delete(void* pointer) noexcept {
    std::free(pointer);
}

__attribute__((visibility("default"))) void operator delete(void* pointer, std::size_t) noexcept {
    std::free(pointer);
}
