// SPDX-License-Identifier: MIT
// The standard streams of creator, and the environment and descriptors that ffmpeg inherits.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Rows.h"
#include "tests/tools/CreatorTest.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

namespace tarnwell::test
{

namespace
{

bool isStatusLine(const std::string& line)
{
    const std::string pattern = "time=00:00:00.00\n";
    return line.size() == pattern.size()
        && std::equal(line.begin(), line.end(), pattern.begin(), [](char found, char wanted) {
               return wanted == '0' ? found >= '0' && found <= '9' : found == wanted;
           });
}

} // namespace

class CreatorStreamsTest : public CreatorTest
{
protected:
    /// The writes of creator to standard error, one element each, if ffmpeg runs these commands.
    Words writesFor(const std::string& commands)
    {
        setGoodFfmpeg(commands);
        EXPECT_EQ(run(transcode()), 0);
        return lastRun().errors();
    }

    /// Expects creator to make its output with standard streams in that state.
    void expectSuccessWith(const ToolSetup& setup)
    {
        std::filesystem::remove(output());
        EXPECT_EQ(run(transcode(), setup), 0);
        EXPECT_EQ(contentsOf(output()), movie());
    }

    std::string recorded(const std::string& file)
    {
        const std::string text = contentsOf(std::string(TARNWELL_TEST_DATA_FOLDER) + "/progress/" + file);
        EXPECT_NE(text, "") << file;
        return "print-file " + tools.addData("progress", text) + "\n";
    }
};

TEST_F(CreatorStreamsTest, theProgressOfEveryVersionBecomesStatusLines)
{
    const std::vector<std::pair<const char*, Words>> recordings = {
        {"transcode.ffmpeg-4.3.txt", {"time=00:00:00.00\n", "time=00:00:01.52\n", "time=00:00:03.96\n"}},
        {"transcode.ffmpeg-5.1.txt", {}},
        {"copy.ffmpeg-5.1.txt", {}},
        {"transcode.ffmpeg-6.1.txt", {"time=00:00:01.52\n", "time=00:00:03.96\n"}},
        {"transcode.ffmpeg-7.1.txt", {"time=00:00:01.52\n", "time=00:00:03.96\n"}},
    };
    for (const auto& [file, expected] : recordings) {
        SCOPED_TRACE(file);
        const Words lines = writesFor(recorded(file));
        EXPECT_FALSE(lines.empty());
        EXPECT_TRUE(std::all_of(lines.begin(), lines.end(), isStatusLine));
        EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end()));
        EXPECT_TRUE(expected.empty() || lines == expected) << testing::PrintToString(lines);
    }
}

struct TalkRow {
    const char* name;
    const char* commands;
    Words writes;
};

class CreatorWritesTest : public CreatorStreamsTest, public testing::WithParamInterface<TalkRow>
{
};

TEST_P(CreatorWritesTest, areAsStated)
{
    EXPECT_EQ(writesFor(GetParam().commands), GetParam().writes);
}

INSTANTIATE_TEST_SUITE_P(Lines, CreatorWritesTest,
    testing::Values(
        TalkRow{"twoBlocksInOnePieceAreTwoWrites",
            "print out_time_us=1000000\\nprogress=continue\\nout_time_us=2000000\\nprogress=end\\n\n",
            {"time=00:00:01.00\n", "time=00:00:02.00\n"}},
        TalkRow{"twoBlocksInSmallPiecesAreTwoWrites",
            "print out_time_\nsleep 3\nprint us=1000000\\nprog\nsleep 3\n"
            "print ress=continue\\nout_time_us=2000000\nsleep 3\nprint \\nprogress=end\\n\n",
            {"time=00:00:01.00\n", "time=00:00:02.00\n"}},
        TalkRow{"aBlockWithoutItsEndIsNotWritten",
            "print out_time_us=1000000\\nprogress=continue\\nout_time_us=2000000\\nprogress=e\n",
            {"time=00:00:01.00\n"}},
        TalkRow{"anErrorWithoutItsEndIsWrittenWithOne", "error whole\\nhalf time=00\n",
            {"whole\n", "half time:00\n"}},
        TalkRow{"errorsDoNotLookLikeStatusLines",
            "error title: x time=00:00:99.99 y\\nnext \\xC3\\xA4\\x1B[31m\\rtime=N/A\\n\n",
            {"title: x time:00.00:99.99 y\n", "next ???[31m\n", "time:N/A\n"}},
        TalkRow{"muchProgressIsRead", "flood 3000000\nprint \\nout_time_us=5\\nprogress=end\\n\n",
            {"time=00:00:00.00\n"}}),
    rowName);

TEST_F(CreatorStreamsTest, manyErrorsAreWrittenLineByLine)
{
    const Words writes = writesFor("flood-error 3000000\nerror \\nlast\\n\n");
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes.back(), "last\n");
    for (const auto& line : writes)
        EXPECT_EQ(line.find('\n'), line.size() - 1);
}

