// SPDX-License-Identifier: MIT
// The report before and after the rotation tags are set, and the facts that creator reads from it.
#include "tools/Report.h"

#include "tests/support/Rows.h"
#include "tests/tools/MatrixText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <tuple>
#include <vector>

namespace tarnwell::test
{

namespace
{

using OrderedJson = nlohmann::ordered_json;

OrderedJson matrixData(const std::string& text)
{
    return {{"side_data_type", "Display Matrix"}, {"displaymatrix", text}, {"rotation", 0}};
}

OrderedJson videoStream(const std::string& matrix = {})
{
    OrderedJson stream = {{"index", 0}, {"codec_name", "h264"}, {"codec_type", "video"}, {"width", 1920},
        {"height", 1080}, {"avg_frame_rate", "25/1"}};
    if (!matrix.empty())
        stream["side_data_list"] = OrderedJson::array({matrixData(matrix)});
    return stream;
}

OrderedJson report(const std::vector<OrderedJson>& streams)
{
    return {{"streams", streams}, {"format", {{"filename", "clip.mp4"}, {"duration", "4.000000"}}}};
}

OrderedJson after(const OrderedJson& json)
{
    return OrderedJson::parse(withTrueRotation(json.dump()));
}

/// The stream with another value for one member, or without the member if the value is null.
OrderedJson with(OrderedJson stream, const char* member, const OrderedJson& value)
{
    if (value.is_null())
        stream.erase(member);
    else
        stream[member] = value;
    return stream;
}

const std::string quarterTurnRight = matrixText(0, 1, -1, 0);
const std::string halfTurn = matrixText(-1, 0, 0, -1);
const OrderedJson cover = with(videoStream(halfTurn), "avg_frame_rate", "0/0");

OrderedJson sound(const OrderedJson& duration)
{
    return {{"index", 0}, {"codec_type", "audio"}, {"duration", duration}};
}

OrderedJson tagged(const std::string& matrix, const OrderedJson& tags)
{
    return with(videoStream(matrix), "tags", tags);
}

OrderedJson sideData(const std::vector<OrderedJson>& data)
{
    return with(videoStream(), "side_data_list", data);
}

const OrderedJson otherData
    = {{"side_data_type", "Mastering display metadata"}, {"displaymatrix", quarterTurnRight}};
const OrderedJson german = {{"language", "de"}, {"title", "x"}};
const OrderedJson germanTurned = {{"language", "de"}, {"rotate", "17"}, {"title", "x"}};
const OrderedJson german180 = {{"language", "de"}, {"rotate", "180"}, {"title", "x"}};
const OrderedJson turned = {{"rotate", "90"}};
const OrderedJson none;

} // namespace

struct StreamRow {
    const char* name;
    OrderedJson stream;
    const char* member; // the changed member
    OrderedJson expected; // null: the stream has no such member
};

class StreamReportTest : public testing::TestWithParam<StreamRow>
{
};

TEST_P(StreamReportTest, isAsStated)
{
    const StreamRow& row = GetParam();
    EXPECT_EQ(
        after(report({row.stream})).dump(), report({with(row.stream, row.member, row.expected)}).dump());
}

INSTANTIATE_TEST_SUITE_P(Streams, StreamReportTest,
    testing::Values(StreamRow{"aQuarterTurnToTheRightIs90", videoStream(quarterTurnRight), "tags", turned},
        StreamRow{
            "aQuarterTurnToTheLeftIs270", videoStream(matrixText(0, -1, 1, 0)), "tags", {{"rotate", "270"}}},
        StreamRow{"noTurnIs0", videoStream(matrixText(1, 0, 0, 1)), "tags", {{"rotate", "0"}}},
        StreamRow{"aMatrixReplacesTheTag", tagged(halfTurn, germanTurned), "tags", german180},
        StreamRow{"aTagWithoutAMatrixIsRemoved", tagged("", germanTurned), "tags", german},
        StreamRow{"zerosAreNoMatrix", videoStream(matrixText(0, 0, 0, 0)), "tags", none},
        StreamRow{"aZoomIsNoMatrix", tagged(matrixText(2, 0, 0, 2), germanTurned), "tags", german},
        StreamRow{"aSkewIsNoMatrix", tagged(matrixText(1, 0, 1, 1), germanTurned), "tags", german},
        StreamRow{"aWordIsNoMatrix", tagged("nan", germanTurned), "tags", german},
        StreamRow{"otherSideDataIsIgnored", sideData({otherData}), "tags", none},
        StreamRow{"theMatrixIsFoundAmongOtherSideData",
            sideData({otherData, "text", 7, matrixData(halfTurn)}), "tags", {{"rotate", "180"}}},
        StreamRow{"noSideData", with(videoStream(), "side_data_list", "text"), "tags", none},
        StreamRow{"sideDataThatIsNoList", with(videoStream(), "side_data_list", matrixData(halfTurn)), "tags",
            none},
        StreamRow{"sideDataWithoutNumbers", sideData({OrderedJson{{"side_data_type", "Display Matrix"}}}),
            "tags", none},
        StreamRow{"sideDataOfWrongTypes",
            sideData({OrderedJson{{"side_data_type", 4}, {"displaymatrix", 90}},
                OrderedJson{{"side_data_type", "Display Matrix"}, {"displaymatrix", 90}}}),
            "tags", none},
        StreamRow{"aTextAsTagsIsReplaced", tagged(quarterTurnRight, "rotate"), "tags", turned},
        StreamRow{"aListAsTagsIsReplaced", tagged(quarterTurnRight, OrderedJson::array({3})), "tags", turned},
        StreamRow{"aDurationBeyond64BitsIsRemoved", sound("9223372036854775808.000000"), "duration", none},
        StreamRow{"aDurationFarBelowZeroIsRemoved", sound("-1e30"), "duration", none},
        StreamRow{"aDurationAsANumberIsRemoved", sound(1e30), "duration", none},
        StreamRow{"theLongestDurationIsKept", sound("9223372036854774784.000000"), "duration",
            "9223372036854774784.000000"}),
    rowName);

TEST(ReportTest, everyTagWithoutAMatrixIsRemoved)
{
    for (const char* text : {"90", "-90", "0", "", "left", "90 degrees", "\xC3\xA4\"\\\n"})
        EXPECT_EQ(after(report({tagged("", {{"rotate", text}, {"title", text}})})).dump(),
            report({tagged("", {{"title", text}})}).dump());
}

TEST(ReportTest, otherStreamsKeepTheirTags)
{
    OrderedJson sound = {{"index", 1}, {"codec_type", "audio"}, {"tags", {{"rotate", "90"}}}};
    OrderedJson words = {{"index", 2}, {"codec_type", "subtitle"}, {"tags", {{"rotate", "180"}}},
        {"side_data_list", OrderedJson::array({matrixData(quarterTurnRight)})}};
    OrderedJson unknown = {{"index", 3}, {"tags", {{"rotate", "270"}}}};
    const OrderedJson result
        = after(report({videoStream(), sound, words, unknown, OrderedJson("text"), OrderedJson(nullptr)}));
    EXPECT_EQ(result["streams"][1].dump(), sound.dump());
    EXPECT_EQ(result["streams"][2].dump(), words.dump());
    EXPECT_EQ(result["streams"][3].dump(), unknown.dump());
}

TEST(ReportTest, everyVideoStreamHasItsOwnTag)
{
    const OrderedJson titled
        = with(with(cover, "side_data_list", none), "tags", {{"rotate", "90"}, {"title", "Cover"}});
    const OrderedJson result
        = after(report({videoStream(quarterTurnRight), titled, videoStream(halfTurn), videoStream()}));
    EXPECT_EQ(result["streams"][0]["tags"]["rotate"], "90");
    EXPECT_EQ(result["streams"][1]["tags"], OrderedJson({{"title", "Cover"}}));
    EXPECT_EQ(result["streams"][2]["tags"]["rotate"], "180");
    EXPECT_FALSE(result["streams"][3].contains("tags"));
}

TEST(ReportTest, membersKeepTheirOrderAndValues)
{
    const std::string text
        = R"({"zebra": [1, -2, 3.5, true, null, "a\u0000b\u001f\"\\ä"], "streams": [{"z": 1,
        "codec_type": "video", "a": 9223372036854775807, "m": -9223372036854775808, "k": {}, "l": []}],
        "format": {"tags": {"title": "time=00:00:00.00"}}, "apple": {"b": 1, "a": 2}})";
    EXPECT_EQ(OrderedJson::parse(withTrueRotation(text)).dump(), OrderedJson::parse(text).dump());
}

