// SPDX-License-Identifier: MIT
#include "export/Progress.h"

#include "tests/support/SilentStop.h"

#include <cmath>
#include <limits>

namespace tarnwell::test
{

namespace
{

struct ChunkCase {
    std::string name;
    std::string chunk;
    std::optional<double> seconds;
};

const std::string statusLine
    = "frame=  100 fps= 25 q=28.0 size=     256kB time=00:00:04.00 bitrate= 524.3kbits/s speed=1.0x    \r";

} // namespace

class ElapsedSecondsTest : public testing::TestWithParam<ChunkCase>
{
};

TEST_P(ElapsedSecondsTest, areReadFromTheChunkAlone)
{
    EXPECT_EQ(elapsedSecondsFromChunk(GetParam().chunk), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(StatusLines, ElapsedSecondsTest,
    testing::Values(ChunkCase{"whole", statusLine, 4.0}, ChunkCase{"bare", "time=01:02:03.45", 3723.45},
        ChunkCase{"twoLines", "time=00:00:01.00 x\rtime=00:00:02.00 y\r", 1.0},
        ChunkCase{"stampBeforeTheMark", "Duration: 00:00:09.50, start: 0\rtime=00:00:02.00", 9.5},
        ChunkCase{"stampOfTheNextLine", "time=N/A speed=1x\rtime=00:00:03.00", 3.0},
        ChunkCase{"negativeTime", "time=-00:00:00.04", 0.04},
        ChunkCase{"moreDigits", "time=00:00:01.234567", 1.23},
        ChunkCase{"hundredHours", "time=100:00:01.00", 1.0},
        ChunkCase{"nonAsciiBefore", "title : caf\xC3\xA9 \xF0\x9F\x8E\xAC time=00:00:05.00", 5.0},
        ChunkCase{"zero", "time=00:00:00.00", 0.0}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(OtherChunks, ElapsedSecondsTest,
    testing::Values(ChunkCase{"empty", "", std::nullopt},
        ChunkCase{"banner", "Input #0, mov, from 'x':", std::nullopt},
        ChunkCase{"stampWithoutTheMark", "Duration: 00:00:08.00, start: 0", std::nullopt},
        ChunkCase{"markWithABlank", "time =00:00:01.00", std::nullopt},
        ChunkCase{"markInCapitals", "Time=00:00:01.00 TIME=00:00:01.00", std::nullopt},
        ChunkCase{"invalidUtf8", "\xFFtime=00:00:01.00", std::nullopt},
        ChunkCase{"invalidUtf8WithoutAStamp", "time=\xC3", std::nullopt},
        ChunkCase{"cutOffLetterAtTheEnd", "time=00:00:01.00 caf\xC3", std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(ElapsedSecondsDeathTest, aMarkWithoutAStampStopsTheProgram)
{
    EXPECT_SILENT_STOP(elapsedSecondsFromChunk("time=N/A bitrate=N/A"));
    EXPECT_SILENT_STOP(elapsedSecondsFromChunk("time="));
    EXPECT_SILENT_STOP(elapsedSecondsFromChunk("title : time=out"));
    EXPECT_SILENT_STOP(elapsedSecondsFromChunk("time=00:00:0"));
}

TEST(ElapsedSecondsDeathTest, aStampWithoutADotStopsTheProgram)
{
    EXPECT_SILENT_STOP(elapsedSecondsFromChunk("time=00:00:01:50"));
}

TEST(PercentTest, itIsTheShareOfTheDuration)
{
    EXPECT_EQ(percentOf(4, 8), 50.0);
    EXPECT_EQ(percentOf(0, 8), 0.0);
    EXPECT_EQ(percentOf(8, 8), 100.0);
}

TEST(PercentTest, itIsDividedBeforeItIsMultiplied)
{
    EXPECT_EQ(percentOf(0.07, 1), 7.000000000000001);
    EXPECT_EQ(percentOf(0.29, 1), 28.999999999999996);
    EXPECT_EQ(percentOf(1, 3), 33.33333333333333);
}

TEST(PercentTest, itIsNotKeptBelowAHundred)
{
    EXPECT_EQ(percentOf(12, 8), 150.0);
}

TEST(PercentTest, aDurationOfZeroGivesInfinityOrNoNumber)
{
    EXPECT_EQ(percentOf(1, 0), std::numeric_limits<double>::infinity());
    EXPECT_TRUE(std::isnan(percentOf(0, 0)));
}

TEST(PercentLineTest, theShortestDecimalIsWritten)
{
    EXPECT_EQ(percentLine(50), "Percent : 50.0");
    EXPECT_EQ(percentLine(12.5), "Percent : 12.5");
    EXPECT_EQ(percentLine(40), "Percent : 40.0");
    EXPECT_EQ(percentLine(0), "Percent : 0.0");
    EXPECT_EQ(percentLine(percentOf(-0.0, 8)), "Percent : -0.0");
    EXPECT_EQ(percentLine(percentOf(0, -8)), "Percent : -0.0");
    EXPECT_EQ(percentLine(percentOf(1, 3)), "Percent : 33.33333333333333");
    EXPECT_EQ(percentLine(percentOf(12, 8)), "Percent : 150.0");
}

TEST(PercentLineTest, whatADurationOfZeroGivesIsWrittenToo)
{
    EXPECT_EQ(percentLine(percentOf(1, 0)), "Percent : inf");
    EXPECT_EQ(percentLine(percentOf(0, 0)), "Percent : nan");
}

} // namespace tarnwell::test
