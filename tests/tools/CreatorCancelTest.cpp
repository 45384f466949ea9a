// SPDX-License-Identifier: MIT
// Signals to creator at any time of its run.
#include "tests/support/Files.h"
#include "tests/support/Rounds.h"
#include "tests/tools/CreatorTest.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <filesystem>
#include <memory>
#include <random>
#include <set>
#include <string>
#include <system_error>
#include <thread>

namespace tarnwell::test
{

namespace
{

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

/// The program name of its only child; empty if it has no child.
std::string childOf(pid_t process)
{
    const std::string task = "/proc/" + std::to_string(process) + "/task/" + std::to_string(process);
    std::string name
        = contentsOf("/proc/" + std::to_string(std::atoi(contentsOf(task + "/children").c_str())) + "/comm");
    return name.substr(0, name.find('\n'));
}

/// Whether the process has pipes that it did not inherit.
bool hasOwnPipes(pid_t process)
{
    const auto ours = pipesOf("self");
    const auto its = pipesOf(std::to_string(process));
    return !std::includes(ours.begin(), ours.end(), its.begin(), its.end());
}

} // namespace

class CreatorCancelTest : public CreatorTest
{
protected:
    /// Starts the job, sends the signal after ffmpeg has written "ready", and returns the exit status.
    int cancelWhenReady(const Words& job, int signal = SIGTERM)
    {
        m_creator = std::make_unique<ToolProcess>(tools.creator(), job);
        m_creator->waitForError("ready");
        m_creator->signal(signal);
        return m_creator->wait();
    }

    /// Expects the ffmpeg whose script has `say-pid` to have ended.
    void expectNoFfmpeg() const { waitUntilGone(std::stoi(m_creator->said("pid ").at(0))); }

    std::unique_ptr<ToolProcess> m_creator;
};

TEST_F(CreatorCancelTest, aSlowDiskDelaysNeitherStatusLinesNorACancel)
{
    setGoodFfmpeg("print out_time_us=1000000\\nprogress=end\\n\n");
    const std::string note = tools.at("synchronised");
    writeFile(output(), "older");
    EXPECT_EQ(runWithPause("TARNWELL_WRITEBACK_WAITS_FOR", transcode(),
                  [](const ToolProcess& creator) {
                      // Longer than the longest time without a status line.
                      std::this_thread::sleep_for(std::chrono::milliseconds(500));
                      creator.signal(SIGTERM);
                  },
                  {"TARNWELL_FAILS=fsync -1", "TARNWELL_FAILED=" + note}),
        cancelled);
    EXPECT_FALSE(exists(note)) << "creator waits for the whole file";
    EXPECT_EQ(lastRun().said("time="), Words({"00:00:01.00", "00:00:01.00"}));
    expectOnlyOlderFile();
}

TEST_F(CreatorCancelTest, aSignalReachesFfmpeg)
{
    tools.setFfmpeg("say-on-termination terminated\nwrite-output half\nerror ready\\n\nhang\n");
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        for (const auto& arguments : {still(), fixFlag(), transcode()}) {
            EXPECT_EQ(cancelWhenReady(arguments, signal), cancelled) << signal;
            EXPECT_EQ(m_creator->said("terminated").size(), 1U) << m_creator->errorText();
            EXPECT_EQ(otherNames(), Words());
        }
    }
}

TEST_F(CreatorCancelTest, anFfmpegThatIgnoresTheSignalIsKilled)
{
    for (const char* rest : {"write-output half\nhang\n", "flood 1000000000000\n"}) {
        tools.setFfmpeg(std::string("ignore-termination\nsay-pid\nerror ready\\n\n") + rest);
        EXPECT_EQ(cancelWhenReady(transcode()), cancelled);
        expectNoFfmpeg();
        EXPECT_EQ(otherNames(), Words());
    }
}

