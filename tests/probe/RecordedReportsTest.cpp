// SPDX-License-Identifier: MIT
#include "probe/FileProbe.h"
#include "tests/probe/ProbeTestSetup.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"

#include <cctype>

namespace tarnwell::test
{

namespace
{

using Tracks = std::vector<std::string>;

struct Size {
    std::int64_t width;
    std::int64_t height;
};

struct ReportCase {
    std::string report; // file name without extension
    std::string fileName;
    bool isSuitable;
    std::optional<Size> size;
    std::int64_t rotateTag;
    double duration;
    Tracks tracks; // kind|codec|special information
};

const std::string folder = TARNWELL_TEST_DATA_FOLDER "/reports/";

std::string reportName(const testing::TestParamInfo<ReportCase>& row)
{
    std::string name;
    for (const char letter : row.param.report)
        name += std::isalnum(static_cast<unsigned char>(letter)) != 0 ? letter : '_';
    return name;
}

std::string described(const TrackInfo& track)
{
    return textOf(track, "trackType") + "|" + textOf(track, "trackCodec") + "|"
        + textOf(track, "trackSpecialInfo");
}

} // namespace

class RecordedReportTest : public ProbeTestSetup, public testing::WithParamInterface<ReportCase>
{
};

TEST_P(RecordedReportTest, isReadAsItWasMeant)
{
    const auto& row = GetParam();
    const std::string report = contentsOf(folder + row.report + ".json");
    ASSERT_FALSE(report.empty());
    const FileProbe probe = probeReported(report, row.fileName);
    EXPECT_EQ(isSuitable(probe), row.isSuitable);
    EXPECT_EQ(probe.isValidMediaFile, !row.tracks.empty());
    EXPECT_EQ(probe.hasVideoTrack, row.size.has_value());
    EXPECT_EQ(probe.videoWidth, row.size ? std::optional(row.size->width) : std::nullopt);
    EXPECT_EQ(probe.videoHeight, row.size ? std::optional(row.size->height) : std::nullopt);
    EXPECT_EQ(probe.tagRotateValue, row.rotateTag);
    EXPECT_EQ(probe.duration, row.duration);
    EXPECT_EQ(probe.numberOfStreams, static_cast<std::int64_t>(row.tracks.size()));
    Tracks tracks;
    for (const auto& track : probe.tracksInfo)
        tracks.push_back(described(track));
    EXPECT_EQ(tracks, row.tracks);
}

// ffprobe prints no rotation tag from version 5 on.
INSTANTIATE_TEST_SUITE_P(Rotated, RecordedReportTest,
    testing::Values(ReportCase{"phone-portrait-h264.ffprobe-4.3", "clip.mp4", true, Size{1080, 1920}, 90, 7.0,
                        {"Video|h264|1080x1920", "Audio|aac|stereo"}},
        ReportCase{"phone-upside-down-portrait-hevc.ffprobe-4.3", "clip.mp4", true, Size{1080, 1920}, 270,
            7.0, {"Video|hevc|1080x1920", "Audio|aac|stereo"}},
        ReportCase{"half-turn-h264.ffprobe-4.3", "clip.mp4", true, Size{1920, 1080}, 180, 7.0,
            {"Video|h264|1920x1080", "Audio|aac|stereo"}},
        ReportCase{"matroska-worded-rotate-tag.ffprobe-4.3", "clip.mkv", true, Size{1280, 720}, 0, 5.0,
            {"Video|h264|1280x720"}},
        ReportCase{"phone-portrait-h264.ffprobe-5.1", "clip.mp4", true, Size{640, 480}, 0, 5.167,
            {"Video|h264|640x480", "Audio|aac|stereo"}},
        ReportCase{"phone-portrait-hevc.ffprobe-5.1", "clip.mp4", true, Size{1920, 1080}, 0, 2.548333,
            {"Video|hevc|1920x1080", "Audio|aac|stereo", "Other||mebx", "Other||mebx"}},
        ReportCase{
            "half-turn-h264.ffprobe-5.1", "clip.mov", true, Size{568, 320}, 0, 0.1, {"Video|h264|568x320"}}),
    reportName);

INSTANTIATE_TEST_SUITE_P(Videos, RecordedReportTest,
    testing::Values(ReportCase{"two-hevc-videos.ffprobe-5.1", "clip.mp4", true, Size{1440, 1080}, 0, 1.7739,
                        {"Video|hevc|1440x1080", "Video|hevc|1440x1080", "Other||mett", "Other||mett"}},
        ReportCase{"two-h264-videos-mov-text.ffprobe-5.1", "clip.mp4", true, Size{480, 270}, 0, 16.57,
            {"Video|h264|320x180", "Audio|aac|stereo", "Subtitle|mov_text|eng", "Video|h264|480x270",
                "Audio|aac|stereo", "Subtitle|mov_text|eng"}},
        ReportCase{"windows-media-wmv3.ffprobe-5.1", "clip.wmv", true, Size{640, 480}, 0, 5.0,
            {"Audio|wmavoice|mono", "Video|wmv3|640x480"}},
        ReportCase{"webm-vp8-mjpeg-cover.ffprobe-5.1", "clip.webm", true, Size{640, 360}, 0, 7.143,
            {"Video|vp8|640x360", "Audio|vorbis|mono", "Poster|mjpeg|512x725"}},
        ReportCase{"webm-vp9-odd-size.ffprobe-5.1", "clip.webm", true, Size{161, 121}, 0, 1.001,
            {"Video|vp9|161x121"}},
        ReportCase{"ogg-theora.ffprobe-5.1", "clip.ogv", true, Size{240, 98}, 0, 10.009038,
            {"Video|theora|240x98", "Audio|vorbis|stereo"}},
        ReportCase{"quicktime-motion-jpeg.ffprobe-5.1", "clip.mov", true, Size{640, 480}, 0, 1.5,
            {"Other|mjpeg|jpeg", "Audio|pcm_u8|"}},
        ReportCase{"h264-without-frames.ffprobe-5.1", "clip.mp4", true, Size{640, 360}, 0, 0.0,
            {"Video|h264|640x360"}},
        ReportCase{"surround-sound-all-tags.ffprobe-5.1", "clip.mp4", true, Size{320, 240}, 0, 2.0,
            {"Video|h264|320x240", "Audio|aac|5.1"}}),
    reportName);

INSTANTIATE_TEST_SUITE_P(Texts, RecordedReportTest,
    testing::Values(ReportCase{"mp4-chapters-text.ffprobe-5.1", "clip.mp4", true, Size{1080, 720}, 0, 1.089,
                        {"Video|h264|1080x720", "Audio|aac|mono", "Other|bin_data|text"}},
        ReportCase{"quicktime-text-subtitles.ffprobe-5.1", "clip.mov", true, Size{320, 240}, 0, 2.0,
            {"Video|h264|320x240", "Audio|aac|5.1", "Other|mov_text|text"}},
        ReportCase{"matroska-pgs-subtitles.ffprobe-5.1", "clip.mkv", true, Size{1080, 720}, 0, 1.24,
            {"Video|h264|1080x720", "Audio|ac3|mono", "Subtitle|hdmv_pgs_subtitle|eng"}},
        ReportCase{"webvtt-without-codec-name.ffprobe-5.1", "clip.mkv", true, Size{1080, 720}, 0, 1.234,
            {"Video|h264|1080x720", "Audio|ac3|mono", "Other||[0][0][0][0]"}}),
    reportName);

INSTANTIATE_TEST_SUITE_P(Refused, RecordedReportTest,
    testing::Values(ReportCase{"windows-media-cover.ffprobe-5.1", "song.wma", false, std::nullopt, 0, 1.2,
                        {"Poster|mjpeg|8x14", "Audio|wmav2|"}},
        ReportCase{"mp3-png-cover.ffprobe-5.1", "song.mp3", false, std::nullopt, 0, 2.4555,
            {"Audio|mp3|mono", "Poster|png|1x1"}},
        ReportCase{"m4a-mjpeg-cover.ffprobe-5.1", "song.m4a", false, std::nullopt, 0, 2.066576,
            {"Audio|aac|stereo", "Poster|mjpeg|600x600"}},
        ReportCase{
            "gif-still.ffprobe-5.1", "still.gif", false, std::nullopt, 0, 0.1, {"Other|gif|[0][0][0][0]"}},
        ReportCase{"vvc-without-codec-name.ffprobe-5.1", "clip.mp4", false, Size{320, 180}, 0, 5.0,
            {"Video||320x180"}},
        ReportCase{"unreadable.ffprobe-5.1", "clip.mp4", false, std::nullopt, 0, 0.0, {}}),
    reportName);

class RecordedFlagsTest : public ProbeTestSetup
{
protected:
    FileProbe recorded(const std::string& report)
    {
        return probeReported(contentsOf(folder + report + ".ffprobe-5.1.json"));
    }
};

TEST_F(RecordedFlagsTest, anUnreadableFileHasErrors)
{
    EXPECT_TRUE(recorded("unreadable").hasErrors);
    EXPECT_FALSE(recorded("phone-portrait-h264").hasErrors);
}

TEST_F(RecordedFlagsTest, aVideoWithoutACodecNameIsEncrypted)
{
    EXPECT_TRUE(recorded("vvc-without-codec-name").isEncrypted);
    EXPECT_FALSE(recorded("webvtt-without-codec-name").isEncrypted);
    EXPECT_FALSE(recorded("phone-portrait-hevc").isEncrypted); // only data streams lack a codec name
}

TEST_F(RecordedFlagsTest, surroundSoundIsFlagged)
{
    EXPECT_TRUE(recorded("surround-sound-all-tags").hasAudioTrackWhichHasMoreThanTwoChannels);
    EXPECT_FALSE(recorded("phone-portrait-h264").hasAudioTrackWhichHasMoreThanTwoChannels);
}

TEST_F(RecordedFlagsTest, subtitlesAreFlaggedWhereTheyCanBeRead)
{
    EXPECT_TRUE(recorded("two-h264-videos-mov-text").hasSubtitleTrack);
    EXPECT_TRUE(recorded("matroska-pgs-subtitles").hasSubtitleTrack);
    EXPECT_FALSE(recorded("quicktime-text-subtitles").hasSubtitleTrack);
    EXPECT_FALSE(recorded("webvtt-without-codec-name").hasSubtitleTrack);
    EXPECT_FALSE(recorded("mp4-chapters-text").hasSubtitleTrack);
}

TEST_F(RecordedFlagsTest, theContainersTagsAreRead)
{
    const FileProbe probe = recorded("surround-sound-all-tags");
    const std::pair<const char*, const char*> expected[] = {{"Title", "T"}, {"Tagline", "D"},
        {"Synopsis", "S"}, {"Release Date", "2020"}, {"Genre", "G"}, {"HD", "Yes"}, {"Media Kind", "Movie"},
        {"Composer", "C"}, {"Rating", ""}, {"Copyright", "Cp"}, {"Comment", "Cm"}};
    for (const auto& [label, value] : expected)
        EXPECT_EQ(metadataOf(probe, label), value) << label;
    EXPECT_TRUE(metadataOf(probe, "Encoder").starts_with("Lavf"));
}

TEST_F(RecordedFlagsTest, everyReportIsTested)
{
    std::size_t count = 0;
    for (const auto& name : namesIn(folder))
        count += name.ends_with(".json") ? 1 : 0;
    EXPECT_EQ(count, 26U);
}

} // namespace tarnwell::test
