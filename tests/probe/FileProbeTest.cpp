// SPDX-License-Identifier: MIT
#include "tests/probe/ProbeTestSetup.h"
#include "tests/support/Files.h"

#include <fcntl.h>
#include <filesystem>
#include <thread>
#include <unistd.h>

namespace tarnwell::test
{

class FileProbeTest : public ProbeTestSetup
{
};

TEST_F(FileProbeTest, thePathAndItsUrlAreKeptUnchanged)
{
    const FileProbe description = probeReported("{}", "my \xFF clip.mp4");
    EXPECT_EQ(description.fileFullPath, path("my \xFF clip.mp4"));
    EXPECT_EQ(description.fileFullURL, FileURL(path("my \xFF clip.mp4")));
    EXPECT_TRUE(description.fileFullURL->absoluteString().ends_with("/my%20%FF%20clip.mp4"));
}

TEST_F(FileProbeTest, aRelativePathIsKeptAndItsUrlIsAbsolute)
{
    m_tools.setSniffer("record " + path("arguments") + "\nprint {\"streams\": [{}]}");
    const FileProbe description("folder/../no such clip.mp4", m_tools.context());
    EXPECT_EQ(description.fileFullPath, "folder/../no such clip.mp4");
    ASSERT_TRUE(description.fileFullURL);
    EXPECT_EQ(description.fileFullURL->path(),
        std::filesystem::current_path().string() + "/folder/../no such clip.mp4");
    EXPECT_EQ(recordedArguments(path("arguments")).back(), "folder/../no such clip.mp4");
    EXPECT_EQ(textOf(description.tracksInfo.at(0), "trackPresentInfile"), "folder/../no such clip.mp4");
}

TEST_F(FileProbeTest, theFilesSizeIsKeptInBytesAndInWords)
{
    const FileProbe description = probeReported("{}");
    EXPECT_EQ(description.fileSize, 15U);
    EXPECT_EQ(description.fileSizeHuman, "15 bytes");
}

TEST_F(FileProbeTest, durationAndBitRateAreTheContainers)
{
    const FileProbe description = probeReported(
        R"({"streams": [{"duration": "7", "bit_rate": "1"}],
            "format": {"duration": "12.480000", "bit_rate": "336236"}})");
    EXPECT_EQ(description.duration, 12.48);
    EXPECT_EQ(description.bitRate, 336236);
}

TEST_F(FileProbeTest, durationAndBitRateThatAreMissingAreZero)
{
    const FileProbe description = probeReported(R"({"streams": [{}], "format": {"duration": "N/A"}})");
    EXPECT_EQ(description.duration, 0);
    EXPECT_EQ(description.bitRate, 0);
}

TEST_F(FileProbeTest, aContainerWithoutTagsHasAllTwelveEntries)
{
    const FileProbe description = probeReported(R"({"streams": [{}], "format": {}})");
    ASSERT_EQ(description.metadata.size(), 12U);
    EXPECT_EQ(metadataOf(description, "HD"), "No");
    EXPECT_EQ(metadataOf(description, "Media Kind"), "");
    EXPECT_EQ(metadataOf(description, "Title"), "");
}

TEST_F(FileProbeTest, metadataIsReadFromTheContainersTags)
{
    const FileProbe description = probeReported(
        R"({"streams": [{"tags": {"title": "stream"}}], "format": {"tags": {"title": "container"}}})");
    EXPECT_EQ(metadataOf(description, "Title"), "container");
}

TEST_F(FileProbeTest, everyTrackHasNineEntries)
{
    const FileProbe description = probeOfStreams(R"({"index": 4, "codec_type": "audio", "codec_name": "aac",
        "channel_layout": "stereo", "duration": "75.500000", "tags": {"language": "eng"}, "extra": [1]})");
    ASSERT_EQ(description.tracksInfo.size(), 1U);
    const TrackInfo& track = description.tracksInfo.front();
    EXPECT_EQ(track.size(), 9U);
    EXPECT_EQ(textOf(track, "trackType"), "Audio");
    EXPECT_EQ(textOf(track, "trackCodec"), "aac");
    EXPECT_EQ(textOf(track, "trackID"), "4");
    EXPECT_EQ(textOf(track, "trackPresentInfile"), path("clip.mp4"));
    EXPECT_EQ(textOf(track, "trackSpecialInfo"), "stereo");
    EXPECT_EQ(std::get<double>(track.at("trackDuration")), 75.5);
    EXPECT_EQ(textOf(track, "trackDurationHuman"), "00:01:15.50");
    EXPECT_EQ(textOf(track, "trackLanguage"), "eng");
    EXPECT_EQ(std::get<JSON>(track.at("trackDictionary"))["extra"][0].integer(), 1);
}

