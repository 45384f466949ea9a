// SPDX-License-Identifier: MIT
#include "probe/ContainerMetadata.h"

#include "tests/probe/ProbeTestSetup.h"

namespace tarnwell::test
{

namespace
{

using Entry = std::map<std::string, std::string>;

std::vector<Entry> entries(const std::vector<std::pair<std::string, std::string>>& pairs)
{
    std::vector<Entry> list;
    for (const auto& [label, value] : pairs)
        list.push_back({{"key", label}, {"value", value}});
    return list;
}

const std::vector<Entry> nothingKnown = entries({{"Title", ""}, {"Tagline", ""}, {"Synopsis", ""},
    {"Release Date", ""}, {"Genre", ""}, {"HD", "No"}, {"Media Kind", ""}, {"Composer", ""}, {"Rating", ""},
    {"Encoder", ""}, {"Copyright", ""}, {"Comment", ""}});

struct FlagCase {
    std::string name;
    std::string tags;
    std::string highDefinition;
    std::string mediaKind;
};

} // namespace

TEST(ContainerMetadataTest, everyTagHasItsLabelAndPlace)
{
    EXPECT_EQ(containerMetadata(json(R"({"comment": "12", "copyright": "11", "encoder": "10", "iTunEXTC": "9",
                  "composer": "8", "media_type": "9", "hd_video": "1", "genre": "5", "date": "4",
                  "synopsis": "3", "description": "2", "title": "1"})")),
        entries({{"Title", "1"}, {"Tagline", "2"}, {"Synopsis", "3"}, {"Release Date", "4"}, {"Genre", "5"},
            {"HD", "Yes"}, {"Media Kind", "Movie"}, {"Composer", "8"}, {"Rating", "9"}, {"Encoder", "10"},
            {"Copyright", "11"}, {"Comment", "12"}}));
}

TEST(ContainerMetadataTest, withoutTagsAllTwelveEntriesAreThere)
{
    EXPECT_EQ(containerMetadata(JSON()), nothingKnown);
    EXPECT_EQ(containerMetadata(json("{}")), nothingKnown);
    EXPECT_EQ(containerMetadata(json("[1, 2]")), nothingKnown);
    EXPECT_EQ(containerMetadata(json("\"tags\"")), nothingKnown);
}

TEST(ContainerMetadataTest, tagsAreFoundByTheirExactSpelling)
{
    EXPECT_EQ(containerMetadata(
                  json(R"({"TITLE": "x", "Comment": "x", "ENCODER": "x", "itunextc": "x", "HD_VIDEO": "1",
                  "Media_Type": "9"})")),
        nothingKnown);
}

TEST(ContainerMetadataTest, valuesThatAreNoTextReadAsText)
{
    const auto metadata = containerMetadata(json(
        R"({"title": 7, "description": true, "synopsis": null, "date": [2020], "genre": {"a": 1},
            "composer": 1.5})"));
    EXPECT_EQ(metadata.at(0).at("value"), "7");
    EXPECT_EQ(metadata.at(1).at("value"), "true");
    EXPECT_EQ(metadata.at(2).at("value"), "");
    EXPECT_EQ(metadata.at(3).at("value"), "");
    EXPECT_EQ(metadata.at(4).at("value"), "");
    EXPECT_EQ(metadata.at(7).at("value"), "1.5");
}

class NumberTagTest : public testing::TestWithParam<FlagCase>
{
};

TEST_P(NumberTagTest, isJudgedByItsInteger)
{
    const auto metadata = containerMetadata(json(GetParam().tags));
    EXPECT_EQ(metadata.at(5), (Entry{{"key", "HD"}, {"value", GetParam().highDefinition}}));
    EXPECT_EQ(metadata.at(6), (Entry{{"key", "Media Kind"}, {"value", GetParam().mediaKind}}));
}

INSTANTIATE_TEST_SUITE_P(Tags, NumberTagTest,
    testing::Values(FlagCase{"numbers", R"({"hd_video": 1, "media_type": 9})", "Yes", "Movie"},
        FlagCase{"texts", R"({"hd_video": "1", "media_type": "9"})", "Yes", "Movie"},
        FlagCase{"fractions", R"({"hd_video": 1.9, "media_type": "9.5"})", "Yes", "Movie"},
        FlagCase{"true", R"({"hd_video": true, "media_type": true})", "Yes", ""},
        FlagCase{"otherNumbers", R"({"hd_video": "2", "media_type": "10"})", "No", ""},
        FlagCase{"television", R"({"hd_video": "0", "media_type": "0"})", "No", ""},
        FlagCase{"words", R"({"hd_video": "yes", "media_type": "Movie"})", "No", ""}),
    [](const auto& row) { return row.param.name; });

} // namespace tarnwell::test
