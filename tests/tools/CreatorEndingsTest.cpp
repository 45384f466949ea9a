// SPDX-License-Identifier: MIT
// What is at the output's place after each ending of ffmpeg, but for a cancel.
#include "tests/support/Files.h"
#include "tests/tools/CreatorTest.h"
#include "tests/tools/MovieBytes.h"

#include <csignal>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Names = std::vector<std::string>;

const std::string previous = "Rotated (previous).mp4";

} // namespace

class CreatorEndingsTest : public CreatorTest
{
protected:
    /// No trace of the attempt, with an older file and without.
    void expectFailure(const std::string& ffmpegScript)
    {
        tools.setFfmpeg(ffmpegScript);
        std::filesystem::remove(tools.at(previous));
        for (const auto& arguments : {fixFlag(), transcode()}) {
            EXPECT_EQ(run(arguments), 1);
            EXPECT_EQ(otherNames(), Names());
        }
        writeFile(output(), "older");
        EXPECT_EQ(run(transcode()), 1);
        EXPECT_EQ(otherNames(), Names({previous}));
        EXPECT_EQ(contentsOf(tools.at(previous)), "older");
    }

    std::string writing(const std::string& bytes)
    {
        return "write-output-file " + tools.addData("bytes", bytes) + "\n";
    }
};

TEST_F(CreatorEndingsTest, successMakesTheOutput)
{
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode()), 0);
    EXPECT_EQ(contentsOf(output()), movie());
    EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
}

TEST_F(CreatorEndingsTest, successReplacesAnOlderFile)
{
    setGoodFfmpeg();
    for (const auto& arguments : {transcode(), fixFlag()}) {
        writeFile(output(), "older");
        EXPECT_EQ(run(arguments), 0);
        EXPECT_EQ(contentsOf(output()).size(), movie().size());
        EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
    }
}

TEST_F(CreatorEndingsTest, aFixFlagIsInTheTracksHeader)
{
    setGoodFfmpeg();
    EXPECT_EQ(run(fixFlag()), 0);
    const std::string header = matrixIn(contentsOf(output()), movie().find("tkhd") - 4);
    EXPECT_EQ(header.substr(0, 12), bigEndian(0, 4) + bigEndian(0xFFFF0000U, 4) + bigEndian(0, 4));
    EXPECT_EQ(header.substr(12, 12), bigEndian(65536, 4) + bigEndian(0, 8));
}

TEST_F(CreatorEndingsTest, anFfmpegThatFailsLeavesNothing)
{
    expectFailure("exit 1\n");
    expectFailure("error no such codec\\n\nexit 69\n");
}

TEST_F(CreatorEndingsTest, anFfmpegThatFailsWithAWholeFileLeavesNothing)
{
    expectFailure(writing(movie()) + "exit 1\n");
}

TEST_F(CreatorEndingsTest, anFfmpegThatCrashesLeavesNothing)
{
    expectFailure(writing(movie()) + "die " + std::to_string(SIGSEGV) + "\n");
}

TEST_F(CreatorEndingsTest, anFfmpegThatIsKilledLeavesNothing)
{
    expectFailure(writing("stub") + "die " + std::to_string(SIGKILL) + "\n");
    expectFailure("die " + std::to_string(SIGTERM) + "\n");
}

TEST_F(CreatorEndingsTest, anIncompleteMovieIsNoSuccess)
{
    expectFailure(writing(movie().substr(0, movie().size() - 1)));
    expectFailure(writing(movie().substr(0, 200)));
    expectFailure("exit 0\n");
    expectFailure(writing("no movie at all"));
}

TEST_F(CreatorEndingsTest, aMovieWithoutAVideoTrackTakesNoFlag)
{
    tools.setFfmpeg(writing(box("ftyp", "isom") + box("moov", track("soun"))));
    EXPECT_EQ(run(fixFlag()), 1);
    EXPECT_EQ(otherNames(), Names());
}

TEST_F(CreatorEndingsTest, anFfmpegThatCannotBeRunIsToldOfPlainly)
{
    tools.breakFfmpeg();
    writeFile(output(), "older");
    ToolProcess creator(tools.creator(), transcode());
    EXPECT_EQ(creator.wait(), 1);
    EXPECT_NE(creator.errorText().find("ffmpeg cannot be run"), std::string::npos) << creator.errorText();
    EXPECT_NE(creator.errorText().find("install the package ffmpeg"), std::string::npos)
        << creator.errorText();
    EXPECT_EQ(otherNames(), Names({previous}));
}

