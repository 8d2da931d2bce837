#include "WriteOutcome.h"

namespace pallix {

namespace {
thread_local bool lastWrite = true;
} // namespace

void recordWrite(bool succeeded) noexcept {
    lastWrite = succeeded;
}

bool lastWriteSucceeded() noexcept {
    return lastWrite;
}

} // namespace pallix
