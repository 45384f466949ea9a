// SPDX-License-Identifier: MIT
// The probe's report before and after its rotation tags are set.
#include "tools/Report.h"

#include "tests/tools/MatrixText.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Json = nlohmann::ordered_json;

Json matrixData(const std::string& text)
{
    return {{"side_data_type", "Display Matrix"}, {"displaymatrix", text}, {"rotation", 0}};
}

Json video(const std::string& matrix = {})
{
    Json stream = {{"index", 0}, {"codec_name", "h264"}, {"codec_type", "video"}, {"width", 1920},
        {"height", 1080}, {"avg_frame_rate", "25/1"}};
    if (!matrix.empty())
        stream["side_data_list"] = Json::array({matrixData(matrix)});
    return stream;
}

Json report(const std::vector<Json>& streams)
{
    return {{"streams", streams}, {"format", {{"filename", "clip.mp4"}, {"duration", "4.000000"}}}};
}

Json after(const Json& json)
{
    return Json::parse(withTrueRotation(json.dump()));
}

const std::string quarterTurnRight = matrixText(0, 1, -1, 0);
const std::string halfTurn = matrixText(-1, 0, 0, -1);

} // namespace

TEST(ReportTest, aMatrixBecomesATagInAStreamWithoutTags)
{
    Json expected = report({video(quarterTurnRight)});
    expected["streams"][0]["tags"] = {{"rotate", "90"}};
    EXPECT_EQ(after(report({video(quarterTurnRight)})).dump(), expected.dump());
}

TEST(ReportTest, aDurationBeyondSixtyFourBitsIsTakenOut)
{
    for (const Json& duration :
        {Json("9223372036854775808.000000"), Json("-1e30"), Json("+1e30"), Json(1e30)}) {
        SCOPED_TRACE(duration.dump());
        Json sound = {{"index", 0}, {"codec_type", "audio"}, {"duration", duration}};
        Json expected = sound;
        expected.erase("duration");
        EXPECT_EQ(after(report({sound})).dump(), report({expected}).dump());
    }
    const Json longest = {{"index", 0}, {"codec_type", "audio"}, {"duration", "9223372036854774784.000000"}};
    EXPECT_EQ(withTrueRotation(report({longest}).dump()), report({longest}).dump());
}

TEST(ReportTest, theMatrixWinsOverATagOfTheFile)
{
    Json stream = video(halfTurn);
    stream["tags"] = {{"language", "und"}, {"rotate", "17"}, {"title", "x"}};
    Json expected = report({stream});
    expected["streams"][0]["tags"]["rotate"] = "180";
    EXPECT_EQ(after(report({stream})).dump(), expected.dump());
}

TEST(ReportTest, anUpsideDownPictureAndAnUnturnedOneHaveTheirTags)
{
    EXPECT_EQ(after(report({video(matrixText(0, -1, 1, 0))}))["streams"][0]["tags"]["rotate"], "270");
    EXPECT_EQ(after(report({video(matrixText(1, 0, 0, 1))}))["streams"][0]["tags"]["rotate"], "0");
}

TEST(ReportTest, aTagWithoutAMatrixIsTakenOutWhateverItSays)
{
    for (const char* text : {"90", "-90", "0", "", "left", "90 degrees", "\xC3\xA4\"\\\n"}) {
        SCOPED_TRACE(text);
        Json stream = video();
        stream["tags"] = {{"language", "und"}, {"rotate", text}, {"title", text}};
        Json expected = report({stream});
        expected["streams"][0]["tags"].erase("rotate");
        EXPECT_EQ(after(report({stream})).dump(), expected.dump());
    }
}

TEST(ReportTest, aGarbageMatrixGivesNoTagAndTakesOneOut)
{
    for (const auto& text : {textOfNumbers(std::vector<long long>(9, 0)), matrixText(2, 0, 0, 2),
             matrixText(1, 0, 1, 1), std::string("nan")}) {
        SCOPED_TRACE(text);
        Json stream = video(text);
        EXPECT_EQ(after(report({stream})).dump(), report({stream}).dump());
        stream["tags"] = {{"rotate", "90"}, {"language", "und"}};
        EXPECT_EQ(after(report({stream}))["streams"][0]["tags"], Json({{"language", "und"}}));
    }
}

