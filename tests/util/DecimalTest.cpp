// SPDX-License-Identifier: MIT
#include "util/Decimal.h"

#include "tests/util/CommaLocale.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <limits>
#include <sstream>

namespace tarnwell::test
{

namespace
{

using Limits = std::numeric_limits<double>;

struct DecimalCase {
    std::string name;
    double value;
    std::string expected;
};

} // namespace

class ShortestDecimalTest : public testing::TestWithParam<DecimalCase>
{
};

TEST_P(ShortestDecimalTest, readsBackAndHasAFraction)
{
    EXPECT_EQ(shortestDecimal(GetParam().value), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Values, ShortestDecimalTest,
    testing::Values(DecimalCase{"zero", 0.0, "0.0"}, DecimalCase{"negativeZero", -0.0, "-0.0"},
        DecimalCase{"half", 12.5, "12.5"}, DecimalCase{"whole", 40.0, "40.0"},
        DecimalCase{"tenth", 0.1, "0.1"}, DecimalCase{"middleOfSevenSeconds", 3.5, "3.5"},
        DecimalCase{"hundred", 100.0, "100.0"}, DecimalCase{"million", 1e6, "1000000.0"},
        DecimalCase{"third", 1.0 / 3.0, "0.3333333333333333"},
        DecimalCase{"sumOfTenths", 0.1 + 0.2, "0.30000000000000004"}, DecimalCase{"negative", -2.25, "-2.25"},
        DecimalCase{"tenMillionth", 1e-7, "0.0000001"},
        DecimalCase{"twoTo53", 9007199254740992.0, "9007199254740992.0"},
        DecimalCase{"large", 1e22, "10000000000000000000000.0"},
        DecimalCase{"infinity", Limits::infinity(), "inf"},
        DecimalCase{"negativeInfinity", -Limits::infinity(), "-inf"},
        DecimalCase{"notANumber", Limits::quiet_NaN(), "nan"},
        DecimalCase{"negativeNotANumber", -Limits::quiet_NaN(), "nan"}),
    [](const auto& row) { return row.param.name; });

TEST(ShortestDecimalTest, theLeastDenormalIsWrittenWithoutAnExponent)
{
    EXPECT_EQ(shortestDecimal(Limits::denorm_min()), "0." + std::string(323, '0') + "5");
}

TEST(ShortestDecimalTest, theExtremesReadBack)
{
    for (const double value : {Limits::max(), -Limits::max(), Limits::min(), Limits::denorm_min(), 4.35, 1e23,
             5e-300, std::nextafter(1.0, 2.0), 123456789.987654321}) {
        const std::string text = shortestDecimal(value);
        EXPECT_EQ(parseDecimal(text), value) << text;
        EXPECT_EQ(text.find_first_of("eE"), std::string::npos) << text;
        EXPECT_NE(text.find('.'), std::string::npos) << text;
    }
}

class CompactDecimalTest : public testing::TestWithParam<DecimalCase>
{
};

TEST_P(CompactDecimalTest, readsBackAndHasAnExponentForExtremeNumbersOnly)
{
    const std::string text = compactDecimal(GetParam().value);
    EXPECT_EQ(text, GetParam().expected);
    if (std::isfinite(GetParam().value)) {
        EXPECT_EQ(parseDecimal(text), GetParam().value);
    }
}

INSTANTIATE_TEST_SUITE_P(Values, CompactDecimalTest,
    testing::Values(DecimalCase{"zero", 0, "0"}, DecimalCase{"negativeZero", -0.0, "-0"},
        DecimalCase{"whole", 90, "90"}, DecimalCase{"hundredThousand", 100000, "100000"},
        DecimalCase{"negativeMillion", -1e6, "-1000000"}, DecimalCase{"fraction", 12.48, "12.48"},
        DecimalCase{"tenThousandth", 0.0001, "0.0001"}, DecimalCase{"millionth", 1e-6, "0.000001"},
        DecimalCase{"negativeMillionth", -1e-6, "-0.000001"},
        DecimalCase{"belowAMillionth", 9.9e-7, "9.9e-07"},
        DecimalCase{"twentyOneDigits", 1e20, "100000000000000000000"},
        DecimalCase{"twentyTwoDigits", 1e21, "1e+21"},
        DecimalCase{"negativeTwentyTwoDigits", -1e21, "-1e+21"},
        DecimalCase{"largest", Limits::max(), "1.7976931348623157e+308"},
        DecimalCase{"least", Limits::denorm_min(), "5e-324"},
        DecimalCase{"infinity", Limits::infinity(), "inf"},
        DecimalCase{"negativeInfinity", -Limits::infinity(), "-inf"}),
    [](const auto& row) { return row.param.name; });

class TwoDigitDecimalTest : public testing::TestWithParam<DecimalCase>
{
};

TEST_P(TwoDigitDecimalTest, isRoundedToTwoDigits)
{
    EXPECT_EQ(twoDigitDecimal(GetParam().value), GetParam().expected);
}

INSTANTIATE_TEST_SUITE_P(Values, TwoDigitDecimalTest,
    testing::Values(DecimalCase{"zero", 0, "0.00"}, DecimalCase{"half", 75.5, "75.50"},
        DecimalCase{"roundedUp", 59.999, "60.00"}, DecimalCase{"roundedDown", 3599.994, "3599.99"},
        DecimalCase{"quarter", 40000.25, "40000.25"}, DecimalCase{"tieToEven", 0.125, "0.12"},
        DecimalCase{"negative", -1.006, "-1.01"}, DecimalCase{"negativeZero", -0.0, "-0.00"},
        DecimalCase{"roundedToNegativeZero", -0.001, "-0.00"},
        DecimalCase{"large", 1e18, "1000000000000000000.00"}),
    [](const auto& row) { return row.param.name; });

TEST(TwoDigitDecimalTest, theLargestNumberHasRoom)
{
    const std::string text = twoDigitDecimal(-Limits::max());
    EXPECT_EQ(text.size(), 1U + 309 + 3);
    EXPECT_TRUE(text.starts_with("-17976931348623157"));
    EXPECT_TRUE(text.ends_with(".00"));
}

TEST(TruncatedTest, theFractionIsCutOff)
{
    EXPECT_EQ(truncated(2.999), 2);
    EXPECT_EQ(truncated(-2.999), -2);
    EXPECT_EQ(truncated(-0.5), 0);
    EXPECT_EQ(truncated(-0.0), 0);
    EXPECT_EQ(truncated(90.0), 90);
}

TEST(TruncatedTest, beyond64BitsItIsTheNearestInteger)
{
    constexpr auto largest = std::numeric_limits<std::int64_t>::max();
    constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
    EXPECT_EQ(truncated(0x1p63), largest);
    EXPECT_EQ(truncated(std::nextafter(0x1p63, 0)), 9223372036854774784);
    EXPECT_EQ(truncated(-0x1p63), smallest);
    EXPECT_EQ(truncated(std::nextafter(-0x1p63, -Limits::infinity())), smallest);
    EXPECT_EQ(truncated(Limits::infinity()), largest);
    EXPECT_EQ(truncated(-Limits::infinity()), smallest);
}

TEST(TruncatedTest, whatIsNotANumberIsZero)
{
    EXPECT_EQ(truncated(Limits::quiet_NaN()), 0);
}

TEST(FitsIntegerTest, theRangeEndsAtTwoTo63)
{
    for (const double value : {0.0, -0.5, 1e18, std::nextafter(0x1p63, 0), -0x1p63})
        EXPECT_TRUE(fitsInteger(value)) << value;
    for (const double value : {0x1p63, std::nextafter(-0x1p63, -Limits::infinity()), Limits::infinity(),
             -Limits::infinity(), Limits::quiet_NaN()})
        EXPECT_FALSE(fitsInteger(value)) << value;
}

TEST(LocaleTest, theCommaLocaleReachesTheLibraries)
{
    const CommaLocale locale;
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%.2f", 12.5);
    EXPECT_STREQ(text.data(), "12,50");
    std::ostringstream stream;
    stream << 1234.5;
    EXPECT_EQ(stream.str(), "1.234,5");
}

TEST(LocaleTest, numbersAreWrittenWithAPointInEveryLocale)
{
    const CommaLocale locale;
    EXPECT_EQ(shortestDecimal(1234567.5), "1234567.5");
    EXPECT_EQ(shortestDecimal(40), "40.0");
    EXPECT_EQ(twoDigitDecimal(1234567.5), "1234567.50");
}

TEST(LocaleTest, numbersAreReadWithAPointInEveryLocale)
{
    const CommaLocale locale;
    EXPECT_EQ(parseDecimal("12.48"), 12.48);
    EXPECT_FALSE(parseDecimal("12,48"));
    EXPECT_FALSE(parseInteger("1.234"));
}

} // namespace tarnwell::test
