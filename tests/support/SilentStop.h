// SPDX-License-Identifier: MIT
#pragma once

#include <gtest/gtest.h>

#include <csignal>
#include <unistd.h>

/// The statement ends the program at once with SIGABRT and says nothing, neither on standard error nor on
/// standard output. For suites whose name ends in DeathTest.
#define EXPECT_SILENT_STOP(statement)                                                                        \
    EXPECT_EXIT(                                                                                             \
        {                                                                                                    \
            ::dup2(STDERR_FILENO, STDOUT_FILENO);                                                            \
            static_cast<void>(statement);                                                                    \
        },                                                                                                   \
        testing::KilledBySignal(SIGABRT), "^$")
