// SPDX-License-Identifier: MIT
// A still is always a picture.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MatrixText.h"
#include "tools/Placeholder.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <csignal>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Names = std::vector<std::string>;

} // namespace

class CreatorStillTest : public CreatorTest
{
protected:
    std::string picture() const { return tools.at("still.jpg"); }

    /// The picture that a run leaves.
    std::string pictureAfter(const std::string& ffmpegScript)
    {
        tools.setFfmpeg(ffmpegScript);
        EXPECT_EQ(run(still("1.5", picture())), 0);
        EXPECT_EQ(otherNames(), Names({"still.jpg"}));
        return contentsOf(picture());
    }

    std::string writing(const std::string& bytes)
    {
        return "write-output-file " + tools.addData("frame", bytes) + "\n";
    }

    void setReport(const std::string& matrix)
    {
        nlohmann::json stream
            = {{"codec_type", "video"}, {"avg_frame_rate", "25/1"}, {"width", 64}, {"height", 48}};
        if (!matrix.empty())
            stream["side_data_list"] = {{{"side_data_type", "Display Matrix"}, {"displaymatrix", matrix}}};
        const nlohmann::json report = {{"streams", {stream}}};
        tools.setFfprobe("print-file " + tools.addData("report.json", report.dump()) + "\n");
    }

    const std::string frame = placeholderPicture(33, 22); // stands for a decoded frame
};

TEST_F(CreatorStillTest, theFrameAtThePositionIsTaken)
{
    EXPECT_EQ(pictureAfter("with -ss " + writing(frame) + "without -ss write-output other\n"), frame);
}

TEST_F(CreatorStillTest, ffmpegIsAskedForThatPosition)
{
    tools.setFfmpeg("say-arguments\n" + writing(frame));
    ToolProcess creator(tools.creator(), still("12.345", picture()));
    EXPECT_EQ(creator.wait(), 0);
    const auto words = creator.saidInHex("argument ");
    const auto seek = std::find(words.begin(), words.end(), "-ss");
    ASSERT_NE(seek, words.end());
    EXPECT_EQ(*(seek + 1), "12.345");
    EXPECT_EQ(std::count(words.begin(), words.end(), "-i"), 1); // one run is enough
}

TEST_F(CreatorStillTest, theFirstFrameIsTakenWhereThePositionGivesNone)
{
    EXPECT_EQ(pictureAfter("with -ss exit 0\n" + writing(frame)), frame);
    EXPECT_EQ(pictureAfter("with -ss exit 1\n" + writing(frame)), frame);
    EXPECT_EQ(pictureAfter("with -ss die " + std::to_string(SIGSEGV) + "\n" + writing(frame)), frame);
}

TEST_F(CreatorStillTest, halfAFrameIsNoPicture)
{
    const std::string half
        = "write-output-file " + tools.addData("half", frame.substr(0, frame.size() / 2)) + "\n";
    const std::string crash = "with -ss die " + std::to_string(SIGSEGV) + "\n";
    EXPECT_EQ(pictureAfter("with -ss " + half + crash + writing(frame)), frame);
    EXPECT_EQ(pictureAfter("with -ss " + half + "with -ss exit 1\n" + writing(frame)), frame);
    EXPECT_EQ(pictureAfter("with -ss " + half + "with -ss exit 1\n"), placeholderPicture(64, 48));
}

TEST_F(CreatorStillTest, aPlaceholderOfTheSameSizeIsMadeWhereNothingDecodes)
{
    for (const std::string script : {"exit 0\n", "exit 1\n", "die 11\n"})
        EXPECT_EQ(pictureAfter(script), placeholderPicture(64, 48));
}

TEST_F(CreatorStillTest, thePlaceholderIsTurnedAsThePictureWouldBe)
{
    struct Row {
        const char* name;
        std::string matrix;
        bool swapped;
    };
    const std::vector<Row> rows = {
        {"none", "", false},
        {"a quarter turn to the right", matrixText(0, 1, -1, 0), true},
        {"a quarter turn to the left", matrixText(0, -1, 1, 0), true},
        {"a half turn", matrixText(-1, 0, 0, -1), false},
        {"mirrored at a diagonal", matrixText(0, 1, 1, 0), true},
        {"mirrored", matrixText(-1, 0, 0, 1), false},
        {"garbage", matrixText(0, 0, 0, 0), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        setReport(row.matrix);
        EXPECT_EQ(
            pictureAfter("exit 1\n"), row.swapped ? placeholderPicture(48, 64) : placeholderPicture(64, 48));
    }
}

TEST_F(CreatorStillTest, thereIsAPictureEvenWithoutTheSize)
{
    for (const std::string script : {"exit 1\n", "print no report\n", "die 11\n", ""}) {
        tools.setFfprobe(script);
        EXPECT_EQ(pictureAfter("exit 1\n"), placeholderPicture(1, 1));
    }
}

TEST_F(CreatorStillTest, thereIsAPictureEvenWithoutFfmpeg)
{
    tools.breakFfmpeg();
    ToolProcess creator(tools.creator(), still("1.5", picture()));
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_NE(creator.errorText().find("ffmpeg cannot be run"), std::string::npos) << creator.errorText();
    EXPECT_EQ(contentsOf(picture()), placeholderPicture(64, 48));
}

TEST_F(CreatorStillTest, anOlderPictureIsReplaced)
{
    writeFile(picture(), "an older and much longer picture than the frame is, " + std::string(10000, 'x'));
    EXPECT_EQ(pictureAfter(writing(frame)), frame);
}

TEST_F(CreatorStillTest, whatTheFirstRunLeftIsThrownAway)
{
    const std::string larger = placeholderPicture(800, 600).substr(0, 400);
    const std::string half = "with -ss write-output-file " + tools.addData("half", larger) + "\n";
    EXPECT_EQ(pictureAfter(half + "with -ss die 9\n" + writing(frame)), frame);
}

TEST_F(CreatorStillTest, aStillThatCannotBeWrittenIsAFailure)
{
    tools.setFfmpeg(writing(frame));
    EXPECT_EQ(run(still("1.5", tools.at("nowhere/still.jpg"))), 1);
    EXPECT_EQ(otherNames(), Names());
}

TEST_F(CreatorStillTest, aFullDiskLeavesNothingOfAStill)
{
    ToolSetup setup;
    setup.largestFile = 100;
    tools.setFfmpeg("flood-output 100000\n");
    ToolProcess creator(tools.creator(), still("1.5", picture()), setup);
    EXPECT_NE(creator.wait(), 0);
    EXPECT_EQ(otherNames(), Names());
}

} // namespace tarnwell::test
