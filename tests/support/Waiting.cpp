// SPDX-License-Identifier: MIT
#include "tests/support/Waiting.h"

#include "tests/support/Screen.h"

#include <QProcess>
#include <QTest>

namespace tarnwell::test
{

namespace
{

std::string timeIsUp()
{
    return " within " + std::to_string(longestWait.count()) + " s; screen: " + savePictureOfScreen();
}

} // namespace

void failTest(const std::string& message, CallSite site)
{
    const auto report = [&] { GTEST_FAIL_AT(site.file, site.line) << message; };
    report();
    // Needed if no listener converts a fatal failure into an exception, as in the process of a death test.
    throw testing::AssertionException(testing::TestPartResult(
        testing::TestPartResult::kFatalFailure, site.file, site.line, message.c_str()));
}

testing::AssertionResult waitUntil(const std::function<bool()>& condition)
{
    constexpr std::chrono::milliseconds limit = longestWait;
    if (QTest::qWaitFor(condition, static_cast<int>(limit.count())))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "the condition did not hold" << timeIsUp();
}

void waitFor(const std::string& awaited, const std::function<bool()>& condition, CallSite site)
{
    constexpr std::chrono::milliseconds limit = longestWait;
    if (!QTest::qWaitFor(condition, static_cast<int>(limit.count())))
        failTest(awaited + " did not come" + timeIsUp(), site);
}

void runUntilStop(CallSite site)
{
    waitFor(
        "the end of the program", [] { return false; }, site);
    failTest("unreachable", site);
}

testing::AssertionResult waitForEnd(QProcess& process, std::chrono::milliseconds limit)
{
    if (process.state() == QProcess::NotRunning || process.waitForFinished(static_cast<int>(limit.count())))
        return testing::AssertionSuccess();
    process.kill();
    process.waitForFinished();
    return testing::AssertionFailure()
        << process.program().toStdString() << " did not end within "
        << std::chrono::duration_cast<std::chrono::seconds>(limit).count() << " s";
}

} // namespace tarnwell::test
