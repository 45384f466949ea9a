// SPDX-License-Identifier: MIT
// A fix flag of videos whose stream holds an orientation message, with the installed ffprobe and ffmpeg: the
// saved file shows the turned preview in players that obey messages and in those that know the display matrix
// only.
#include "tests/support/Files.h"
#include "tests/support/Rows.h"
#include "tests/tools/RealTools.h"

#include <QTransform>

#include <algorithm>
#include <cstdlib>
#include <ostream>
#include <string>

namespace tarnwell::test
{

namespace
{

const std::string h264Message = "h264_metadata=display_orientation=insert:";
const Words fragments = {"-movflags", "frag_keyframe+empty_moov+default_base_moof"};

struct MessageRow {
    const char* name;
    std::string message; // options of "h264_metadata"
    const char* extension;
    Words options = {}; // for the container
    int matrix = 0; // of the container: degrees counterclockwise
};

void PrintTo(const MessageRow& row, std::ostream* stream)
{
    *stream << row.name;
}

/// The largest difference of a colour channel; 255 for pictures of different sizes.
int difference(const QImage& left, const QImage& right)
{
    if (left.isNull() || left.size() != right.size())
        return 255;
    int largest = 0;
    for (int y = 0; y < left.height(); ++y) {
        for (int x = 0; x < left.width(); ++x) {
            const QColor first = left.pixelColor(x, y);
            const QColor second = right.pixelColor(x, y);
            largest = std::max({largest, std::abs(first.red() - second.red()),
                std::abs(first.green() - second.green()), std::abs(first.blue() - second.blue())});
        }
    }
    return largest;
}

QImage turned(const QImage& picture, int degreesLeft)
{
    return picture.transformed(QTransform().rotate(-degreesLeft));
}

} // namespace

class RealOrientationMessageTest : public RealTools
{
protected:
    /// One second of H.264, with several key frames; `matrix` is written into the container.
    void makeClip(const MessageRow& row) const
    {
        makeVideo(at("plain.mp4"), "testsrc=size=128x96:rate=10:duration=1",
            joined({"-f", "lavfi", "-i", "sine=duration=1", "-c:a", "aac", "-g", "4"}, h264()));
        const std::string turn = "rotate=" + std::to_string(row.matrix);
        const std::string source = at(row.matrix == 0 ? "plain.mp4" : "matrix.mp4");
        if (row.matrix != 0) {
            ASSERT_EQ(creator(fixFlagCommand(at("plain.mp4"), source, turn)), 0);
        }
        Words words = {"-v", "error", "-nostdin", "-i", source, "-c", "copy"};
        if (!row.message.empty())
            words = joined(words, {"-bsf:v", h264Message + row.message});
        ASSERT_EQ(runTool(realFfmpeg, joined(joined(words, row.options), {"-y", clip(row)})), 0);
    }

    std::string clip(const MessageRow& row) const { return at("clip") + row.extension; }
    std::string out() const { return at("out.mp4"); }

    /// A flag that turns the shown picture, computed from sniffer's tag as the application does. The lines on
    /// standard error.
    std::string turnShown(const std::string& path, int degreesLeft) const
    {
        const std::string tag
            = report(path)["streams"][0].value("/tags/rotate"_json_pointer, std::string("0"));
        ToolProcess process(builtCreator,
            fixFlagCommand(path, out(), "rotate=" + std::to_string(degreesLeft - std::stoi(tag))));
        EXPECT_EQ(process.wait(), 0);
        return process.errorText();
    }

    /// The first frame as ffmpeg shows it, after `options`.
    QImage frame(const std::string& path, const Words& options = {}) const
    {
        const Words words = {"-i", path, "-frames:v", "1", "-y", at("frame.png")};
        EXPECT_EQ(runTool(realFfmpeg, joined(joined({"-v", "error", "-nostdin"}, options), words)), 0);
        return imageAt(at("frame.png"));
    }

    /// The frame as players show it that do not know messages: a copy of the stream without any message.
    QImage frameByMatrixOnly(const std::string& path) const
    {
        const std::string noSei = codec(path) == "hevc" ? "39-40" : "6";
        EXPECT_EQ(runTool(realFfmpeg,
                      {"-v", "error", "-nostdin", "-i", path, "-map", "0:v:0", "-c", "copy", "-bsf:v",
                          "filter_units=remove_types=" + noSei, "-y", at("stripped.mp4")}),
            0);
        return frame(at("stripped.mp4"));
    }

    static std::string codec(const std::string& path)
    {
        return report(path, realFfprobe)["streams"][0]["codec_name"];
    }

    /// The saved file shows the preview of `path` turned, in both kinds of players.
    void expectTurnedPreview(const std::string& path, int degreesLeft) const
    {
        constexpr int mostDifference = 2; // of RGB conversions of turned pictures
        const QImage expected = turned(frame(path), degreesLeft);
        EXPECT_LE(difference(frame(out()), expected), mostDifference);
        EXPECT_LE(difference(frameByMatrixOnly(out()), expected), mostDifference);
        EXPECT_EQ(still(out(), "0").size(), turned(still(path, "0"), degreesLeft).size());
    }

