// SPDX-License-Identifier: MIT
// The streams that creator keeps, and how, in its successive runs of ffmpeg.
#include "tools/Attempts.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Arguments = std::vector<std::string>;
using Kind = MediaStream::Kind;

const Target target = {"/proc/self/fd/7", "mp4"};

MediaStream stream(int index, Kind kind, const std::string& codec, const std::string& tag = {})
{
    MediaStream result;
    result.index = index;
    result.kind = kind;
    result.codec = codec;
    result.tag = tag;
    result.trackId = static_cast<std::uint32_t>(100 + index);
    return result;
}

MediaStream sound(int index, const std::string& codec, int channels = 2, const std::string& layout = "stereo")
{
    MediaStream result = stream(index, Kind::Sound, codec);
    result.channels = channels;
    result.channelLayout = layout;
    return result;
}

/// The facts of a file with these streams. The first video stream is the main one.
MediaFacts factsOf(const std::vector<MediaStream>& streams)
{
    MediaFacts facts;
    facts.streams = streams;
    const auto video = std::find_if(
        streams.begin(), streams.end(), [](const MediaStream& each) { return each.kind == Kind::Video; });
    if (video != streams.end())
        facts.mainVideo = *video;
    return facts;
}

Job jobOf(Job::Kind kind)
{
    Job job;
    job.kind = kind;
    job.input = "in.mov";
    return job;
}

std::vector<Attempt> copies(const std::vector<MediaStream>& streams)
{
    return attemptsFor(jobOf(Job::Kind::FixFlag), factsOf(streams), target);
}

std::vector<Attempt> encodings(const std::vector<MediaStream>& streams)
{
    return attemptsFor(jobOf(Job::Kind::Transcode), factsOf(streams), target);
}

/// The indexes of the mapped input streams, in their order.
std::vector<std::string> mapped(const Attempt& attempt)
{
    std::vector<std::string> indexes;
    for (std::size_t place = 0; place + 1 < attempt.arguments.size(); ++place) {
        if (attempt.arguments[place] == "-map")
            indexes.push_back(attempt.arguments[place + 1]);
    }
    return indexes;
}

bool holds(const Attempt& attempt, const Arguments& part)
{
    const Arguments& list = attempt.arguments;
    return std::search(list.begin(), list.end(), part.begin(), part.end()) != list.end();
}

const MediaStream video = stream(0, Kind::Video, "h264", "avc1");
using Words = std::vector<std::string>;

} // namespace

TEST(AttemptsTest, aCopyKeepsSoundAndTextInTheirOrder)
{
    const auto attempts
        = copies({sound(0, "ac3"), stream(1, Kind::Video, "h264"), stream(2, Kind::Subtitle, "mov_text"),
            sound(3, "aac"), stream(4, Kind::Subtitle, "subrip"), stream(5, Kind::Other, "bin_data", "gpmd"),
            stream(6, Kind::Video, "mjpeg"), stream(7, Kind::Sound, "")});
    ASSERT_EQ(attempts.size(), 2U);
    EXPECT_EQ(mapped(attempts[0]), Words({"0:0", "0:1", "0:2", "0:3"}));
    EXPECT_EQ(attempts[0].trackIds, std::vector<std::uint32_t>({100, 101, 102, 103}));
    EXPECT_TRUE(holds(attempts[0], {"-c", "copy"}));
    EXPECT_TRUE(holds(attempts[0], {"-c:a:0", "copy"}) && holds(attempts[0], {"-c:a:1", "copy"}));
    EXPECT_EQ(attempts[0].notice,
        "tarnwell: stream 4, in subrip, is left out\n"
        "tarnwell: stream 5, in bin_data, is left out\n"
        "tarnwell: stream 6, in mjpeg, is left out\n"
        "tarnwell: stream 7, of an unknown codec, is left out\n");
}

TEST(AttemptsTest, aCopyKeepsTagsAndRecords)
{
    const auto attempts = copies({video});
    EXPECT_TRUE(holds(attempts[0], {"-map_metadata:g", "0:g"}));
    EXPECT_TRUE(holds(attempts[0], {"-strict", "experimental"}));
}

