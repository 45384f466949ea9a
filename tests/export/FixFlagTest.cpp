// SPDX-License-Identifier: MIT
#include "export/ExportPlan.h"
#include "tests/support/SilentStop.h"

#include <limits>

namespace tarnwell::test
{

namespace
{

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();

struct CodecCase {
    std::string name;
    std::vector<std::string> codecs;
    bool isPossible;
};

struct RotationCase {
    std::string name;
    OrientationState state;
    std::int64_t shown; // the result in degrees for a file without a flag
};

struct ElementCase {
    std::string name;
    OrientationState state;
    std::int64_t tag;
    std::string element;
};

std::string nameOfRotation(const testing::TestParamInfo<RotationCase>& row)
{
    return row.param.name;
}

} // namespace

class FixFlagCodecTest : public testing::TestWithParam<CodecCase>
{
};

TEST_P(FixFlagCodecTest, decidesForEqualMirrorsOnly)
{
    const auto& row = GetParam();
    for (std::int64_t position = 1; position <= 4; ++position) {
        SCOPED_TRACE(position);
        EXPECT_EQ(isFixFlagPossible(row.codecs, {position, false, false}), row.isPossible);
        EXPECT_EQ(isFixFlagPossible(row.codecs, {position, true, true}), row.isPossible);
        EXPECT_FALSE(isFixFlagPossible(row.codecs, {position, true, false}));
        EXPECT_FALSE(isFixFlagPossible(row.codecs, {position, false, true}));
    }
}

INSTANTIATE_TEST_SUITE_P(Codecs, FixFlagCodecTest,
    testing::Values(CodecCase{"h264", {"h264", "aac"}, true}, CodecCase{"hevc", {"hevc"}, true},
        CodecCase{"secondTrack", {"aac", "h264"}, true},
        CodecCase{"lastOfMany", {"aac", "mov_text", "png", "hevc"}, true},
        CodecCase{"both", {"h264", "hevc"}, true}, CodecCase{"mpeg4", {"mpeg4", "aac"}, false},
        CodecCase{"noTracks", {}, false}, CodecCase{"unnamed", {""}, false},
        CodecCase{"capitals", {"H264", "HEVC"}, false}, CodecCase{"longerName", {"h2645", "hevc2"}, false},
        CodecCase{"blankBehind", {"h264 "}, false},
        CodecCase{"otherNames", {"h265", "avc1", "hvc1", "vp9", "av1"}, false}),
    [](const auto& row) { return row.param.name; });

class FixFlagRotationTest : public testing::TestWithParam<RotationCase>
{
};

TEST_P(FixFlagRotationTest, isWhatIsShownLessTheTag)
{
    const auto& row = GetParam();
    for (const std::int64_t tag : {0L, 90L, 180L, 270L, 360L, -90L, 7L, 1000000000000L, -1000000000000L})
        EXPECT_EQ(fixFlagRotation(row.state, tag), row.shown - tag) << "tag " << tag;
}

INSTANTIATE_TEST_SUITE_P(EqualMirrors, FixFlagRotationTest,
    testing::Values(RotationCase{"untouched", {1, false, false}, 0},
        RotationCase{"left", {2, false, false}, 90}, RotationCase{"halfTurn", {3, false, false}, 180},
        RotationCase{"right", {4, false, false}, 270}, RotationCase{"mirroredBothWays", {1, true, true}, 180},
        RotationCase{"leftMirroredBothWays", {2, true, true}, 270},
        RotationCase{"halfTurnMirroredBothWays", {3, true, true}, 0},
        RotationCase{"rightMirroredBothWays", {4, true, true}, 90}),
    nameOfRotation);

// A single mirror does not change the rotation.
INSTANTIATE_TEST_SUITE_P(OneMirror, FixFlagRotationTest,
    testing::Values(RotationCase{"vertically", {1, true, false}, 0},
        RotationCase{"horizontally", {1, false, true}, 0},
        RotationCase{"leftVertically", {2, true, false}, 90},
        RotationCase{"leftHorizontally", {2, false, true}, 90},
        RotationCase{"halfTurnVertically", {3, true, false}, 180},
        RotationCase{"halfTurnHorizontally", {3, false, true}, 180},
        RotationCase{"rightVertically", {4, true, false}, 270},
        RotationCase{"rightHorizontally", {4, false, true}, 270}),
    nameOfRotation);

TEST(FixFlagPositionTest, aPositionOutsideOneToFourHasNoRotation)
{
    for (const std::int64_t position : {0L, 5L, -1L, 6L, largest, smallest}) {
        EXPECT_FALSE(fixFlagRotation({position, false, false}, 0)) << position;
        EXPECT_FALSE(fixFlagRotation({position, true, true}, 90)) << position;
    }
}

TEST(FixFlagPositionTest, theLargestTagsThatFitAreTaken)
{
    EXPECT_EQ(fixFlagRotation({1, false, false}, largest), -largest);
    EXPECT_EQ(fixFlagRotation({1, false, false}, smallest + 1), largest);
    EXPECT_EQ(fixFlagRotation({4, false, false}, largest), 270 - largest);
}

TEST(FixFlagRotationDeathTest, anOverflowStopsTheProgram)
{
    EXPECT_SILENT_STOP(fixFlagRotation(OrientationState{1}, smallest));
    EXPECT_SILENT_STOP(fixFlagRotation(OrientationState{4}, smallest + 270));
}

class FixFlagElementTest : public testing::TestWithParam<ElementCase>
{
};

TEST_P(FixFlagElementTest, standsInItsPlaceInTheList)
{
    const auto& row = GetParam();
    EXPECT_EQ(fixFlagArgumentList("/in.mp4", "/out.mp4", fixFlagRotation(row.state, row.tag)),
        (ArgumentList{"-i", "/in.mp4", "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", row.element, "-y",
            "/out.mp4"}));
}

INSTANTIATE_TEST_SUITE_P(Elements, FixFlagElementTest,
    testing::Values(ElementCase{"untouchedWithoutTag", {1, false, false}, 0, "rotate=0"},
        ElementCase{"untouchedWithTag", {1, false, false}, 90, "rotate=-90"},
        ElementCase{"rightWithNegativeTag", {4, false, false}, -90, "rotate=360"},
        ElementCase{"bothMirrorsWithoutTag", {1, true, true}, 0, "rotate=180"},
        ElementCase{"halfTurnAndBothMirrors", {3, true, true}, 270, "rotate=-270"},
        ElementCase{"leftWithItsOwnTag", {2, false, false}, 90, "rotate=0"},
        ElementCase{"hugeTag", {2, false, false}, 1000000000000, "rotate=-999999999910"}),
    [](const auto& row) { return row.param.name; });

TEST(FixFlagListTest, withoutARotationTheElementIsLeftOut)
{
    EXPECT_EQ(fixFlagArgumentList("/in.mp4", "/out.mp4", std::nullopt),
        (ArgumentList{"-i", "/in.mp4", "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "-y", "/out.mp4"}));
}

TEST(FixFlagListTest, pathsAreTakenAsTheyAre)
{
    const std::string input = "-y \"a'\n%d\xFF.mp4";
    const std::string output = "/o u t,\xFE:0.mp4";
    const auto arguments = fixFlagArgumentList(input, output, 0);
    EXPECT_EQ(arguments.at(1), input);
    EXPECT_EQ(arguments.back(), output);
}

} // namespace tarnwell::test
