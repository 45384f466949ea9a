// SPDX-License-Identifier: MIT
// Videos with unusual pixels and sound, processed by creator with the installed ffmpeg.
#include "tests/support/Files.h"
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

    struct Sound {
        std::string path;
        std::string codec = "copy"; // hashes the packets
        int number = 0; // among the sound streams of the file
    };

    /// Hashes of the sounds in these codecs, computed by one process.
    std::vector<std::string> hashesOf(const std::vector<Sound>& sounds) const
    {
        Words inputs;
        Words outputs;
        for (std::size_t place = 0; place < sounds.size(); ++place) {
            const std::string input = std::to_string(place);
            inputs = joined(inputs, {"-i", sounds[place].path});
            outputs = joined(outputs,
                {"-map", input + ":a:" + std::to_string(sounds[place].number), "-c:a", sounds[place].codec,
                    "-f", "md5", "-y", at("hash" + input)});
        }
        runFfmpeg(joined(inputs, outputs));
        std::vector<std::string> hashes;
        for (std::size_t place = 0; place < sounds.size(); ++place)
            hashes.push_back(contentsOf(at("hash" + std::to_string(place))));
        return hashes;
    }
};

TEST_F(RealStreamsTest, aStillHasTheProportionsThatPlayersShow)
{
    const QSize wide(128, 72);
    const QSize tall = wide.transposed();
    makeClip(at("wide.mp4"), "90x72", {"-vf", "setsar=64/45"});
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
        = {{"2/1", {6000, 50}}, {"1/2", {6000, 200}}, {"1/100", {60, 100}}, {"1/1", {6000, 100}}};
    Words outputs;
    for (std::size_t row = 0; row < rows.size(); ++row)
        outputs = joined(outputs,
            {"-frames:v", "1", "-vf", "setsar=" + rows[row].first, "-c:v", "rawvideo", "-pix_fmt", "yuv420p",
                "-y", at(std::to_string(row) + ".mkv")});
    runFfmpeg(joined({"-f", "lavfi", "-i", "color=size=6000x100"}, outputs));
    for (std::size_t row = 0; row < rows.size(); ++row)
        EXPECT_EQ(still(at(std::to_string(row) + ".mkv"), "0").size(), rows[row].second) << rows[row].first;
}

TEST_F(RealStreamsTest, aacSoundIsCopiedIntoAnEncoding)
{
    const Words names = {"clip.mp4", "clip.mkv", "clip.mov", "clip.ts"};
    Words outputs;
    for (const auto& name : names)
        outputs = joined(outputs, joined(h264(), {"-c:a", "aac", "-y", at(name)}));
    runFfmpeg(joined({"-f", "lavfi", "-i", "testsrc=size=64x48:rate=10:duration=1", "-f", "lavfi", "-i",
                         "sine=duration=1"},
        outputs));
    std::vector<Sound> sounds;
    for (const auto& name : names) {
        ASSERT_EQ(transcode(at(name), at(name + ".mp4")), 0) << name;
        sounds.push_back({at(name)});
        sounds.push_back({at(name + ".mp4")});
    }
    sounds[6] = {at("clip.mp4")}; // in a transport stream each packet of AAC has a header
    const auto hashes = hashesOf(sounds);
    for (std::size_t place = 0; place < names.size(); ++place)
        EXPECT_EQ(hashes[2 * place + 1], hashes[2 * place]) << names[place];
    EXPECT_EQ(streamsOf(at("clip.ts.mp4"))[1]["codec_name"], "aac");
}

TEST_F(RealStreamsTest, soundOfAnyLayoutIsEncoded)
{
    struct Row {
        const char* channels;
        const char* layout; // empty: only the number of channels is known
        int expected;
    };
    const std::vector<Row> rows = {{"7", "6.1", 8}, {"6", "5.1(side)", 6}, {"11", "", 2}, {"16", "", 2}};
    writeFile(at("sound.raw"), std::string(96000, 's'));
    Words inputs = {"-f", "lavfi", "-i", "testsrc=size=64x48:rate=10:duration=1"};
    Words outputs;
    for (const Row& row : rows) {
        inputs = joined(inputs, {"-f", "s16le", "-ar", "8000", "-ac", row.channels});
        if (*row.layout != '\0')
            inputs = joined(inputs, {"-channel_layout", row.layout});
        inputs = joined(inputs, {"-i", at("sound.raw")});
        const std::string number = std::to_string(&row - rows.data() + 1);
        outputs = joined(outputs, joined(h264(), {"-map", "0", "-map", number, "-c:a", "pcm_s16le", "-y"}));
        outputs.push_back(at(std::string(row.channels) + ".mkv"));
    }
    runFfmpeg(joined(inputs, outputs));
    for (const Row& row : rows) {
        SCOPED_TRACE(testing::Message() << row.channels << " " << row.layout);
        ASSERT_EQ(transcode(at(std::string(row.channels) + ".mkv"), at("out.mp4")), 0);
        const auto streams = streamsOf(at("out.mp4"));
        ASSERT_EQ(streams.size(), 2U);
        EXPECT_EQ(streams[1]["codec_name"], "aac");
        EXPECT_EQ(streams[1]["channels"], row.expected);
    }
}

