// SPDX-License-Identifier: MIT
#include "tests/probe/ProbeTestSetup.h"

namespace tarnwell::test
{

namespace
{

struct KindCase {
    std::string name;
    std::string text;
    std::size_t count;
};

struct EqualityCase {
    std::string name;
    std::string text;
    bool equalsNinetyText;
    bool equalsNinety;
    bool equalsTrue;
    bool equalsNull;
};

} // namespace

class JSONKindTest : public testing::TestWithParam<KindCase>
{
};

TEST_P(JSONKindTest, hasItsCount)
{
    EXPECT_EQ(json(GetParam().text).count(), GetParam().count);
}

TEST_P(JSONKindTest, hasNoMemberOfAnotherName)
{
    const JSON value = json(GetParam().text);
    EXPECT_FALSE(value.hasMember("missing"));
    EXPECT_TRUE(value["missing"].isNull());
}

TEST_P(JSONKindTest, hasNoElementBeyondItsCount)
{
    const JSON value = json(GetParam().text);
    EXPECT_TRUE(value[value.count()].isNull());
    EXPECT_TRUE(value[static_cast<std::size_t>(-1)].isNull());
}

INSTANTIATE_TEST_SUITE_P(Kinds, JSONKindTest,
    testing::Values(KindCase{"null", "null", 0}, KindCase{"boolean", "true", 0}, KindCase{"integer", "7", 0},
        KindCase{"fraction", "7.5", 0}, KindCase{"text", "\"seven\"", 0}, KindCase{"emptyArray", "[]", 0},
        KindCase{"array", "[1, null, [2, 3]]", 3}, KindCase{"emptyObject", "{}", 0},
        KindCase{"object", R"({"a": 1, "b": null, "c": {"d": 2}, "e": []})", 4}),
    [](const auto& row) { return row.param.name; });

TEST(JSONLookUpTest, membersAreFoundByTheirExactName)
{
    const JSON object = json(R"({"Rotate": "90", "": 1, "rotate ": 2})");
    EXPECT_EQ(object["Rotate"].text(), "90");
    EXPECT_EQ(object[""].integer(), 1);
    EXPECT_TRUE(object["rotate"].isNull());
}

TEST(JSONLookUpTest, elementsAreFoundByTheirPlace)
{
    const JSON array = json(R"(["a", "b"])");
    EXPECT_EQ(array[0].text(), "a");
    EXPECT_EQ(array[1].text(), "b");
}

TEST(JSONLookUpTest, anArrayHasNoMembersAndAnObjectNoElements)
{
    EXPECT_TRUE(json("[1]")["0"].isNull());
    EXPECT_TRUE(json(R"({"0": 1})")[0].isNull());
}

TEST(JSONLookUpTest, aTextHasNoElements)
{
    EXPECT_TRUE(json("\"text\"")[0].isNull());
}

TEST(JSONLookUpTest, lookUpsChain)
{
    const JSON report
        = json(R"({"format": {"tags": {"title": "T"}}, "streams": [{"tags": {"rotate": "90"}}]})");
    EXPECT_EQ(report["format"]["tags"]["title"].text(), "T");
    EXPECT_EQ(report["streams"][0]["tags"]["rotate"].text(), "90");
}

TEST(JSONLookUpTest, chainsThroughWhatIsMissingEndInNull)
{
    const JSON report = json(R"({"format": {"tags": "none"}, "streams": 7})");
    EXPECT_TRUE(report["format"]["tags"]["title"].isNull());
    EXPECT_TRUE(report["chapters"]["tags"]["title"].isNull());
    EXPECT_TRUE(report["streams"][0]["tags"]["rotate"].isNull());
    EXPECT_EQ(report["streams"][3]["index"].text(), "");
    EXPECT_EQ(report["a"][1]["b"][2]["c"].number(), 0);
    EXPECT_EQ(JSON()["a"][0].count(), 0U);
}

TEST(JSONLookUpTest, aMemberThatIsNullIsAMember)
{
    const JSON object = json(R"({"error": null})");
    EXPECT_TRUE(object.hasMember("error"));
    EXPECT_TRUE(object["error"].isNull());
    EXPECT_EQ(object.count(), 1U);
}

TEST(JSONLookUpTest, onlyObjectsHaveMembers)
{
    for (const auto* text : {"null", "true", "1", "\"error\"", "[\"error\"]", "{}"})
        EXPECT_FALSE(json(text).hasMember("error")) << text;
    EXPECT_FALSE(JSON().hasMember("error"));
    EXPECT_TRUE(json(R"({"error": {}})").hasMember("error"));
}

class JSONEqualityTest : public testing::TestWithParam<EqualityCase>
{
};

TEST_P(JSONEqualityTest, holdsWithinOneKindOnly)
{
    const JSON value = json(GetParam().text);
    EXPECT_EQ(value == "90", GetParam().equalsNinetyText);
    EXPECT_EQ(value == 90.0, GetParam().equalsNinety);
    EXPECT_EQ(value == true, GetParam().equalsTrue);
    EXPECT_EQ(value == nullptr, GetParam().equalsNull);
}

INSTANTIATE_TEST_SUITE_P(Values, JSONEqualityTest,
    testing::Values(EqualityCase{"sameText", "\"90\"", true, false, false, false},
        EqualityCase{"otherText", "\"090\"", false, false, false, false},
        EqualityCase{"textWithABlank", "\"90 \"", false, false, false, false},
        EqualityCase{"emptyText", "\"\"", false, false, false, false},
        EqualityCase{"integer", "90", false, true, false, false},
        EqualityCase{"fraction", "90.0", false, true, false, false},
        EqualityCase{"exponent", "9e1", false, true, false, false},
        EqualityCase{"otherNumber", "90.5", false, false, false, false},
        EqualityCase{"one", "1", false, false, false, false},
        EqualityCase{"zero", "0", false, false, false, false},
        EqualityCase{"true", "true", false, false, true, false},
        EqualityCase{"false", "false", false, false, false, false},
        EqualityCase{"textTrue", "\"true\"", false, false, false, false},
        EqualityCase{"null", "null", false, false, false, true},
        EqualityCase{"textNull", "\"null\"", false, false, false, false},
        EqualityCase{"array", "[\"90\"]", false, false, false, false},
        EqualityCase{"emptyArray", "[]", false, false, false, false},
        EqualityCase{"object", R"({"90": 90})", false, false, false, false}),
    [](const auto& row) { return row.param.name; });

TEST(JSONEqualityOfMissingTest, whatIsMissingEqualsNullAndNothingElse)
{
    const JSON missing = json("{}")["rotate"];
    EXPECT_TRUE(missing == nullptr);
    EXPECT_FALSE(missing == "");
    EXPECT_FALSE(missing == 0.0);
    EXPECT_FALSE(missing == false);
}

TEST(JSONEqualityOfFalseTest, falseEqualsFalseAndNothingElse)
{
    EXPECT_TRUE(json("false") == false);
    EXPECT_FALSE(json("0") == false);
    EXPECT_FALSE(json("null") == false);
}

} // namespace tarnwell::test
