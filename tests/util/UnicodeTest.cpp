// SPDX-License-Identifier: MIT
#include "util/Unicode.h"

#include <gtest/gtest.h>

#include <string>

namespace tarnwell::test
{

namespace
{

struct PairCase {
    std::string name;
    std::string left;
    std::string right;
    bool isEquivalent;
};

} // namespace

class CanonicalEquivalenceTest : public testing::TestWithParam<PairCase>
{
};

TEST_P(CanonicalEquivalenceTest, holdsBothWays)
{
    const auto& row = GetParam();
    EXPECT_EQ(isCanonicallyEquivalent(row.left, row.right), row.isEquivalent);
    EXPECT_EQ(isCanonicallyEquivalent(row.right, row.left), row.isEquivalent);
}

INSTANTIATE_TEST_SUITE_P(Same, CanonicalEquivalenceTest,
    testing::Values(PairCase{"empty", "", "", true}, PairCase{"bytes", "/v/clip.mp4", "/v/clip.mp4", true},
        PairCase{"composedAndDecomposed", "/caf\xC3\xA9.mp4", "/cafe\xCC\x81.mp4", true},
        PairCase{"hangulSyllableAndItsLetters", "\xEA\xB0\x80", "\xE1\x84\x80\xE1\x85\xA1", true},
        PairCase{"marksInAnotherOrder", "q\xCC\x87\xCC\xA3", "q\xCC\xA3\xCC\x87", true},
        PairCase{"angstromSignAndLetter", "\xE2\x84\xAB", "\xC3\x85", true},
        PairCase{"sameInvalidBytes", "/\xFF\xFE.mp4", "/\xFF\xFE.mp4", true}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Different, CanonicalEquivalenceTest,
    testing::Values(PairCase{"anotherName", "/v/clip.mp4", "/v/clap.mp4", false},
        PairCase{"anotherCase", "/v/clip.mp4", "/v/Clip.mp4", false},
        PairCase{"caseOfAnAccentedLetter", "\xC3\xA9", "\xC3\x89", false},
        PairCase{"missingAccent", "/cafe.mp4", "/caf\xC3\xA9.mp4", false},
        PairCase{"currentFolder", "/v/./clip.mp4", "/v/clip.mp4", false},
        PairCase{"parentFolder", "/v/w/../clip.mp4", "/v/clip.mp4", false},
        PairCase{"doubleSlash", "/v//clip.mp4", "/v/clip.mp4", false},
        PairCase{"trailingSlash", "/v/clip.mp4/", "/v/clip.mp4", false},
        PairCase{"ligatureAndItsLetters", "\xEF\xAC\x81", "fi", false},
        PairCase{"fullWidthLetter", "\xEF\xBC\xA1", "A", false},
        PairCase{"marksOfOneClassInAnotherOrder", "e\xCC\x81\xCC\x80", "e\xCC\x80\xCC\x81", false},
        PairCase{"prefix", "/v/clip", "/v/clip.mp4", false}, PairCase{"emptyAndNot", "", "a", false},
        PairCase{"invalidBytesThatDiffer", "/\xFF.mp4", "/\xFE.mp4", false},
        PairCase{"invalidBytesAndAReplacement", "/\xFF", "/\xEF\xBF\xBD", false},
        PairCase{"accentsInInvalidText", "\xFF\xC3\xA9",
            "\xFF"
            "e\xCC\x81",
            false}),
    [](const auto& row) { return row.param.name; });

TEST(ValidUtf8Test, wellFormedTextIsValid)
{
    for (const std::string text :
        {"", "plain", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\x8E\xAC", "\xF4\x8F\xBF\xBF"})
        EXPECT_TRUE(isValidUtf8(text)) << text;
    EXPECT_TRUE(isValidUtf8(std::string_view("\0", 1)));
}

TEST(ValidUtf8Test, otherBytesAreNot)
{
    const std::pair<const char*, std::string> rows[]
        = {{"never used", "a\xFF"}, {"continuation alone", "\x80"}, {"cut off after one", "\xC3"},
            {"cut off after two", "\xE2\x82"}, {"cut off after three", "\xF0\x9F\x8E"},
            {"overlong slash", "\xC0\xAF"}, {"overlong in three", "\xE0\x80\xAF"},
            {"surrogate", "\xED\xA0\x80"}, {"beyond the last", "\xF4\x90\x80\x80"},
            {"broken in the middle",
                "a\xC3"
                "b"}};
    for (const auto& [name, bytes] : rows)
        EXPECT_FALSE(isValidUtf8(bytes)) << name;
}

} // namespace tarnwell::test
