// SPDX-License-Identifier: MIT
#include "util/CheckedArithmetic.h"

#include "tests/support/SilentStop.h"

#include <limits>

namespace tarnwell::test
{

namespace
{

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();

} // namespace

TEST(CheckedArithmeticTest, resultsThatFitAreGiven)
{
    EXPECT_EQ(checkedSum(1, 4), 5);
    EXPECT_EQ(checkedDifference(0, 90), -90);
    EXPECT_EQ(checkedProduct(3, 90), 270);
}

TEST(CheckedArithmeticTest, theLimitsFit)
{
    EXPECT_EQ(checkedSum(largest - 1, 1), largest);
    EXPECT_EQ(checkedSum(smallest, largest), -1);
    EXPECT_EQ(checkedDifference(smallest + 1, 1), smallest);
    EXPECT_EQ(checkedDifference(-1, smallest), largest);
    EXPECT_EQ(checkedProduct(smallest, 1), smallest);
    EXPECT_EQ(checkedProduct(largest, -1), -largest);
}

TEST(CheckedArithmeticDeathTest, aSumThatDoesNotFitStopsTheProgram)
{
    EXPECT_SILENT_STOP(checkedSum(largest, 1));
    EXPECT_SILENT_STOP(checkedSum(smallest, -1));
}

TEST(CheckedArithmeticDeathTest, aDifferenceThatDoesNotFitStopsTheProgram)
{
    EXPECT_SILENT_STOP(checkedDifference(smallest, 1));
    EXPECT_SILENT_STOP(checkedDifference(0, smallest));
}

TEST(CheckedArithmeticDeathTest, aProductThatDoesNotFitStopsTheProgram)
{
    EXPECT_SILENT_STOP(checkedProduct(largest, 2));
    EXPECT_SILENT_STOP(checkedProduct(smallest, -1));
}

} // namespace tarnwell::test
