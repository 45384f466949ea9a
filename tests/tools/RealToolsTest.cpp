// SPDX-License-Identifier: MIT
// Both tools with the installed ffprobe and ffmpeg.
#include "tests/tools/RealTools.h"

#include "tests/support/Files.h"
#include "tests/tools/Orientations.h"
#include "tools/TrackMatrix.h"

#include <fcntl.h>
#include <map>
#include <string>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

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

/// The colours of the four quarters, row by row, and whether the picture is wide or tall.
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

/// The result of looks after a quarter turn to the left.
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

class RealToolsTest : public RealTools
{
protected:
    std::string clip() const { return at("clip.mp4"); }
    std::string out() const { return at("out.mp4"); }

    /// Makes a clip of two seconds with sound: red and green above blue and yellow.
    void makeClip(const Words& options = {}) const
    {
        const auto quarter = [](const char* place, const char* colour) {
            return std::string(",drawbox=") + place + ":w=iw/2:h=ih/2:t=fill:color=" + colour;
        };
        makeVideo(clip(),
            "color=size=128x96:rate=10:duration=2" + quarter("x=0:y=0", "0xFF0000")
                + quarter("x=iw/2:y=0", "0x00FF00") + quarter("x=0:y=ih/2", "0x0000FF")
                + quarter("x=iw/2:y=ih/2", "0xFFFF00"),
            joined(joined({"-f", "lavfi", "-i", "sine=duration=2", "-c:a", "aac"}, h264()), options));
    }

    void orient(const DisplayMatrix& matrix) const
    {
        const int file = ::open(clip().c_str(), O_RDWR | O_CLOEXEC);
        ASSERT_TRUE(writeTrackMatrix(file, matrix));
        ::close(file);
    }

    std::string preview(const std::string& path) const { return looks(still(path, "1.0")); }

    /// Compares what players show of each file with its looks.
    void expectShown(const std::map<std::string, std::string>& looksOfFiles) const
    {
        Words files;
        for (const auto& [file, expected] : looksOfFiles)
            files.push_back(file);
        const auto frames = shownFrames(files, "1.0");
        for (std::size_t place = 0; place < files.size(); ++place)
            EXPECT_EQ(looks(frames[place]), looksOfFiles.at(files[place])) << files[place];
    }

    static int rotateTag(const std::string& path)
    {
        return std::stoi(report(path)["streams"][0].value("/tags/rotate"_json_pointer, std::string("0")));
    }

    static int fixFlag(const std::string& from, int degrees, const std::string& to)
    {
        return creator(fixFlagCommand(from, to, "rotate=" + std::to_string(degrees)));
    }
};

TEST_F(RealToolsTest, aFlagTurnsAgainstTheCodedPicture)
{
    makeClip();
    std::map<std::string, std::string> saved;
    for (const auto& before : orientations) {
        if (before.isMirrored)
            continue;
        orient(before.matrix);
        for (const int degrees : {0, 90, 180, 270, -90, 360, 450}) {
            const std::string file = at(before.name + (", " + std::to_string(degrees)) + ".mp4");
            EXPECT_EQ(fixFlag(clip(), degrees, file), 0) << file;
            saved[file] = turnedLeft("RGBY wide", (degrees + 360) / 90 % 4);
        }
    }
    expectShown(saved);
}

TEST_F(RealToolsTest, aFlagAndATranscodeShowTheTurnedPreview)
{
    makeClip();
    std::map<std::string, std::string> saved;
    for (const auto& before : orientations) {
        orient(before.matrix);
        const std::string name = at(before.name);
        const std::string picture = preview(clip());
        EXPECT_EQ(rotateTag(clip()), before.tag) << before.name;
        if (!before.isMirrored) {
            EXPECT_EQ(picture, turnedLeft("RGBY wide", (360 - before.tag) / 90 % 4)) << before.name;
        }
        for (int quarters = 0; quarters < 4; ++quarters) {
            const std::string file = name + ", quarter turns " + std::to_string(quarters) + ".mp4";
            EXPECT_EQ(fixFlag(clip(), 90 * quarters - before.tag, file), 0) << file;
            saved[file] = turnedLeft(picture, quarters);
        }
        const std::string encoded = name + ", encoded.mp4";
        EXPECT_EQ(creator(transcodeCommand(clip(), encoded)), 0) << encoded;
        saved[encoded] = turnedLeft(picture);
    }
    expectShown(saved);
}

