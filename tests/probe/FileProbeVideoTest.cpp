// SPDX-License-Identifier: MIT
#include "tests/probe/ProbeTestSetup.h"

#include <cmath>

namespace tarnwell::test
{

namespace
{

struct RotateCase {
    std::string name;
    std::string tags;
    bool isSwapped;
    std::int64_t value;
};

std::string video(const std::string& codec, int width, int height, const std::string& rest = "")
{
    return R"({"codec_type": "video", "codec_name": ")" + codec + R"(", "width": )" + std::to_string(width)
        + R"(, "height": )" + std::to_string(height) + (rest.empty() ? "" : ", " + rest) + "}";
}

const std::string moving = R"("avg_frame_rate": "25/1")";
const std::string still = R"("avg_frame_rate": "0/0", "codec_tag_string": "[0][0][0][0]")";

void expectSize(const FileProbe& probe, std::int64_t width, std::int64_t height)
{
    EXPECT_TRUE(probe.hasVideoTrack);
    EXPECT_EQ(probe.videoWidth, width);
    EXPECT_EQ(probe.videoHeight, height);
    EXPECT_EQ(probe.videoRatio, static_cast<double>(width) / static_cast<double>(height));
}

std::vector<std::string> specialInfos(const FileProbe& probe)
{
    std::vector<std::string> infos;
    for (const auto& track : probe.tracksInfo)
        infos.push_back(textOf(track, "trackType") + " " + textOf(track, "trackSpecialInfo"));
    return infos;
}

using Infos = std::vector<std::string>;

} // namespace

class FileProbeVideoTest : public ProbeTestSetup
{
};

TEST_F(FileProbeVideoTest, aPhonesPortraitVideoIsShownUpright)
{
    const FileProbe probe = probeOfStreams(video("h264", 1920, 1080, moving + R"(, "tags": {"rotate": "90"})")
        + R"(, {"codec_type": "audio", "codec_name": "aac", "channels": 2, "channel_layout": "stereo"})");
    EXPECT_TRUE(probe.isValidMediaFile);
    EXPECT_EQ(probe.numberOfStreams, 2);
    EXPECT_TRUE(probe.hasAudioTrack);
    EXPECT_FALSE(probe.hasAudioTrackWhichHasMoreThanTwoChannels);
    expectSize(probe, 1080, 1920);
    EXPECT_EQ(probe.videoRatio, 0.5625);
    EXPECT_EQ(probe.tagRotateValue, 90);
    EXPECT_EQ(specialInfos(probe), (Infos{"Video 1080x1920", "Audio stereo"}));
}

class RotateTagTest : public ProbeTestSetup, public testing::WithParamInterface<RotateCase>
{
};

TEST_P(RotateTagTest, exchangesTheSidesForTheTextsNinetyAnd270)
{
    const auto& row = GetParam();
    for (const std::string codec :
        {"vp9", "h264"}) { // h264 sets the size twice: as the first video and as a track
        SCOPED_TRACE(codec);
        const FileProbe probe = probeOfStreams(video(codec, 640, 480, moving + ", \"tags\": " + row.tags));
        expectSize(probe, row.isSwapped ? 480 : 640, row.isSwapped ? 640 : 480);
        EXPECT_EQ(probe.tagRotateValue, row.value);
    }
}

INSTANTIATE_TEST_SUITE_P(Tags, RotateTagTest,
    testing::Values(RotateCase{"ninety", R"({"rotate": "90"})", true, 90},
        RotateCase{"twoSeventy", R"({"rotate": "270"})", true, 270},
        RotateCase{"oneEighty", R"({"rotate": "180"})", false, 180},
        RotateCase{"zero", R"({"rotate": "0"})", false, 0},
        RotateCase{"minusNinety", R"({"rotate": "-90"})", false, -90},
        RotateCase{"fourFifty", R"({"rotate": "450"})", false, 450},
        RotateCase{"fortyFive", R"({"rotate": "45.9"})", false, 45},
        RotateCase{"ninetyAsANumber", R"({"rotate": 90})", false, 90},
        RotateCase{"ninetyWithAFraction", R"({"rotate": "90.0"})", false, 90},
        RotateCase{"ninetyWithABlank", R"({"rotate": " 90"})", false, 0},
        RotateCase{"word", R"({"rotate": "left"})", false, 0},
        RotateCase{"empty", R"({"rotate": ""})", false, 0},
        RotateCase{"null", R"({"rotate": null})", false, 0}, RotateCase{"missing", "{}", false, 0},
        RotateCase{"otherSpelling", R"({"ROTATE": "90"})", false, 0},
        RotateCase{"huge", R"({"rotate": "99999999999999999999"})", false, 9223372036854775807}),
    [](const auto& row) { return row.param.name; });

TEST_F(FileProbeVideoTest, aMatrixInTheSideDataIsNoTag)
{
    const FileProbe probe
        = probeOfStreams(video("h264", 640, 480, moving + R"(, "side_data_list": [{"rotation": -90}])"));
    expectSize(probe, 640, 480);
    EXPECT_EQ(probe.tagRotateValue, 0);
}

TEST_F(FileProbeVideoTest, aCoverDoesNotGiveTheSize)
{
    for (const std::string codec : {"mjpeg", "png"}) {
        SCOPED_TRACE(codec);
        const FileProbe probe
            = probeOfStreams(video(codec, 600, 400, still) + "," + video("vp9", 640, 480, moving));
        expectSize(probe, 640, 480);
        EXPECT_EQ(specialInfos(probe), (Infos{"Poster 600x400", "Video 640x480"}));
    }
}

TEST_F(FileProbeVideoTest, aSongWithACoverHasNoVideo)
{
    const FileProbe probe = probeOfStreams(
        R"({"codec_type": "audio", "channel_layout": "mono"},)" + video("png", 600, 400, still));
    EXPECT_FALSE(probe.hasVideoTrack);
    EXPECT_FALSE(probe.videoWidth);
    EXPECT_FALSE(probe.videoHeight);
    EXPECT_FALSE(probe.videoRatio);
    EXPECT_EQ(specialInfos(probe), (Infos{"Audio mono", "Poster 600x400"}));
}

TEST_F(FileProbeVideoTest, ofSeveralVideosTheFirstGivesTheSize)
{
    const FileProbe probe = probeOfStreams(video("hevc", 640, 480, moving + R"(, "tags": {"rotate": "180"})")
        + "," + video("vp9", 320, 240, moving + R"(, "tags": {"rotate": "90"})"));
    expectSize(probe, 640, 480);
    EXPECT_EQ(probe.tagRotateValue, 180);
    EXPECT_EQ(specialInfos(probe), (Infos{"Video 640x480", "Video 640x480"}));
}

TEST_F(FileProbeVideoTest, ofSeveralH264VideosTheLastGivesTheSizeAndTheFirstTheTag)
{
    const FileProbe probe = probeOfStreams(video("h264", 640, 480, moving + R"(, "tags": {"rotate": "180"})")
        + "," + video("h264", 320, 200, moving + R"(, "tags": {"rotate": "90"})"));
    expectSize(probe, 200, 320);
    EXPECT_EQ(probe.tagRotateValue, 180);
    EXPECT_EQ(specialInfos(probe), (Infos{"Video 640x480", "Video 200x320"}));
}

TEST_F(FileProbeVideoTest, anH264VideoBehindAnotherOneGivesTheSize)
{
    const FileProbe probe = probeOfStreams(video("vp9", 640, 480, moving) + ","
        + video("h264", 320, 240, moving) + "," + video("vp9", 160, 120, moving));
    expectSize(probe, 320, 240);
    EXPECT_EQ(specialInfos(probe), (Infos{"Video 640x480", "Video 320x240", "Video 320x240"}));
}

TEST_F(FileProbeVideoTest, aStreamOfAnotherKindDoesNotGiveTheSize)
{
    for (const std::string stream :
        {R"({"codec_type": "data", "codec_name": "h264", "width": 320, "height": 240})",
            R"({"codec_type": "attachment", "codec_name": "theora", "width": 320, "height": 240})",
            R"({"codec_type": "audio", "codec_tag_string": "WMV3", "width": 320, "height": 240})",
            R"({"codec_type": "subtitle", "codec_name": "wmv3", "width": 320, "height": 240})",
            R"({"codec_name": "h264", "width": 320, "height": 240})"}) {
        SCOPED_TRACE(stream);
        expectSize(probeOfStreams(video("vp9", 640, 480, moving) + "," + stream), 640, 480);
        EXPECT_FALSE(probeOfStreams(stream).hasVideoTrack);
        EXPECT_FALSE(probeOfStreams(stream).videoWidth);
    }
}

TEST_F(FileProbeVideoTest, windowsMediaWithoutAFrameRateIsAVideo)
{
    const FileProbe probe = probeOfStreams(video(
        "vc1", 640, 480, R"("codec_tag_string": "WMV3", "avg_frame_rate": "0/0", "tags": {"rotate": "90"})"));
    expectSize(probe, 480, 640);
    EXPECT_EQ(probe.tagRotateValue, 0); // only streams with a frame rate set it
    EXPECT_EQ(specialInfos(probe), Infos{"Video 480x640"});
}

TEST_F(FileProbeVideoTest, quickTimeMotionJpegIsAVideoToTheFileAndNoneAmongTheTracks)
{
    const FileProbe probe
        = probeOfStreams(video("mjpeg", 640, 480, moving + R"(, "codec_tag_string": "jpeg")"));
    expectSize(probe, 640, 480);
    EXPECT_EQ(specialInfos(probe), Infos{"Other jpeg"});
}

TEST_F(FileProbeVideoTest, aStillOfAnotherCodecIsNoVideo)
{
    const FileProbe probe = probeOfStreams(video("hevc", 640, 480, still));
    EXPECT_FALSE(probe.hasVideoTrack);
    EXPECT_EQ(specialInfos(probe), Infos{"Other [0][0][0][0]"});
}

TEST_F(FileProbeVideoTest, aHeightOfZeroGivesAnInfiniteRatio)
{
    const FileProbe probe = probeOfStreams(video("vp9", 640, 0, moving));
    EXPECT_EQ(probe.videoHeight, 0);
    ASSERT_TRUE(probe.videoRatio);
    EXPECT_TRUE(std::isinf(*probe.videoRatio));
}

TEST_F(FileProbeVideoTest, sidesThatAreMissingAreZeroAndTheirRatioNoNumber)
{
    const FileProbe probe
        = probeOfStreams(R"({"codec_type": "video", "codec_name": "vp9", "avg_frame_rate": "25/1"})");
    EXPECT_TRUE(probe.hasVideoTrack);
    EXPECT_EQ(probe.videoWidth, 0);
    ASSERT_TRUE(probe.videoRatio);
    EXPECT_TRUE(std::isnan(*probe.videoRatio));
}

} // namespace tarnwell::test
