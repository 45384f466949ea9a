// SPDX-License-Identifier: MIT
#include "util/Utils.h"

#include "tests/support/SilentStop.h"

#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Matches = std::vector<std::string>;

constexpr const char* timeStampPattern = "([0-9][0-9]):([0-9][0-9]):([0-9][0-9]).([0-9][0-9])";

/// Returns the matches and the output of matchesForRegex.
std::pair<Matches, std::string> matchesAndOutput(std::string_view pattern, std::string_view text)
{
    testing::internal::CaptureStdout();
    auto matches = Utils::matchesForRegex(pattern, text);
    return {std::move(matches), testing::internal::GetCapturedStdout()};
}

struct StampCase {
    std::string name;
    std::string stamp;
    double seconds;
};

} // namespace

TEST(MatchesForRegexTest, allMatchesAreReturnedFromLeftToRight)
{
    EXPECT_EQ(Utils::matchesForRegex(timeStampPattern, "size=1kB time=00:00:01.00 x\rtime=00:00:02.00 y"),
        (Matches{"00:00:01.00", "00:00:02.00"}));
}

TEST(MatchesForRegexTest, groupsAreNotReturned)
{
    EXPECT_EQ(Utils::matchesForRegex("(a)(b)?", "ab a"), (Matches{"ab", "a"}));
}

TEST(MatchesForRegexTest, matchesDoNotOverlap)
{
    EXPECT_EQ(Utils::matchesForRegex("aba", "ababa"), Matches{"aba"});
}

TEST(MatchesForRegexTest, aTextWithoutAMatchGivesNothingAndPrintsNothing)
{
    const auto [matches, output] = matchesAndOutput(timeStampPattern, "time=N/A");
    EXPECT_TRUE(matches.empty());
    EXPECT_EQ(output, "");
}

TEST(MatchesForRegexTest, anEmptyTextGivesNothing)
{
    EXPECT_TRUE(Utils::matchesForRegex(timeStampPattern, "").empty());
}

TEST(MatchesForRegexTest, emptyMatchesAreMatches)
{
    EXPECT_EQ(Utils::matchesForRegex("x*", "ab"), (Matches{"", "", ""}));
}

TEST(MatchesForRegexTest, anUnbalancedParenthesisPrintsALineAndMatchesNothing)
{
    const auto [matches, output] = matchesAndOutput("([0-9]", "1");
    EXPECT_TRUE(matches.empty());
    EXPECT_TRUE(output.starts_with("invalid regex: ")) << output;
    EXPECT_GT(output.size(), std::string("invalid regex: \n").size()) << "no reason";
    EXPECT_EQ(output.find('\n'), output.size() - 1) << "not one line";
}

TEST(MatchesForRegexTest, otherBrokenPatternsPrintALineToo)
{
    for (const auto* pattern : {")", "[", "*", "\\", "a{2,1}", "(?<n", ""}) {
        const auto [matches, output] = matchesAndOutput(pattern, "a");
        const bool isBroken = *pattern != '\0';
        EXPECT_EQ(output.starts_with("invalid regex: "), isBroken) << pattern << output;
        EXPECT_EQ(matches.empty(), isBroken) << pattern;
    }
}

TEST(MatchesForRegexTest, lettersDifferInCase)
{
    EXPECT_EQ(Utils::matchesForRegex("Time", "time Time TIME"), Matches{"Time"});
}

TEST(MatchesForRegexTest, matchesInNonAsciiTextAreWhole)
{
    const std::string film = "\xF0\x9F\x8E\xAC"; // two UTF-16 units
    EXPECT_EQ(Utils::matchesForRegex(timeStampPattern, film + "\xC3\xA9 00:00:01.00" + film),
        Matches{"00:00:01.00"});
    EXPECT_EQ(Utils::matchesForRegex("x.y", "x" + film + "y"), Matches{"x" + film + "y"});
    EXPECT_EQ(Utils::matchesForRegex("\xC3\xA9+", "caf\xC3\xA9\xC3\xA9!"), Matches{"\xC3\xA9\xC3\xA9"});
}