struct PcmRow {
    const char* codec;
    int channels;
    const char* layout;
    const char* expected; // the codec in the copy
    const char* kept; // the PCM codec in which both sounds are the same
};

const std::vector<PcmRow> pcmRows = {{"pcm_u8", 2, "stereo", "alac", "pcm_u8"},
    {"pcm_s16be", 1, "mono", "alac", "pcm_s16le"}, {"pcm_s24le", 2, "stereo", "alac", "pcm_s24le"},
    {"pcm_alaw", 2, "stereo", "alac", "pcm_s16le"}, {"pcm_mulaw", 2, "stereo", "alac", "pcm_s16le"},
    {"pcm_s24le", 6, "5.1", "alac", "pcm_s24le"}, {"pcm_s16le", 4, "quad", "flac", "pcm_s16le"},
    {"pcm_s16le", 6, "5.1(side)", "flac", "pcm_s16le"}, {"pcm_s24le", 8, "7.1", "flac", "pcm_s24le"},
    // 24 bits remain of the following ones.
    {"pcm_s32le", 2, "stereo", "alac", "pcm_s24le"}, {"pcm_f32le", 2, "stereo", "alac", "pcm_s24le"}};

class RealPcmTest : public RealStreamsTest
{
protected:
    /// A clip with a sound of noise for each row.
    void makePcmClip() const
    {
        std::mt19937 random(5);
        std::string noise(std::size_t(64000), '\0');
        std::generate(noise.begin(), noise.end(), [&random] { return static_cast<char>(random()); });
        writeFile(at("sound.raw"), noise);
        Words inputs;
        Words streams = {"-map", "0"};
        for (std::size_t place = 0; place < pcmRows.size(); ++place) {
            const PcmRow& row = pcmRows[place];
            inputs = joined(inputs,
                {"-f", "s32le", "-ar", "8000", "-ac", std::to_string(row.channels), "-channel_layout",
                    row.layout, "-i", at("sound.raw")});
            streams = joined(
                streams, {"-map", std::to_string(place + 1), "-c:a:" + std::to_string(place), row.codec});
        }
        makeClip(at("clip.mov"), "64x48", joined(inputs, streams));
    }
};

TEST_F(RealPcmTest, everySoundIsKeptInACopy)
{
    makePcmClip();
    ASSERT_EQ(fixFlag(at("clip.mov"), at("out.mp4")), 0);
    const auto before = streamsOf(at("clip.mov"));
    const auto after = streamsOf(at("out.mp4"));
    ASSERT_EQ(before.size(), pcmRows.size() + 1);
    ASSERT_EQ(after.size(), before.size());
    std::vector<Sound> sounds;
    for (std::size_t place = 0; place < pcmRows.size(); ++place) {
        const PcmRow& row = pcmRows[place];
        SCOPED_TRACE(testing::Message() << row.codec << ", " << row.layout);
        EXPECT_EQ(before[place + 1]["codec_name"], row.codec);
        EXPECT_EQ(before[place + 1]["channel_layout"], row.layout);
        EXPECT_EQ(after[place + 1]["codec_name"], row.expected);
        EXPECT_EQ(after[place + 1]["channels"], row.channels);
        for (const char* file : {"clip.mov", "out.mp4"})
            sounds.push_back({at(file), row.kept, static_cast<int>(place)});
    }
    const auto hashes = hashesOf(sounds);
    for (std::size_t place = 0; place < pcmRows.size(); ++place)
        EXPECT_EQ(hashes[2 * place + 1], hashes[2 * place]) << pcmRows[place].codec << pcmRows[place].layout;
}

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
