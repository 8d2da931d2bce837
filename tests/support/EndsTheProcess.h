#pragma once

#include <gtest/gtest.h>

#include <csignal>

// Expects `statement` to end the process through std::terminate(): an exception that escapes
// inside one of the library's operations is neither swallowed (the statement would return) nor
// handed to the caller (the death test would report an exception). libstdc++'s terminate
// handler says "terminate called" on its way out, whether or not the exception is still
// active, which tells this apart from any other abort.
#define EXPECT_ENDS_THE_PROCESS(statement)                                                         \
    EXPECT_EXIT(statement, ::testing::KilledBySignal(SIGABRT), "terminate called")