TEST(ReportTest, textsWithoutAVideoAndOtherBytesAreKept)
{
    const std::string whole = report({videoStream(quarterTurnRight)}).dump();
    std::vector<std::string> texts = {"", "{}", "{ }\n", "no report", "[]", "null", "7", R"({"streams": []})",
        R"({"streams": {}})", R"({"streams":null})", R"({"error":  {"code": -2, "string": "No such file"}})",
        R"({"streams": [{"codec_type": "audio", "tags": {"rotate": "90"}}]})",
        R"({"streams": [{"codec_type": 4}, 5, []]})",
        "{\"streams\": [{\"codec_type\": \"video\", \"tags\": {\"title\": \"\xFF\xFE\"}}]}", whole + '\0',
        whole + std::string("\0{}", 3)};
    for (std::size_t length = 0; length < whole.size(); ++length)
        texts.push_back(whole.substr(0, length));
    for (const std::string& text : texts)
        EXPECT_EQ(withTrueRotation(text), text);
}

TEST(ReportTest, picturesOfChaptersAreNotTheMainVideo)
{
    const OrderedJson pictures = with(videoStream(halfTurn), "disposition", {{"attached_pic", 1}});
    const OrderedJson film
        = with(with(videoStream(quarterTurnRight), "index", 1), "disposition", {{"attached_pic", 0}});
    const auto facts = mediaFactsOf(report({pictures, film}).dump());
    ASSERT_TRUE(facts.mainVideo && facts.video.decoded);
    EXPECT_EQ(facts.mainVideo->index, 1);
    EXPECT_EQ(rotationTag(*facts.video.decoded), 90);
    EXPECT_EQ(facts.video.rotation, 180) << "the tag that the application reads";
    EXPECT_EQ(mediaFactsOf(report({pictures}).dump()).mainVideo->index, 0);
}