TEST_F(RealToolsTest, theReportIsThatOfFfprobeButForTheTag)
{
    makeClip({"-metadata", "title=a \"b\" \xC3\xA4\ntime=00:00:01.00"});
    orient({0, -1, 1, 0});
    auto expected = report(clip(), realFfprobe);
    expected["streams"][0]["tags"]["rotate"] = "270";
    EXPECT_EQ(report(clip()), expected);
}

TEST_F(RealToolsTest, aFileThatIsNoVideoHasAnErrorInItsReport)
{
    writeFile(at("text.mp4"), "no video");
    for (const char* name : {"text.mp4", "none.mp4"}) {
        ToolProcess process(builtSniffer, probeCommand(at(name)));
        EXPECT_EQ(process.wait(), 1);
        EXPECT_TRUE(nlohmann::json::parse(process.output()).contains("error"));
    }
}

TEST_F(RealToolsTest, tagsOfTheFileNeverLookLikeStatusLines)
{
    makeClip({"-metadata", "title=x time=00:00:99.99 y\ntime=N/A", "-metadata:s:v",
        "handler_name=time=88:88:88.88"});
    for (const auto& words : {transcodeCommand(clip(), out()), fixFlagCommand(clip(), out())}) {
        ToolProcess process(builtCreator, words);
        EXPECT_EQ(process.wait(), 0);
        EXPECT_FALSE(process.said("time=").empty());
        for (const auto& rest : process.said("time="))
            EXPECT_TRUE(rest.starts_with("00:00:0")) << rest;
        EXPECT_EQ(report(out())["format"]["tags"]["title"], "x time=00:00:99.99 y\ntime=N/A");
    }
}

TEST_F(RealToolsTest, soundIsKeptAndTheLastStatusLineIsTheDuration)
{
    makeClip();
    for (const auto& words : {transcodeCommand(clip(), out()), fixFlagCommand(clip(), out())}) {
        ToolProcess process(builtCreator, words);
        EXPECT_EQ(process.wait(), 0);
        const auto times = process.said("time=00:00:");
        ASSERT_FALSE(times.empty());
        EXPECT_NEAR(std::stod(times.back()), 2, 0.3);
        const auto streams = report(out())["streams"];
        ASSERT_EQ(streams.size(), 2U);
        EXPECT_EQ(streams[1]["codec_type"], "audio");
        EXPECT_NEAR(std::stod(streams[1]["duration"].get<std::string>()), 2, 0.3);
    }
}

TEST_F(RealToolsTest, namesOfAnyKindWork)
{
    makeClip();
    const std::string before = contentsOf(clip());
    std::map<std::string, std::string> saved;
    for (const std::string name : {"a b.mp4", "-i.mp4", "%03d.mp4", "a:b.mp4", "[x].mp4", "new\nline.mp4",
             "'quoted'.mp4", "\xC3\xA4.mp4", "\xFF.mp4", "no extension", "movie.mkv.txt"}) {
        SCOPED_TRACE(name);
        writeFile(at(name), before);
        EXPECT_EQ(preview(at(name)), "RGBY wide");
        EXPECT_EQ(fixFlag(at(name), 90, at("out " + name)), 0);
        saved[at("out " + name)] = turnedLeft("RGBY wide");
        EXPECT_TRUE(contentsOf(at(name)) == before);
    }
    expectShown(saved);
}

TEST_F(RealToolsTest, anInputThatIsNoVideoLeavesNothing)
{
    writeFile(at("text.mp4"), "no video");
    EXPECT_EQ(fixFlag(at("text.mp4"), 90, out()), 1);
    EXPECT_EQ(creator(transcodeCommand(at("text.mp4"), out())), 1);
    EXPECT_EQ(namesIn(folder()), Words({"text.mp4"}));
}

TEST_F(RealToolsTest, aStillBeyondTheEndIsTheFirstFrame)
{
    makeClip();
    EXPECT_EQ(looks(still(clip(), "100")), "RGBY wide");
}

TEST_F(RealToolsTest, aTruncatedVideoHasAPictureOfItsSize)
{
    makeClip({"-movflags", "faststart"});
    const std::string whole = contentsOf(clip());
    writeFile(clip(), whole.substr(0, whole.size() / 3));
    EXPECT_EQ(still(clip()).size(), QSize(128, 96));
}

} // namespace tarnwell::test
