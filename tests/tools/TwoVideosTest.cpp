// SPDX-License-Identifier: MIT
// Files with two video tracks of different size, colour and turn: the still, the report, the flag and the
// transcode use the same track.
#include "platform/TemporaryDirectory.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/ToolProcess.h"

#include <QColor>
#include <QImage>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <ostream>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Words = std::vector<std::string>;

const std::string ffmpeg = "/usr/bin/ffmpeg";
const std::string creator = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/creator";
const std::string sniffer = TARNWELL_BUILD_FOLDER "/libexec/tarnwell/sniffer";

struct Track {
    const char* colour;
    QSize size; // coded
    int rotation; // clockwise, as sniffer reports it
};

struct TwoVideosRow {
    const char* name;
    Track first;
    Track second;
    const char* extension; // MP4 is copied byte by byte; ffmpeg copies the streams of a MOV file
};

/// Copies a Matroska file and makes the element DefaultDuration of its first track an element Void.
void removeFirstFrameRate(const std::string& from, const std::string& to)
{
    using namespace std::string_literals;
    const std::string defaultDuration = "\x23\xE3\x83\x84"; // with a size of 4 bytes
    const std::string voidOfSameSize = "\xEC\x86\0\0\0\0\0\0"s;
    std::string bytes = contentsOf(from);
    const auto place = bytes.find(defaultDuration);
    ASSERT_NE(place, std::string::npos);
    bytes.replace(place, voidOfSameSize.size(), voidOfSameSize);
    writeFile(to, bytes);
}

void PrintTo(const TwoVideosRow& row, std::ostream* stream)
{
    *stream << row.name << " in " << row.extension;
}

} // namespace

class TwoVideosTest : public testing::TestWithParam<TwoVideosRow>
{
protected:
    void SetUp() override
    {
        const TwoVideosRow& row = GetParam();
        makeTrack(row.first, at("first.mp4"));
        makeTrack(row.second, at("second.mp4"));
        ASSERT_EQ(runTool(ffmpeg,
                      {"-v", "error", "-nostdin", "-i", at("first.mp4"), "-i", at("second.mp4"), "-map",
                          "0:v", "-map", "1:v", "-c", "copy", "-y", input()}),
            0);
    }

    std::string at(const std::string& name) const { return m_folder.path() + name; }
    std::string input() const { return at(std::string("clip.") + GetParam().extension); }

    /// The flag that the application requests: `turn` counterclockwise, minus the reported rotation.
    static Words flag(int turn, int reported, const std::string& from, const std::string& to)
    {
        return {"-i", from, "-c:v", "copy", "-c:a", "copy", "-metadata:s:v",
            "rotate=" + std::to_string(turn - reported), "-y", to};
    }

    void makeTrack(const Track& track, const std::string& path) const
    {
        const std::string source = std::string("color=") + track.colour + ":rate=10:duration=1:size="
            + std::to_string(track.size.width()) + "x" + std::to_string(track.size.height());
        ASSERT_EQ(runTool(ffmpeg,
                      {"-v", "error", "-nostdin", "-f", "lavfi", "-i", source, "-c:v", "libx264", "-preset",
                          "ultrafast", "-pix_fmt", "yuv420p", "-y", at("upright.mp4")}),
            0);
        ASSERT_EQ(runTool(creator, flag(-track.rotation, 0, at("upright.mp4"), path)), 0);
    }

    QImage stillOf(const std::string& path) const
    {
        EXPECT_EQ(runTool(creator,
                      {"-v", "quiet", "-ss", "0.5", "-i", path, "-frames:v", "1", "-y", at("still.jpg")}),
            0);
        return QImage(QString::fromStdString(at("still.jpg")));
    }

    /// The rotation that the application reads from the report: that of the first video with a frame rate.
    int reportedRotation() const
    {
        ToolProcess process(
            sniffer, {"-v", "quiet", "-print_format", "json", "-show_format", "-show_streams", input()});
        EXPECT_EQ(process.wait(), 0);
        const auto tags = nlohmann::json::parse(process.output())["streams"][0]["tags"];
        return std::stoi(tags.value("rotate", "0"));
    }

