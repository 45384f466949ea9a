// SPDX-License-Identifier: MIT
// Signals for creator, at any moment.
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/tools/CreatorTest.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <random>
#include <set>
#include <string>
#include <system_error>
#include <thread>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Names = std::vector<std::string>;

constexpr int cancelled = 255;
const std::string previous = "Rotated (previous).mp4";

std::set<std::string> pipesOf(const std::string& process)
{
    std::set<std::string> pipes;
    for (const auto& entry : std::filesystem::directory_iterator("/proc/" + process + "/fd")) {
        std::error_code closedMeanwhile;
        const std::string target = std::filesystem::read_symlink(entry.path(), closedMeanwhile).string();
        if (target.starts_with("pipe:"))
            pipes.insert(target);
    }
    return pipes;
}

/// The name of the program that its only child is; empty without a child.
std::string childOf(pid_t process)
{
    const std::string task = "/proc/" + std::to_string(process) + "/task/" + std::to_string(process);
    std::string name
        = contentsOf("/proc/" + std::to_string(std::atoi(contentsOf(task + "/children").c_str())) + "/comm");
    return name.substr(0, name.find('\n'));
}

/// Whether it has pipes that it has not inherited.
bool hasOwnPipes(pid_t process)
{
    const auto ours = pipesOf("self");
    const auto its = pipesOf(std::to_string(process));
    return !std::includes(ours.begin(), ours.end(), its.begin(), its.end());
}

} // namespace

using CreatorCancelTest = CreatorTest;

TEST_F(CreatorCancelTest, aSignalReachesFfmpeg)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        tools.setFfmpeg("say-on-termination told to end\nwrite-output half\nerror ready\\n\nhang\n");
        for (const auto& arguments : {still(), fixFlag(), transcode()}) {
            ToolProcess creator(tools.creator(), arguments);
            creator.waitForError("ready");
            creator.signal(signal);
            EXPECT_EQ(creator.wait(), cancelled);
            EXPECT_EQ(creator.said("told to end").size(), 1U) << creator.errorText();
            EXPECT_EQ(otherNames(), Names());
        }
    }
}

TEST_F(CreatorCancelTest, aStubbornFfmpegIsKilled)
{
    tools.setFfmpeg("ignore-termination\nsay-pid\nwrite-output half\nerror ready\\n\nhang\n");
    ToolProcess creator(tools.creator(), transcode());
    creator.waitForError("ready");
    const int ffmpeg = std::stoi(creator.waitForError("pid "));
    creator.signal(SIGTERM);
    EXPECT_EQ(creator.wait(), cancelled);
    waitUntilGone(ffmpeg);
    EXPECT_EQ(otherNames(), Names());
}

TEST_F(CreatorCancelTest, aStubbornFfmpegThatFloodsIsKilled)
{
    tools.setFfmpeg("ignore-termination\nsay-pid\nflood 1000000000000\n");
    ToolProcess creator(tools.creator(), transcode());
    const int ffmpeg = std::stoi(creator.waitForError("pid "));
    creator.signal(SIGTERM);
    EXPECT_EQ(creator.wait(), cancelled);
    waitUntilGone(ffmpeg);
}

TEST_F(CreatorCancelTest, anFfmpegThatHasClosedItsStreamsIsReachedToo)
{
    tools.setFfmpeg("say-pid\nclose 1\nclose 2\nhang\n");
    ToolProcess creator(tools.creator(), transcode());
    const int ffmpeg = std::stoi(creator.waitForError("pid "));
    while (hasOwnPipes(creator.processId()))
        std::this_thread::yield();
    creator.signal(SIGTERM);
    EXPECT_EQ(creator.wait(), cancelled);
    waitUntilGone(ffmpeg);
}

TEST_F(CreatorCancelTest, anFfmpegThatSucceedsAllTheSameIsStillCancelled)
{
    const std::string goOn = tools.at("go on");
    setGoodFfmpeg("ignore-termination\nerror ready\\n\nwait-for " + goOn + "\n");
    ToolProcess creator(tools.creator(), transcode());
    creator.waitForError("ready");
    creator.signal(SIGTERM);
    writeFile(goOn, "");
    EXPECT_EQ(creator.wait(), cancelled);
    EXPECT_EQ(otherNames(), Names({"go on"}));
}