TEST(AttemptsTest, hevcIsLabelledAsPlayersExpect)
{
    struct Row {
        const char* codec;
        const char* tag;
        const char* expected;
    };
    for (const Row& row : {Row{"hevc", "hev1", "hvc1"}, Row{"hevc", "", "hvc1"}, Row{"hevc", "dvhe", "dvh1"},
             Row{"hevc", "dvh1", "dvh1"}}) {
        const auto attempts = copies({stream(0, Kind::Video, row.codec, row.tag)});
        EXPECT_TRUE(holds(attempts[0], {"-tag:v", row.expected})) << row.tag;
    }
    EXPECT_FALSE(holds(copies({video})[0], {"-tag:v"}));
}

TEST(AttemptsTest, soundThatMp4DoesNotHoldIsEncodedInACopy)
{
    struct Row {
        MediaStream sound;
        Arguments options;
        std::string notice; // empty for a copy
    };
    const std::string rounded = ", which can round it to 24 bits";
    const Row rows[] = {
        {sound(1, "aac"), {"-c:a:0", "copy"}, ""},
        {sound(1, "pcm_u8"), {"-c:a:0", "alac"}, "pcm_u8, is encoded as ALAC"},
        {sound(1, "pcm_s24be"), {"-c:a:0", "alac"}, "pcm_s24be, is encoded as ALAC"},
        {sound(1, "pcm_mulaw", 1, "mono"), {"-c:a:0", "alac"}, "pcm_mulaw, is encoded as ALAC"},
        {sound(1, "pcm_s32le"), {"-c:a:0", "alac"}, "pcm_s32le, is encoded as ALAC" + rounded},
        {sound(1, "pcm_f32le"), {"-c:a:0", "alac"}, "pcm_f32le, is encoded as ALAC" + rounded},
        {sound(1, "pcm_f64be", 4, "quad"), {"-c:a:0", "flac"}, "pcm_f64be, is encoded as FLAC" + rounded},
        {sound(1, "pcm_s16le", 6, "5.1"), {"-c:a:0", "alac"}, "pcm_s16le, is encoded as ALAC"},
        {sound(1, "pcm_s16le", 4, "quad"), {"-c:a:0", "flac"}, "pcm_s16le, is encoded as FLAC"},
        {sound(1, "pcm_s16le", 8, "7.1"), {"-c:a:0", "flac"}, "pcm_s16le, is encoded as FLAC"},
        {sound(1, "pcm_s16le", 2, ""), {"-c:a:0", "alac"}, "pcm_s16le, is encoded as ALAC"},
        {sound(1, "pcm_s16le", 3, ""), {"-c:a:0", "flac"}, "pcm_s16le, is encoded as FLAC"},
        {sound(1, "amr_nb", 1, "mono"), {"-c:a:0", "aac", "-filter:a:0"}, "amr_nb, is encoded as AAC"},
        {sound(1, "pcm_s24le", 16, ""), {"-c:a:0", "aac", "-filter:a:0", "pan=stereo|c0=c0|c1=c1"},
            "pcm_s24le, is encoded as AAC, its first two channels only"},
    };
    for (const Row& row : rows) {
        const auto attempts = copies({video, row.sound});
        EXPECT_TRUE(holds(attempts[0], row.options)) << row.notice;
        EXPECT_EQ(
            attempts[0].notice, row.notice.empty() ? "" : "tarnwell: stream 1, in " + row.notice + "\n");
    }
}

TEST(AttemptsTest, soundOptionsCountTheSoundStreamsOfTheOutput)
{
    const auto attempts = copies({sound(0, "pcm_s16le"), video, sound(2, ""), sound(3, "amr_nb")});
    EXPECT_TRUE(holds(attempts[0], {"-c:a:0", "alac"}) && holds(attempts[0], {"-c:a:1", "aac"}));
}

