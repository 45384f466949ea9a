// SPDX-License-Identifier: MIT
// Signals for creator, at any moment.
#include "tests/support/Files.h"
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
    std::this_thread::sleep_for(std::chrono::milliseconds(50)); // it says nothing when it gets there
    creator.signal(SIGTERM);
    EXPECT_EQ(creator.wait(), cancelled);
    EXPECT_EQ(otherNames(), Names());
}

TEST_F(CreatorCancelTest, noMomentLeavesAnythingBehind)
{
    constexpr int rounds = 200;
    constexpr int longest = 12000; // microseconds; creator is done with the stand-in before
    std::mt19937 random(7);
    std::uniform_int_distribution<int> moment(0, longest);
    setGoodFfmpeg("print out_time_us=1000\\nprogress=continue\\n\nwrite-output half\nsleep 2\n");
    int cancels = 0;
    for (int round = 0; round < rounds; ++round) {
        const int wait = moment(random);
        SCOPED_TRACE(testing::Message() << "round " << round << ", after " << wait << " microseconds");
        ToolProcess creator(tools.creator(), transcode());
        std::this_thread::sleep_for(std::chrono::microseconds(wait));
        creator.signal(SIGTERM);
        const int status = creator.wait();
        if (status == 0) {
            EXPECT_EQ(contentsOf(output()), movie());
            std::filesystem::remove(output());
        } else {
            EXPECT_TRUE(status == cancelled || status == 128 + SIGTERM) << status;
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
