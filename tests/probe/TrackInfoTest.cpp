// SPDX-License-Identifier: MIT
#include "probe/TrackInfo.h"

#include "tests/probe/ProbeTestSetup.h"

namespace tarnwell::test
{

namespace
{

struct StreamCase {
    std::string name;
    std::string stream;
    std::string type;
};

std::string video(const std::string& codec, const std::string& tag, const std::string& frameRate)
{
    return R"({"codec_type": "video", "codec_name": ")" + codec + R"(", "codec_tag_string": ")" + tag
        + R"(", "avg_frame_rate": ")" + frameRate + "\"}";
}

std::string streamName(const testing::TestParamInfo<StreamCase>& row)
{
    return row.param.name;
}

} // namespace

class TrackTypeTest : public testing::TestWithParam<StreamCase>
{
};

TEST_P(TrackTypeTest, isDecidedByTheFirstRuleThatMatches)
{
    EXPECT_EQ(trackTypeName(trackTypeOf(json(GetParam().stream))), GetParam().type);
}

// Motion JPEG with QuickTime's tag is "Other" with every frame rate.
INSTANTIATE_TEST_SUITE_P(QuickTimeMotionJpeg, TrackTypeTest,
    testing::Values(StreamCase{"moving", video("mjpeg", "jpeg", "25/1"), "Other"},
        StreamCase{"still", video("mjpeg", "jpeg", "0/0"), "Other"},
        StreamCase{"otherTag", video("mjpeg", "mjpa", "25/1"), "Video"},
        StreamCase{"tagInCapitals", video("mjpeg", "JPEG", "25/1"), "Video"},
        StreamCase{"otherCodec", video("png", "jpeg", "25/1"), "Video"}),
    streamName);

// These codecs are video without a frame rate too.
INSTANTIATE_TEST_SUITE_P(VideoByCodec, TrackTypeTest,
    testing::Values(StreamCase{"h264",
                        R"({"codec_type": "video", "codec_name": "h264", "avg_frame_rate": "0/0"})", "Video"},
        StreamCase{
            "theora", R"({"codec_type": "video", "codec_name": "theora", "avg_frame_rate": "0/0"})", "Video"},
        StreamCase{
            "wmv3", R"({"codec_type": "video", "codec_name": "wmv3", "avg_frame_rate": "0/0"})", "Video"},
        StreamCase{"wmv3ByTag",
            R"({"codec_type": "video", "codec_tag_string": "WMV3", "avg_frame_rate": "0/0"})", "Video"},
        StreamCase{"pictureCodecUnderThatTag", video("mjpeg", "WMV3", "0/0"), "Video"},
        StreamCase{"h264WithThePostersTag", video("h264", "[0][0][0][0]", "0/0"), "Video"},
        StreamCase{"hevcIsNone", R"({"codec_type": "video", "codec_name": "hevc", "avg_frame_rate": "0/0"})",
            "Other"},
        StreamCase{"capitalsAreNone",
            R"({"codec_type": "video", "codec_name": "H264", "avg_frame_rate": "0/0"})", "Other"},
        StreamCase{"smallTagIsNone",
            R"({"codec_type": "video", "codec_tag_string": "wmv3", "avg_frame_rate": "0/0"})", "Other"},
        StreamCase{"h264AsAudio", R"({"codec_type": "audio", "codec_name": "h264"})", "Audio"},
        StreamCase{"h264AsData", R"({"codec_type": "data", "codec_name": "h264"})", "Other"}),
    streamName);

INSTANTIATE_TEST_SUITE_P(VideoByFrameRate, TrackTypeTest,
    testing::Values(StreamCase{"rate",
                        R"({"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": "30/1"})", "Video"},
        StreamCase{
            "zeroRate", R"({"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": "0/1"})", "Video"},
        StreamCase{"missingRate", R"({"codec_type": "video", "codec_name": "vp9"})", "Video"},
        StreamCase{"rateOfAnotherKind",
            R"({"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": 0})", "Video"},
        StreamCase{"missingCodec", R"({"codec_type": "video", "avg_frame_rate": "30/1"})", "Video"},
        StreamCase{"movingPng", video("png", "[0][0][0][0]", "90000/1"), "Video"}),
    streamName);

