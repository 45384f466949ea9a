// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/TimeLimit.h"

#include <gtest/gtest.h>

#include <chrono>
#include <functional>
#include <string>

class QProcess;

namespace tarnwell::test
{

/// As a default argument: the source location of the call, which a failure message contains.
struct CallSite {
    CallSite(const char* callingFile = __builtin_FILE(), int callingLine = __builtin_LINE())
        : file(callingFile)
        , line(callingLine)
    {
    }

    const char* file;
    int line;
};

/// Ends the test with a fatal failure. Main thread.
[[noreturn]] void failTest(const std::string& message, CallSite site = {});

/// Processes events until the condition holds. Fails, with a screenshot, after the longest wait. Main thread.
[[nodiscard]] testing::AssertionResult waitUntil(const std::function<bool()>& condition);

/// The same, but ends the test after the longest wait; the failure message names `awaited`, for example "an
/// alert".
void waitFor(const std::string& awaited, const std::function<bool()>& condition, CallSite site = {});

/// Processes events until the program ends itself, as expected; ends the test after the longest wait.
[[noreturn]] void runUntilStop(CallSite site = {});

/// Blocks until the process has ended. After the limit, kills it and fails. Any thread; does not process
/// events.
[[nodiscard]] testing::AssertionResult waitForEnd(
    QProcess& process, std::chrono::milliseconds limit = longestWait);

} // namespace tarnwell::test
