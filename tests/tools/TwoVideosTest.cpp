// SPDX-License-Identifier: MIT
// Files with two video tracks of different size, colour and turn: the still, the report, the flag and the
// transcode use the same track.
#include "tests/support/Files.h"
#include "tests/support/Rows.h"
#include "tests/tools/RealTools.h"

#include <QColor>

#include <ostream>
#include <string>

namespace tarnwell::test
{

namespace
{

struct Track {
    const char* colour;
    QSize size; // coded
    int rotation; // clockwise, as sniffer reports it
};

struct TwoVideosRow {
    const char* name;
    Track first;
    Track second;
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
    *stream << row.name;
}

std::string sourceOf(const Track& track)
{
    return std::string("color=") + track.colour + ":rate=10:duration=1:size="
        + std::to_string(track.size.width()) + "x" + std::to_string(track.size.height());
}

} // namespace

class TwoVideosTest : public RealTools, public testing::WithParamInterface<TwoVideosRow>
{
protected:
    /// The same tracks in an MP4 file, which is copied byte by byte, and in a MOV file, whose streams ffmpeg
    /// copies.
    void SetUp() override
    {
        const TwoVideosRow& row = GetParam();
        runFfmpeg(joined(joined({"-f", "lavfi", "-i", sourceOf(row.first), "-f", "lavfi", "-i",
                                    sourceOf(row.second), "-map", "0"},
                             joined(h264(), {"-y", at("upright1.mp4"), "-map", "1"})),
            joined(h264(), {"-y", at("upright2.mp4")})));
        ASSERT_EQ(flag(-row.first.rotation, at("upright1.mp4"), at("first.mp4")), 0);
        ASSERT_EQ(flag(-row.second.rotation, at("upright2.mp4"), at("second.mp4")), 0);
        const Words copies = {"-map", "0:v", "-map", "1:v", "-c", "copy", "-y"};
        runFfmpeg(joined(joined({"-i", at("first.mp4"), "-i", at("second.mp4")}, joined(copies, {mp4()})),
            joined(copies, {mov()})));
    }

    std::string mp4() const { return at("clip.mp4"); }
    std::string mov() const { return at("clip.mov"); }

    static int flag(int degrees, const std::string& from, const std::string& to)
    {
        return creator(fixFlagCommand(from, to, "rotate=" + std::to_string(degrees)));
    }

    /// The rotation that the application reads from the report: that of the first video with a frame rate.
    static int reportedRotation(const std::string& path)
    {
        return std::stoi(report(path)["streams"][0]["tags"].value("rotate", "0"));
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
};

TEST_P(TwoVideosTest, everySaveMeansTheTrackOfTheStill)
{
    const Track& first = GetParam().first;
    const bool isTurned = first.rotation % 180 != 0;
    const QSize shown = isTurned ? first.size.transposed() : first.size;
    expectPicture(still(mp4()), shown);
    const int reported = reportedRotation(mp4());
    EXPECT_EQ(reported, first.rotation);

    for (const auto& file : {mp4(), mov()}) {
        SCOPED_TRACE(file);
        ASSERT_EQ(flag(90 - reported, file, at("flag.mp4")), 0);
        expectPicture(still(at("flag.mp4")), shown.transposed());
    }

    ASSERT_EQ(creator(transcodeCommand(mp4(), at("encoded.mp4"))), 0);
    expectPicture(still(at("encoded.mp4")), shown.transposed());
}

INSTANTIATE_TEST_SUITE_P(Orders, TwoVideosTest,
    testing::Values(TwoVideosRow{"largeFirst", {"red", {320, 240}, 0}, {"blue", {160, 90}, 90}},
        TwoVideosRow{"smallFirst", {"blue", {160, 90}, 0}, {"red", {320, 240}, 90}},
        TwoVideosRow{"turnedLargeFirst", {"red", {320, 240}, 90}, {"blue", {160, 90}, 0}},
        TwoVideosRow{"turnedSmallFirst", {"blue", {160, 90}, 270}, {"red", {320, 240}, 0}}),
    rowName);

class PictureAndFilmTest : public RealTools
{
protected:
    void expectFilm(const std::string& path) const
    {
        EXPECT_EQ(still(path, "1").size(), QSize(320, 240)) << path;
    }
};

// The first stream is a single picture without a frame rate that is not marked as a cover.
TEST_F(PictureAndFilmTest, everySaveMeansTheFilm)
{
    makeVideo(at("rates.mkv"), "color=blue:rate=10:duration=0.1:size=160x90",
        joined(
            {"-f", "lavfi", "-i", "color=red:rate=10:duration=2:size=320x240", "-map", "0:v", "-map", "1:v"},
            h264()));
    removeFirstFrameRate(at("rates.mkv"), at("clip.mkv"));
    expectFilm(at("clip.mkv"));
    ASSERT_EQ(creator(fixFlagCommand(at("clip.mkv"), at("flag.mp4"), "rotate=0")), 0);
    expectFilm(at("flag.mp4"));
    ASSERT_EQ(creator(transcodeCommand(at("clip.mkv"), at("encoded.mp4"), "")), 0);
    expectFilm(at("encoded.mp4"));
}

} // namespace tarnwell::test