TEST_F(CreatorCancelTest, anOlderFileIsPutAside)
{
    tools.setFfmpeg("error ready\\n\nhang\n");
    for (const auto& arguments : {fixFlag(), transcode()}) {
        writeFile(output(), "older");
        ToolProcess creator(tools.creator(), arguments);
        creator.waitForError("ready");
        creator.signal(SIGTERM);
        EXPECT_EQ(creator.wait(), cancelled);
        EXPECT_FALSE(exists(output()));
    }
    EXPECT_EQ(otherNames(), Names({"Rotated (previous 2).mp4", previous}));
    EXPECT_EQ(contentsOf(tools.at(previous)), "older");
}

TEST_F(CreatorCancelTest, aHangingFfprobeDoesNotKeepIt)
{
    setGoodFfmpeg();
    tools.setFfprobe("hang\n");
    ToolProcess creator(tools.creator(), fixFlag());
    while (childOf(creator.processId()) != "ffprobe")
        std::this_thread::yield();
    creator.signal(SIGTERM);
    EXPECT_EQ(creator.wait(), cancelled);
    EXPECT_EQ(otherNames(), Names());
}

class LateCancelTest : public CreatorTest
{
protected:
    /// Cancels while that write to the disk lasts.
    int cancelDuring(const std::string& fsync, const std::vector<std::string>& arguments)
    {
        const std::string goOn = tools.addData("go on", "");
        std::filesystem::remove(goOn);
        ToolSetup setup;
        setup.variables
            = {"LD_PRELOAD=" TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so", fsync + "_WAITS_FOR=" + goOn};
        ToolProcess creator(tools.creator(), arguments, setup);
        const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(60);
        while (!exists(goOn + ".waiting") && std::chrono::steady_clock::now() < limit)
            std::this_thread::yield();
        EXPECT_TRUE(exists(goOn + ".waiting")) << "creator did not call " << fsync;
        creator.signal(SIGTERM);
        writeFile(goOn, "");
        const int status = creator.wait();
        std::filesystem::remove(goOn + ".waiting");
        return status;
    }

    void expectThatItCounts(const std::string& fsync)
    {
        setGoodFfmpeg();
        for (const auto& arguments : {fixFlag(), transcode()}) {
            writeFile(output(), "older");
            EXPECT_EQ(cancelDuring(fsync, arguments), cancelled);
            EXPECT_EQ(otherNames(), Names({previous}));
            EXPECT_EQ(contentsOf(tools.at(previous)), "older");
            std::filesystem::remove(tools.at(previous));
            EXPECT_EQ(cancelDuring(fsync, arguments), cancelled);
            EXPECT_EQ(otherNames(), Names());
        }
    }
};

TEST_F(LateCancelTest, countsWhileTheDataIsBroughtToTheDisk)
{
    expectThatItCounts("TARNWELL_FSYNC");
}

TEST_F(LateCancelTest, countsWhenTheFileIsInItsPlaceAlready)
{
    expectThatItCounts("TARNWELL_FOLDER_FSYNC");
}

TEST_F(CreatorCancelTest, aSignalBeforeItIsReadyIsKeptForIt)
{
    constexpr int rounds = 20;
    tools.setFfmpeg("hang\n");
    ToolSetup setup;
    setup.blocked = SIGTERM; // a caller may do so, to cancel from the first moment on
    for (int round = 0; round < rounds; ++round) {
        writeFile(output(), "older");
        ToolProcess creator(tools.creator(), transcode(), setup);
        creator.signal(SIGTERM);
        EXPECT_EQ(creator.wait(), cancelled);
        EXPECT_EQ(otherNames(), Names({previous}));
        EXPECT_EQ(contentsOf(tools.at(previous)), "older");
        std::filesystem::remove(tools.at(previous));
    }
}

TEST_F(CreatorCancelTest, aSignalThatItsCallerIgnoresDoesNotCancel)
{
    for (const int signal : {SIGINT, SIGHUP}) {
        const std::string goOn = tools.at("go on");
        std::filesystem::remove(goOn);
        setGoodFfmpeg("error ready\\n\nwait-for " + goOn + "\n");
        const auto usual = std::signal(signal, SIG_IGN);
        ToolProcess creator(tools.creator(), transcode());
        std::signal(signal, usual);
        creator.waitForError("ready");
        creator.signal(signal);
        writeFile(goOn, "");
        EXPECT_EQ(creator.wait(), 0);
    }
}

TEST_F(CreatorCancelTest, aCallerThatIgnoresItsChildrenDoesNotConfuseIt)
{
    setGoodFfmpeg();
    ToolSetup setup;
    setup.ignored = SIGCHLD;
    ToolProcess creator(tools.creator(), transcode(), setup);
    EXPECT_EQ(creator.wait(), 0);
}

TEST_F(CreatorCancelTest, noMomentLeavesAnythingBehind)
{
    constexpr int rounds = 200;
    constexpr int longest = 12000; // microseconds; creator is done with the fake before
    std::mt19937 random(7);
    std::uniform_int_distribution<int> moment(0, longest);
    setGoodFfmpeg("print out_time_us=1000\\nprogress=continue\\n\nwrite-output half\nsleep 2\n");
    int cancels = 0;
    for (int round = 0; round < rounds; ++round) {
        const int wait = moment(random);
        SCOPED_TRACE(testing::Message() << "round " << round << ", after " << wait << " microseconds");
        writeFile(output(), "older");
        ToolSetup setup;
        setup.blocked = SIGTERM; // a caller may do so, to cancel from the first moment on
        ToolProcess creator(tools.creator(), transcode(), setup);
        std::this_thread::sleep_for(std::chrono::microseconds(wait));
        creator.signal(SIGTERM);
        const int status = creator.wait();
        if (status == 0) {
            EXPECT_EQ(contentsOf(output()), movie());
            std::filesystem::remove(output());
        } else {
            EXPECT_EQ(status, cancelled);
            EXPECT_EQ(contentsOf(tools.at(previous)), "older");
            std::filesystem::remove(tools.at(previous));
            ++cancels;
        }
        ASSERT_EQ(otherNames(), Names());
    }
    EXPECT_GT(cancels, 0);
}

TEST_F(CreatorCancelTest, itsViolentEndIsTheEndOfFfmpegAndLeavesNothing)
{
    tools.setFfmpeg("ignore-termination\nsay-pid\nwrite-output half\nerror ready\\n\nhang\n");
    writeFile(output(), "older");
    for (const auto& arguments : {still(), fixFlag(), transcode()}) {
        ToolProcess creator(tools.creator(), arguments);
        creator.waitForError("ready");
        const int ffmpeg = std::stoi(creator.waitForError("pid "));
        ASSERT_TRUE(isRunning(ffmpeg));
        creator.signal(SIGKILL);
        EXPECT_EQ(creator.wait(), 128 + SIGKILL);
        waitUntilGone(ffmpeg);
        EXPECT_EQ(otherNames(), Names({"Rotated.mp4"}));
        EXPECT_EQ(contentsOf(output()), "older");
    }
}

TEST_F(CreatorCancelTest, noMomentOfAViolentEndHarmsAnything)
{
    constexpr int rounds = 100;
    std::mt19937 random(11);
    std::uniform_int_distribution<int> moment(0, 12000);
    setGoodFfmpeg("write-output half\nsleep 2\n");
    for (int round = 0; round < rounds; ++round) {
        SCOPED_TRACE(round);
        writeFile(output(), "older");
        ToolProcess creator(tools.creator(), transcode());
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        creator.signal(SIGKILL);
        creator.wait();
        const std::string now = contentsOf(output());
        EXPECT_TRUE(now == "older" || now == movie());
        for (const auto& name : otherNames())
            EXPECT_TRUE(name == "Rotated.mp4" || name.starts_with(".")) << name;
    }
}

} // namespace tarnwell::test
