// SPDX-License-Identifier: MIT
// What creator makes of unusual pixels and sound with the installed ffmpeg.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/ToolProcess.h"

#include <QImage>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Words = std::vector<std::string>;

const std::string ffmpeg = "/usr/bin/ffmpeg";
const std::string creator = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/creator";

} // namespace

class RealStreamsTest : public testing::Test
{
protected:
    std::string at(const std::string& name) const { return m_folder.path() + name; }

    /// One second of video, with these options of ffmpeg's.
    void makeVideo(const std::string& path, const std::string& size, const Words& options) const
    {
        Words words = {
            "-v", "error", "-nostdin", "-f", "lavfi", "-i", "testsrc=size=" + size + ":rate=10:duration=1"};
        words.insert(words.end(), options.begin(), options.end());
        words.insert(words.end(), {"-y", "file:" + path});
        ASSERT_EQ(runTool(ffmpeg, words), 0);
    }

    static Words h264() { return {"-c:v", "libx264", "-preset", "ultrafast", "-pix_fmt", "yuv420p"}; }

    static int fixFlag(const std::string& from, const std::string& to)
    {
        return runTool(
            creator, {"-i", from, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=90", "-y", to});
    }

    static int transcode(const std::string& from, const std::string& to)
    {
        return runTool(creator,
            {"-i", from, "-pix_fmt", "yuv420p", "-vf", "transpose=2", "-metadata:s:v", "rotate=0", "-y", to});
    }

    QSize stillSize(const std::string& path) const
    {
        EXPECT_EQ(runTool(creator,
                      {"-v", "quiet", "-ss", "0.5", "-i", path, "-frames:v", "1", "-y", at("still.jpg")}),
            0);
        return QImage(QString::fromStdString(at("still.jpg"))).size();
    }

    /// ffprobe's report on the streams.
    static nlohmann::json streamsOf(const std::string& path)
    {
        ToolProcess process(
            "/usr/bin/ffprobe", {"-v", "quiet", "-print_format", "json", "-show_streams", path});
        EXPECT_EQ(process.wait(), 0);
        return nlohmann::json::parse(process.output())["streams"];
    }

    /// A hash of the packets of the first sound stream.
    static std::string soundHash(const std::string& path)
    {
        ToolProcess process(
            ffmpeg, {"-v", "error", "-nostdin", "-i", path, "-map", "0:a:0", "-c", "copy", "-f", "md5", "-"});
        EXPECT_EQ(process.wait(), 0);
        return process.output();
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(RealStreamsTest, aStillHasTheProportionsThatPlayersShow)
{
    Words options = {"-vf", "setsar=64/45"};
    const Words coding = h264();
    options.insert(options.end(), coding.begin(), coding.end());
    makeVideo(at("wide.mp4"), "720x576", options);
    EXPECT_EQ(stillSize(at("wide.mp4")), QSize(1024, 576));
    ASSERT_EQ(fixFlag(at("wide.mp4"), at("turned.mp4")), 0);
    EXPECT_EQ(stillSize(at("turned.mp4")), QSize(576, 1024));

    ASSERT_EQ(transcode(at("wide.mp4"), at("coded.mp4")), 0);
    EXPECT_EQ(stillSize(at("coded.mp4")), QSize(576, 1024));
    EXPECT_EQ(streamsOf(at("coded.mp4"))[0]["display_aspect_ratio"], "9:16");
    ASSERT_EQ(transcode(at("turned.mp4"), at("coded.mp4")), 0);
    EXPECT_EQ(stillSize(at("coded.mp4")), QSize(1024, 576));
    EXPECT_EQ(streamsOf(at("coded.mp4"))[0]["display_aspect_ratio"], "16:9");
}

TEST_F(RealStreamsTest, aStillOfALargePictureIsShrunkInsteadOfStretched)
{
    struct Row {
        const char* pixels;
        QSize expected;
    };
    for (const Row& row : {Row{"2/1", {6000, 300}}, Row{"1/2", {6000, 1200}}, Row{"1/100", {60, 600}},
             Row{"1/1", {6000, 600}}}) {
        SCOPED_TRACE(row.pixels);
        makeVideo(at("large.mkv"), "6000x600",
            {"-frames:v", "1", "-vf", std::string("setsar=") + row.pixels, "-c:v", "ffv1"});
        EXPECT_EQ(stillSize(at("large.mkv")), row.expected);
    }
}

TEST_F(RealStreamsTest, aacSoundIsCopiedIntoAnEncoding)
{
    Words options = {"-f", "lavfi", "-i", "sine=duration=1", "-c:a", "aac"};
    const Words coding = h264();
    options.insert(options.end(), coding.begin(), coding.end());
    for (const char* name : {"clip.mp4", "clip.mkv", "clip.mov"}) {
        SCOPED_TRACE(name);
        makeVideo(at(name), "64x48", options);
        ASSERT_EQ(transcode(at(name), at("out.mp4")), 0);
        EXPECT_EQ(soundHash(at("out.mp4")), soundHash(at(name)));
    }
    makeVideo(at("clip.ts"), "64x48", options); // there each packet has a header
    ASSERT_EQ(transcode(at("clip.ts"), at("out.mp4")), 0);
    EXPECT_EQ(streamsOf(at("out.mp4"))[1]["codec_name"], "aac");
    makeVideo(at("clip.mp4"), "64x48", options);
    EXPECT_EQ(soundHash(at("out.mp4")), soundHash(at("clip.mp4")));
}

TEST_F(RealStreamsTest, soundOfAnyLayoutIsEncoded)
{
    struct Row {
        const char* channels;
        const char* layout; // empty: ffmpeg knows the number of channels only
        int expected;
    };
    for (const Row& row :
        {Row{"7", "6.1", 8}, Row{"6", "5.1(side)", 6}, Row{"11", "", 2}, Row{"16", "", 2}}) {
        SCOPED_TRACE(testing::Message() << row.channels << " " << row.layout);
        writeFile(at("sound.raw"), std::string(96000, 's'));
        Words options = {"-f", "s16le", "-ar", "8000", "-ac", row.channels};
        if (*row.layout != '\0')
            options.insert(options.end(), {"-channel_layout", row.layout});
        options.insert(options.end(), {"-i", at("sound.raw"), "-c:a", "pcm_s16le"});
        const Words coding = h264();
        options.insert(options.end(), coding.begin(), coding.end());
        makeVideo(at("clip.mkv"), "64x48", options);
        ASSERT_EQ(transcode(at("clip.mkv"), at("out.mp4")), 0);
        const auto streams = streamsOf(at("out.mp4"));
        ASSERT_EQ(streams.size(), 2U);
        EXPECT_EQ(streams[1]["codec_name"], "aac");
        EXPECT_EQ(streams[1]["channels"], row.expected);
    }
}

TEST_F(RealStreamsTest, uncompressedSoundIsKeptWithoutLossInACopy)
{
    Words options
        = {"-f", "lavfi", "-i", "anoisesrc=duration=1:sample_rate=8000", "-c:a", "pcm_s16be", "-ac", "2"};
    const Words coding = h264();
    options.insert(options.end(), coding.begin(), coding.end());
    makeVideo(at("clip.mov"), "64x48", options);
    ASSERT_EQ(fixFlag(at("clip.mov"), at("out.mp4")), 0);
    const auto samples = [](const std::string& path) {
        ToolProcess process(ffmpeg,
            {"-v", "error", "-nostdin", "-i", path, "-map", "0:a:0", "-c:a", "pcm_s16le", "-f", "md5", "-"});
        EXPECT_EQ(process.wait(), 0);
        return process.output();
    };
    EXPECT_EQ(samples(at("out.mp4")), samples(at("clip.mov")));
}

} // namespace tarnwell::test