TEST_F(FileProbeTest, whatAStreamLacksIsEmptyOrZero)
{
    const FileProbe description = probeOfStreams(R"({"codec_type": "audio"})");
    const TrackInfo& track = description.tracksInfo.front();
    for (const auto* key : {"trackCodec", "trackID", "trackSpecialInfo", "trackLanguage"})
        EXPECT_EQ(textOf(track, key), "") << key;
    EXPECT_EQ(std::get<double>(track.at("trackDuration")), 0);
    EXPECT_EQ(textOf(track, "trackDurationHuman"), "00:00:00.00");
}

TEST_F(FileProbeTest, theSpecialInfoDependsOnTheKind)
{
    const FileProbe description = probeOfStreams(
        R"({"codec_type": "audio", "channel_layout": "7.1", "codec_tag_string": "mp4a"},
           {"codec_type": "subtitle", "codec_name": "mov_text", "tags": {"language": "fra"}},
           {"codec_type": "video", "codec_name": "png", "codec_tag_string": "[0][0][0][0]",
            "avg_frame_rate": "0/0", "width": 600, "height": "400"},
           {"codec_type": "data", "codec_tag_string": "tmcd", "tags": {"language": "eng"}},
           {"codec_type": "video", "codec_name": "png", "codec_tag_string": "[0][0][0][0]",
            "avg_frame_rate": "0/0", "height": 400})");
    ASSERT_EQ(description.tracksInfo.size(), 5U);
    EXPECT_EQ(textOf(description.tracksInfo[0], "trackSpecialInfo"), "7.1");
    EXPECT_EQ(textOf(description.tracksInfo[1], "trackSpecialInfo"), "fra");
    EXPECT_EQ(textOf(description.tracksInfo[2], "trackSpecialInfo"), "600x400");
    EXPECT_EQ(textOf(description.tracksInfo[3], "trackSpecialInfo"), "tmcd");
    EXPECT_EQ(textOf(description.tracksInfo[3], "trackLanguage"), "eng");
    EXPECT_EQ(textOf(description.tracksInfo[4], "trackSpecialInfo"), "x400");
}

TEST_F(FileProbeTest, aVideoWithoutACodecNameIsEncryptedAndReadOn)
{
    const FileProbe description
        = probeOfStreams(R"({"codec_type": "video", "width": 640, "height": 480}, {"codec_type": "audio"})");
    EXPECT_TRUE(description.isEncrypted);
    EXPECT_TRUE(description.isValidMediaFile);
    EXPECT_TRUE(description.hasVideoTrack);
    EXPECT_TRUE(description.hasAudioTrack);
    EXPECT_EQ(description.videoWidth, 640);
    EXPECT_EQ(description.tracksInfo.size(), 2U);
}

TEST_F(FileProbeTest, encryptionShowsInAnyVideoStreamAndInNoOther)
{
    EXPECT_TRUE(probeOfStreams(R"({"codec_type": "video", "codec_name": "h264"}, {"codec_type": "video"})")
                    .isEncrypted);
    EXPECT_TRUE(probeOfStreams(R"({"codec_type": "video", "codec_name": null})").isEncrypted);
    EXPECT_FALSE(probeOfStreams(R"({"codec_type": "video", "codec_name": ""})").isEncrypted);
    EXPECT_FALSE(probeOfStreams(R"({"codec_type": "audio"}, {"codec_type": "data"}, {})").isEncrypted);
}

TEST_F(FileProbeTest, aSoundTrackIsAnAudioStream)
{
    EXPECT_TRUE(probeOfStreams(R"({"codec_type": "video"}, {"codec_type": "audio"})").hasAudioTrack);
    EXPECT_FALSE(probeOfStreams(R"({"codec_type": "video"}, {"codec_name": "aac"})").hasAudioTrack);
}

TEST_F(FileProbeTest, moreThanTwoChannelsAreFlagged)
{
    const auto isFlagged = [this](const std::string& streams) {
        return probeOfStreams(streams).hasAudioTrackWhichHasMoreThanTwoChannels;
    };
    EXPECT_TRUE(isFlagged(R"({"codec_type": "audio", "channels": 6})"));
    EXPECT_TRUE(
        isFlagged(R"({"codec_type": "audio", "channels": 2}, {"codec_type": "audio", "channels": 3})"));
    EXPECT_TRUE(isFlagged(R"({"codec_type": "data", "channels": 8})"));
    EXPECT_FALSE(isFlagged(R"({"codec_type": "audio", "channels": 2})"));
    EXPECT_FALSE(isFlagged(R"({"codec_type": "audio", "channels": 2.9})"));
    EXPECT_FALSE(isFlagged(R"({"codec_type": "audio", "channels": -6})"));
    EXPECT_FALSE(isFlagged(R"({"codec_type": "audio", "channels": true})"));
    EXPECT_FALSE(isFlagged(R"({"codec_type": "audio", "channels": null}, {"codec_type": "audio"})"));
}

