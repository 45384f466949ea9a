// SPDX-License-Identifier: MIT
#include "util/Decimal.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

namespace tarnwell::test
{

namespace
{

constexpr double infinity = std::numeric_limits<double>::infinity();

struct ParseCase {
    std::string name;
    std::string text;
    std::optional<double> expected;
};

} // namespace

class ParseDecimalTest : public testing::TestWithParam<ParseCase>
{
};

TEST_P(ParseDecimalTest, readsTheWholeTextOrNothing)
{
    const auto number = parseDecimal(GetParam().text);
    EXPECT_EQ(number, GetParam().expected);
    if (number && GetParam().expected) { // EXPECT_EQ does not tell 0 from -0
        EXPECT_EQ(std::signbit(*number), std::signbit(*GetParam().expected));
    }
}

INSTANTIATE_TEST_SUITE_P(Numbers, ParseDecimalTest,
    testing::Values(ParseCase{"integer", "90", 90}, ParseCase{"fraction", "12.480000", 12.48},
        ParseCase{"negative", "-90", -90}, ParseCase{"plus", "+7.5", 7.5},
        ParseCase{"leadingZeros", "007", 7}, ParseCase{"noWholePart", ".5", 0.5},
        ParseCase{"noFraction", "5.", 5}, ParseCase{"exponent", "1e3", 1000},
        ParseCase{"capitalExponent", "1E-2", 0.01}, ParseCase{"zero", "0", 0.0},
        ParseCase{"negativeZero", "-0", -0.0}, ParseCase{"negativeZeroWithFraction", "-0.00", -0.0},
        ParseCase{"plusZero", "+0", 0.0}, ParseCase{"overflow", "1e999", infinity},
        ParseCase{"negativeOverflow", "-1e999", -infinity},
        ParseCase{"overflowWithoutExponent", std::string(400, '9'), infinity},
        ParseCase{"largest", "1.7976931348623157e308", std::numeric_limits<double>::max()},
        ParseCase{"hugeExponent", "1e99999999999999999999", infinity}, ParseCase{"underflow", "1e-999", 0.0},
        ParseCase{"negativeUnderflow", "-1e-999", -0.0},
        ParseCase{"denormal", "5e-324", std::numeric_limits<double>::denorm_min()},
        ParseCase{"beyondIntegers", "18446744073709551616", 18446744073709551616.0}),
    [](const auto& row) { return row.param.name; });

INSTANTIATE_TEST_SUITE_P(Others, ParseDecimalTest,
    testing::Values(ParseCase{"empty", "", std::nullopt}, ParseCase{"word", "abc", std::nullopt},
        ParseCase{"notApplicable", "N/A", std::nullopt}, ParseCase{"numberAndWord", "12abc", std::nullopt},
        ParseCase{"blankBefore", " 12", std::nullopt}, ParseCase{"blankBehind", "12 ", std::nullopt},
        ParseCase{"lineFeed", "12\n", std::nullopt}, ParseCase{"comma", "12,5", std::nullopt},
        ParseCase{"twoPoints", "1.2.3", std::nullopt}, ParseCase{"hexadecimal", "0x10", std::nullopt},
        ParseCase{"hexadecimalDigits", "A0", std::nullopt}, ParseCase{"infinity", "inf", std::nullopt},
        ParseCase{"infinityInFull", "INFINITY", std::nullopt}, ParseCase{"notANumber", "nan", std::nullopt},
        ParseCase{"signAlone", "-", std::nullopt}, ParseCase{"plusAlone", "+", std::nullopt},
        ParseCase{"twoSigns", "+-5", std::nullopt}, ParseCase{"twoMinuses", "--5", std::nullopt},
        ParseCase{"twoPluses", "++5", std::nullopt}, ParseCase{"pointAlone", ".", std::nullopt},
        ParseCase{"exponentAlone", "e5", std::nullopt}, ParseCase{"openExponent", "1e", std::nullopt},
        ParseCase{"fraction", "16/9", std::nullopt}, ParseCase{"clock", "00:01", std::nullopt},
        ParseCase{"zeroByte", std::string("1\0", 2), std::nullopt},
        ParseCase{"arabicDigits", "\xD9\xA1\xD9\xA2", std::nullopt}),
    [](const auto& row) { return row.param.name; });

TEST(ParseIntegerTest, theWholeRangeIsRead)
{
    EXPECT_EQ(parseInteger("0"), 0);
    EXPECT_EQ(parseInteger("-90"), -90);
    EXPECT_EQ(parseInteger("+270"), 270);
    EXPECT_EQ(parseInteger("9223372036854775807"), std::numeric_limits<std::int64_t>::max());
    EXPECT_EQ(parseInteger("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
}

TEST(ParseIntegerTest, otherTextsAreNothing)
{
    for (const auto* text : {"", "9223372036854775808", "-9223372036854775809", "12.0", "1e3", " 1", "1 ",
             "0x1", "-", "+-1", "90 degrees"})
        EXPECT_FALSE(parseInteger(text)) << '"' << text << '"';
}

} // namespace tarnwell::test
