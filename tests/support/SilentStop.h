// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

/// The statement ends the program at once with SIGABRT. What it says until then, on standard output and
/// standard error together, matches the expression. For suites whose name ends in DeathTest.
#define EXPECT_STOP_AFTER(statement, expression)                                                             \
    EXPECT_EXIT(                                                                                             \
        {                                                                                                    \
            ::dup2(STDERR_FILENO, STDOUT_FILENO);                                                            \
            static_cast<void>(statement);                                                                    \
        },                                                                                                   \
        testing::KilledBySignal(SIGABRT), expression)

/// The same, and it says nothing.
#define EXPECT_SILENT_STOP(statement) EXPECT_STOP_AFTER(statement, "^$")