TEST_F(CreatorStreamsTest, aMissingListenerDoesNotStopIt)
{
    std::string talk;
    for (int line = 0; line < 50; ++line)
        talk += "print out_time_us=1000000\\nprogress=continue\\n\nerror message\\n\n";
    setGoodFfmpeg(talk);
    for (const auto errors : {ToolSetup::ErrorStream::Closed, ToolSetup::ErrorStream::Unread})
        expectSuccessWith({.errors = errors});
}

TEST_F(CreatorStreamsTest, aListenerThatDoesNotReadDoesNotStopIt)
{
    std::string talk;
    for (int line = 0; line < 300; ++line)
        talk += "error " + std::string(3000, 'x') + "\\n\n"; // more than the capacity of a pipe
    setGoodFfmpeg(talk);
    expectSuccessWith({.errors = ToolSetup::ErrorStream::NotListened});
    setGoodFfmpeg(talk + "hang\n");
    ToolProcess process(tools.creator(), transcode(), {.errors = ToolSetup::ErrorStream::NotListened});
    EXPECT_TRUE(waitFor([&process] { return process.isErrorPipeFull(); }));
    process.signal(SIGTERM);
    EXPECT_EQ(process.wait(), cancelled);
}

TEST_F(CreatorStreamsTest, aLineComesTwiceASecondEvenWhereFfmpegIsSlower)
{
    const Words lines
        = writesFor("print out_time_us=1000000\\nprogress=continue\\n\nsleep 2000\nprint progress=end\\n\n");
    EXPECT_GE(lines.size(), 3U);
    EXPECT_EQ(lines, Words(lines.size(), "time=00:00:01.00\n"));
}

TEST_F(CreatorStreamsTest, ffmpegIsInASessionOfItsOwn)
{
    setGoodFfmpeg("say-session\n");
    ToolProcess creator(tools.creator(), transcode());
    EXPECT_NE(std::stoi(creator.waitForError("session ")), ::getsid(0));
    EXPECT_EQ(creator.wait(), 0);
}

TEST_F(CreatorStreamsTest, anyStreamsMayBeClosed)
{
    setGoodFfmpeg("print out_time_us=1000000\\nprogress=continue\\n\nerror message\\n\n");
    for (const std::vector<int>& closed :
        std::vector<std::vector<int>>{{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}}) {
        SCOPED_TRACE(testing::PrintToString(closed));
        expectSuccessWith({.closed = closed});
    }
}

TEST_F(CreatorStreamsTest, ffmpegGetsNoOtherDescriptors)
{
    setGoodFfmpeg("say-descriptors\nsay-arguments\n");
    const int another = ::dup(STDERR_FILENO); // inherited
    for (const auto& arguments : {still(), fixFlag(), transcode()}) {
        EXPECT_EQ(run(arguments), 0);
        const Words streams = lastRun().said("descriptor ");
        ASSERT_EQ(streams.size(), 4U) << lastRun().errorText();
        EXPECT_EQ(streams[0], "0 /dev/null");
        EXPECT_TRUE(streams[1].starts_with("1 pipe:")) << streams[1];
        EXPECT_TRUE(streams[2].starts_with("2 pipe:")) << streams[2];
        const std::string number = streams[3].substr(0, streams[3].find(' '));
        EXPECT_EQ(lastRun().saidInHex("argument ").back(), "/proc/self/fd/" + number);
    }
    ::close(another);
}

TEST_F(CreatorStreamsTest, ffmpegGetsTheInputAsAPath)
{
    setGoodFfmpeg("say-arguments\n");
    for (const std::string name :
        {"-i", "a b.mp4", "new\nline.mp4", "\xFF\xFE.mp4", "http:x", "%d.mp4", "time=1.mp4"}) {
        writeFile(tools.at(name), "bytes");
        EXPECT_EQ(run(transcode(tools.at(name), output())), 0);
        const Words words = lastRun().saidInHex("argument ");
        EXPECT_EQ(std::count(words.begin(), words.end(), "file:" + tools.at(name)), 1) << name;
        EXPECT_EQ(contentsOf(tools.at(name)), "bytes");
    }
}

TEST_F(CreatorStreamsTest, nothingIsWrittenToStandardOutput)
{
    setGoodFfmpeg("print out_time_us=1000000\\nprogress=end\\n\n");
    EXPECT_EQ(run(transcode()), 0);
    EXPECT_EQ(lastRun().output(), "");
}

TEST_F(CreatorStreamsTest, theEnvironmentHoldsNothingThatChangesFfmpeg)
{
    setGoodFfmpeg("say-environment\n");
    EXPECT_EQ(
        run(transcode(),
            {.variables = {"FFREPORT=file=/dev/full", "LD_LIBRARY_PATH=/nowhere", "AV_LOG_FORCE_COLOR=1"}}),
        0);
    EXPECT_EQ(lastRun().saidInHex("variable "), Words({"PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8"}));
}

} // namespace tarnwell::test
