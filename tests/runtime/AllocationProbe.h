#pragma once

#include <cstddef>
#include <vector>

// Observes the global allocation functions of the test process, which this test replaces:
// it can make the next non-throwing allocations fail and record what operator delete frees.
namespace allocation_probe {

// The next `count` calls of operator new(size_t, nothrow_t) return null.
void failNextNothrowAllocations(int count);
int nothrowAllocationCount();

void startRecordingDeletes();
std::vector<const void*> stopRecordingDeletes();

} // namespace allocation_probe
