#pragma once

#include <cstddef>
#include <vector>

// Replaces the global allocation functions of the test program (and so of the library it loads);
// linking this library is what installs them. A test can make allocations fail, count the
// non-throwing ones and record what operator delete frees.
namespace pallix::test {

// Lets `allowed` throwing allocations through and makes the next one throw std::bad_alloc.
void failAllocation(long allowed);
void disarmAllocationFailure();
// How many allocations an armed failure still lets through.
long allocationsLeft();

// The next `count` calls of operator new(size_t, nothrow_t) return null.
void failNextNothrowAllocations(int count);
int nothrowAllocationCount();

void startRecordingDeletes();
std::vector<const void*> stopRecordingDeletes();

} // namespace pallix::test
