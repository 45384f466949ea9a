// SPDX-License-Identifier: MIT
#include "orientation/PosterFrame.h"

#include <gtest/gtest.h>

namespace tarnwell::test
{

namespace
{

struct SeekCase {
    std::string name;
    double duration;
    std::string seek;
};

} // namespace

TEST(PosterFrameTest, theStillStandsInTheTemporaryFolder)
{
    EXPECT_EQ(posterFramePath("/tmp/private/"), "/tmp/private/posterFrame.jpg");
}

TEST(PosterFrameTest, noSeparatorIsPutIn)
{
    EXPECT_EQ(posterFramePath("/tmp/private"), "/tmp/privateposterFrame.jpg");
}

TEST(PosterFrameTest, theArgumentsSeekBeforeTheInput)
{
    EXPECT_EQ(posterFrameArguments(10, "/v/clip.mp4", "/tmp/posterFrame.jpg"),
        (std::vector<std::string>{"-v", "quiet", "-ss", "5.0", "-i", "/v/clip.mp4", "-frames:v", "1", "-y",
            "/tmp/posterFrame.jpg"}));
}

TEST(PosterFrameTest, pathsAreTakenAsTheyAre)
{
    const std::string video = "-a \"b\"\n%d\xFF:'.mp4";
    const std::string still = "/t m\xFEp/posterFrame.jpg";
    const auto arguments = posterFrameArguments(1, video, still);
    EXPECT_EQ(arguments.at(5), video);
    EXPECT_EQ(arguments.back(), still);
}

class SeekPositionTest : public testing::TestWithParam<SeekCase>
{
};

TEST_P(SeekPositionTest, isTheMiddleOfTheVideo)
{
    EXPECT_EQ(posterFrameArguments(GetParam().duration, "in", "out").at(3), GetParam().seek);
}

INSTANTIATE_TEST_SUITE_P(Durations, SeekPositionTest,
    testing::Values(SeekCase{"sevenSeconds", 7, "3.5"}, SeekCase{"none", 0, "0.0"},
        SeekCase{"tenSeconds", 10, "5.0"}, SeekCase{"twelvePointFourEight", 12.48, "6.24"},
        SeekCase{"aThousandth", 0.001, "0.0005"}, SeekCase{"aMicrosecond", 0.000001, "0.0000005"},
        SeekCase{"thirtyHours", 108000, "54000.0"}, SeekCase{"recorded", 143165.643233, "71582.8216165"},
        SeekCase{"negative", -7, "-3.5"}),
    [](const auto& row) { return row.param.name; });

} // namespace tarnwell::test
