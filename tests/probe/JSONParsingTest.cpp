// SPDX-License-Identifier: MIT
#include "probe/JSON.h"

#include <gtest/gtest.h>

#include <limits>

namespace tarnwell::test
{

namespace
{

struct TextCase {
    std::string name;
    std::string text;
};

bool isParsed(std::string_view text)
{
    return std::holds_alternative<JSON>(JSON::parse(text));
}

} // namespace

class BrokenJSONTest : public testing::TestWithParam<TextCase>
{
};

TEST_P(BrokenJSONTest, isDescribedInOneLine)
{
    const auto parsed = JSON::parse(GetParam().text);
    ASSERT_TRUE(std::holds_alternative<std::string>(parsed));
    const auto& description = std::get<std::string>(parsed);
    EXPECT_FALSE(description.empty());
    EXPECT_EQ(description.find('\n'), std::string::npos) << description;
}

INSTANTIATE_TEST_SUITE_P(Texts, BrokenJSONTest,
    testing::Values(TextCase{"empty", ""}, TextCase{"blank", " \n"}, TextCase{"word", "rubbish"},
        TextCase{"truncatedObject", R"({"streams": [)"}, TextCase{"truncatedText", R"({"a": "b)"},
        TextCase{"singleQuotes", "{'a': 1}"}, TextCase{"comment", "/* none */ {}"},
        TextCase{"trailingComma", "[1,]"}, TextCase{"twoValues", "{} {}"}, TextCase{"rubbishBehind", "{}x"},
        TextCase{"missingColon", R"({"a" 1})"}, TextCase{"notANumber", "[NaN]"},
        TextCase{"infinity", "[-Infinity]"}, TextCase{"leadingZero", "[01]"},
        TextCase{"hexadecimal", "[0x1]"}, TextCase{"lineFeedInText", "[\"a\nb\"]"},
        TextCase{"invalidUtf8", "[\"\xFF\"]"}, TextCase{"cutOffUtf8", "[\"\xC3\"]"},
        TextCase{"overlongUtf8", "[\"\xC0\xAF\"]"}, TextCase{"loneSurrogate", R"(["\uD800"])"},
        TextCase{"utf16", std::string("\xFF\xFE{\0}\0", 6)},
        TextCase{"nulByteAtTheEnd", std::string("{}\0", 3)},
        TextCase{"nulByteAndRubbish", std::string("{}\0rubbish", 10)},
        TextCase{"nulByteAndAnotherValue", std::string("{}\0{}", 5)},
        TextCase{"nulByteInText", std::string("[\"a\0b\"]", 7)},
        TextCase{"nulBytesAlone", std::string(4, '\0')}, TextCase{"overflowAndRubbish", "[1e999]x"},
        TextCase{"overflowWithALeadingZero", "[1e999, 01e999]"},
        TextCase{"overflowWithoutAWholePart", "[1e999, -.5e999]"},
        TextCase{"overflowWithoutAFraction", "[1e999, 5.e999]"},
        TextCase{"overflowInOpenText", "[1e999, \"a"}, TextCase{"overflowAndEscapeAtTheEnd", "[1e999, \"\\"}),
    [](const auto& row) { return row.param.name; });

TEST(JSONParsingTest, everyKindMayStandAlone)
{
    for (const auto* text : {"null", "true", "1", "-1.5e3", "\"text\"", "[]", "{}", " { } \r\n"})
        EXPECT_TRUE(isParsed(text)) << text;
}

TEST(JSONParsingTest, textsAreUnescaped)
{
    const auto parsed = JSON::parse(R"(["\u00e9\n\"\\\/\ud83c\udfac"])");
    EXPECT_EQ(std::get<JSON>(parsed)[0].text(), "\xC3\xA9\n\"\\/\xF0\x9F\x8E\xAC");
}

TEST(JSONParsingTest, anEscapedNulIsACharacter)
{
    const auto parsed = JSON::parse(R"(["a\u0000b"])");
    EXPECT_EQ(std::get<JSON>(parsed)[0].text(), std::string("a\0b", 3));
}

TEST(JSONParsingTest, aNumberBeyondTheRangeLeavesTheRestOfTheTextReadable)
{
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const auto parsed = JSON::parse(
        R"({"a": 1e999, "1e999": "say \"1e999\"", "b": [-1e999, 1.5, 1e999], "c": "\\", "d": 1e999, "e": 7})");
    ASSERT_TRUE(std::holds_alternative<JSON>(parsed));
    const JSON object = std::get<JSON>(parsed);
    EXPECT_EQ(object["a"].number(), infinity);
    EXPECT_EQ(object["1e999"].text(), "say \"1e999\"");
    EXPECT_EQ(object["b"][0].number(), -infinity);
    EXPECT_EQ(object["b"][1].number(), 1.5);
    EXPECT_EQ(object["c"].text(), "\\");
    EXPECT_EQ(object["d"].number(), infinity);
    EXPECT_EQ(object["e"].integer(), 7);
}

TEST(JSONParsingTest, ofTwoMembersOfOneNameTheLastOneCounts)
{
    EXPECT_EQ(std::get<JSON>(JSON::parse(R"({"a": 1, "a": 2})"))["a"].integer(), 2);
}

TEST(JSONParsingTest, deepNestingIsParsedAndDestroyed)
{
    constexpr std::size_t depth = 200000;
    EXPECT_TRUE(isParsed(std::string(depth, '[') + std::string(depth, ']')));
}

TEST(JSONParsingTest, deepNestingThatIsCutOffIsBroken)
{
    EXPECT_FALSE(isParsed(std::string(200000, '[')));
    std::string objects;
    for (int depth = 0; depth < 100000; ++depth)
        objects += R"({"a":)";
    EXPECT_FALSE(isParsed(objects));
}

TEST(JSONParsingTest, aMemberOutlivesTheParsedText)
{
    JSON title;
    {
        const auto parsed = JSON::parse(R"({"format": {"tags": {"title": "kept"}}})");
        title = std::get<JSON>(parsed)["format"]["tags"]["title"];
    }
    EXPECT_EQ(title.text(), "kept");
}

} // namespace tarnwell::test
