// SPDX-License-Identifier: MIT
#include "tests/probe/ProbeTestSetup.h"
#include "tests/util/CommaLocale.h"

#include <cmath>
#include <limits>

namespace tarnwell::test
{

namespace
{

constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto smallest = std::numeric_limits<std::int64_t>::min();

constexpr double infinity = std::numeric_limits<double>::infinity();

struct ValueCase {
    std::string name;
    std::string json;
    std::string text;
    double number;
    std::int64_t integer;
    std::optional<double> optionalNumber;
};

} // namespace

class JSONValueTest : public testing::TestWithParam<ValueCase>
{
};

TEST_P(JSONValueTest, readsAsEveryKind)
{
    const JSON value = json(GetParam().json);
    EXPECT_EQ(value.text(), GetParam().text);
    EXPECT_EQ(value.number(), GetParam().number);
    EXPECT_EQ(value.integer(), GetParam().integer);
    EXPECT_EQ(value.optionalNumber(), GetParam().optionalNumber);
    EXPECT_EQ(value.isNull(), GetParam().json == "null");
}

std::string valueName(const testing::TestParamInfo<ValueCase>& row)
{
    return row.param.name;
}

INSTANTIATE_TEST_SUITE_P(Numbers, JSONValueTest,
    testing::Values(ValueCase{"zero", "0", "0", 0, 0, 0},
        ValueCase{"integer", "1920", "1920", 1920, 1920, 1920},
        ValueCase{"negative", "-90", "-90", -90, -90, -90},
        ValueCase{"fraction", "12.48", "12.48", 12.48, 12, 12.48},
        ValueCase{"negativeFraction", "-2.9", "-2.9", -2.9, -2, -2.9},
        ValueCase{"tenth", "0.1", "0.1", 0.1, 0, 0.1},
        ValueCase{"beyond53Bits", "9007199254740993", "9007199254740993", 9007199254740992.0,
            9007199254740993, 9007199254740992.0},
        ValueCase{"largest", "9223372036854775807", "9223372036854775807", 0x1p63, largest, 0x1p63},
        ValueCase{"smallest", "-9223372036854775808", "-9223372036854775808", -0x1p63, smallest, -0x1p63},
        ValueCase{"beyond63Bits", "9223372036854775808", "9223372036854775808", 0x1p63, largest, 0x1p63},
        ValueCase{"unsignedLargest", "18446744073709551615", "18446744073709551615", 0x1p64, largest, 0x1p64},
        ValueCase{"huge", "1e300", "1e+300", 1e300, largest, 1e300},
        ValueCase{"wholeFraction", "90.0", "90", 90, 90, 90},
        ValueCase{"hundredThousand", "100000.0", "100000", 100000, 100000, 100000},
        ValueCase{"hundredThousandWithExponent", "1e5", "100000", 100000, 100000, 100000},
        ValueCase{"tenThousandth", "0.0001", "0.0001", 0.0001, 0, 0.0001},
        ValueCase{"beyondDouble", "1e999", "inf", infinity, largest, infinity},
        ValueCase{"beyondDoubleNegative", "-1e999", "-inf", -infinity, smallest, -infinity},
        ValueCase{"beyondDoubleWithoutExponent", std::string(400, '9'), "inf", infinity, largest, infinity},
        ValueCase{"belowDouble", "1e-999", "0", 0, 0, 0},
        ValueCase{"hugeNegative", "-1e300", "-1e+300", -1e300, smallest, -1e300}),
    valueName);

INSTANTIATE_TEST_SUITE_P(Texts, JSONValueTest,
    testing::Values(ValueCase{"empty", "\"\"", "", 0, 0, std::nullopt},
        ValueCase{"digits", "\"90\"", "90", 90, 90, std::nullopt},
        ValueCase{"negativeDigits", "\"-90\"", "-90", -90, -90, std::nullopt},
        ValueCase{"decimal", "\"12.480000\"", "12.480000", 12.48, 12, std::nullopt},
        ValueCase{"exponent", "\"1e3\"", "1e3", 1000, 1000, std::nullopt},
        ValueCase{"wholeNumberOf60Bits", "\"1152921504606846977\"", "1152921504606846977", 0x1p60,
            1152921504606846977, std::nullopt},
        ValueCase{
            "beyond64Bits", "\"99999999999999999999\"", "99999999999999999999", 1e20, largest, std::nullopt},
        ValueCase{"word", "\"eng\"", "eng", 0, 0, std::nullopt},
        ValueCase{"notApplicable", "\"N/A\"", "N/A", 0, 0, std::nullopt},
        ValueCase{"numberAndWord", "\"90 degrees\"", "90 degrees", 0, 0, std::nullopt},
        ValueCase{"infinityWord", "\"inf\"", "inf", 0, 0, std::nullopt},
        ValueCase{"nanWord", "\"nan\"", "nan", 0, 0, std::nullopt},
        ValueCase{"rate", "\"0/0\"", "0/0", 0, 0, std::nullopt},
        ValueCase{"trueWord", "\"true\"", "true", 0, 0, std::nullopt},
        ValueCase{"beyondDouble", "\"1e999\"", "1e999", infinity, largest, std::nullopt},
        ValueCase{"beyondDoubleNegative", "\"-1e999\"", "-1e999", -infinity, smallest, std::nullopt},
        ValueCase{"belowDouble", "\"1e-999\"", "1e-999", 0, 0, std::nullopt}),
    valueName);

INSTANTIATE_TEST_SUITE_P(OtherKinds, JSONValueTest,
    testing::Values(ValueCase{"null", "null", "", 0, 0, std::nullopt},
        ValueCase{"true", "true", "true", 1, 1, 1}, ValueCase{"false", "false", "false", 0, 0, 0},
        ValueCase{"emptyArray", "[]", "", 0, 0, std::nullopt},
        ValueCase{"array", "[7]", "", 0, 0, std::nullopt},
        ValueCase{"emptyObject", "{}", "", 0, 0, std::nullopt},
        ValueCase{"object", R"({"a": 7})", "", 0, 0, std::nullopt}),
    valueName);

TEST(JSONNegativeZeroTest, theSignIsKept)
{
    for (const auto* text : {"-0.0", "\"-0\"", "\"-0.0\""}) {
        EXPECT_TRUE(std::signbit(json(text).number())) << text;
        EXPECT_EQ(json(text).integer(), 0) << text;
    }
    EXPECT_EQ(json("-0.0").text(), "-0");
    EXPECT_TRUE(json("-0.0") == 0.0);
}

TEST(JSONMissingValueTest, whatIsMissingReadsAsNull)
{
    for (const JSON& value : {JSON(), json("{}")["missing"], json("[]")[0]}) {
        EXPECT_TRUE(value.isNull());
        EXPECT_EQ(value.text(), "");
        EXPECT_EQ(value.number(), 0);
        EXPECT_EQ(value.integer(), 0);
        EXPECT_EQ(value.optionalNumber(), std::nullopt);
        EXPECT_EQ(value.count(), 0U);
    }
}

TEST(JSONLocaleTest, numbersHaveAPointInEveryLocale)
{
    const CommaLocale locale;
    const JSON values = json(R"([12.5, "12.5", 1234567])");
    EXPECT_EQ(values[0].number(), 12.5);
    EXPECT_EQ(values[0].text(), "12.5");
    EXPECT_EQ(values[1].number(), 12.5);
    EXPECT_EQ(values[2].text(), "1234567");
}

} // namespace tarnwell::test