TEST_F(CreatorEndingsTest, olderFilesArePutAsideOneAfterTheOther)
{
    tools.setFfmpeg("exit 1\n");
    for (const char* text : {"first", "second", "third"}) {
        writeFile(output(), text);
        EXPECT_EQ(run(fixFlag()), 1);
    }
    EXPECT_EQ(otherNames(), Names({"Rotated (previous 2).mp4", "Rotated (previous 3).mp4", previous}));
    EXPECT_EQ(contentsOf(tools.at(previous)), "first");
    EXPECT_EQ(contentsOf(tools.at("Rotated (previous 3).mp4")), "third");
}

TEST_F(CreatorEndingsTest, nothingIsSeenOfTheOutputWhileFfmpegWorks)
{
    const std::string goOn = tools.at("go on");
    setGoodFfmpeg("write-output half\nerror written\\n\nwait-for " + goOn + "\n");
    writeFile(output(), "older");
    ToolProcess creator(tools.creator(), transcode());
    creator.waitForError("written");
    EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output()), "older");
    writeFile(goOn, "");
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_EQ(contentsOf(output()), movie());
}

TEST_F(CreatorEndingsTest, aFullDiskLeavesNothing)
{
    ToolSetup setup;
    setup.largestFile = 100000;
    tools.setFfmpeg("flood-output 1000000\n");
    for (const auto& arguments : {fixFlag(), transcode()}) {
        writeFile(output(), "older");
        ToolProcess creator(tools.creator(), arguments, setup);
        EXPECT_EQ(creator.wait(), 1);
        EXPECT_FALSE(exists(output()));
    }
    EXPECT_EQ(otherNames(), Names({"Rotated (previous 2).mp4", previous}));
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
    EXPECT_EQ(otherNames(), Names({"go on"}));
}

TEST_F(CreatorEndingsTest, anOutputFolderThatIsNotThereIsToldOf)
{
    setGoodFfmpeg();
    ToolProcess creator(tools.creator(), transcode(input(), tools.at("nowhere/out.mp4")));
    EXPECT_EQ(creator.wait(), 1);
    EXPECT_NE(creator.errorText().find("No such file or directory"), std::string::npos)
        << creator.errorText();
    EXPECT_EQ(otherNames(), Names());
}

TEST_F(CreatorEndingsTest, anOutputFolderThatTakesNoFilesIsToldOf)
{
    setGoodFfmpeg();
    ToolProcess creator(tools.creator(), transcode(input(), "/sys/out.mp4")); // not even from the superuser
    EXPECT_EQ(creator.wait(), 1);
    EXPECT_NE(creator.errorText().find("the output cannot be written"), std::string::npos)
        << creator.errorText();
    EXPECT_EQ(otherNames(), Names());
}

TEST_F(CreatorEndingsTest, whatStandsThereIsPutAsideEvenWhereNoFileCanBeMade)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    ToolSetup setup;
    setup.refused = {RefusedCall::MakeFiles};
    for (const auto& arguments : {transcode(), fixFlag(), transcode(input(), tools.at("./clip.mp4"))}) {
        ToolProcess creator(tools.creator(), arguments, setup);
        EXPECT_EQ(creator.wait(), 1);
        EXPECT_FALSE(exists(arguments.back()));
    }
    expectInputAt(tools.at("clip (original).mp4"));
    EXPECT_EQ(contentsOf(tools.at(previous)), "older");
}

TEST_F(CreatorEndingsTest, aFolderAtTheOutputsPlaceStaysThere)
{
    setGoodFfmpeg();
    std::filesystem::create_directory(output());
    writeFile(output() + "/kept", "kept");
    EXPECT_EQ(run(transcode()), 1);
    EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
    EXPECT_EQ(contentsOf(output() + "/kept"), "kept");
}

TEST_F(CreatorEndingsTest, anyOtherListIsRefusedAndTouchesNothing)
{
    setGoodFfmpeg();
    writeFile(output(), "older");
    for (const Names& arguments : std::vector<Names>{{}, {"-version"}, {"-i", input(), output()}}) {
        ToolProcess creator(tools.creator(), arguments);
        EXPECT_EQ(creator.wait(), 2);
        EXPECT_NE(creator.errorText(), "");
        EXPECT_EQ(contentsOf(output()), "older");
    }
}

} // namespace tarnwell::test