TEST(ReportTest, onlyTheDisplayMatrixAmongTheSideDataCounts)
{
    Json stream = video();
    Json other = {{"side_data_type", "Mastering display metadata"}, {"displaymatrix", quarterTurnRight}};
    stream["side_data_list"] = Json::array({other, "text", 7, matrixData(halfTurn)});
    EXPECT_EQ(after(report({stream}))["streams"][0]["tags"]["rotate"], "180");
    stream["side_data_list"] = Json::array({other});
    EXPECT_FALSE(after(report({stream}))["streams"][0].contains("tags"));
}

TEST(ReportTest, oddMembersAreNoMatrix)
{
    for (const Json& data : {Json(nullptr), Json("text"), Json(7), Json::object(), Json::array(),
             Json::array({Json{{"side_data_type", "Display Matrix"}}}),
             Json::array({Json{{"side_data_type", 4}, {"displaymatrix", 90}}}),
             Json::array({Json{{"side_data_type", "Display Matrix"}, {"displaymatrix", 90}}})}) {
        SCOPED_TRACE(data.dump());
        Json stream = video();
        stream["side_data_list"] = data;
        EXPECT_EQ(after(report({stream})).dump(), report({stream}).dump());
    }
}

TEST(ReportTest, tagsThatAreNoObjectBecomeOne)
{
    for (const Json& tags : {Json(nullptr), Json("rotate"), Json(3), Json::array({"rotate"})}) {
        SCOPED_TRACE(tags.dump());
        Json stream = video(quarterTurnRight);
        stream["tags"] = tags;
        EXPECT_EQ(after(report({stream}))["streams"][0]["tags"], Json({{"rotate", "90"}}));
    }
}

TEST(ReportTest, otherStreamsKeepTheirTags)
{
    Json sound = {{"index", 1}, {"codec_type", "audio"}, {"tags", {{"rotate", "90"}}}};
    Json words = {{"index", 2}, {"codec_type", "subtitle"}, {"tags", {{"rotate", "180"}}},
        {"side_data_list", Json::array({matrixData(quarterTurnRight)})}};
    Json unknown = {{"index", 3}, {"tags", {{"rotate", "270"}}}};
    const Json result = after(report({video(), sound, words, unknown, Json("text"), Json(nullptr)}));
    EXPECT_EQ(result["streams"][1].dump(), sound.dump());
    EXPECT_EQ(result["streams"][2].dump(), words.dump());
    EXPECT_EQ(result["streams"][3].dump(), unknown.dump());
}

TEST(ReportTest, everyVideoStreamHasItsOwnTag)
{
    Json cover = video();
    cover["avg_frame_rate"] = "0/0";
    cover["tags"] = {{"rotate", "90"}, {"title", "Cover"}};
    const Json result = after(report({video(quarterTurnRight), cover, video(halfTurn), video()}));
    EXPECT_EQ(result["streams"][0]["tags"]["rotate"], "90");
    EXPECT_EQ(result["streams"][1]["tags"], Json({{"title", "Cover"}}));
    EXPECT_EQ(result["streams"][2]["tags"]["rotate"], "180");
    EXPECT_FALSE(result["streams"][3].contains("tags"));
}

TEST(ReportTest, membersKeepTheirOrderAndValues)
{
    const std::string text
        = R"({"zebra": [1, -2, 3.5, true, null, "a\u0000b\u001f\"\\ä"], "streams": [{"z": 1,
        "codec_type": "video", "a": 9223372036854775807, "m": -9223372036854775808, "k": {}, "l": []}],
        "format": {"tags": {"title": "time=00:00:00.00"}}, "apple": {"b": 1, "a": 2}})";
    EXPECT_EQ(Json::parse(withTrueRotation(text)).dump(), Json::parse(text).dump());
}

TEST(ReportTest, textsWithoutAVideoComeBackByteByByte)
{
    for (const std::string text : {"", "{}", "{ }\n", "no report", "{\"streams\": [", "[]", "null", "7",
             R"({"streams": []})", R"({"streams": {}})", R"({"streams":null})",
             R"({"error":  {"code": -2, "string": "No such file"}})",
             R"({"streams": [{"codec_type": "audio", "tags": {"rotate": "90"}}]})",
             R"({"streams": [{"codec_type": 4}, 5, []]})"}) {
        SCOPED_TRACE(text);
        EXPECT_EQ(withTrueRotation(text), text);
    }
}