TEST(VideoFactsTest, areThoseOfTheFirstVideoThatHasAFrameRate)
{
    const OrderedJson audio = {{"codec_type", "audio"}, {"width", 5}};
    const auto facts = videoFactsOf(report(
        {audio, with(cover, "width", 600), videoStream(quarterTurnRight), with(videoStream(), "width", 320)})
                                        .dump());
    EXPECT_EQ(facts.width, 1920);
    EXPECT_EQ(facts.height, 1080);
    EXPECT_EQ(facts.rotation, 90);
    ASSERT_TRUE(facts.decoded);
    EXPECT_EQ(rotationTag(*facts.decoded), 90);
}

TEST(VideoFactsTest, areThoseOfTheFirstCoverIfThereIsNoOtherVideo)
{
    const auto facts = videoFactsOf(report({cover, with(cover, "width", 1)}).dump());
    EXPECT_EQ(facts.width, 1920);
    EXPECT_EQ(facts.rotation, 180);
    ASSERT_TRUE(facts.decoded);
    EXPECT_EQ(rotationTag(*facts.decoded), 180);
}

TEST(VideoFactsTest, aMatrixThatScalesHasNoTagButIsDecoded)
{
    const auto facts = videoFactsOf(
        report({videoStream(textOfNumbers({0, 131072, 0, -131072, 0, 0, 0, 0, 1073741824}))}).dump());
    EXPECT_EQ(facts.rotation, 0);
    ASSERT_TRUE(facts.decoded);
    EXPECT_EQ(rotationTag(*facts.decoded), 90);
}

TEST(VideoFactsTest, areUnknownWithoutAVideo)
{
    const OrderedJson odd = with(with(videoStream("no matrix"), "width", "1920"), "height", 10.5);
    for (const std::string& text : {std::string(), std::string("no report"), report({}).dump(),
             report({{{"codec_type", "audio"}, {"width", 7}}}).dump(), report({odd}).dump(),
             std::string("{\"streams\": 5}")}) {
        SCOPED_TRACE(text);
        const auto facts = videoFactsOf(text);
        EXPECT_EQ(facts.width, 0);
        EXPECT_EQ(facts.height, 0);
        EXPECT_EQ(facts.rotation, 0);
        EXPECT_FALSE(facts.decoded);
    }
}