TEST(MatchesForRegexTest, aNulByteIsACharacterOfThePatternAndTheText)
{
    using namespace std::string_literals;
    EXPECT_EQ(Utils::matchesForRegex(timeStampPattern, "00:00:01.00\0 00:00:02.00"s),
        (Matches{"00:00:01.00", "00:00:02.00"}));
    EXPECT_EQ(Utils::matchesForRegex("a.b"s, "xa\0bx"s), Matches{"a\0b"s});
    EXPECT_EQ(Utils::matchesForRegex("a\0b"s, "a a\0b"s), Matches{"a\0b"s});
}

TEST(MatchesForRegexTest, theLastDotOfAStampAcceptsAnyCharacterButALineEnd)
{
    EXPECT_EQ(Utils::matchesForRegex(timeStampPattern, "00:00:01:50 00:00:01x50 00:00:01\n50"),
        (Matches{"00:00:01:50", "00:00:01x50"}));
}

class SecondsFromTimeStringTest : public testing::TestWithParam<StampCase>
{
};

TEST_P(SecondsFromTimeStringTest, addsUpTheParts)
{
    EXPECT_EQ(Utils::secondsFromTimeString(GetParam().stamp), GetParam().seconds);
}

INSTANTIATE_TEST_SUITE_P(Stamps, SecondsFromTimeStringTest,
    testing::Values(StampCase{"zero", "00:00:00.00", 0}, StampCase{"everyPart", "01:02:03.45", 3723.45},
        StampCase{"tenMinutesAndAHalf", "00:10:00.50", 600.5},
        StampCase{"oneDigitBehindThePoint", "00:00:00.5", 0.05},
        StampCase{"threeDigitsBehindThePoint", "00:00:00.500", 5.0},
        StampCase{"ninetyNineHours", "99:59:59.99", 359999.99},
        StampCase{"minutesBeyondSixty", "00:75:00.00", 4500},
        StampCase{"fourClockPieces", "01:02:50:03.00", 3723},
        StampCase{"threePointPieces", "00:00:01.77.50", 1.5},
        StampCase{"emptyPieces", "::01:::02:03..25.", 3723.25},
        StampCase{"minutesAreTheSecondsOfTwoPieces", "01:02.00", 3600 + 120 + 2},
        // A different order of the additions rounds these two to 68.04 and 3856.03.
        StampCase{"hundredthsJoinTheSecondsFirst", "00:01:08.04", 68.03999999999999},
        StampCase{"minutesComeBeforeHours", "01:04:16.03", 3856.0299999999997}),
    [](const auto& row) { return row.param.name; });

class SecondsFromTimeStringDeathTest : public testing::TestWithParam<std::pair<const char*, const char*>>
{
};

TEST_P(SecondsFromTimeStringDeathTest, aStampThatLacksAPartStopsTheProgram)
{
    EXPECT_SILENT_STOP(Utils::secondsFromTimeString(GetParam().second));
}

INSTANTIATE_TEST_SUITE_P(Stamps, SecondsFromTimeStringDeathTest,
    testing::Values(std::pair{"empty", ""}, std::pair{"pointsOnly", "..."},
        std::pair{"colonForThePoint", "00:00:01:50"}, std::pair{"noColon", "01.50"},
        std::pair{"colonsOnly", ":::.50"}, std::pair{"lettersForHours", "ab:00:00.00"},
        std::pair{"lettersForMinutes", "00:ab:00.00"}, std::pair{"lettersForSeconds", "00:00:ab.00"},
        std::pair{"lettersForHundredths", "00:00:00.ab"}, std::pair{"notApplicable", "N/A"},
        std::pair{"blankInside", "00:00: 1.00"}, std::pair{"otherSeparator", "00:00:01x50"}),
    [](const auto& row) { return std::string(row.param.first); });

} // namespace tarnwell::test
