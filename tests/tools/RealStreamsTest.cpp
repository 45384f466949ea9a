// SPDX-License-Identifier: MIT
// Videos with unusual pixels and sound, processed by creator with the installed ffmpeg.
#include "tests/support/Files.h"
#include "tests/support/Rows.h"
#include "tests/tools/RealTools.h"

#include <algorithm>
#include <random>
#include <string>
#include <utility>
#include <vector>

namespace tarnwell::test
{

class RealStreamsTest : public RealTools
{
protected:
    /// Makes one second of H.264 video with these options of ffmpeg.
    void makeClip(const std::string& path, const std::string& size, const Words& options) const
    {
        makeVideo(path, "testsrc=size=" + size + ":rate=10:duration=1", joined(options, h264()));
    }

    static int fixFlag(const std::string& from, const std::string& to)
    {
        return creator(fixFlagCommand(from, to));
    }
    static int transcode(const std::string& from, const std::string& to)
    {
        return creator(transcodeCommand(from, to));
    }

    static nlohmann::json streamsOf(const std::string& path) { return report(path, realFfprobe)["streams"]; }

    /// A hash of the first sound stream in that codec; "copy" hashes its packets.
    static std::string soundHash(const std::string& path, const std::string& codec = "copy")
    {
        ToolProcess process(realFfmpeg,
            {"-v", "error", "-nostdin", "-i", path, "-map", "0:a:0", "-c:a", codec, "-f", "md5", "-"});
        EXPECT_EQ(process.wait(), 0);
        return process.output();
    }
};

TEST_F(RealStreamsTest, aStillHasTheProportionsThatPlayersShow)
{
    const QSize wide(1024, 576);
    const QSize tall = wide.transposed();
    makeClip(at("wide.mp4"), "720x576", {"-vf", "setsar=64/45"});
    EXPECT_EQ(still(at("wide.mp4")).size(), wide);
    ASSERT_EQ(fixFlag(at("wide.mp4"), at("turned.mp4")), 0);
    EXPECT_EQ(still(at("turned.mp4")).size(), tall);

    ASSERT_EQ(transcode(at("wide.mp4"), at("coded.mp4")), 0);
    EXPECT_EQ(still(at("coded.mp4")).size(), tall);
    EXPECT_EQ(streamsOf(at("coded.mp4"))[0]["display_aspect_ratio"], "9:16");
    ASSERT_EQ(transcode(at("turned.mp4"), at("coded.mp4")), 0);
    EXPECT_EQ(still(at("coded.mp4")).size(), wide);
    EXPECT_EQ(streamsOf(at("coded.mp4"))[0]["display_aspect_ratio"], "16:9");
}

TEST_F(RealStreamsTest, aStillOfALargePictureIsShrunkInsteadOfStretched)
{
    const std::vector<std::pair<std::string, QSize>> rows
        = {{"2/1", {6000, 300}}, {"1/2", {6000, 1200}}, {"1/100", {60, 600}}, {"1/1", {6000, 600}}};
    for (const auto& [pixelAspect, expected] : rows) {
        makeVideo(at("large.mkv"), "testsrc=size=6000x600:rate=10:duration=1",
            {"-frames:v", "1", "-vf", "setsar=" + pixelAspect, "-c:v", "ffv1"});
        EXPECT_EQ(still(at("large.mkv")).size(), expected) << pixelAspect;
    }
}

TEST_F(RealStreamsTest, aacSoundIsCopiedIntoAnEncoding)
{
    const Words options = {"-f", "lavfi", "-i", "sine=duration=1", "-c:a", "aac"};
    for (const char* name : {"clip.mp4", "clip.mkv", "clip.mov"}) {
        makeClip(at(name), "64x48", options);
        ASSERT_EQ(transcode(at(name), at("out.mp4")), 0) << name;
        EXPECT_EQ(soundHash(at("out.mp4")), soundHash(at(name))) << name;
    }
    makeClip(at("clip.ts"), "64x48", options); // AAC with a header in each packet
    ASSERT_EQ(transcode(at("clip.ts"), at("out.mp4")), 0);
    EXPECT_EQ(streamsOf(at("out.mp4"))[1]["codec_name"], "aac");
    EXPECT_EQ(soundHash(at("out.mp4")), soundHash(at("clip.mp4")));
}

TEST_F(RealStreamsTest, soundOfAnyLayoutIsEncoded)
{
    struct Row {
        const char* channels;
        const char* layout; // empty: only the number of channels is known
        int expected;
    };
    writeFile(at("sound.raw"), std::string(96000, 's'));
    for (const Row& row :
        {Row{"7", "6.1", 8}, Row{"6", "5.1(side)", 6}, Row{"11", "", 2}, Row{"16", "", 2}}) {
        SCOPED_TRACE(testing::Message() << row.channels << " " << row.layout);
        Words options = {"-f", "s16le", "-ar", "8000", "-ac", row.channels};
        if (*row.layout != '\0')
            options.insert(options.end(), {"-channel_layout", row.layout});
        makeClip(at("clip.mkv"), "64x48", joined(options, {"-i", at("sound.raw"), "-c:a", "pcm_s16le"}));
        ASSERT_EQ(transcode(at("clip.mkv"), at("out.mp4")), 0);
        const auto streams = streamsOf(at("out.mp4"));
        ASSERT_EQ(streams.size(), 2U);
        EXPECT_EQ(streams[1]["codec_name"], "aac");
        EXPECT_EQ(streams[1]["channels"], row.expected);
    }
}

struct PcmRow {
    const char* name;
    const char* codec;
    int channels;
    const char* layout;
    const char* expected; // the codec in the copy
    const char* kept; // the PCM codec in which both sounds are the same
};

class RealPcmTest : public RealStreamsTest, public testing::WithParamInterface<PcmRow>
{
};

TEST_P(RealPcmTest, isKeptInACopy)
{
    const PcmRow& row = GetParam();
    std::mt19937 random(5);
    std::string noise(static_cast<std::size_t>(4 * 2000 * row.channels), '\0');
    std::generate(noise.begin(), noise.end(), [&random] { return static_cast<char>(random()); });
    writeFile(at("sound.raw"), noise);
    makeClip(at("clip.mov"), "64x48",
        {"-f", "s32le", "-ar", "8000", "-ac", std::to_string(row.channels), "-channel_layout", row.layout,
            "-i", at("sound.raw"), "-c:a", row.codec});
    ASSERT_EQ(streamsOf(at("clip.mov"))[1]["channel_layout"], row.layout);
    ASSERT_EQ(fixFlag(at("clip.mov"), at("out.mp4")), 0);
    EXPECT_EQ(streamsOf(at("out.mp4"))[1]["codec_name"], row.expected);
    EXPECT_EQ(streamsOf(at("out.mp4"))[1]["channels"], row.channels);
    EXPECT_EQ(soundHash(at("out.mp4"), row.kept), soundHash(at("clip.mov"), row.kept));
}

INSTANTIATE_TEST_SUITE_P(Sounds, RealPcmTest,
    testing::Values(PcmRow{"bytes", "pcm_u8", 2, "stereo", "alac", "pcm_u8"},
        PcmRow{"bigEndian16", "pcm_s16be", 1, "mono", "alac", "pcm_s16le"},
        PcmRow{"littleEndian24", "pcm_s24le", 2, "stereo", "alac", "pcm_s24le"},
        PcmRow{"aLaw", "pcm_alaw", 2, "stereo", "alac", "pcm_s16le"},
        PcmRow{"muLaw", "pcm_mulaw", 2, "stereo", "alac", "pcm_s16le"},
        PcmRow{"surround", "pcm_s24le", 6, "5.1", "alac", "pcm_s24le"},
        PcmRow{"quad", "pcm_s16le", 4, "quad", "flac", "pcm_s16le"},
        PcmRow{"side", "pcm_s16le", 6, "5.1(side)", "flac", "pcm_s16le"},
        PcmRow{"eight", "pcm_s24le", 8, "7.1", "flac", "pcm_s24le"},
        // 24 bits remain of the following ones.
        PcmRow{"integer32", "pcm_s32le", 2, "stereo", "alac", "pcm_s24le"},
        PcmRow{"float32", "pcm_f32le", 2, "stereo", "alac", "pcm_s24le"}),
    rowName);

TEST_F(RealStreamsTest, soundWithoutADecoderDoesNotRemoveOtherSound)
{
    makeVideo(at("clip.mov"), "testsrc=size=64x48:rate=10:duration=1",
        joined({"-f", "lavfi", "-i", "sine=duration=1", "-map", "0", "-map", "1", "-map", "1", "-map", "1",
                   "-c:a:0", "aac", "-c:a:1", "pcm_s16be", "-c:a:2", "ac3"},
            h264()));
    std::string bytes = contentsOf(at("clip.mov"));
    bytes.replace(bytes.find("twos"), 4, "mhm1"); // MPEG-H
    writeFile(at("clip.mov"), bytes);
    ToolProcess process(builtCreator, fixFlagCommand(at("clip.mov"), at("out.mp4")));
    ASSERT_EQ(process.wait(), 0);
    const auto streams = streamsOf(at("out.mp4"));
    ASSERT_EQ(streams.size(), 3U);
    EXPECT_EQ(streams[1]["codec_name"], "aac");
    EXPECT_EQ(streams[2]["codec_name"], "ac3");
    EXPECT_NE(process.errorText().find("stream 2, in mpegh_3d_audio, is left out\n"), std::string::npos);
}

} // namespace tarnwell::test