TEST(VideoFactsTest, thePixelAspectIsThatOfTheReport)
{
    const std::vector<std::pair<OrderedJson, double>> rows = {{"64:45", 64.0 / 45}, {"1:2", 0.5}, {"1:1", 1},
        {"0:1", 1}, {"1:0", 1}, {"N/A", 1}, {"-4:3", 1}, {"1000000:1", 1}, {"1:1000000", 1}, {"", 1}, {3, 1}};
    for (const auto& [text, aspect] : rows) {
        SCOPED_TRACE(text.dump());
        const OrderedJson stream = with(videoStream(), "sample_aspect_ratio", text);
        EXPECT_DOUBLE_EQ(videoFactsOf(report({stream}).dump()).pixelAspect, aspect);
    }
    EXPECT_EQ(videoFactsOf(report({videoStream()}).dump()).pixelAspect, 1);
}

TEST(MediaFactsTest, everyStreamIsDescribed)
{
    const OrderedJson picture = with(
        with(with(videoStream(), "codec_tag_string", "hvc1"), "codec_tag", "0x31637668"), "id", "0x1f");
    const OrderedJson audio = {{"index", 1}, {"codec_type", "audio"}, {"codec_name", "aac"}, {"channels", 6},
        {"channel_layout", "5.1"}, {"codec_tag_string", "[0][0][0][0]"}, {"codec_tag", "0x0000"},
        {"disposition", {{"default", 1}}}};
    const OrderedJson text = {{"index", 2}, {"codec_type", "subtitle"}, {"codec_name", "mov_text"}};
    const OrderedJson other = {{"index", 3}, {"codec_type", "data"}, {"channel_layout", "unknown"}};
    const auto streams = mediaFactsOf(report({picture, audio, text, other, OrderedJson(7)}).dump()).streams;
    using Kind = MediaStream::Kind;
    const std::vector<std::tuple<int, Kind, std::string, std::string, std::uint32_t, int, std::string, bool>>
        expected
        = {{0, Kind::Video, "h264", "hvc1", 31, 0, "", false}, {1, Kind::Sound, "aac", "", 0, 6, "5.1", true},
            {2, Kind::Subtitle, "mov_text", "", 0, 0, "", false}, {3, Kind::Other, "", "", 0, 0, "", false}};
    ASSERT_EQ(streams.size(), expected.size());
    for (std::size_t place = 0; place < expected.size(); ++place) {
        const MediaStream& s = streams[place];
        EXPECT_EQ(
            std::tuple(s.index, s.kind, s.codec, s.tag, s.trackId, s.channels, s.channelLayout, s.isDefault),
            expected[place]);
    }
}

TEST(MediaFactsTest, theMainVideoIsNoCover)
{
    const MediaFacts facts = mediaFactsOf(report({cover, with(videoStream(), "index", 1)}).dump());
    ASSERT_TRUE(facts.mainVideo);
    EXPECT_EQ(facts.mainVideo->index, 1);
    EXPECT_FALSE(mediaFactsOf(report({{{"codec_type", "audio"}}}).dump()).mainVideo);
}

TEST(MediaFactsTest, tagsAreThoseOfTheFile)
{
    OrderedJson json = report({videoStream()});
    json["streams"][0]["tags"] = {{"title", "of the stream"}};
    EXPECT_TRUE(mediaFactsOf(json.dump()).tags.empty());
    json["format"]["tags"] = {{"title", "A day"}, {"number", 7}, {"MAKE", "Maker"}};
    const auto tags = mediaFactsOf(json.dump()).tags;
    using Tags = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(tags, Tags({{"title", "A day"}, {"MAKE", "Maker"}}));
    for (const OrderedJson& odd : {OrderedJson(5), OrderedJson("text"), OrderedJson::array()}) {
        json["format"]["tags"] = odd;
        EXPECT_TRUE(mediaFactsOf(json.dump()).tags.empty());
        OrderedJson other = json;
        other["format"] = odd;
        EXPECT_TRUE(mediaFactsOf(other.dump()).tags.empty());
    }
}

} // namespace tarnwell::test
