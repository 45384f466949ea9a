// SPDX-License-Identifier: MIT
// Both tools with the installed ffprobe and ffmpeg.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/ToolProcess.h"
#include "tools/TrackMatrix.h"

#include <QImage>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <fcntl.h>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Words = std::vector<std::string>;

const std::string ffmpeg = "/usr/bin/ffmpeg";
const std::string ffprobe = "/usr/bin/ffprobe";
const std::string creator = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/creator";
const std::string sniffer = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/sniffer";

struct Orientation {
    const char* name;
    DisplayMatrix matrix;
};

const std::vector<Orientation> orientations = {
    {"as coded", {1, 0, 0, 1}},
    {"a quarter turn to the left", {0, -1, 1, 0}},
    {"a half turn", {-1, 0, 0, -1}},
    {"a quarter turn to the right", {0, 1, -1, 0}},
    {"left and right exchanged", {-1, 0, 0, 1}},
    {"top and bottom exchanged", {1, 0, 0, -1}},
    {"mirrored at the falling diagonal", {0, 1, 1, 0}},
    {"mirrored at the rising diagonal", {0, -1, -1, 0}},
};

QImage pictureIn(const std::string& path)
{
    const std::string bytes = contentsOf(path);
    return QImage::fromData(QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

char colourAt(const QImage& picture, int x, int y)
{
    const QColor colour = picture.pixelColor(x, y);
    constexpr int bright = 128;
    const bool red = colour.red() > bright;
    const bool green = colour.green() > bright;
    if (red && green)
        return 'Y';
    if (red)
        return 'R';
    if (green)
        return 'G';
    return colour.blue() > bright ? 'B' : '?';
}

/// The colours of the four quarters, row by row, and which way the picture lies.
std::string looks(const QImage& picture)
{
    const int x = picture.width() / 4;
    const int y = picture.height() / 4;
    if (picture.isNull())
        return "no picture";
    std::string text;
    for (const int row : {y, 3 * y}) {
        for (const int column : {x, 3 * x})
            text += colourAt(picture, column, row);
    }
    return text + (picture.width() > picture.height() ? " wide" : " tall");
}

/// What a quarter turn to the left makes of such looks.
std::string turnedLeft(const std::string& looks)
{
    const std::string corners = {looks[1], looks[3], looks[0], looks[2]};
    return corners + (looks.substr(4) == " wide" ? " tall" : " wide");
}

std::string turnedLeft(std::string looks, int quarters)
{
    for (int quarter = 0; quarter < quarters; ++quarter)
        looks = turnedLeft(looks);
    return looks;
}

} // namespace

class RealToolsTest : public testing::Test
{
protected:
    std::string at(const std::string& name) const { return m_folder.path() + name; }

    /// Red and green above blue and yellow, two seconds, with a tone.
    void makeVideo(const std::string& path, const Words& more = {}) const
    {
        const auto quarter = [](const char* place, const char* colour) {
            return std::string("drawbox=") + place + ":w=iw/2:h=ih/2:t=fill:color=" + colour;
        };
        const std::string filter = quarter("x=0:y=0", "0xFF0000") + "," + quarter("x=iw/2:y=0", "0x00FF00")
            + "," + quarter("x=0:y=ih/2", "0x0000FF") + "," + quarter("x=iw/2:y=ih/2", "0xFFFF00");
        Words words = {"-v", "error", "-nostdin", "-f", "lavfi", "-i", "color=size=128x96:rate=10:duration=2",
            "-f", "lavfi", "-i", "sine=duration=2", "-vf", filter, "-c:v", "libx264", "-pix_fmt", "yuv420p",
            "-c:a", "aac"};
        words.insert(words.end(), more.begin(), more.end());
        words.insert(words.end(), {"-y", "file:" + path});
        ASSERT_EQ(runTool(ffmpeg, words), 0);
    }

    void orient(const std::string& path, const DisplayMatrix& matrix) const
    {
        const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_TRUE(writeTrackMatrix(file, matrix));
        ::close(file);
    }

    /// The still that the preview shows.
    std::string still(const std::string& path) const
    {
        EXPECT_EQ(runTool(creator,
                      {"-v", "quiet", "-ss", "1.0", "-i", path, "-frames:v", "1", "-y", at("still.jpg")}),
            0);
        return looks(pictureIn(at("still.jpg")));
    }

    /// What any player shows.
    std::string shown(const std::string& path) const
    {
        EXPECT_EQ(runTool(ffmpeg,
                      {"-v", "error", "-nostdin", "-ss", "1.0", "-i", "file:" + path, "-frames:v", "1", "-y",
                          at("shown.png")}),
            0);
        return looks(pictureIn(at("shown.png")));
    }

    nlohmann::json report(const std::string& path) const
    {
        ToolProcess process(sniffer,
            {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-show_chapters",
                "-show_error", path});
        EXPECT_EQ(process.wait(), 0);
        return nlohmann::json::parse(process.output());
    }

    int rotateTag(const std::string& path) const
    {
        return std::stoi(report(path)["streams"][0].value("/tags/rotate"_json_pointer, std::string("0")));
    }

    static int fixFlag(const std::string& from, int degrees, const std::string& to)
    {
        return runTool(creator,
            {"-i", from, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=" + std::to_string(degrees),
                "-y", to});
    }

    static Words transcode(const std::string& from, const std::string& to)
    {
        return {
            "-i", from, "-pix_fmt", "yuv420p", "-vf", "transpose=2", "-metadata:s:v", "rotate=0", "-y", to};
    }

private:
    TemporaryDirectory m_folder;
};

TEST_F(RealToolsTest, aFlagTurnsAgainstTheCodedPicture)
{
    makeVideo(at("clip.mp4"));
    for (const auto& before : {orientations[0], orientations[1], orientations[2], orientations[3]}) {
        orient(at("clip.mp4"), before.matrix);
        for (const int degrees : {0, 90, 180, 270, -90, 360, 450}) {
            SCOPED_TRACE(testing::Message() << before.name << ", " << degrees);
            EXPECT_EQ(fixFlag(at("clip.mp4"), degrees, at("out.mp4")), 0);
            EXPECT_EQ(shown(at("out.mp4")), turnedLeft("RGBY wide", (degrees + 360) / 90 % 4));
        }
    }
}

TEST_F(RealToolsTest, aFlagShowsWhatThePreviewShowed)
{
    makeVideo(at("clip.mp4"));
    for (const auto& before : orientations) {
        orient(at("clip.mp4"), before.matrix);
        const std::string preview = still(at("clip.mp4"));
        const int tag = rotateTag(at("clip.mp4"));
        for (int quarters = 0; quarters < 4; ++quarters) {
            SCOPED_TRACE(testing::Message() << before.name << ", quarter turns: " << quarters);
            EXPECT_EQ(fixFlag(at("clip.mp4"), 90 * quarters - tag, at("out.mp4")), 0);
            EXPECT_EQ(shown(at("out.mp4")), turnedLeft(preview, quarters));
        }
    }
}

TEST_F(RealToolsTest, aTranscodeShowsWhatThePreviewShowed)
{
    makeVideo(at("clip.mp4"));
    for (const auto& before : orientations) {
        SCOPED_TRACE(before.name);
        orient(at("clip.mp4"), before.matrix);
        const std::string preview = still(at("clip.mp4"));
        EXPECT_EQ(runTool(creator, transcode(at("clip.mp4"), at("out.mp4"))), 0);
        EXPECT_EQ(shown(at("out.mp4")), turnedLeft(preview));
    }
}

TEST_F(RealToolsTest, theRotationTagIsWhatTheDecoderApplies)
{
    makeVideo(at("clip.mp4"));
    const std::vector<int> tags = {0, 270, 180, 90};
    for (std::size_t row = 0; row < tags.size(); ++row) {
        SCOPED_TRACE(orientations[row].name);
        orient(at("clip.mp4"), orientations[row].matrix);
        EXPECT_EQ(rotateTag(at("clip.mp4")), tags[row]);
        EXPECT_EQ(still(at("clip.mp4")), turnedLeft("RGBY wide", (360 - tags[row]) / 90 % 4));
    }
}

TEST_F(RealToolsTest, theReportIsThatOfFfprobeButForTheTag)
{
    makeVideo(at("clip.mp4"), {"-metadata", "title=a \"b\" \xC3\xA4\ntime=00:00:01.00"});
    orient(at("clip.mp4"), orientations[1].matrix);
    ToolProcess bare(ffprobe,
        {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-show_chapters",
            "-show_error", at("clip.mp4")});
    EXPECT_EQ(bare.wait(), 0);
    auto expected = nlohmann::json::parse(bare.output());
    expected["streams"][0]["tags"]["rotate"] = "270";
    EXPECT_EQ(report(at("clip.mp4")), expected);
}

TEST_F(RealToolsTest, aFileThatIsNoneHasAnErrorInItsReport)
{
    writeFile(at("text.mp4"), "no video");
    for (const char* name : {"text.mp4", "none.mp4"}) {
        ToolProcess process(sniffer,
            {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", "-show_chapters",
                "-show_error", at(name)});
        EXPECT_EQ(process.wait(), 1);
        EXPECT_TRUE(nlohmann::json::parse(process.output()).contains("error"));
    }
}

TEST_F(RealToolsTest, tagsOfTheFileNeverLookLikeStatusLines)
{
    makeVideo(at("clip.mp4"),
        {"-metadata", "title=x time=00:00:99.99 y\ntime=N/A", "-metadata:s:v",
            "handler_name=time=88:88:88.88"});
    for (const auto& words : {transcode(at("clip.mp4"), at("out.mp4")),
             Words{"-i", at("clip.mp4"), "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=90", "-y",
                 at("out.mp4")}}) {
        ToolProcess process(creator, words);
        EXPECT_EQ(process.wait(), 0);
        EXPECT_FALSE(process.said("time=").empty());
        for (const auto& rest : process.said("time="))
            EXPECT_TRUE(rest.starts_with("00:00:0")) << rest;
        EXPECT_EQ(report(at("out.mp4"))["format"]["tags"]["title"], "x time=00:00:99.99 y\ntime=N/A");
    }
}

TEST_F(RealToolsTest, theLastStatusLineIsTheLength)
{
    makeVideo(at("clip.mp4"));
    ToolProcess process(creator, transcode(at("clip.mp4"), at("out.mp4")));
    EXPECT_EQ(process.wait(), 0);
    const auto times = process.said("time=00:00:");
    ASSERT_FALSE(times.empty());
    EXPECT_NEAR(std::stod(times.back()), 2, 0.3);
}

TEST_F(RealToolsTest, soundIsKept)
{
    makeVideo(at("clip.mp4"));
    EXPECT_EQ(fixFlag(at("clip.mp4"), 90, at("flag.mp4")), 0);
    EXPECT_EQ(runTool(creator, transcode(at("clip.mp4"), at("coded.mp4"))), 0);
    for (const char* name : {"flag.mp4", "coded.mp4"}) {
        const auto streams = report(at(name))["streams"];
        ASSERT_EQ(streams.size(), 2U) << name;
        EXPECT_EQ(streams[1]["codec_type"], "audio");
        EXPECT_NEAR(std::stod(streams[1]["duration"].get<std::string>()), 2, 0.3);
    }
}

TEST_F(RealToolsTest, namesOfAnyKindWork)
{
    for (const std::string name : {"a b.mp4", "-i.mp4", "%03d.mp4", "a:b.mp4", "[x].mp4", "new\nline.mp4",
             "'quoted'.mp4", "\xC3\xA4.mp4", "\xFF.mp4", "no extension", "movie.mkv.txt"}) {
        SCOPED_TRACE(name);
        makeVideo(at("made.mp4"));
        ASSERT_EQ(::rename(at("made.mp4").c_str(), at(name).c_str()), 0);
        const std::string before = contentsOf(at(name));
        EXPECT_EQ(still(at(name)), "RGBY wide");
        EXPECT_EQ(fixFlag(at(name), 90, at("out " + name)), 0);
        EXPECT_EQ(shown(at("out " + name)), turnedLeft("RGBY wide"));
        EXPECT_EQ(contentsOf(at(name)), before);
    }
}

TEST_F(RealToolsTest, anInputThatIsNoVideoLeavesNothing)
{
    writeFile(at("text.mp4"), "no video");
    EXPECT_EQ(fixFlag(at("text.mp4"), 90, at("out.mp4")), 1);
    EXPECT_EQ(runTool(creator, transcode(at("text.mp4"), at("out.mp4"))), 1);
    EXPECT_EQ(namesIn(at("")), Words({"text.mp4"}));
}

TEST_F(RealToolsTest, aStillBeyondTheEndIsTheFirstFrame)
{
    makeVideo(at("clip.mp4"));
    EXPECT_EQ(runTool(creator,
                  {"-v", "quiet", "-ss", "100", "-i", at("clip.mp4"), "-frames:v", "1", "-y", at("s.jpg")}),
        0);
    EXPECT_EQ(looks(pictureIn(at("s.jpg"))), "RGBY wide");
}

TEST_F(RealToolsTest, aTruncatedVideoStillHasAPictureOfSomeKind)
{
    makeVideo(at("clip.mp4"), {"-movflags", "faststart"});
    const std::string whole = contentsOf(at("clip.mp4"));
    writeFile(at("clip.mp4"), whole.substr(0, whole.size() / 3));
    EXPECT_NE(still(at("clip.mp4")), "no picture");
    EXPECT_EQ(pictureIn(at("still.jpg")).size(), QSize(128, 96));
}

} // namespace tarnwell::test
