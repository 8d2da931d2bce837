#include "AllocationProbe.h"

#include <cstdlib>
#include <new>

namespace {

int g_failNothrow = 0;
int g_nothrowCount = 0;
bool g_recording = false;
// A fixed buffer: recording must not allocate from inside operator delete.
const void* g_deleted[4096];
std::size_t g_deletedCount = 0;

void record(void* pointer) {
    if (g_recording && pointer != nullptr && g_deletedCount < 4096) {
        g_deleted[g_deletedCount++] = pointer;
    }
}

} // namespace

namespace allocation_probe {

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

} // namespace allocation_probe

__attribute__((visibility("default"))) void* operator new(std::size_t size) {
    void* pointer = std::malloc(size == 0 ? 1 : size);
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
    return std::malloc(size == 0 ? 1 : size);
}

__attribute__((visibility("default"))) void operator delete(void* pointer) noexcept {
    record(pointer);
    std::free(pointer);
}

__attribute__((visibility("default"))) void operator delete(void* pointer, std::size_t) noexcept {
    record(pointer);
    std::free(pointer);
}
