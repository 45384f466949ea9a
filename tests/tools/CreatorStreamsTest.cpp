// SPDX-License-Identifier: MIT
// What creator says, to whom, and what it hands on to ffmpeg.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <string>
#include <thread>
#include <unistd.h>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Lines = std::vector<std::string>;

struct Recording {
    const char* file;
    Lines lines;
};

bool isStatusLine(const std::string& line)
{
    const std::string pattern = "time=00:00:00.00\n";
    if (line.size() != pattern.size())
        return false;
    for (std::size_t place = 0; place < pattern.size(); ++place) {
        const bool isDigit = std::isdigit(static_cast<unsigned char>(line[place])) != 0;
        if (pattern[place] == '0' ? !isDigit : line[place] != pattern[place])
            return false;
    }
    return true;
}

} // namespace

class CreatorStreamsTest : public CreatorTest
{
protected:
    /// What creator writes, write by write, when ffmpeg prints that.
    Lines writesFor(const std::string& commands)
    {
        setGoodFfmpeg(commands);
        ToolProcess creator(tools.creator(), transcode());
        EXPECT_EQ(creator.wait(), 0);
        return creator.errors();
    }

    std::string recorded(const std::string& file)
    {
        const std::string text = contentsOf(std::string(TARNWELL_TEST_DATA_FOLDER) + "/progress/" + file);
        EXPECT_NE(text, "") << file;
        return "print-file " + tools.addData("progress", text) + "\n";
    }
};

TEST_F(CreatorStreamsTest, everyVersionsProgressBecomesStatusLines)
{
    const std::vector<Recording> recordings = {
        {"transcode.ffmpeg-4.3.txt", {"time=00:00:00.00\n", "time=00:00:01.52\n", "time=00:00:03.96\n"}},
        {"transcode.ffmpeg-5.1.txt", {}},
        {"copy.ffmpeg-5.1.txt", {}},
        {"transcode.ffmpeg-6.1.txt", {"time=00:00:01.52\n", "time=00:00:03.96\n"}},
        {"transcode.ffmpeg-7.1.txt", {"time=00:00:01.52\n", "time=00:00:03.96\n"}},
    };
    for (const auto& recording : recordings) {
        SCOPED_TRACE(recording.file);
        const Lines lines = writesFor(recorded(recording.file));
        EXPECT_FALSE(lines.empty());
        EXPECT_TRUE(std::all_of(lines.begin(), lines.end(), isStatusLine));
        EXPECT_TRUE(std::is_sorted(lines.begin(), lines.end()));
        EXPECT_TRUE(recording.lines.empty() || lines == recording.lines) << testing::PrintToString(lines);
    }
}

TEST_F(CreatorStreamsTest, eachLineIsOneWriteHoweverItComes)
{
    const Lines expected = {"time=00:00:01.00\n", "time=00:00:02.00\n"};
    EXPECT_EQ(
        writesFor("print out_time_us=1000000\\nprogress=continue\\nout_time_us=2000000\\nprogress=end\\n\n"),
        expected);
    EXPECT_EQ(writesFor("print out_time_\nsleep 3\nprint us=1000000\\nprog\nsleep 3\n"
                        "print ress=continue\\nout_time_us=2000000\nsleep 3\nprint \\nprogress=end\\n\n"),
        expected);
}

TEST_F(CreatorStreamsTest, halfALineAtTheEndIsNotWritten)
{
    EXPECT_EQ(writesFor("print out_time_us=1000000\\nprogress=continue\\nout_time_us=2000000\\nprogress=e\n"),
        Lines({"time=00:00:01.00\n"}));
    EXPECT_EQ(writesFor("error whole\\nhalf time=00\n"), Lines({"whole\n"}));
}

TEST_F(CreatorStreamsTest, complaintsNeverLookLikeStatusLines)
{
    const Lines writes
        = writesFor("error title: x time=00:00:99.99 y\\nnext \\xC3\\xA4\\x1B[31m\\rtime=N/A\\n\n");
    EXPECT_EQ(writes, Lines({"title: x time:00.00:99.99 y\n", "next ???[31m\n", "time:N/A\n"}));
}

TEST_F(CreatorStreamsTest, aFloodOfComplaintsDoesNotStopIt)
{
    const Lines writes = writesFor("flood-error 3000000\nerror \\nlast\\n\n");
    ASSERT_FALSE(writes.empty());
    EXPECT_EQ(writes.back(), "last\n");
    for (const auto& line : writes)
        EXPECT_EQ(line.find('\n'), line.size() - 1);
}

TEST_F(CreatorStreamsTest, aFloodOfProgressDoesNotStopIt)
{
    EXPECT_EQ(writesFor("flood 3000000\nprint \\nout_time_us=5\\nprogress=end\\n\n"),
        Lines({"time=00:00:00.00\n"}));
}

TEST_F(CreatorStreamsTest, aMissingListenerDoesNotStopIt)
{
    std::string talk;
    for (int line = 0; line < 50; ++line)
        talk += "print out_time_us=1000000\\nprogress=continue\\n\nerror complaint\\n\n";
    setGoodFfmpeg(talk);
    for (const auto errors : {ToolSetup::ErrorStream::Closed, ToolSetup::ErrorStream::Unread}) {
        std::filesystem::remove(output());
        ToolSetup setup;
        setup.errors = errors;
        ToolProcess creator(tools.creator(), transcode(), setup);
        EXPECT_EQ(creator.wait(), 0);
        EXPECT_EQ(contentsOf(output()), movie());
    }
}

