// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TimeLimit.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <unistd.h>

namespace tarnwell::test
{

/// Longer than the waits of the statement before they fail.
inline constexpr std::chrono::seconds longestDeathTest(150);

} // namespace tarnwell::test

/// Expects the statement to end the program at once with SIGABRT, and its standard output and standard error
/// together to match the expression. For suites whose name ends in DeathTest.
#define EXPECT_STOP_AFTER(statement, expression)                                                             \
    EXPECT_EXIT(                                                                                             \
        {                                                                                                    \
            ::dup2(STDERR_FILENO, STDOUT_FILENO);                                                            \
            tarnwell::test::startTimeLimit(                                                                  \
                tarnwell::test::longestDeathTest, "the death test's statement did not end in time");         \
            static_cast<void>(statement);                                                                    \
        },                                                                                                   \
        testing::KilledBySignal(SIGABRT), expression)

/// The same, and expects no output.
#define EXPECT_SILENT_STOP(statement) EXPECT_STOP_AFTER(statement, "^$")
