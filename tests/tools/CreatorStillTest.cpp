// SPDX-License-Identifier: MIT
// A still job always produces a picture.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MatrixText.h"
#include "tools/Placeholder.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace tarnwell::test
{

class CreatorStillTest : public CreatorTest
{
protected:
    std::string picture() const { return tools.at("still.jpg"); }

    /// The still after a run with this script.
    std::string pictureAfter(const std::string& ffmpegScript)
    {
        tools.setFfmpeg(ffmpegScript);
        EXPECT_EQ(run(still("1.5", picture())), 0);
        EXPECT_EQ(otherNames(), Words({"still.jpg"}));
        return contentsOf(picture());
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

    const std::string frame = placeholderPicture(33, 22); // represents a decoded frame
};

TEST_F(CreatorStillTest, ffmpegIsRunOnceForThatPosition)
{
    tools.setFfmpeg("say-arguments\n" + writing(frame));
    EXPECT_EQ(run(still("12.345", picture())), 0);
    const auto words = lastRun().saidInHex("argument ");
    const auto seek = std::find(words.begin(), words.end(), "-ss");
    ASSERT_NE(seek, words.end());
    EXPECT_EQ(*(seek + 1), "12.345");
    EXPECT_EQ(std::count(words.begin(), words.end(), "-i"), 1);
}

TEST_F(CreatorStillTest, theFirstFrameFollowsAPositionWithoutOne)
{
    const std::string half
        = "with -ss write-output-file " + tools.addData("half", frame.substr(0, frame.size() / 2)) + "\n";
    const std::string larger = "with -ss write-output-file "
        + tools.addData("larger", placeholderPicture(800, 600).substr(0, 400)) + "\n";
    const std::string whole = writing(frame);
    const std::string grey = placeholderPicture(64, 48);
    struct Row {
        const char* name;
        std::string script;
        std::string expected;
    };
    const std::vector<Row> rows = {
        {"a frame at the position", "with -ss " + whole + "without -ss write-output other\n", frame},
        {"no frame at the position", "with -ss exit 0\n" + whole, frame},
        {"a failure", "with -ss exit 1\n" + whole, frame},
        {"a crash", "with -ss die 11\n" + whole, frame},
        {"a crash within a frame", half + "with -ss die 11\n" + whole, frame},
        {"a failure within a frame", half + "with -ss exit 1\n" + whole, frame},
        {"a kill within a larger frame", larger + "with -ss die 9\n" + whole, frame},
        {"a failure within the only frame", half + "with -ss exit 1\n", grey},
        {"no frame at all", "exit 0\n", grey},
        {"failures only", "exit 1\n", grey},
        {"crashes only", "die 11\n", grey},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(pictureAfter(row.script), row.expected);
    }
}

TEST_F(CreatorStillTest, thePlaceholderIsTurnedAsThePictureWouldBe)
{
    const std::vector<std::pair<std::string, bool>> rows = {
        {"", false},
        {matrixText(0, 1, -1, 0), true},
        {matrixText(0, -1, 1, 0), true},
        {matrixText(-1, 0, 0, -1), false},
        {matrixText(0, 1, 1, 0), true},
        {matrixText(-1, 0, 0, 1), false},
        {matrixText(0, 0, 0, 0), false},
    };
    for (const auto& [matrix, isSwapped] : rows) {
        SCOPED_TRACE(matrix);
        setReport(matrix);
        EXPECT_EQ(
            pictureAfter("exit 1\n"), isSwapped ? placeholderPicture(48, 64) : placeholderPicture(64, 48));
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
    EXPECT_EQ(run(still("1.5", picture())), 0);
    expectError("ffmpeg cannot be run");
    EXPECT_EQ(contentsOf(picture()), placeholderPicture(64, 48));
}

TEST_F(CreatorStillTest, anOlderPictureIsReplaced)
{
    writeFile(picture(), "an older and much longer picture than the frame is, " + std::string(10000, 'x'));
    EXPECT_EQ(pictureAfter(writing(frame)), frame);
}

TEST_F(CreatorStillTest, aStillThatCannotBeWrittenIsAFailure)
{
    tools.setFfmpeg(writing(frame));
    EXPECT_EQ(run(still("1.5", tools.at("nowhere/still.jpg"))), 1);
    EXPECT_EQ(otherNames(), Words());
}

TEST_F(CreatorStillTest, aFullDiskLeavesNothingOfAStill)
{
    tools.setFfmpeg("flood-output 100000\n");
    EXPECT_NE(run(still("1.5", picture()), {.largestFile = 100}), 0);
    EXPECT_EQ(otherNames(), Words());
}

} // namespace tarnwell::test