TEST(AttemptsTest, aCopyWithSoundThatOldVersionsRefuseIsFollowedByOneInAac)
{
    for (const char* codec : {"alac", "dts", "flac", "opus", "truehd", "vorbis"}) {
        const auto attempts = copies({video, sound(1, "ac3"), sound(2, codec)});
        ASSERT_EQ(attempts.size(), 3U) << codec;
        EXPECT_TRUE(holds(attempts[0], {"-c:a:0", "copy"}) && holds(attempts[0], {"-c:a:1", "copy"}));
        EXPECT_TRUE(holds(attempts[1], {"-c:a:0", "copy"}) && holds(attempts[1], {"-c:a:1", "aac"}));
        EXPECT_EQ(attempts[1].trackIds, attempts[0].trackIds);
        EXPECT_EQ(
            attempts[1].notice, std::string("tarnwell: stream 2, in ") + codec + ", is encoded as AAC\n");
    }
    EXPECT_TRUE(holds(copies({video, sound(1, "pcm_s16le")})[1], {"-c:a:0", "aac"}));
}

TEST(AttemptsTest, aCopyWithSoundThatCannotBeEncodedIsFollowedByOneWithoutIt)
{
    const auto attempts = copies({video, sound(1, "aac"), sound(2, "opus"), sound(3, "wmapro", 6, "5.1"),
        stream(4, Kind::Subtitle, "mov_text")});
    ASSERT_EQ(attempts.size(), 4U);
    EXPECT_EQ(mapped(attempts[2]), Words({"0:0", "0:1", "0:2", "0:4"}));
    EXPECT_TRUE(holds(attempts[2], {"-c:a:0", "copy"}) && holds(attempts[2], {"-c:a:1", "copy"}));
    EXPECT_TRUE(holds(attempts[2], {"-strict", "experimental"}));
    EXPECT_EQ(attempts[2].trackIds, std::vector<std::uint32_t>({100, 101, 102, 104}));
    EXPECT_EQ(attempts[2].notice, "tarnwell: stream 3, in wmapro, is left out\n");
    EXPECT_EQ(mapped(attempts[3]), Words({"0:0", "0:1"}));
    // A result without any sound does not follow.
    for (const Attempt& attempt : copies({video, sound(1, "wmapro")}))
        EXPECT_EQ(mapped(attempt), Words({"0:0", "0:1"}));
}

// The plain copy has no option that can be the reason for the failure of the first one, but it keeps the date
// and the label that players expect.
TEST(AttemptsTest, aCopyThatFailsIsFollowedByThePlainOne)
{
    const auto attempts = copies({video, sound(1, "aac"), stream(2, Kind::Subtitle, "mov_text")});
    ASSERT_EQ(attempts.size(), 2U);
    EXPECT_EQ(attempts[1].arguments,
        ffmpegArguments(jobOf(Job::Kind::FixFlag), target,
            {"-map", "0:0", "-map", "0:1", "-c:v", "copy", "-c:a", "copy", "-map_metadata:g", "0:g"}));
    EXPECT_EQ(attempts[1].trackIds, std::vector<std::uint32_t>({100, 101}));
    EXPECT_EQ(attempts[1].notice,
        "tarnwell: stream 2, in mov_text, is left out\n"
        "tarnwell: records of Dolby Vision and of spherical video are left out\n");
    EXPECT_TRUE(holds(copies({stream(0, Kind::Video, "hevc", "dvh1")})[1], {"-tag:v", "hvc1"}));
}

TEST(AttemptsTest, everyCopyLosesOrientationMessages)
{
    struct Row {
        const char* codec;
        const char* filter;
    };
    for (const Row& row : {Row{"h264", "h264_metadata=display_orientation=remove"},
             Row{"hevc", "filter_units=remove_types=39-40"}}) {
        MediaFacts facts = factsOf({stream(0, Kind::Video, row.codec), sound(1, "opus")});
        facts.hasOrientationMessage = true;
        const auto attempts = attemptsFor(jobOf(Job::Kind::FixFlag), facts, target);
        ASSERT_EQ(attempts.size(), 3U);
        for (const Attempt& attempt : attempts)
            EXPECT_TRUE(holds(attempt, {"-bsf:v", row.filter})) << row.codec;
        facts.hasOrientationMessage = false;
        for (const Attempt& attempt : attemptsFor(jobOf(Job::Kind::FixFlag), facts, target))
            EXPECT_FALSE(holds(attempt, {"-bsf:v"})) << row.codec;
    }
}