    /// Inserts an HEVC message of a quarter turn to the left before each of the first slices, byte by byte.
    void makeHevcClip(const std::string& path) const
    {
        makeVideo(at("raw.hevc"), "testsrc=size=128x96:rate=10:duration=1",
            {"-c:v", "libx265", "-preset", "ultrafast", "-pix_fmt", "yuv420p", "-x265-params",
                "log-level=none:repeat-headers=1:keyint=4"});
        using namespace std::string_literals;
        const std::string firstParameters = "\0\0\0\x01\x40\x01"s;
        const std::string message = "\0\0\0\x01\x4E\x01\x2F\x03\x08\x00\x0C\x80"s;
        std::string bytes = contentsOf(at("raw.hevc"));
        auto place = bytes.find(firstParameters);
        ASSERT_NE(place, std::string::npos);
        for (; place != std::string::npos; place = bytes.find(firstParameters, place + 1)) {
            const auto slice = bytes.find("\0\0\x01\x4E"s, place); // x265 writes an SEI unit itself
            ASSERT_NE(slice, std::string::npos);
            bytes.insert(slice, message);
            place = slice;
        }
        writeFile(at("message.hevc"), bytes);
        ASSERT_EQ(runTool(realFfmpeg,
                      {"-v", "error", "-nostdin", "-framerate", "10", "-i", at("message.hevc"), "-c", "copy",
                          "-y", path}),
            0);
    }
};

class MessageTableTest : public RealOrientationMessageTest, public testing::WithParamInterface<MessageRow>
{
};

TEST_P(MessageTableTest, aFlagShowsTheTurnedPreviewInAllPlayers)
{
    ASSERT_NO_FATAL_FAILURE(makeClip(GetParam()));
    const std::string path = clip(GetParam());
    ASSERT_GT(difference(frame(path), frameByMatrixOnly(path)), 100) << "ffmpeg does not obey the message";
    for (const int degreesLeft : {90, 180}) {
        SCOPED_TRACE(degreesLeft);
        turnShown(path, degreesLeft);
        expectTurnedPreview(path, degreesLeft);
    }
}

INSTANTIATE_TEST_SUITE_P(Files, MessageTableTest,
    testing::Values(MessageRow{"mp4", "rotate=90", ".mp4"}, MessageRow{"mov", "rotate=90", ".mov"},
        MessageRow{"matroska", "rotate=90", ".mkv"},
        MessageRow{"fragmentedMp4", "rotate=270", ".mp4", fragments},
        MessageRow{"transportStream", "rotate=180", ".ts"},
        MessageRow{"mp4WithAMatrix", "rotate=90", ".mp4", {}, 180},
        MessageRow{"movWithAMatrix", "rotate=180", ".mov", {}, 90},
        MessageRow{"mp4Mirrored", "flip=horizontal:rotate=90", ".mp4"},
        MessageRow{"matroskaMirrored", "flip=vertical", ".mkv"}),
    rowName);

TEST_F(RealOrientationMessageTest, anMp4FileWithAMessageIsNotCopiedByteByByte)
{
    const MessageRow row = {"", "rotate=90", ".mp4"};
    ASSERT_NO_FATAL_FAILURE(makeClip(row));
    EXPECT_NE(turnShown(clip(row), 90).find("its video stream holds an orientation of its own\n"),
        std::string::npos);
}

TEST_F(RealOrientationMessageTest, anMp4FileWithoutATurningMessageIsCopiedByteByByte)
{
    for (const char* message : {"", "rotate=0"}) {
        SCOPED_TRACE(message);
        const MessageRow row = {"", message, ".mp4"};
        ASSERT_NO_FATAL_FAILURE(makeClip(row));
        EXPECT_EQ(turnShown(clip(row), 90).find("byte by byte"), std::string::npos);
        EXPECT_EQ(contentsOf(out()).size(), contentsOf(clip(row)).size());
        expectTurnedPreview(clip(row), 90);
    }
}

TEST_F(RealOrientationMessageTest, anHevcMessageIsRemovedToo)
{
    ASSERT_NO_FATAL_FAILURE(makeHevcClip(at("hevc.mp4")));
    for (const char* name : {"clip.mp4", "clip.mov", "clip.mkv"}) {
        SCOPED_TRACE(name);
        ASSERT_EQ(runTool(realFfmpeg,
                      {"-v", "error", "-nostdin", "-i", at("hevc.mp4"), "-c", "copy", "-y", at(name)}),
            0);
        ASSERT_EQ(frame(at(name)).size(), QSize(96, 128)) << "ffmpeg does not obey the message";
        turnShown(at(name), 90);
        expectTurnedPreview(at(name), 90);
    }
}

} // namespace tarnwell::test