TEST(ReportTest, bytesThatAreNoTextComeBackAsTheyAre)
{
    const std::string text
        = "{\"streams\": [{\"codec_type\": \"video\", \"tags\": {\"title\": \"\xFF\xFE\"}}]}";
    EXPECT_EQ(withTrueRotation(text), text);
}

TEST(ReportTest, picturesOfChaptersAreNotTheMainVideo)
{
    Json pictures = video(halfTurn);
    pictures["disposition"] = {{"attached_pic", 1}};
    Json film = video(quarterTurnRight);
    film["index"] = 1;
    film["disposition"] = {{"attached_pic", 0}};
    const auto facts = mediaFactsOf(report({pictures, film}).dump());
    ASSERT_TRUE(facts.mainVideo);
    EXPECT_EQ(facts.mainVideo->index, 1);
    ASSERT_TRUE(facts.video.decoded);
    EXPECT_EQ(rotationTag(*facts.video.decoded), 90);
    EXPECT_EQ(facts.video.rotation, 180) << "the tag that the application reads";
    EXPECT_EQ(mediaFactsOf(report({pictures}).dump()).mainVideo->index, 0);
}

TEST(ReportTest, aReportWithANulByteComesBackAsItIs)
{
    const std::string whole = report({video(quarterTurnRight)}).dump();
    for (const std::string& rest : {std::string(1, '\0'), std::string("\0{}", 3)})
        EXPECT_EQ(withTrueRotation(whole + rest), whole + rest);
}

TEST(ReportTest, aReportThatEndsEarlyComesBackAsItIs)
{
    const std::string whole = report({video(quarterTurnRight)}).dump();
    for (std::size_t length = 0; length < whole.size(); ++length)
        EXPECT_EQ(withTrueRotation(whole.substr(0, length)), whole.substr(0, length)) << length;
}

TEST(VideoFactsTest, comeFromTheFirstVideoThatHasAFrameRate)
{
    Json cover = video(halfTurn);
    cover["avg_frame_rate"] = "0/0";
    cover["width"] = 600;
    Json second = video();
    second["width"] = 320;
    const Json sound = {{"codec_type", "audio"}, {"width", 5}};
    const auto facts = videoFactsOf(report({sound, cover, video(quarterTurnRight), second}).dump());
    EXPECT_EQ(facts.width, 1920);
    EXPECT_EQ(facts.height, 1080);
    EXPECT_EQ(facts.rotation, 90);
    ASSERT_TRUE(facts.decoded);
    EXPECT_EQ(rotationTag(*facts.decoded), 90);
}

TEST(VideoFactsTest, comeFromACoverPictureWhereThereIsNothingElse)
{
    Json cover = video(halfTurn);
    cover["avg_frame_rate"] = "0/0";
    Json second = video();
    second["avg_frame_rate"] = "0/0";
    second["width"] = 1;
    const auto facts = videoFactsOf(report({cover, second}).dump());
    EXPECT_EQ(facts.width, 1920);
    EXPECT_EQ(facts.rotation, 180);
    ASSERT_TRUE(facts.decoded);
    EXPECT_EQ(rotationTag(*facts.decoded), 180);
}

TEST(VideoFactsTest, aMatrixThatScalesHasNoTagButIsDecoded)
{
    const auto facts = videoFactsOf(
        report({video(textOfNumbers({0, 131072, 0, -131072, 0, 0, 0, 0, 1073741824}))}).dump());
    EXPECT_EQ(facts.rotation, 0);
    ASSERT_TRUE(facts.decoded);
    EXPECT_EQ(rotationTag(*facts.decoded), 90);
}

