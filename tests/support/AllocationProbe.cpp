#include "AllocationProbe.h"

#include <cstdlib>
#include <new>

namespace {

// Counts throwing allocations down while armed; the one that finds zero throws.
long g_failAfter = -1;
int g_failNothrow = 0;
int g_nothrowCount = 0;
bool g_recording = false;
// A fixed buffer: recording must not allocate from inside operator delete.
const void* g_deleted[4096];
std::size_t g_deletedCount = 0;

void* allocate(std::size_t size) noexcept {
    return std::malloc(size == 0 ? 1 : size);
}

void release(void* pointer) noexcept {
    if (g_recording && pointer != nullptr && g_deletedCount < 4096) {
        g_deleted[g_deletedCount++] = pointer;
    }
    std::free(pointer);
}

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

void failNextNothrowAllocations(int count) {
    g_failNothrow = count;
}

int nothrowAllocationCount() {
    return g_nothrowCount;
}

void startRecordingDeletes() {
    g_deletedCount = 0;
    g_recording = true;
}

std::vector<const void*> stopRecordingDeletes() {
    g_recording = false;
    return std::vector<const void*>(g_deleted, g_deleted + g_deletedCount);
}

} // namespace pallix::test

// Every form allocates with malloc and releases with free, so that a sanitizer sees one matching
// pair whichever form the program or the library uses.
__attribute__((visibility("default"))) void* operator new(std::size_t size) {
    if (g_failAfter >= 0 && g_failAfter-- == 0) {
        throw std::bad_alloc();
    }
    void* pointer = allocate(size);
    if (pointer == nullptr) {
        throw std::bad_alloc();
    }
    return pointer;
}

__attribute__((visibility("default"))) void* operator new(std::size_t size,
                                                          const std::nothrow_t&) noexcept {
    ++g_nothrowCount;
    if (g_failNothrow > 0) {
        --g_failNothrow;
        return nullptr;
    }
    return allocate(size);
}

__attribute__((visibility("default"))) void operator delete(void* pointer) noexcept {
    release(pointer);
}

__attribute__((visibility("default"))) void operator delete(void* pointer, std::size_t) noexcept {
    release(pointer);
}

__attribute__((visibility("default"))) void operator delete(void* pointer,
                                                            const std::nothrow_t&) noexcept {
    release(pointer);
}