TEST_F(CreatorCancelTest, anFfmpegThatHasClosedItsStreamsIsReachedToo)
{
    tools.setFfmpeg("say-pid\nclose 1\nclose 2\nhang\n");
    ToolProcess creator(tools.creator(), transcode());
    const int ffmpeg = std::stoi(creator.waitForError("pid "));
    EXPECT_TRUE(waitFor([&] { return !hasOwnPipes(creator.processId()); })) << "creator keeps its pipes";
    creator.signal(SIGTERM);
    EXPECT_EQ(creator.wait(), cancelled);
    waitUntilGone(ffmpeg);
}

TEST_F(CreatorCancelTest, anFfmpegThatSucceedsAfterTheSignalIsCancelled)
{
    const std::string goOn = tools.at("go on");
    setGoodFfmpeg("ignore-termination\nerror ready\\n\nwait-for " + goOn + "\n");
    ToolProcess creator(tools.creator(), transcode());
    creator.waitForError("ready");
    creator.signal(SIGTERM);
    writeFile(goOn, "");
    EXPECT_EQ(creator.wait(), cancelled);
    EXPECT_EQ(otherNames(), Words({"go on"}));
}

TEST_F(CreatorCancelTest, anOlderFileStays)
{
    tools.setFfmpeg("error ready\\n\nhang\n");
    for (const auto& arguments : {fixFlag(), transcode()}) {
        writeFile(output(), "older");
        EXPECT_EQ(cancelWhenReady(arguments), cancelled);
        expectOnlyOlderFile();
    }
}

TEST_F(CreatorCancelTest, anFfprobeThatHangsDoesNotDelayIt)
{
    setGoodFfmpeg();
    tools.setFfprobe("hang\n");
    ToolProcess creator(tools.creator(), fixFlag());
    EXPECT_TRUE(waitFor([&] { return childOf(creator.processId()) == "ffprobe"; })) << "no ffprobe runs";
    creator.signal(SIGTERM);
    EXPECT_EQ(creator.wait(), cancelled);
    EXPECT_EQ(otherNames(), Words());
}

class LateCancelTest : public CreatorTest, public testing::WithParamInterface<const char*>
{
protected:
    /// Cancels during the fsync of the test's parameter and returns the exit status.
    int cancelLate(const Words& arguments)
    {
        return runWithPause(
            GetParam(), arguments, [](const ToolProcess& creator) { creator.signal(SIGTERM); });
    }
};

TEST_P(LateCancelTest, leavesNothingButTheOlderFile)
{
    setGoodFfmpeg();
    for (const auto& arguments : {fixFlag(), transcode()}) {
        writeFile(output(), "older");
        EXPECT_EQ(cancelLate(arguments), cancelled);
        expectOnlyOlderFile();
        EXPECT_EQ(cancelLate(arguments), cancelled);
        EXPECT_EQ(otherNames(), Words());
    }
}

// The first fsync is that of the file, the second one that of the folder, after the move to the output's
// path.
INSTANTIATE_TEST_SUITE_P(Writes, LateCancelTest,
    testing::Values("TARNWELL_FSYNC_WAITS_FOR", "TARNWELL_FOLDER_FSYNC_WAITS_FOR"),
    [](const auto& variable) { return std::string(variable.param); });

TEST_F(CreatorCancelTest, aSignalBeforeItsHandlersIsKept)
{
    constexpr int rounds = 20;
    tools.setFfmpeg("hang\n");
    for (int round = 0; round < rounds; ++round) {
        writeFile(output(), "older");
        // A caller may block the signal, so that it can cancel at any time after the start.
        ToolProcess creator(tools.creator(), transcode(), {.blocked = SIGTERM});
        creator.signal(SIGTERM);
        EXPECT_EQ(creator.wait(), cancelled);
        expectOnlyOlderFile();
    }
}

