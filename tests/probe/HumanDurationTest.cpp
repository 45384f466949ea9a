// SPDX-License-Identifier: MIT
#include "probe/HumanReadable.h"
#include "tests/support/SilentStop.h"
#include "tests/util/CommaLocale.h"

#include <cmath>
#include <limits>

namespace tarnwell::test
{

namespace
{

struct DurationCase {
    std::string name;
    double seconds;
    std::string text;
};

} // namespace

class HumanDurationTest : public testing::TestWithParam<DurationCase>
{
};

TEST_P(HumanDurationTest, isAClockWithHundredths)
{
    EXPECT_EQ(humanDuration(GetParam().seconds), GetParam().text);
}

INSTANTIATE_TEST_SUITE_P(Durations, HumanDurationTest,
    testing::Values(DurationCase{"zero", 0, "00:00:00.00"},
        DurationCase{"minuteAndAQuarter", 75.5, "00:01:15.50"},
        DurationCase{"justBelowAnHour", 3599.994, "00:59:59.99"}, DurationCase{"anHour", 3600, "01:00:00.00"},
        DurationCase{"justBelowTenHours", 35999, "09:59:59.00"},
        DurationCase{"tenHours", 36000, "10:00:00.00"}, DurationCase{"elevenHours", 40000.25, "11:06:40.25"},
        DurationCase{"hundredHours", 360000, "100:00:00.00"},
        DurationCase{"recorded", 143165.643233, "39:46:05.64"},
        DurationCase{"aHundredth", 0.01, "00:00:00.01"},
        DurationCase{"lessThanHalfAHundredth", 0.004, "00:00:00.00"}),
    [](const auto& row) { return row.param.name; });

// Seconds are truncated, hundredths rounded.
INSTANTIATE_TEST_SUITE_P(Mismatches, HumanDurationTest,
    testing::Values(DurationCase{"justBelowAMinute", 59.999, "00:00:59.00"},
        DurationCase{"justBelowASecond", 0.996, "00:00:00.00"},
        DurationCase{"justBelowTenHoursAndAHair", 35999.999, "09:59:59.00"}),
    [](const auto& row) { return row.param.name; });

// The rules for positive durations without a special case for the sign.
INSTANTIATE_TEST_SUITE_P(Negative, HumanDurationTest,
    testing::Values(DurationCase{"minusOneAndAHalf", -1.5, "00:00:0-1.50"},
        DurationCase{"minusAMinuteAndAQuarter", -75.5, "00:0-1:0-15.50"},
        DurationCase{"minusHalf", -0.5, "00:00:00.50"}, DurationCase{"minusZero", -0.0, "00:00:00.00"},
        DurationCase{"lessThanHalfAHundredth", -0.004, "00:00:00.00"},
        DurationCase{"minusTenHours", -36000, "0-10:00:00.00"}),
    [](const auto& row) { return row.param.name; });

TEST(HumanDurationLimitsTest, theLongestDurationsAreWritten)
{
    EXPECT_EQ(humanDuration(1e15), "277777777777:46:40.00");
    EXPECT_EQ(humanDuration(std::nextafter(0x1p63, 0)), "2562047788015215:13:04.00");
    EXPECT_TRUE(humanDuration(-0x1p63).ends_with(".00"));
}

TEST(HumanDurationLimitsTest, aPointIsWrittenInEveryLocale)
{
    const CommaLocale locale;
    EXPECT_EQ(humanDuration(40000.25), "11:06:40.25");
}

TEST(HumanDurationDeathTest, whatIsNoDurationStopsTheProgram)
{
    EXPECT_SILENT_STOP(humanDuration(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_SILENT_STOP(humanDuration(std::numeric_limits<double>::infinity()));
    EXPECT_SILENT_STOP(humanDuration(-std::numeric_limits<double>::infinity()));
}

TEST(HumanDurationDeathTest, aDurationBeyond64BitsStopsTheProgram)
{
    EXPECT_SILENT_STOP(humanDuration(0x1p63));
    EXPECT_SILENT_STOP(humanDuration(1e300));
    EXPECT_SILENT_STOP(humanDuration(std::nextafter(-0x1p63, -1e300)));
}

} // namespace tarnwell::test
