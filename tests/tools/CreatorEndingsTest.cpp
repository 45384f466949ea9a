// SPDX-License-Identifier: MIT
// The file at the output's path after each ending of ffmpeg other than a cancel.
#include "tests/support/Files.h"
#include "tests/support/Rows.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MovieBytes.h"

#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <utility>

namespace tarnwell::test
{

class CreatorEndingsTest : public CreatorTest
{
protected:
    /// Runs a save that fails after another program has written the text to the output's path.
    void failWith(const std::string& text)
    {
        const std::string goOn = tools.addData("go on", "");
        std::filesystem::remove(goOn);
        tools.setFfmpeg("error ready\\n\nwait-for " + goOn + "\nexit 1\n");
        ToolProcess creator(tools.creator(), transcode());
        creator.waitForError("ready");
        writeFile(output(), text);
        writeFile(goOn, "");
        EXPECT_EQ(creator.wait(), 1);
    }
};

TEST_F(CreatorEndingsTest, successMakesTheOutputAndReplacesAnOlderFile)
{
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode()), 0);
    EXPECT_EQ(contentsOf(output()), movie());
    for (const auto& arguments : {transcode(), fixFlag()}) {
        writeFile(output(), "older");
        EXPECT_EQ(run(arguments), 0);
        EXPECT_EQ(contentsOf(output()).size(), movie().size());
        EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
    }
}

TEST_F(CreatorEndingsTest, aFixFlagIsInTheHeaderOfTheTrack)
{
    setGoodFfmpeg();
    EXPECT_EQ(run(fixFlag()), 0);
    const std::string header = matrixIn(contentsOf(output()), movie().find("tkhd") - 4);
    EXPECT_EQ(header.substr(0, 12), bigEndian(0, 4) + bigEndian(0xFFFF0000U, 4) + bigEndian(0, 4));
    EXPECT_EQ(header.substr(12, 12), bigEndian(65536, 4) + bigEndian(0, 8));
}

struct FailureRow {
    const char* name;
    std::string written; // empty for no file
    const char* end; // additional commands of ffmpeg
};

class FailureEndingsTest : public CreatorEndingsTest, public testing::WithParamInterface<FailureRow>
{
};

TEST_P(FailureEndingsTest, leavesNothingButTheOlderFile)
{
    const std::string& bytes = GetParam().written;
    tools.setFfmpeg((bytes.empty() ? "" : writing(bytes)) + GetParam().end);
    for (const auto& arguments : {fixFlag(), transcode()}) {
        EXPECT_EQ(run(arguments), 1);
        EXPECT_EQ(otherNames(), Words());
        writeFile(output(), "older");
        EXPECT_EQ(run(arguments), 1);
        expectOnlyOlderFile();
    }
}

INSTANTIATE_TEST_SUITE_P(Ffmpeg, FailureEndingsTest,
    testing::Values(FailureRow{"anFfmpegThatFails", "", "exit 1\n"},
        FailureRow{"anFfmpegThatReportsAnErrorAndFails", "", "error no such codec\\n\nexit 69\n"},
        FailureRow{"anFfmpegThatFailsWithAWholeFile", smallMovie(), "exit 1\n"},
        FailureRow{"anFfmpegThatCrashes", smallMovie(), "die 11\n"},
        FailureRow{"anFfmpegThatIsKilled", "stub", "die 9\n"},
        FailureRow{"anFfmpegThatIsTerminated", "", "die 15\n"},
        FailureRow{"anFfmpegThatWritesNothing", "", "exit 0\n"},
        FailureRow{"anFfmpegThatWritesNoMovie", "no movie at all", ""},
        FailureRow{"anFfmpegThatWritesTheBeginningOfAMovie", smallMovie().substr(0, 200), ""},
        FailureRow{"anFfmpegThatOmitsTheLastByte", smallMovie().substr(0, smallMovie().size() - 1), ""},
        FailureRow{"anFfmpegThatWritesNoVideoTrack", fileType() + box("moov", track("soun")), ""}),
    rowName);

TEST_F(CreatorEndingsTest, anFfmpegThatCannotBeRunIsReported)
{
    tools.breakFfmpeg();
    writeFile(output(), "older");
    EXPECT_EQ(run(transcode()), 1);
    expectError("ffmpeg cannot be run");
    expectError("install the package ffmpeg");
    expectOnlyOlderFile();
}

TEST_F(CreatorEndingsTest, aFailureDoesNotTouchTheOlderFile)
{
    tools.setFfmpeg("exit 1\n");
    writeFile(output(), "older");
    struct stat before = {};
    ASSERT_EQ(::stat(output().c_str(), &before), 0);
    EXPECT_EQ(run(transcode()), 1);
    EXPECT_EQ(run(transcode(tools.at("missing.mp4"), output())), 1);
    struct stat now = {};
    ASSERT_EQ(::stat(output().c_str(), &now), 0);
    EXPECT_EQ(now.st_ino, before.st_ino);
    EXPECT_EQ(now.st_ctim.tv_nsec, before.st_ctim.tv_nsec); // a rename changes it
    expectOnlyOlderFile();
}

