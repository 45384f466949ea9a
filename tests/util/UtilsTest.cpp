// SPDX-License-Identifier: MIT
#include "util/Utils.h"

#include <gtest/gtest.h>

using tarnwell::Utils;

TEST(UtilsTest, timeStampOfTenMinutesAndAHalfSecondIs600point5)
{
    EXPECT_EQ(Utils::secondsFromTimeString("00:10:00.50"), 600.5);
}

TEST(UtilsDeathTest, aSeparatorThatIsNoDotStopsTheProgram)
{
    EXPECT_EXIT(Utils::secondsFromTimeString("00:00:01:50"), testing::KilledBySignal(SIGABRT), "^$");
}
