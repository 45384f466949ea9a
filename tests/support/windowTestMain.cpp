// SPDX-License-Identifier: MIT
#include "platform/StandardStreams.h"
#include "tests/support/TimeLimit.h"

#include <QApplication>

#include <gtest/gtest.h>

#include <climits>
#include <memory>
#include <string>
#include <unistd.h>

namespace
{

constexpr std::chrono::seconds longestTest(300);

/// Prints the name of a test that exceeds the time limit; ctest prints only that of the program.
class TimeLimitListener : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo& test) override
    {
        tarnwell::test::startTimeLimit(longestTest,
            std::string(test.test_suite_name()) + "." + test.name() + " did not end within "
                + std::to_string(longestTest.count()) + " s");
    }

    void OnTestEnd(const testing::TestInfo& /*test*/) override { tarnwell::test::stopTimeLimit(); }
};

/// Throws after a fatal failure, so that a failure in a helper function ends the test and not only the
/// function. Must be the last listener.
class FatalFailureListener : public testing::EmptyTestEventListener
{
    void OnTestPartResult(const testing::TestPartResult& result) override
    {
        if (result.type() == testing::TestPartResult::kFatalFailure)
            throw testing::AssertionException(result);
    }
};

} // namespace

int main(int argc, char* argv[])
{
    // A death test waits until no process has its pipe open: child processes must not inherit it.
    ::close_range(STDERR_FILENO + 1, UINT_MAX, CLOSE_RANGE_CLOEXEC);
    tarnwell::prepareStandardStreams();
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    // Death tests restart this program, because the connection to the X server does not survive a fork.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto& listeners = testing::UnitTest::GetInstance()->listeners();
    listeners.Append(std::make_unique<TimeLimitListener>().release());
    listeners.Append(std::make_unique<FatalFailureListener>().release());
    return RUN_ALL_TESTS();
}