// The application deletes a file at the output's path after a cancel if it has changed during the run.
TEST_F(CreatorEndingsTest, aFileThatAnotherProgramHasWrittenMeanwhileIsRenamed)
{
    for (const std::string older : {"", "older"}) {
        for (const char* kept : {"Rotated (previous).mp4", "Rotated (previous 2).mp4"}) {
            if (!older.empty())
                writeFile(output(), older);
            failWith("another");
            EXPECT_FALSE(exists(output()));
            EXPECT_EQ(contentsOf(tools.at(kept)), "another");
        }
        EXPECT_EQ(otherNames(), Words({"Rotated (previous 2).mp4", "Rotated (previous).mp4"}));
        for (const auto& name : otherNames())
            std::filesystem::remove(tools.at(name));
    }
}

TEST_F(CreatorEndingsTest, theOutputIsInvisibleWhileFfmpegWorks)
{
    const std::string goOn = tools.at("go on");
    setGoodFfmpeg("write-output half\nerror written\\n\nwait-for " + goOn + "\n");
    writeFile(output(), "older");
    ToolProcess creator(tools.creator(), transcode());
    creator.waitForError("written");
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()), "older");
    writeFile(goOn, "");
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_EQ(contentsOf(output()), movie());
}

TEST_F(CreatorEndingsTest, aFullDiskLeavesNothing)
{
    tools.setFfmpeg("flood-output 1000000\n");
    for (const auto& arguments : {fixFlag(), transcode()}) {
        writeFile(output(), "older");
        EXPECT_EQ(run(arguments, {.largestFile = 100000}), 1);
        expectOnlyOlderFile();
    }
}

TEST_F(CreatorEndingsTest, aLimitOfTheFileSizeIsNotFollowedByARunThatKeepsLess)
{
    tools.setFfprobe("print-file "
        + tools.addData("sound.json",
            R"({"streams": [{"index": 0, "codec_type": "video", "codec_name": "h264", "avg_frame_rate": "25/1"},)"
            R"( {"index": 1, "codec_type": "audio", "codec_name": "aac", "channels": 2}]})")
        + "\n");
    const std::string smaller = "write-output-file " + tools.addData("smaller", movie()) + "\n";
    for (const auto& [arguments, word] : {std::pair(transcode(), "-an"), std::pair(fixFlag(), "-strict")}) {
        const std::string large = word == std::string("-an") ? "without " : "with ";
        const std::string small = word == std::string("-an") ? "with " : "without ";
        tools.setFfmpeg("say-pid\n" + large + word + " flood-output 1000000\n" + large + word + " exit 1\n"
            + small + word + " " + smaller);
        EXPECT_EQ(run(arguments, {.largestFile = 100000}), 1);
        EXPECT_EQ(lastRun().said("pid ").size(), 1U) << "runs of ffmpeg";
        EXPECT_EQ(otherNames(), Words());
    }
}

TEST_F(CreatorEndingsTest, aFolderThatVanishesMidwayIsAFailure)
{
    std::filesystem::create_directory(tools.at("there"));
    const std::string goOn = tools.at("go on");
    setGoodFfmpeg("error written\\n\nwait-for " + goOn + "\n");
    ToolProcess creator(tools.creator(), transcode(input(), tools.at("there/out.mp4")));
    creator.waitForError("written");
    std::filesystem::remove_all(tools.at("there"));
    writeFile(goOn, "");
    EXPECT_EQ(creator.wait(), 1);
    EXPECT_EQ(otherNames(), Words({"go on"}));
}

TEST_F(CreatorEndingsTest, aFolderThatCannotHoldTheOutputIsReported)
{
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode(input(), tools.at("nowhere/out.mp4"))), 1);
    expectError("No such file or directory");
    EXPECT_EQ(run(transcode(input(), "/sys/out.mp4")), 1); // refused even to root
    expectError("the output cannot be written");
    EXPECT_EQ(otherNames(), Words());
}

TEST_F(CreatorEndingsTest, aLinkIsRenamedIfAnotherProgramHasChangedItsTarget)
{
    writeFile(tools.at("target"), "older");
    std::filesystem::create_symlink(tools.at("target"), output());
    failWith("another");
    EXPECT_EQ(otherNames(), Words({"Rotated (previous).mp4", "target"}));
    EXPECT_TRUE(std::filesystem::is_symlink(previousPath()));
}

TEST_F(CreatorEndingsTest, anOlderFileStaysIfNoFileCanBeMade)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    for (const auto& arguments : {transcode(), fixFlag(), transcode(input(), tools.at("./clip.mp4"))}) {
        EXPECT_EQ(run(arguments, {.refused = {RefusedCall::MakeFiles}}), 1);
    }
    expectOnlyOlderFile();
}

TEST_F(CreatorEndingsTest, aFolderAtTheOutputsPathIsKept)
{
    setGoodFfmpeg();
    std::filesystem::create_directory(output());
    writeFile(output() + "/kept", "kept");
    EXPECT_EQ(run(transcode()), 1);
    EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output() + "/kept"), "kept");
}

TEST_F(CreatorEndingsTest, anyOtherListIsRefusedAndChangesNothing)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    for (const Words& arguments : {Words(), Words{"-version"}, Words{"-i", input(), output()}}) {
        EXPECT_EQ(run(arguments), 2);
        EXPECT_NE(lastRun().errorText(), "");
        EXPECT_EQ(contentsOf(output()), "older");
    }
}

} // namespace tarnwell::test
