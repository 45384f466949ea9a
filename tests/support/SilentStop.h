// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TimeLimit.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <unistd.h>

namespace tarnwell::test
{

/// More than a wait of the statement takes before it fails.
inline constexpr std::chrono::seconds longestDeathTest(150);

} // namespace tarnwell::test

/// The statement ends the program at once with SIGABRT. What it writes until then, on standard output and
/// standard error together, matches the expression. For suites whose name ends in DeathTest.
#define EXPECT_STOP_AFTER(statement, expression)                                                             \
    EXPECT_EXIT(                                                                                             \
        {                                                                                                    \
            ::dup2(STDERR_FILENO, STDOUT_FILENO);                                                            \
            tarnwell::test::startTimeLimit(                                                                  \
                tarnwell::test::longestDeathTest, "the death test's statement did not end in time");         \
            static_cast<void>(statement);                                                                    \
        },                                                                                                   \
        testing::KilledBySignal(SIGABRT), expression)

/// The same, and it writes nothing.
#define EXPECT_SILENT_STOP(statement) EXPECT_STOP_AFTER(statement, "^$")