TEST_F(FileProbeTest, channelsBehindTheFirstHitAreNotRead)
{
    EXPECT_TRUE(
        probeOfStreams(R"({"codec_type": "audio", "channels": 6}, {"codec_type": "audio", "channels": "2"})")
            .hasAudioTrackWhichHasMoreThanTwoChannels);
}

TEST_F(FileProbeTest, aSubtitleTrackIsOneThatCanBeRead)
{
    const auto hasSubtitles
        = [this](const std::string& streams) { return probeOfStreams(streams).hasSubtitleTrack; };
    EXPECT_TRUE(
        hasSubtitles(R"({"codec_type": "subtitle", "codec_name": "mov_text", "codec_tag_string": "tx3g"})"));
    EXPECT_FALSE(
        hasSubtitles(R"({"codec_type": "subtitle", "codec_name": "mov_text", "codec_tag_string": "text"})"));
    EXPECT_FALSE(hasSubtitles(R"({"codec_type": "subtitle", "codec_tag_string": "tx3g"})"));
    EXPECT_TRUE(hasSubtitles(R"({"codec_type": "subtitle", "codec_name": "a", "codec_tag_string": "text"},
        {"codec_type": "subtitle"}, {"codec_type": "subtitle", "codec_name": "subrip"})"));
}

TEST_F(FileProbeTest, quickTimeTextIsNoSubtitle)
{
    const FileProbe description = probeOfStreams(
        R"({"codec_type": "subtitle", "codec_name": "mov_text", "codec_tag_string": "text"})");
    EXPECT_FALSE(description.hasSubtitleTrack);
    EXPECT_EQ(textOf(description.tracksInfo.front(), "trackType"), "Other");
    EXPECT_EQ(textOf(description.tracksInfo.front(), "trackSpecialInfo"), "text");
}

TEST_F(FileProbeTest, streamsThatAreNoObjectsAreOther)
{
    const FileProbe description = probeOfStreams(R"(null, 7, "video", ["video"])");
    EXPECT_TRUE(description.isValidMediaFile);
    EXPECT_EQ(description.numberOfStreams, 4);
    ASSERT_EQ(description.tracksInfo.size(), 4U);
    for (const TrackInfo& track : description.tracksInfo)
        EXPECT_EQ(textOf(track, "trackType"), "Other");
}

TEST_F(FileProbeTest, streamsInAnObjectAreCountedAndNotFound)
{
    const FileProbe description = probeReported(R"({"streams": {"0": {"codec_type": "video"}}})");
    EXPECT_TRUE(description.isValidMediaFile);
    EXPECT_EQ(description.numberOfStreams, 1);
    EXPECT_FALSE(description.hasVideoTrack);
    ASSERT_EQ(description.tracksInfo.size(), 1U);
    EXPECT_EQ(textOf(description.tracksInfo.front(), "trackType"), "Other");
}

TEST_F(FileProbeTest, everyConstructionRunsTheToolAnew)
{
    EXPECT_TRUE(probeReported(R"({"streams": [{}]})").isValidMediaFile);
    EXPECT_TRUE(probeReported(R"({"error": {}})").hasErrors);
}

TEST_F(FileProbeTest, theToolIsWaitedForAsTheCallerSays)
{
    m_tools.setSniffer("print {\"streams\": [{}]}");
    writeFile(path("clip.mp4"), "");
    int waits = 0;
    const BlockingWait onAnotherThread = [&waits](const std::function<void()>& call) {
        ++waits;
        std::jthread(call).join();
    };
    EXPECT_TRUE(FileProbe(path("clip.mp4"), {m_tools.bundle(), onAnotherThread}).isValidMediaFile);
    EXPECT_EQ(waits, 1);
}

TEST_F(FileProbeTest, theToolIsWaitedForAfterItHasClosedItsOutput)
{
    m_tools.setSniffer("print {\"streams\": [{}]}\nclose 1\nsleep 300\ntouch " + path("done"));
    EXPECT_TRUE(probe().isValidMediaFile);
    EXPECT_TRUE(exists(path("done")));
}

TEST_F(FileProbeTest, theToolInheritsStandardInput)
{
    writeFile(path("input"), R"({"streams": [{}, {}, {}]})");
    m_tools.setSniffer("print-file /dev/stdin");
    const int before = ::dup(STDIN_FILENO);
    const int input = ::open(path("input").c_str(), O_RDONLY | O_CLOEXEC);
    ::dup2(input, STDIN_FILENO);
    const FileProbe description = probe();
    ::dup2(before, STDIN_FILENO);
    ::close(before);
    ::close(input);
    EXPECT_EQ(description.numberOfStreams, 3);
}

} // namespace tarnwell::test
