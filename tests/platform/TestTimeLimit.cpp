// SPDX-License-Identifier: MIT
// A time limit for each test of this program: a wait for another thread or process that never comes ends the
// program with the name of the test.
#include "tests/support/TimeLimit.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwell::test
{

namespace
{

constexpr std::chrono::seconds longestTest(100); // less than ctest allows

class TestTimeLimit : public testing::EmptyTestEventListener
{
    void OnTestStart(const testing::TestInfo& test) override
    {
        startTimeLimit(longestTest,
            std::string(test.test_suite_name()) + "." + test.name() + " did not end within "
                + std::to_string(longestTest.count()) + " s");
    }

    void OnTestEnd(const testing::TestInfo& /*test*/) override { stopTimeLimit(); }
};

// GoogleTest deletes the listener.
[[maybe_unused]] const bool isAppended = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new TestTimeLimit);
    return true;
}();

} // namespace

} // namespace tarnwell::test
