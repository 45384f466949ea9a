// SPDX-License-Identifier: MIT
#include "orientation/OrientationState.h"

#include "tests/support/SilentStop.h"

#include <limits>

namespace tarnwell::test
{

namespace
{

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();

struct LabelCase {
    std::string name;
    OrientationState state;
    std::string label;
};

} // namespace

TEST(OrientationStateTest, itStartsUntouched)
{
    EXPECT_EQ(OrientationState(), (OrientationState{1, false, false}));
}

TEST(RotationTest, leftGoesThroughTheFourPositions)
{
    EXPECT_EQ(positionAfterRotatingLeft(1), 2);
    EXPECT_EQ(positionAfterRotatingLeft(2), 3);
    EXPECT_EQ(positionAfterRotatingLeft(3), 4);
    EXPECT_EQ(positionAfterRotatingLeft(4), 1);
}

TEST(RotationTest, rightGoesThroughTheFourPositionsBackwards)
{
    EXPECT_EQ(positionAfterRotatingRight(1), 4);
    EXPECT_EQ(positionAfterRotatingRight(4), 3);
    EXPECT_EQ(positionAfterRotatingRight(3), 2);
    EXPECT_EQ(positionAfterRotatingRight(2), 1);
}

TEST(RotationTest, fourTurnsOneWayComeBack)
{
    for (std::int64_t start = 1; start <= 4; ++start) {
        std::int64_t left = start;
        std::int64_t right = start;
        for (int turn = 0; turn < 4; ++turn) {
            left = positionAfterRotatingLeft(left);
            right = positionAfterRotatingRight(right);
        }
        EXPECT_EQ(left, start);
        EXPECT_EQ(right, start);
    }
}

TEST(RotationTest, aTurnAndItsOppositeComeBack)
{
    for (std::int64_t start = 1; start <= 4; ++start) {
        EXPECT_EQ(positionAfterRotatingRight(positionAfterRotatingLeft(start)), start);
        EXPECT_EQ(positionAfterRotatingLeft(positionAfterRotatingRight(start)), start);
    }
}

TEST(RotationTest, otherPositionsAreNotPulledBack)
{
    EXPECT_EQ(positionAfterRotatingLeft(5), 6);
    EXPECT_EQ(positionAfterRotatingLeft(0), 1);
    EXPECT_EQ(positionAfterRotatingLeft(-3), -2);
    EXPECT_EQ(positionAfterRotatingRight(0), -1);
    EXPECT_EQ(positionAfterRotatingRight(5), 4);
    EXPECT_EQ(positionAfterRotatingRight(9), 8);
}

TEST(RotationDeathTest, anOverflowStopsTheProgram)
{
    EXPECT_SILENT_STOP(positionAfterRotatingLeft(largest));
    EXPECT_SILENT_STOP(positionAfterRotatingRight(smallest));
}

TEST(AngleTest, aPositionIsItsQuarterTurnsToTheLeft)
{
    EXPECT_EQ(angleOfPosition(1), 0);
    EXPECT_EQ(angleOfPosition(2), 90);
    EXPECT_EQ(angleOfPosition(3), 180);
    EXPECT_EQ(angleOfPosition(4), 270);
}

TEST(AngleTest, otherPositionsFollowTheSameRule)
{
    EXPECT_EQ(angleOfPosition(0), -90);
    EXPECT_EQ(angleOfPosition(5), 360);
}

TEST(AngleDeathTest, anOverflowStopsTheProgram)
{
    EXPECT_SILENT_STOP(angleOfPosition(smallest));
    EXPECT_SILENT_STOP(angleOfPosition(largest));
}

class OrientationLabelTest : public testing::TestWithParam<LabelCase>
{
};

TEST_P(OrientationLabelTest, namesTheChange)
{
    EXPECT_EQ(orientationLabel(GetParam().state), GetParam().label);
}

INSTANTIATE_TEST_SUITE_P(States, OrientationLabelTest,
    testing::Values(LabelCase{"untouched", {1, false, false}, "Processed"},
        LabelCase{"mirroredHorizontally", {1, false, true}, "Flipped"},
        LabelCase{"mirroredVertically", {1, true, false}, "Flipped"},
        LabelCase{"mirroredBothWays", {1, true, true}, "Flipped"},
        LabelCase{"left", {2, false, false}, "Rotated"},
        LabelCase{"leftAndHorizontally", {2, false, true}, "Rotated and Flipped"},
        LabelCase{"leftAndVertically", {2, true, false}, "Rotated and Flipped"},
        LabelCase{"leftAndBothWays", {2, true, true}, "Rotated and Flipped"},
        LabelCase{"halfTurn", {3, false, false}, "Rotated"},
        LabelCase{"halfTurnAndHorizontally", {3, false, true}, "Rotated and Flipped"},
        LabelCase{"halfTurnAndVertically", {3, true, false}, "Rotated and Flipped"},
        LabelCase{"halfTurnAndBothWays", {3, true, true}, "Rotated and Flipped"},
        LabelCase{"right", {4, false, false}, "Rotated"},
        LabelCase{"rightAndHorizontally", {4, false, true}, "Rotated and Flipped"},
        LabelCase{"rightAndVertically", {4, true, false}, "Rotated and Flipped"},
        LabelCase{"rightAndBothWays", {4, true, true}, "Rotated and Flipped"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(PositionsThatAreNone, OrientationLabelTest,
    testing::Values(LabelCase{"zero", {0, false, false}, "Processed"},
        LabelCase{"five", {5, false, false}, "Processed"},
        LabelCase{"minusOne", {-1, false, false}, "Processed"}, LabelCase{"six", {6, true, false}, "Flipped"},
        LabelCase{"smallest", {smallest, false, false}, "Processed"},
        LabelCase{"largest", {largest, false, true}, "Flipped"}),
    [](const auto& row) { return row.param.name; });

} // namespace tarnwell::test
