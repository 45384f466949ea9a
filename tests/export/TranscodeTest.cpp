// SPDX-License-Identifier: MIT
#include "export/ExportPlan.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarnwell::test
{

namespace
{

struct FilterCase {
    std::string name;
    OrientationState state;
    std::string filters;
};

} // namespace

class TranscodeListTest : public testing::TestWithParam<FilterCase>
{
};

TEST_P(TranscodeListTest, holdsTheFilters)
{
    EXPECT_EQ(transcodeArgumentList("/in.mov", "/out.mp4", GetParam().state),
        (ArgumentList{"-i", "/in.mov", "-pix_fmt", "yuv420p", "-vf", GetParam().filters, "-metadata:s:v",
            "rotate=0", "-y", "/out.mp4"}));
}

INSTANTIATE_TEST_SUITE_P(States, TranscodeListTest,
    testing::Values(FilterCase{"horizontally", {1, false, true}, "hflip"},
        FilterCase{"vertically", {1, true, false}, "vflip"},
        FilterCase{"bothWays", {1, true, true}, "vflip,hflip"},
        FilterCase{"left", {2, false, false}, "transpose=2"},
        FilterCase{"leftHorizontally", {2, false, true}, "transpose=2,hflip"},
        FilterCase{"leftVertically", {2, true, false}, "transpose=2,vflip"},
        FilterCase{"leftBothWays", {2, true, true}, "transpose=2,vflip,hflip"},
        FilterCase{"halfTurn", {3, false, false}, "transpose=2,transpose=2"},
        FilterCase{"halfTurnHorizontally", {3, false, true}, "transpose=2,transpose=2,hflip"},
        FilterCase{"halfTurnVertically", {3, true, false}, "transpose=2,transpose=2,vflip"},
        FilterCase{"halfTurnBothWays", {3, true, true}, "transpose=2,transpose=2,vflip,hflip"},
        FilterCase{"right", {4, false, false}, "transpose=1"},
        FilterCase{"rightHorizontally", {4, false, true}, "transpose=1,hflip"},
        FilterCase{"rightVertically", {4, true, false}, "transpose=1,vflip"},
        FilterCase{"rightBothWays", {4, true, true}, "transpose=1,vflip,hflip"}),
    [](const auto& row) { return row.param.name; });

TEST(TranscodeListTest, theUntouchedStateHasNoFilterOption)
{
    EXPECT_EQ(transcodeArgumentList("/in.mov", "/out.mp4", {1, false, false}),
        (ArgumentList{
            "-i", "/in.mov", "-pix_fmt", "yuv420p", "-metadata:s:v", "rotate=0", "-y", "/out.mp4"}));
}

TEST(TranscodeListTest, aPositionOutsideOneToFourLeavesTheOptionWithoutItsValue)
{
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    const ArgumentList expected
        = {"-i", "/in.mov", "-pix_fmt", "yuv420p", "-vf", "-metadata:s:v", "rotate=0", "-y", "/out.mp4"};
    for (const std::int64_t position : {0L, 5L, -1L, largest, smallest}) {
        EXPECT_EQ(transcodeArgumentList("/in.mov", "/out.mp4", {position, false, false}), expected)
            << position;
        EXPECT_EQ(transcodeArgumentList("/in.mov", "/out.mp4", {position, true, true}), expected) << position;
    }
}

TEST(TranscodeListTest, pathsAreTakenAsTheyAre)
{
    const std::string input = "-i \"a'\n%d\xFF.mp4";
    const std::string output = "/o u t,\xFE:0.mp4";
    const auto arguments = transcodeArgumentList(input, output, {2, false, false});
    EXPECT_EQ(arguments.at(1), input);
    EXPECT_EQ(arguments.back(), output);
}

TEST(TranscodeListTest, buildingAListPrintsNothing)
{
    testing::internal::CaptureStdout();
    transcodeArgumentList("/in.mov", "/out.mp4", {7, false, false});
    fixFlagArgumentList("/in.mov", "/out.mp4", fixFlagRotation({7, false, false}, 0));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), ""); // the caller prints
}

} // namespace tarnwell::test