INSTANTIATE_TEST_SUITE_P(Sound, TrackTypeTest,
    testing::Values(StreamCase{"named",
                        R"({"codec_type": "audio", "codec_name": "aac", "avg_frame_rate": "0/0"})", "Audio"},
        StreamCase{"unnamed", R"({"codec_type": "audio"})", "Audio"},
        StreamCase{"underAVideosTag", R"({"codec_type": "audio", "codec_tag_string": "WMV3"})", "Audio"}),
    streamName);

INSTANTIATE_TEST_SUITE_P(Subtitles, TrackTypeTest,
    testing::Values(StreamCase{"timedText",
                        R"({"codec_type": "subtitle", "codec_name": "mov_text", "codec_tag_string": "tx3g"})",
                        "Subtitle"},
        StreamCase{"withoutATag", R"({"codec_type": "subtitle", "codec_name": "subrip"})", "Subtitle"},
        StreamCase{"quickTimeText",
            R"({"codec_type": "subtitle", "codec_name": "mov_text", "codec_tag_string": "text"})", "Other"},
        StreamCase{"unnamed", R"({"codec_type": "subtitle", "codec_tag_string": "tx3g"})", "Other"},
        StreamCase{"nullName",
            R"({"codec_type": "subtitle", "codec_name": null, "codec_tag_string": "tx3g"})", "Other"},
        StreamCase{"emptyName", R"({"codec_type": "subtitle", "codec_name": ""})", "Subtitle"}),
    streamName);

INSTANTIATE_TEST_SUITE_P(Posters, TrackTypeTest,
    testing::Values(StreamCase{"mjpeg", video("mjpeg", "[0][0][0][0]", "0/0"), "Poster"},
        StreamCase{"png", video("png", "[0][0][0][0]", "0/0"), "Poster"},
        StreamCase{"gif", video("gif", "[0][0][0][0]", "0/0"), "Other"},
        StreamCase{"otherTag", video("png", "MPNG", "0/0"), "Other"},
        StreamCase{"missingTag", R"({"codec_type": "video", "codec_name": "png", "avg_frame_rate": "0/0"})",
            "Other"}),
    streamName);

INSTANTIATE_TEST_SUITE_P(Rest, TrackTypeTest,
    testing::Values(StreamCase{"data", R"({"codec_type": "data", "codec_tag_string": "tmcd"})", "Other"},
        StreamCase{"attachment", R"({"codec_type": "attachment", "codec_name": "ttf"})", "Other"},
        StreamCase{"missingKind", R"({"codec_name": "h264", "avg_frame_rate": "25/1"})", "Other"},
        StreamCase{"kindInCapitals", R"({"codec_type": "VIDEO", "codec_name": "h264"})", "Other"},
        StreamCase{"kindOfAnotherKind", R"({"codec_type": 1})", "Other"},
        StreamCase{"noObject", "\"video\"", "Other"}, StreamCase{"null", "null", "Other"}),
    streamName);

TEST(TrackCodecsTest, theyKeepTheOrderOfTheTracks)
{
    EXPECT_EQ(trackCodecs({{{"trackCodec", std::string("h264")}}, {{"trackCodec", std::string("aac")}}}),
        (std::vector<std::string>{"h264", "aac"}));
}

TEST(TrackCodecsTest, anEmptyNameIsAName)
{
    EXPECT_EQ(trackCodecs({{{"trackCodec", std::string()}}}), std::vector<std::string>{""});
}

TEST(TrackCodecsTest, tracksWithoutATextUnderTheKeyArePassedOver)
{
    EXPECT_EQ(trackCodecs({{}, {{"trackType", std::string("h264")}}, {{"trackCodec", 264.0}},
                  {{"trackCodec", json("\"h264\"")}}, {{"trackCodec", std::string("hevc")}}}),
        std::vector<std::string>{"hevc"});
}

TEST(TrackCodecsTest, withoutTracksThereAreNone)
{
    EXPECT_TRUE(trackCodecs({}).empty());
}

} // namespace tarnwell::test