TEST(AttemptsTest, anUnknownInputIsCopiedPlainly)
{
    const auto attempts = copies({});
    ASSERT_EQ(attempts.size(), 1U);
    EXPECT_EQ(attempts[0].arguments,
        ffmpegArguments(
            jobOf(Job::Kind::FixFlag), target, {"-c:v", "copy", "-c:a", "copy", "-map_metadata:g", "0:g"}));
    EXPECT_EQ(attempts[0].notice, "");
}

TEST(AttemptsTest, anEncodingCopiesAacAndEncodesItWhereThatFails)
{
    const auto attempts = encodings({video, sound(1, "aac")});
    ASSERT_EQ(attempts.size(), 3U);
    EXPECT_TRUE(holds(attempts[0], {"-map", "0:0", "-map", "0:1", "-c:a:0", "copy"}));
    EXPECT_EQ(attempts[0].trackIds, std::vector<std::uint32_t>({100, 101}));
    EXPECT_TRUE(holds(attempts[1], {"-map", "0:0", "-map", "0:1", "-c:a:0", "aac"}));
    EXPECT_TRUE(holds(attempts[2], {"-an"}));
    EXPECT_EQ(mapped(attempts[2]), Words({"0:0"}));
    EXPECT_EQ(attempts[2].notice, "tarnwell: stream 1, in aac, is left out\n");
    for (const Attempt& attempt : attempts) {
        EXPECT_TRUE(holds(attempt, {"-map_metadata:g", "0:g"}));
        EXPECT_FALSE(holds(attempt, {"-strict"})); // no records of the old picture
    }
}

TEST(AttemptsTest, anEncodingMapsTheLayoutOfOtherSound)
{
    const std::string known = "aformat=channel_layouts=mono|stereo|2.1|3.0|4.0|quad|5.0|5.1|7.1";
    struct Row {
        int channels;
        const char* layout;
        std::string filter;
    };
    for (const Row& row : {Row{2, "stereo", known}, Row{7, "6.1", known}, Row{7, "", known},
             Row{24, "22.2", known}, Row{11, "", "pan=stereo|c0=c0|c1=c1"}}) {
        const auto attempts = encodings({video, sound(1, "pcm_s16le", row.channels, row.layout)});
        ASSERT_EQ(attempts.size(), 2U);
        EXPECT_TRUE(holds(attempts[0], {"-c:a:0", "aac", "-filter:a:0", row.filter})) << row.layout;
    }
}

TEST(AttemptsTest, anEncodingKeepsTheSoundThatFfmpegWouldChoose)
{
    MediaStream marked = sound(3, "mp3", 1, "mono");
    EXPECT_EQ(
        mapped(encodings({video, sound(1, "aac", 2), sound(2, "ac3", 6), marked})[0]), Words({"0:0", "0:2"}));
    marked.isDefault = true;
    EXPECT_EQ(
        mapped(encodings({video, sound(1, "aac", 2), sound(2, "ac3", 6), marked})[0]), Words({"0:0", "0:3"}));
    EXPECT_EQ(mapped(encodings({video, sound(1, "aac"), sound(2, "aac")})[0]), Words({"0:0", "0:1"}));
    EXPECT_EQ(mapped(encodings({video, sound(1, "", 6), sound(2, "aac")})[0]), Words({"0:0", "0:2"}));
}

TEST(AttemptsTest, aVideoWithoutSoundIsEncodedOnce)
{
    EXPECT_EQ(encodings({video}).size(), 1U);
}

TEST(AttemptsTest, anEncodingNamesWhatItLeavesOut)
{
    const auto attempts = encodings({video, sound(1, "aac"), sound(2, "aac"),
        stream(3, Kind::Other, "bin_data", "text")}); // titles of chapters, which ffmpeg writes again
    EXPECT_EQ(attempts[0].notice, "tarnwell: stream 2, in aac, is left out\n");
}

TEST(AttemptsTest, anEncodingOfAnUnknownInputIsLeftToFfmpeg)
{
    const auto attempts = encodings({});
    ASSERT_EQ(attempts.size(), 2U);
    EXPECT_EQ(attempts[0].arguments,
        ffmpegArguments(jobOf(Job::Kind::Transcode), target, {"-map_metadata:g", "0:g"}));
    EXPECT_TRUE(holds(attempts[1], {"-an"}));
}

} // namespace tarnwell::test