TEST(VideoFactsTest, areUnknownWithoutAVideo)
{
    Json odd = video("no matrix");
    odd["width"] = "1920";
    odd["height"] = 10.5;
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
    const std::vector<std::pair<Json, double>> rows = {{"64:45", 64.0 / 45}, {"1:2", 0.5}, {"1:1", 1},
        {"0:1", 1}, {"1:0", 1}, {"N/A", 1}, {"-4:3", 1}, {"1000000:1", 1}, {"1:1000000", 1}, {"", 1}, {3, 1}};
    for (const auto& [text, aspect] : rows) {
        SCOPED_TRACE(text.dump());
        Json stream = video();
        stream["sample_aspect_ratio"] = text;
        EXPECT_DOUBLE_EQ(videoFactsOf(report({stream}).dump()).pixelAspect, aspect);
    }
    EXPECT_EQ(videoFactsOf(report({video()}).dump()).pixelAspect, 1);
}

TEST(MediaFactsTest, everyStreamIsDescribed)
{
    Json picture = video();
    picture["codec_tag_string"] = "hvc1";
    picture["codec_tag"] = "0x31637668";
    picture["id"] = "0x1f";
    const Json sound = {{"index", 1}, {"codec_type", "audio"}, {"codec_name", "aac"}, {"channels", 6},
        {"channel_layout", "5.1"}, {"codec_tag_string", "[0][0][0][0]"}, {"codec_tag", "0x0000"},
        {"disposition", {{"default", 1}}}};
    const Json text = {{"index", 2}, {"codec_type", "subtitle"}, {"codec_name", "mov_text"}};
    const Json other = {{"index", 3}, {"codec_type", "data"}, {"channel_layout", "unknown"}};
    const MediaFacts facts = mediaFactsOf(report({picture, sound, text, other, Json(7)}).dump());
    ASSERT_EQ(facts.streams.size(), 4U);
    EXPECT_EQ(facts.streams[0].kind, MediaStream::Kind::Video);
    EXPECT_EQ(facts.streams[0].tag, "hvc1");
    EXPECT_EQ(facts.streams[0].trackId, 31U);
    EXPECT_FALSE(facts.streams[0].isDefault);
    EXPECT_EQ(facts.streams[1].kind, MediaStream::Kind::Sound);
    EXPECT_EQ(facts.streams[1].codec, "aac");
    EXPECT_EQ(facts.streams[1].tag, "");
    EXPECT_EQ(facts.streams[1].channels, 6);
    EXPECT_EQ(facts.streams[1].channelLayout, "5.1");
    EXPECT_TRUE(facts.streams[1].isDefault);
    EXPECT_EQ(facts.streams[2].kind, MediaStream::Kind::Subtitle);
    EXPECT_EQ(facts.streams[3].kind, MediaStream::Kind::Other);
    EXPECT_EQ(facts.streams[3].codec, "");
    EXPECT_EQ(facts.streams[3].channelLayout, "");
    EXPECT_EQ(facts.streams[3].index, 3);
}

TEST(MediaFactsTest, theMainVideoIsNoCover)
{
    Json cover = video();
    cover["avg_frame_rate"] = "0/0";
    Json main = video();
    main["index"] = 1;
    const MediaFacts facts = mediaFactsOf(report({cover, main}).dump());
    ASSERT_TRUE(facts.mainVideo);
    EXPECT_EQ(facts.mainVideo->index, 1);
    EXPECT_FALSE(mediaFactsOf(report({{{"codec_type", "audio"}}}).dump()).mainVideo);
}

TEST(MediaFactsTest, tagsAreThoseOfTheFile)
{
    Json json = report({video()});
    json["streams"][0]["tags"] = {{"title", "of the stream"}};
    EXPECT_TRUE(mediaFactsOf(json.dump()).tags.empty());
    json["format"]["tags"] = {{"title", "A day"}, {"number", 7}, {"MAKE", "Maker"}};
    const auto tags = mediaFactsOf(json.dump()).tags;
    using Tags = std::vector<std::pair<std::string, std::string>>;
    EXPECT_EQ(tags, Tags({{"title", "A day"}, {"MAKE", "Maker"}}));
    for (const Json& odd : {Json(5), Json("text"), Json::array()}) {
        json["format"]["tags"] = odd;
        EXPECT_TRUE(mediaFactsOf(json.dump()).tags.empty());
        Json other = json;
        other["format"] = odd;
        EXPECT_TRUE(mediaFactsOf(other.dump()).tags.empty());
    }
}

} // namespace tarnwell::test