TEST_F(CreatorStreamsTest, aListenerThatDoesNotListenDoesNotStopIt)
{
    std::string talk;
    for (int line = 0; line < 300; ++line)
        talk += "error " + std::string(3000, 'x') + "\\n\n"; // far more than a pipe holds
    ToolSetup setup;
    setup.errors = ToolSetup::ErrorStream::NotListened;
    setGoodFfmpeg(talk);
    ToolProcess creator(tools.creator(), transcode(), setup);
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_EQ(contentsOf(output()), movie());
    std::filesystem::remove(output());
    setGoodFfmpeg(talk + "hang\n");
    ToolProcess cancelled(tools.creator(), transcode(), setup);
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    cancelled.signal(SIGTERM);
    EXPECT_EQ(cancelled.wait(), 255);
}

TEST_F(CreatorStreamsTest, aLineComesTwiceASecondEvenWhereFfmpegIsSlower)
{
    const Lines lines
        = writesFor("print out_time_us=1000000\\nprogress=continue\\n\nsleep 2000\nprint progress=end\\n\n");
    EXPECT_GE(lines.size(), 3U);
    EXPECT_TRUE(std::all_of(
        lines.begin(), lines.end(), [](const auto& line) { return line == "time=00:00:01.00\n"; }));
}

TEST_F(CreatorStreamsTest, ffmpegIsInASessionOfItsOwn)
{
    setGoodFfmpeg("say-session\n");
    ToolProcess creator(tools.creator(), transcode());
    const int session = std::stoi(creator.waitForError("session "));
    EXPECT_NE(session, ::getsid(0));
    EXPECT_EQ(creator.wait(), 0);
}

TEST_F(CreatorStreamsTest, anyStreamsMayBeClosed)
{
    setGoodFfmpeg("print out_time_us=1000000\\nprogress=continue\\n\nerror complaint\\n\n");
    for (const std::vector<int>& closed :
        std::vector<std::vector<int>>{{0}, {1}, {2}, {0, 1}, {0, 2}, {1, 2}, {0, 1, 2}}) {
        SCOPED_TRACE(testing::PrintToString(closed));
        std::filesystem::remove(output());
        ToolSetup setup;
        setup.closed = closed;
        ToolProcess creator(tools.creator(), transcode(), setup);
        EXPECT_EQ(creator.wait(), 0);
        EXPECT_EQ(contentsOf(output()), movie());
    }
}

TEST_F(CreatorStreamsTest, ffmpegGetsNoOtherDescriptors)
{
    setGoodFfmpeg("say-descriptors\nsay-arguments\n");
    const int another = ::dup(STDERR_FILENO); // inherited
    for (const auto& arguments : {still(), fixFlag(), transcode()}) {
        ToolProcess creator(tools.creator(), arguments);
        EXPECT_EQ(creator.wait(), 0);
        const Lines streams = creator.said("descriptor ");
        ASSERT_EQ(streams.size(), 4U) << creator.errorText();
        EXPECT_EQ(streams[0], "0 /dev/null");
        EXPECT_TRUE(streams[1].starts_with("1 pipe:")) << streams[1];
        EXPECT_TRUE(streams[2].starts_with("2 pipe:")) << streams[2];
        const std::string number = streams[3].substr(0, streams[3].find(' '));
        EXPECT_EQ(creator.saidInHex("argument ").back(), "/proc/self/fd/" + number);
    }
    ::close(another);
}

TEST_F(CreatorStreamsTest, ffmpegGetsTheInputAsAPath)
{
    setGoodFfmpeg("say-arguments\n");
    for (const std::string name :
        {"-i", "a b.mp4", "new\nline.mp4", "\xFF\xFE.mp4", "http:x", "%d.mp4", "time=1.mp4"}) {
        writeFile(tools.at(name), "bytes");
        ToolProcess creator(tools.creator(), transcode(tools.at(name), output()));
        EXPECT_EQ(creator.wait(), 0);
        const Lines words = creator.saidInHex("argument ");
        EXPECT_EQ(std::count(words.begin(), words.end(), "file:" + tools.at(name)), 1) << name;
        EXPECT_EQ(contentsOf(tools.at(name)), "bytes");
    }
}

TEST_F(CreatorStreamsTest, nothingIsSaidOnStandardOutput)
{
    setGoodFfmpeg("print out_time_us=1000000\\nprogress=end\\n\n");
    ToolProcess creator(tools.creator(), transcode());
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_EQ(creator.output(), "");
}

TEST_F(CreatorStreamsTest, theEnvironmentHoldsNothingThatChangesFfmpeg)
{
    setGoodFfmpeg("say-environment\n");
    ToolSetup setup;
    setup.variables = {"FFREPORT=file=/dev/full", "LD_LIBRARY_PATH=/nowhere", "AV_LOG_FORCE_COLOR=1"};
    ToolProcess creator(tools.creator(), transcode(), setup);
    EXPECT_EQ(creator.wait(), 0);
    EXPECT_EQ(creator.saidInHex("variable "), Lines({"PATH=/usr/bin:/bin", "LC_ALL=C.UTF-8"}));
}

} // namespace tarnwell::test