TEST_F(CreatorCancelTest, aSignalThatItsCallerIgnoresDoesNotCancel)
{
    for (const int signal : {SIGINT, SIGHUP}) {
        const std::string goOn = tools.at("go on");
        std::filesystem::remove(goOn);
        setGoodFfmpeg("error ready\\n\nwait-for " + goOn + "\n");
        ToolProcess creator(tools.creator(), transcode(), {.ignored = signal});
        creator.waitForError("ready");
        creator.signal(signal);
        writeFile(goOn, "");
        EXPECT_EQ(creator.wait(), 0);
    }
}

TEST_F(CreatorCancelTest, aCallerMayIgnoreTheEndOfChildren)
{
    setGoodFfmpeg();
    EXPECT_EQ(run(transcode(), {.ignored = SIGCHLD}), 0);
}

TEST_F(CreatorCancelTest, noMomentLeavesAnythingBehind)
{
    constexpr int longest = 12000; // microseconds; creator and the fake have ended after this time
    std::mt19937 random(7);
    std::uniform_int_distribution<int> moment(0, longest);
    setGoodFfmpeg("print out_time_us=1000\\nprogress=continue\\n\nwrite-output half\nsleep 2\n");
    int cancels = 0;
    for (int round = 0; round < rounds(60); ++round) {
        const int wait = moment(random);
        SCOPED_TRACE(testing::Message() << "round " << round << ", after " << wait << " microseconds");
        writeFile(output(), "older");
        ToolProcess creator(tools.creator(), transcode(), {.blocked = SIGTERM});
        std::this_thread::sleep_for(std::chrono::microseconds(wait));
        creator.signal(SIGTERM);
        const int status = creator.wait();
        if (status == 0) {
            EXPECT_EQ(contentsOf(output()), movie());
            std::filesystem::remove(output());
        } else {
            EXPECT_EQ(status, cancelled);
            expectOnlyOlderFile();
            ++cancels;
        }
        ASSERT_EQ(otherNames(), Words());
    }
    EXPECT_GT(cancels, 0);
}

TEST_F(CreatorCancelTest, aKillEndsFfmpegAndLeavesTheOlderFile)
{
    tools.setFfmpeg("ignore-termination\nsay-pid\nwrite-output half\nerror ready\\n\nhang\n");
    writeFile(output(), "older");
    for (const auto& arguments : {still(), fixFlag(), transcode()}) {
        EXPECT_EQ(cancelWhenReady(arguments, SIGKILL), 128 + SIGKILL);
        expectNoFfmpeg();
        EXPECT_EQ(otherNames(), Words({"Rotated.mp4"}));
        EXPECT_EQ(contentsOf(output()), "older");
    }
}

TEST_F(CreatorCancelTest, noMomentOfAKillHarmsAnything)
{
    std::mt19937 random(11);
    std::uniform_int_distribution<int> moment(0, 12000); // microseconds
    setGoodFfmpeg("write-output half\nsleep 2\n");
    for (int round = 0; round < rounds(40); ++round) {
        SCOPED_TRACE(round);
        writeFile(output(), "older");
        ToolProcess creator(tools.creator(), transcode());
        std::this_thread::sleep_for(std::chrono::microseconds(moment(random)));
        creator.signal(SIGKILL);
        creator.wait();
        // Between the two renames of a replacement, and after them, the older file has its other name.
        const std::string previous = tools.at("Rotated (previous).mp4");
        const bool isPutAside = std::filesystem::exists(previous);
        if (isPutAside) {
            EXPECT_EQ(contentsOf(previous), "older");
        }
        if (!isPutAside || std::filesystem::exists(output())) {
            const std::string now = contentsOf(output());
            EXPECT_TRUE(now == "older" || now == movie()) << now.size() << " bytes";
        }
        std::filesystem::remove(previous);
        for (const auto& name : otherNames())
            EXPECT_TRUE(name == "Rotated.mp4" || name.starts_with(".")) << name;
    }
}

} // namespace tarnwell::test
