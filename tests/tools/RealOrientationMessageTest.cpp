// SPDX-License-Identifier: MIT
// A fix flag of videos whose stream holds an orientation message, with the installed ffprobe and ffmpeg: the
// saved file shows the turned preview in players that obey messages and in those that know the display matrix
// only.
#include "tests/support/Files.h"
#include "tests/tools/RealTools.h"
#include "tools/TrackMatrix.h"

#include <QTransform>

#include <algorithm>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

const std::string h264Message = "h264_metadata=display_orientation=insert:";
const Words fragments = {"-movflags", "frag_keyframe+empty_moov+default_base_moof"};
constexpr DisplayMatrix leftTurn = {0, -1, 1, 0};
constexpr DisplayMatrix halfTurn = {-1, 0, 0, -1};

// The types of the units that can hold a message.
const std::string h264Messages = "6";
const std::string hevcMessages = "39-40";

struct MessageRow {
    const char* name;
    std::string message; // options of "h264_metadata"
    const char* extension;
    Words options = {}; // for the container
    std::optional<DisplayMatrix> matrix = {}; // of the container; the unit matrix if missing
};

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

/// A flag that was set: the preview of `clip` turned is what `out` has to show.
struct Save {
    std::string clip;
    int degreesLeft;
    std::string out;
};

class RealOrientationMessageTest : public RealTools
{
protected:
    std::string clip(const MessageRow& row) const { return at(row.name) + row.extension; }

    /// One second of H.264 for each row, with several key frames.
    void makeClips(const std::vector<MessageRow>& rows) const
    {
        Words outputs;
        for (const auto& row : rows) {
            outputs = joined(outputs, joined(h264(), {"-g", "4", "-c:a", "aac"}));
            if (!row.message.empty())
                outputs = joined(outputs, {"-bsf:v", h264Message + row.message});
            outputs = joined(outputs, joined(row.options, {"-y", clip(row)}));
        }
        runFfmpeg(joined({"-f", "lavfi", "-i", "testsrc=size=128x96:rate=10:duration=1", "-f", "lavfi", "-i",
                             "sine=duration=1"},
            outputs));
        for (const auto& row : rows) {
            if (row.matrix)
                orient(clip(row), *row.matrix);
        }
    }

    static void orient(const std::string& path, const DisplayMatrix& matrix)
    {
        const int file = ::open(path.c_str(), O_RDWR | O_CLOEXEC);
        EXPECT_TRUE(writeTrackMatrix(file, matrix));
        ::close(file);
    }

    /// The degrees clockwise that sniffer reports.
    static int rotateTag(const std::string& path)
    {
        return std::stoi(report(path)["streams"][0].value("/tags/rotate"_json_pointer, std::string("0")));
    }

    /// Turns the shown picture by a flag that is computed from sniffer's tag as the application does. The
    /// lines on standard error.
    static std::string turnShown(const Save& save, int tag)
    {
        const std::string turn = "rotate=" + std::to_string(save.degreesLeft - tag);
        ToolProcess process(builtCreator, fixFlagCommand(save.clip, save.out, turn));
        EXPECT_EQ(process.wait(), 0);
        return process.errorText();
    }

    std::string turnShown(const Save& save) const { return turnShown(save, rotateTag(save.clip)); }

    /// Copies of the streams without the units of these types, which hold the messages. Players that do not
    /// know messages show the original like its copy.
    Words withoutMessages(const Words& videos, const std::string& unitTypes) const
    {
        Words inputs;
        Words outputs;
        Words copies;
        for (const auto& video : videos) {
            const std::string number = std::to_string(copies.size());
            copies.push_back(at("stripped" + number + ".mp4"));
            inputs = joined(inputs, {"-i", video});
            outputs = joined(outputs,
                {"-map", number + ":v:0", "-c", "copy", "-bsf:v", "filter_units=remove_types=" + unitTypes,
                    "-y", copies.back()});
        }
        runFfmpeg(joined(inputs, outputs));
        return copies;
    }

