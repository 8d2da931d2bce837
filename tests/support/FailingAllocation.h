#pragma once

// Replaces the global throwing allocation functions of the test program (and so of the library
// it loads) with ones that can be told to fail: failAllocation(n) lets n allocations through and
// makes the next one throw std::bad_alloc. Linking this library is what installs them.

namespace pallix::test {

void failAllocation(long allowed);
void disarmAllocationFailure();
// How many allocations an armed failure still lets through.
long allocationsLeft();

} // namespace pallix::test
