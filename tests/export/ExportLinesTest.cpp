// SPDX-License-Identifier: MIT
#include "export/ExportPlan.h"

#include <gtest/gtest.h>

namespace tarnwell::test
{

TEST(OrientationLineTest, theUntouchedStateIsWrittenOut)
{
    EXPECT_EQ(orientationLine({1, false, false}), "positionState : 1, vFlipSte : false, hFlipState : false");
}

TEST(OrientationLineTest, eachMirrorStandsInItsPlace)
{
    EXPECT_EQ(orientationLine({2, true, false}), "positionState : 2, vFlipSte : true, hFlipState : false");
    EXPECT_EQ(orientationLine({3, false, true}), "positionState : 3, vFlipSte : false, hFlipState : true");
    EXPECT_EQ(orientationLine({4, true, true}), "positionState : 4, vFlipSte : true, hFlipState : true");
}

TEST(OrientationLineTest, everyPositionIsWrittenAsItIs)
{
    EXPECT_EQ(
        orientationLine({-7, false, false}), "positionState : -7, vFlipSte : false, hFlipState : false");
    EXPECT_EQ(orientationLine({9223372036854775807, false, false}),
        "positionState : 9223372036854775807, vFlipSte : false, hFlipState : false");
}

TEST(ArgumentListLineTest, elementsAreInQuotesBetweenBrackets)
{
    EXPECT_EQ(argumentListLine({"-i", "/a b.mp4", "-y"}), R"(["-i", "/a b.mp4", "-y"])");
}

TEST(ArgumentListLineTest, oneElementNeedsNoComma)
{
    EXPECT_EQ(argumentListLine({"-y"}), R"(["-y"])");
}

TEST(ArgumentListLineTest, anEmptyListIsAPairOfBrackets)
{
    EXPECT_EQ(argumentListLine({}), "[]");
}

TEST(ArgumentListLineTest, emptyElementsAreShown)
{
    EXPECT_EQ(argumentListLine({"", ""}), R"(["", ""])");
}

TEST(ArgumentListLineTest, bytesAreTakenAsTheyAre)
{
    EXPECT_EQ(argumentListLine({"caf\xC3\xA9 \xFF", "100%"}), "[\"caf\xC3\xA9 \xFF\", \"100%\"]");
}

TEST(ArgumentListLineTest, aWholeListIsOneLine)
{
    EXPECT_EQ(argumentListLine(fixFlagArgumentList("/in.mp4", "/out.mp4", -90)),
        R"(["-i", "/in.mp4", "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=-90", "-y", "/out.mp4"])");
}

TEST(FixFlagLinesTest, aListWithItsRotationIsTheOnlyLine)
{
    for (const std::int64_t rotation : {0, -90, 360}) {
        const auto arguments = fixFlagArgumentList("/in.mp4", "/out.mp4", rotation);
        EXPECT_EQ(fixFlagLines(arguments, rotation), std::vector<std::string>{argumentListLine(arguments)});
    }
}

TEST(FixFlagLinesTest, aMissingRotationIsToldBeforeTheList)
{
    const auto rotation = fixFlagRotation({5, false, false}, 0);
    const auto arguments = fixFlagArgumentList("/in.mp4", "/out.mp4", rotation);
    EXPECT_EQ(fixFlagLines(arguments, rotation),
        (std::vector<std::string>{"Something Wrong!",
            R"(["-i", "/in.mp4", "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "-y", "/out.mp4"])"}));
}

} // namespace tarnwell::test
