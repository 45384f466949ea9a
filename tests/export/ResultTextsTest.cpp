// SPDX-License-Identifier: MIT
#include "export/ResultTexts.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarnwell::test
{

namespace
{

struct MessageCase {
    std::string name;
    OrientationState state;
    std::string word;
};

} // namespace

class SuccessMessageTest : public testing::TestWithParam<MessageCase>
{
};

TEST_P(SuccessMessageTest, saysWhatWasDone)
{
    EXPECT_EQ(successMessage(GetParam().state), "Video " + GetParam().word + " Successfully!");
}

INSTANTIATE_TEST_SUITE_P(States, SuccessMessageTest,
    testing::Values(MessageCase{"untouched", {1, false, false}, "Processed"},
        MessageCase{"horizontally", {1, false, true}, "Flipped"},
        MessageCase{"vertically", {1, true, false}, "Flipped"},
        MessageCase{"bothWays", {1, true, true}, "Flipped"},
        MessageCase{"left", {2, false, false}, "Rotated"},
        MessageCase{"leftHorizontally", {2, false, true}, "Rotated and Flipped"},
        MessageCase{"leftVertically", {2, true, false}, "Rotated and Flipped"},
        MessageCase{"leftBothWays", {2, true, true}, "Rotated and Flipped"},
        MessageCase{"halfTurn", {3, false, false}, "Rotated"},
        MessageCase{"halfTurnHorizontally", {3, false, true}, "Rotated and Flipped"},
        MessageCase{"halfTurnVertically", {3, true, false}, "Rotated and Flipped"},
        MessageCase{"halfTurnBothWays", {3, true, true}, "Rotated and Flipped"},
        MessageCase{"right", {4, false, false}, "Rotated"},
        MessageCase{"rightHorizontally", {4, false, true}, "Rotated and Flipped"},
        MessageCase{"rightVertically", {4, true, false}, "Rotated and Flipped"},
        MessageCase{"rightBothWays", {4, true, true}, "Rotated and Flipped"}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(PositionsThatAreNone, SuccessMessageTest,
    testing::Values(MessageCase{"zero", {0, false, false}, "Processed"},
        MessageCase{"five", {5, false, true}, "Flipped"},
        MessageCase{"minusOne", {-1, true, true}, "Flipped"},
        MessageCase{"largest", {std::numeric_limits<std::int64_t>::max(), false, false}, "Processed"}),
    [](const auto& row) { return row.param.name; });

} // namespace tarnwell::test
