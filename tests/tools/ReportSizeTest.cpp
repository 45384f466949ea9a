// SPDX-License-Identifier: MIT
// The size limit of sniffer's report for a file with a large amount of metadata.
#include "tools/ReportSize.h"

#include "tools/Report.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>

namespace tarnwell::test
{

namespace
{

using Json = nlohmann::json;

constexpr std::size_t kibibyte = 1024;

Json reportOf(const Json& formatTags)
{
    return {{"streams", {{{"codec_type", "video"}, {"width", 64}, {"tags", {{"language", "eng"}}}}}},
        {"chapters", Json::array()}, {"format", {{"duration", "4.0"}, {"tags", formatTags}}}};
}

Json manyTags(std::size_t count, std::size_t size)
{
    Json tags = {{"aTitle", "A title"}};
    for (std::size_t place = 0; place < count; ++place)
        tags["tag" + std::to_string(place)] = std::string(size, 'v');
    return tags;
}

Json limited(const Json& report)
{
    const std::string text = withTrueRotation(report.dump());
    EXPECT_LE(text.size(), mostReport);
    return Json::parse(text);
}

} // namespace

TEST(ReportSizeTest, aReportBelowTheLimitIsUnchanged)
{
    const Json report = reportOf({{"title", std::string(mostReport - kibibyte, 't')}});
    EXPECT_TRUE(limited(report) == report);
}

TEST(ReportSizeTest, aLongTextIsCutBetweenTwoCharacters)
{
    std::string umlauts;
    while (umlauts.size() < mostReport)
        umlauts += "\xC3\xA4";
    const Json report = limited(reportOf({{"comment", "x" + umlauts}, {"title", "A title"}}));
    const auto comment = report["format"]["tags"]["comment"].get<std::string>();
    EXPECT_EQ(comment, "x" + umlauts.substr(0, 64 * kibibyte - 2));
    EXPECT_EQ(report["format"]["tags"]["title"], "A title");
    EXPECT_EQ(report["format"]["duration"], "4.0");
    EXPECT_EQ(report["streams"], reportOf({})["streams"]);
}

TEST(ReportSizeTest, onlySomeOfManyTagsAreKept)
{
    const Json report = limited(reportOf(manyTags(12000, 100)));
    EXPECT_EQ(report["format"]["tags"].size(), 1000U);
    EXPECT_EQ(report["format"]["tags"]["aTitle"], "A title");
}

TEST(ReportSizeTest, theTagsOfAStreamThatAreReadAreKept)
{
    Json report = reportOf({});
    report["streams"][0]["tags"] = manyTags(12000, 100);
    report["streams"][0]["tags"]["language"] = "deu";
    report["streams"][0]["side_data_list"] = {{{"side_data_type", "Display Matrix"},
        {"displaymatrix",
            "\n00000000:            0       65536           0\n00000001:       -65536           0           "
            "0\n00000002:            0           0  1073741824\n"}}};
    const Json tags = limited(report)["streams"][0]["tags"];
    EXPECT_EQ(tags["language"], "deu");
    EXPECT_EQ(tags["rotate"], "90");
    EXPECT_EQ(tags.size(), 1001U); // including the added "rotate"
}

TEST(ReportSizeTest, manyChaptersAreRemoved)
{
    Json report = reportOf({{"title", "A title"}});
    for (int place = 0; place < 9000; ++place)
        report["chapters"].push_back({{"id", place}, {"tags", {{"title", std::string(kibibyte, 'c')}}}});
    const Json rest = limited(report);
    EXPECT_EQ(rest["chapters"], Json::array());
    EXPECT_EQ(rest["format"], report["format"]);
}

TEST(ReportSizeTest, aReportThatCannotBeReducedIsAnError)
{
    Json report = reportOf({});
    for (int place = 0; place < 70000; ++place)
        report["streams"].push_back({{"codec_type", "data"}, {"codec_tag_string", std::string(100, 's')}});
    EXPECT_TRUE(limited(report).contains("error"));
}

} // namespace tarnwell::test
