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

/// Names the test that does not end; ctest, which ends it later, names only the program.
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

/// A fatal failure in a helper function ends the test, and not only the function. Must be the last listener.
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
    // A death test waits until no process holds its pipe any more: no child may inherit it.
    ::close_range(STDERR_FILENO + 1, UINT_MAX, CLOSE_RANGE_CLOEXEC);
    tarnwell::prepareStandardStreams();
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    // Death tests start this program anew: a window system's connection does not survive a fork.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    auto& listeners = testing::UnitTest::GetInstance()->listeners();
    listeners.Append(std::make_unique<TimeLimitListener>().release());
    listeners.Append(std::make_unique<FatalFailureListener>().release());
    return RUN_ALL_TESTS();
}
