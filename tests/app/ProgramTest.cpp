// SPDX-License-Identifier: MIT
// The built program as a process: its start, its reopening and its end.
#include "tests/support/ExternalProgram.h"
#include "tests/support/Files.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <gtest/gtest.h>

#include <csignal>
#include <sched.h>

namespace tarnwell::test
{

namespace
{

/// The processes that the test starts use one processor, the first that it may use. Then an encoder takes
/// long enough on a machine with many processors, too.
class OneProcessor
{
public:
    OneProcessor()
    {
        EXPECT_EQ(::sched_getaffinity(0, sizeof m_before, &m_before), 0);
        int first = 0;
        while (!CPU_ISSET(first, &m_before))
            ++first;
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(first, &one);
        EXPECT_EQ(::sched_setaffinity(0, sizeof one, &one), 0);
    }
    ~OneProcessor() { ::sched_setaffinity(0, sizeof m_before, &m_before); }
    OneProcessor(const OneProcessor&) = delete;
    OneProcessor& operator=(const OneProcessor&) = delete;

private:
    cpu_set_t m_before = {};
};

} // namespace

class ProgramTest : public testing::Test
{
protected:
    const std::string& folder() const { return m_folder.path(); }

private:
    OwnTemporaryFolder m_temporary;
    TemporaryDirectory m_folder;
};

class ProgramExportTest : public ProgramTest
{
protected:
    std::string output() const { return folder() + "out.mp4"; }

    /// Opens a video with a long encoding and saves it; returns when the encoder runs.
    void startExport(ExternalProgram& program)
    {
        makeSampleVideo(folder() + "clip.mp4", {.size = {1280, 720}, .seconds = 5, .codec = "mpeg4"});
        program.waitForWindow("Tarnwell");
        program.keysUntilWindow("ctrl+o", "Open Video");
        program.chooseInPanel("Open Video", folder() + "clip.mp4");
        program.waitForWindow("clip.mp4"); // until then it ignores the shortcut
        program.keysUntilWindow("ctrl+s", "Save Video");
        program.chooseInPanel("Save Video", output());
        program.waitForOutput("Percent : ");
    }

    void expectTheWholeVideo()
    {
        ASSERT_TRUE(waitUntil([this] { return processesWithArgument(output()).empty(); }));
        EXPECT_FALSE(decodedFrame(output(), 4.9).isNull());
        EXPECT_EQ(decodedFrame(output(), 2).size(), QSize(1280, 720));
    }

private:
    OneProcessor m_oneProcessor;
};

TEST_F(ProgramExportTest, leavingDuringAnExportNeitherWaitsNorStopsTheEncoder)
{
    ExternalProgram program;
    startExport(program);
    program.keys("ctrl+q");
    EXPECT_EQ(program.waitForExit(), 0);
    EXPECT_FALSE(processesWithArgument(output()).empty());
    expectTheWholeVideo();
}

TEST_F(ProgramExportTest, aTerminatedProgramLeavesTheEncoderAtWork)
{
    ExternalProgram program;
    startExport(program);
    ::kill(static_cast<pid_t>(program.processId()), SIGKILL);
    EXPECT_EQ(program.waitForExit(), -1);
    EXPECT_FALSE(processesWithArgument(output()).empty());
    expectTheWholeVideo();
}

TEST_F(ProgramTest, closingTheWindowEndsTheProgram)
{
    ExternalProgram program;
    program.waitForWindow("Tarnwell");
    program.keys("alt+F4");
    EXPECT_EQ(program.waitForExit(), 0);
}

TEST_F(ProgramTest, theQuitItemEndsTheProgram)
{
    ExternalProgram program;
    program.waitForWindow("Tarnwell");
    program.keys("ctrl+q");
    EXPECT_EQ(program.waitForExit(), 0);
}

TEST_F(ProgramTest, startingItAgainBringsTheFirstWindowForwardAndLeaves)
{
    ExternalProgram first;
    first.waitForWindow("Tarnwell");
    ASSERT_EQ(run("/usr/bin/xdotool", {"getactivewindow", "windowminimize"}), 0);
    ExternalProgram second;
    EXPECT_EQ(second.waitForExit(), 0);
    EXPECT_TRUE(first.isRunning());
    first.waitForWindow("Tarnwell");
}

TEST_F(ProgramTest, nothingIsLeftInTheTemporaryFolder)
{
    {
        ExternalProgram program;
        makeSampleVideo(folder() + "clip.mp4", {});
        program.waitForWindow("Tarnwell");
        program.keysUntilWindow("ctrl+o", "Open Video");
        program.chooseInPanel("Open Video", folder() + "clip.mp4");
        program.waitForWindow("clip.mp4"); // until then it ignores the shortcut
        program.keysUntilWindow("ctrl+s", "Save Video");
        program.keys("Escape");
        program.waitForWindow("Tarnwell");
        program.keysUntilWindow("F1", "Help");
        program.keys("Escape");
        program.keys("ctrl+q");
        EXPECT_EQ(program.waitForExit(), 0);
    }
    for (const auto& name : namesIn(qgetenv("TMPDIR").toStdString()))
        EXPECT_EQ(qgetenv("TMPDIR").toStdString() + "/" + name + "/", folder());
}

} // namespace tarnwell::test