    static void expectPicture(const QImage& picture, const QSize& size)
    {
        EXPECT_EQ(picture.size(), size);
        const QColor expected(GetParam().first.colour);
        const QColor found = picture.pixelColor(picture.width() / 2, picture.height() / 2);
        const int difference = std::abs(expected.red() - found.red())
            + std::abs(expected.green() - found.green()) + std::abs(expected.blue() - found.blue());
        EXPECT_LT(difference, 60) << found.name().toStdString();
    }

private:
    TemporaryDirectory m_folder;
};

TEST_P(TwoVideosTest, everySaveMeansTheTrackOfTheStill)
{
    const Track& first = GetParam().first;
    const bool isTurned = first.rotation % 180 != 0;
    const QSize shown = isTurned ? first.size.transposed() : first.size;
    expectPicture(stillOf(input()), shown);
    EXPECT_EQ(reportedRotation(), first.rotation);

    ASSERT_EQ(runTool(creator, flag(90, reportedRotation(), input(), at("flag.mp4"))), 0);
    expectPicture(stillOf(at("flag.mp4")), shown.transposed());

    ASSERT_EQ(runTool(creator,
                  {"-i", input(), "-pix_fmt", "yuv420p", "-vf", "transpose=2", "-metadata:s:v", "rotate=0",
                      "-y", at("encoded.mp4")}),
        0);
    expectPicture(stillOf(at("encoded.mp4")), shown.transposed());
}

// The first stream is a single picture without a frame rate that is not marked as a cover.
TEST(PictureAndFilmTest, everySaveMeansTheFilm)
{
    const TemporaryDirectory folder;
    const auto at = [&folder](const std::string& name) { return folder.path() + name; };
    ASSERT_EQ(
        runTool(ffmpeg,
            {"-v", "error", "-nostdin", "-f", "lavfi", "-i", "color=blue:rate=10:duration=0.1:size=160x90",
                "-f", "lavfi", "-i", "color=red:rate=10:duration=2:size=320x240", "-map", "0:v", "-map",
                "1:v", "-pix_fmt", "yuv420p", at("rates.mkv")}),
        0);
    removeFirstFrameRate(at("rates.mkv"), at("clip.mkv"));
    const auto expectFilm = [&](const std::string& path) {
        EXPECT_EQ(runTool(creator,
                      {"-v", "quiet", "-ss", "1", "-i", path, "-frames:v", "1", "-y", at("still.jpg")}),
            0);
        EXPECT_EQ(QImage(QString::fromStdString(at("still.jpg"))).size(), QSize(320, 240)) << path;
    };
    expectFilm(at("clip.mkv"));
    ASSERT_EQ(runTool(creator,
                  {"-i", at("clip.mkv"), "-c:v", "copy", "-c:a", "copy", "-metadata:s:v", "rotate=0", "-y",
                      at("flag.mp4")}),
        0);
    expectFilm(at("flag.mp4"));
    ASSERT_EQ(runTool(creator,
                  {"-i", at("clip.mkv"), "-pix_fmt", "yuv420p", "-metadata:s:v", "rotate=0", "-y",
                      at("encoded.mp4")}),
        0);
    expectFilm(at("encoded.mp4"));
}

INSTANTIATE_TEST_SUITE_P(Orders, TwoVideosTest,
    testing::Values(TwoVideosRow{"largeFirst", {"red", {320, 240}, 0}, {"blue", {160, 90}, 90}, "mp4"},
        TwoVideosRow{"smallFirst", {"blue", {160, 90}, 0}, {"red", {320, 240}, 90}, "mp4"},
        TwoVideosRow{"turnedLargeFirst", {"red", {320, 240}, 90}, {"blue", {160, 90}, 0}, "mp4"},
        TwoVideosRow{"turnedSmallFirst", {"blue", {160, 90}, 270}, {"red", {320, 240}, 0}, "mp4"},
        TwoVideosRow{"largeFirst", {"red", {320, 240}, 0}, {"blue", {160, 90}, 90}, "mov"},
        TwoVideosRow{"smallFirst", {"blue", {160, 90}, 0}, {"red", {320, 240}, 90}, "mov"},
        TwoVideosRow{"turnedLargeFirst", {"red", {320, 240}, 90}, {"blue", {160, 90}, 0}, "mov"},
        TwoVideosRow{"turnedSmallFirst", {"blue", {160, 90}, 270}, {"red", {320, 240}, 0}, "mov"}),
    [](const auto& row) { return std::string(row.param.name) + "_" + row.param.extension; });

} // namespace tarnwell::test
