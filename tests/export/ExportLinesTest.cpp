// SPDX-License-Identifier: MIT
#include "export/ExportPlan.h"

#include <gtest/gtest.h>

namespace tarnwell::test
{

TEST(OrientationLineTest, namesThePositionAndBothMirrors)
{
    const std::pair<OrientationState, const char*> rows[]
        = {{{1, false, false}, "positionState : 1, vFlipSte : false, hFlipState : false"},
            {{2, true, false}, "positionState : 2, vFlipSte : true, hFlipState : false"},
            {{3, false, true}, "positionState : 3, vFlipSte : false, hFlipState : true"},
            {{4, true, true}, "positionState : 4, vFlipSte : true, hFlipState : true"},
            {{-7, false, false}, "positionState : -7, vFlipSte : false, hFlipState : false"},
            {{9223372036854775807, false, false},
                "positionState : 9223372036854775807, vFlipSte : false, hFlipState : false"}};
    for (const auto& [state, line] : rows)
        EXPECT_EQ(orientationLine(state), line);
}

TEST(ArgumentListLineTest, quotesEveryElementAndKeepsItsBytes)
{
    const std::pair<ArgumentList, const char*> rows[]
        = {{{"-i", "/a b.mp4", "-y"}, R"(["-i", "/a b.mp4", "-y"])"}, {{"-y"}, R"(["-y"])"}, {{}, "[]"},
            {{"", ""}, R"(["", ""])"}, {{"a\"b\\"}, R"(["a"b\"])"},
            {{"caf\xC3\xA9 \xFF", "100%"}, "[\"caf\xC3\xA9 \xFF\", \"100%\"]"}};
    for (const auto& [list, line] : rows)
        EXPECT_EQ(argumentListLine(list), line);
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

TEST(FixFlagLinesTest, aMissingRotationIsReportedBeforeTheList)
{
    const auto rotation = fixFlagRotation({5, false, false}, 0);
    const auto arguments = fixFlagArgumentList("/in.mp4", "/out.mp4", rotation);
    EXPECT_EQ(fixFlagLines(arguments, rotation),
        (std::vector<std::string>{"Something Wrong!",
            R"(["-i", "/in.mp4", "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "-y", "/out.mp4"])"}));
}

} // namespace tarnwell::test