    /// The saved files show the previews turned, in both kinds of players.
    void expectTurnedPreviews(const std::vector<Save>& saves, const std::string& unitTypes) const
    {
        Words clips;
        Words outs;
        for (const Save& save : saves) {
            clips.push_back(save.clip);
            outs.push_back(save.out);
        }
        const auto frames = shownFrames(joined(joined(clips, outs), withoutMessages(outs, unitTypes)));
        for (std::size_t place = 0; place < saves.size(); ++place) {
            constexpr int mostDifference = 2; // of RGB conversions of turned pictures
            const auto& [clip, degreesLeft, out] = saves[place];
            SCOPED_TRACE(out);
            const QImage expected = turned(frames[place], degreesLeft);
            EXPECT_LE(difference(frames[place + saves.size()], expected), mostDifference);
            EXPECT_LE(difference(frames[place + 2 * saves.size()], expected), mostDifference);
            if (degreesLeft == 90) {
                EXPECT_EQ(still(clip, "0").size(), frames[place].size());
            }
        }
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
        runFfmpeg({"-framerate", "10", "-i", at("message.hevc"), "-c", "copy", "-y", path});
    }
};

TEST_F(RealOrientationMessageTest, aFlagShowsTheTurnedPreviewInAllPlayers)
{
    const std::string mp4 = ".mp4";
    const std::vector<MessageRow> rows = {{"mp4", "rotate=90", ".mp4"}, {"mov", "rotate=90", ".mov"},
        {"matroska", "rotate=90", ".mkv"}, {"fragmented", "rotate=270", ".mp4", fragments},
        {"transport stream", "rotate=180", ".ts"}, {"mp4 with a matrix", "rotate=90", ".mp4", {}, halfTurn},
        {"mov with a matrix", "rotate=180", ".mov", {}, leftTurn},
        {"mp4 mirrored", "flip=horizontal:rotate=90", ".mp4"},
        {"matroska mirrored", "flip=vertical", ".mkv"}};
    ASSERT_NO_FATAL_FAILURE(makeClips(rows));
    Words clips;
    std::vector<Save> saves;
    for (const auto& row : rows) {
        clips.push_back(clip(row));
        const int tag = rotateTag(clip(row));
        for (const int degreesLeft : {90, 180}) {
            if (degreesLeft == 180 && row.extension != mp4)
                continue; // the matrix of a turn does not depend on the container
            saves.push_back({clip(row), degreesLeft, clip(row) + std::to_string(degreesLeft) + ".mp4"});
            turnShown(saves.back(), tag);
        }
    }
    const auto frames = shownFrames(joined(clips, withoutMessages(clips, h264Messages)));
    for (std::size_t place = 0; place < clips.size(); ++place)
        EXPECT_GT(difference(frames[place], frames[place + clips.size()]), 100)
            << "ffmpeg does not obey the message of " << clips[place];
    expectTurnedPreviews(saves, h264Messages);
}

TEST_F(RealOrientationMessageTest, anMp4FileWithAMessageIsNotCopiedByteByByte)
{
    const MessageRow row = {"clip", "rotate=90", ".mp4"};
    ASSERT_NO_FATAL_FAILURE(makeClips({row}));
    EXPECT_NE(
        turnShown({clip(row), 90, at("out.mp4")}).find("its video stream holds an orientation of its own\n"),
        std::string::npos);
}

TEST_F(RealOrientationMessageTest, anMp4FileWithoutATurningMessageIsCopiedByteByByte)
{
    const std::vector<MessageRow> rows = {{"none", "", ".mp4"}, {"unit", "rotate=0", ".mp4"}};
    ASSERT_NO_FATAL_FAILURE(makeClips(rows));
    std::vector<Save> saves;
    for (const auto& row : rows) {
        const Save save = {clip(row), 90, clip(row) + ".out.mp4"};
        EXPECT_EQ(turnShown(save).find("byte by byte"), std::string::npos) << row.name;
        EXPECT_EQ(contentsOf(save.out).size(), contentsOf(save.clip).size()) << row.name;
        saves.push_back(save);
    }
    expectTurnedPreviews(saves, h264Messages);
}

TEST_F(RealOrientationMessageTest, anHevcMessageIsRemovedToo)
{
    const Words clips = {at("clip.mp4"), at("clip.mov"), at("clip.mkv")};
    ASSERT_NO_FATAL_FAILURE(makeHevcClip(clips[0]));
    runFfmpeg({"-i", clips[0], "-c", "copy", "-y", clips[1], "-c", "copy", "-y", clips[2]});
    std::vector<Save> saves;
    for (const auto& clip : clips) {
        saves.push_back({clip, 90, clip + ".out.mp4"});
        turnShown(saves.back());
    }
    for (const QImage& frame : shownFrames(clips))
        ASSERT_EQ(frame.size(), QSize(96, 128)) << "ffmpeg does not obey the message";
    expectTurnedPreviews(saves, hevcMessages);
}

} // namespace tarnwell::test
