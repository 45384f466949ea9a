// SPDX-License-Identifier: MIT
// The built program ends by SIGTERM, SIGINT or SIGHUP, or by a fatal rule, and leaves no temporary folder
// behind.
#include "tests/support/ExternalProgram.h"
#include "tests/support/Files.h"
#include "tests/support/ProgramCopy.h"
#include "tests/support/Reports.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

namespace tarnwell::test
{

namespace
{

const std::string panel = "Save Video";

} // namespace

class QuitSignalTest : public testing::Test
{
protected:
    QuitSignalTest()
    {
        tools().setSniffer("print " + reportOf({.codec = "mpeg4"}));
        tools().setCreator(stillScript());
    }

    std::string folder() const { return m_copy.folder(); }
    std::string program() const { return m_copy.program(); }
    std::string still() const { return m_copy.still(); }
    std::string output() const { return m_copy.output(); }
    std::string stillScript() const
    {
        return "record-output " + folder() + "stills\ncopy " + m_copy.still() + "\n";
    }

    FakeTools& tools() { return m_copy.tools(); }

    void open(ExternalProgram& running)
    {
        running.waitForWindow("Tarnwell");
        running.keysUntilWindow("ctrl+o", "Open Video");
        running.text(m_copy.video());
        running.keys("Return");
        // creator creates the file before it writes the line.
        ASSERT_TRUE(waitUntil([this] { return contentsOf(folder() + "stills").ends_with("\n"); }));
    }

    /// The folder that the still was written to.
    std::string stillFolder() const
    {
        const std::string paths = contentsOf(folder() + "stills");
        return std::filesystem::path(paths.substr(0, paths.find('\n'))).parent_path().string();
    }

    static void expectEnd(ExternalProgram& running, int signal)
    {
        ::kill(static_cast<pid_t>(running.processId()), signal);
        EXPECT_EQ(running.waitForExit(), 0);
    }

private:
    ProgramCopy m_copy;
};

TEST_F(QuitSignalTest, theStillsFolderIsRemoved)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        std::filesystem::remove(folder() + "stills");
        ExternalProgram running(program());
        open(running);
        running.waitForWindow("clip.mp4"); // the analysis is over
        ASSERT_TRUE(exists(stillFolder()));
        expectEnd(running, signal);
        EXPECT_FALSE(exists(stillFolder()));
    }
}

TEST_F(QuitSignalTest, anAnalysisIsNotWaitedFor)
{
    tools().setCreator("record-pid " + folder() + "creator\nrecord-output " + folder() + "stills\nhang\n");
    ExternalProgram running(program());
    open(running);
    ASSERT_TRUE(exists(stillFolder()));
    expectEnd(running, SIGTERM);
    EXPECT_FALSE(exists(stillFolder()));
    ::kill(static_cast<pid_t>(std::stol(contentsOf(folder() + "creator"))), SIGKILL);
}

TEST_F(QuitSignalTest, ctrlCInATerminalEndsTheProgramAndNotItsCreator)
{
    tools().setCreator("record-pid " + folder() + "creator\nrecord-output " + folder() + "stills\nhang\n");
    ExternalProgram running(program(), ExternalProgram::Group::Own);
    open(running);
    ASSERT_TRUE(exists(stillFolder()));
    ::kill(static_cast<pid_t>(-running.processId()), SIGINT);
    EXPECT_EQ(running.waitForExit(), 0);
    EXPECT_FALSE(exists(stillFolder()));
    const auto creator = static_cast<pid_t>(std::stol(contentsOf(folder() + "creator")));
    EXPECT_EQ(::kill(creator, SIGKILL), 0) << "creator has ended";
}

TEST_F(QuitSignalTest, aSignalEndsTheProgramWhileTheReplacementIsAskedFor)
{
    writeFile(output(), "older");
    ExternalProgram running(program());
    open(running);
    running.waitForWindow("clip.mp4");
    running.keysUntilWindow("ctrl+s", panel);
    running.keys("ctrl+a");
    running.text(output());
    running.keys("Return");
    running.waitForWindows(panel, 2); // the panel and its question
    expectEnd(running, SIGTERM);
    EXPECT_FALSE(exists(stillFolder()));
    EXPECT_EQ(contentsOf(output()), "older");
}

TEST_F(QuitSignalTest, theStillsFolderIsRemovedBeforeAMissingStillStopsTheProgram)
{
    tools().setCreator("record-output " + folder() + "stills\n");
    ExternalProgram running(program());
    open(running);
    EXPECT_EQ(running.waitForExit(), -1);
    EXPECT_FALSE(exists(stillFolder()));
}

TEST_F(QuitSignalTest, anEncoderFinishesItsVideo)
{
    const std::string script
        = "without -frames:v touch " + folder() + "working\nwithout -frames:v wait-for " + folder() + "go\n";
    tools().setCreator(script + stillScript());
    ExternalProgram running(program());
    open(running);
    running.waitForWindow("clip.mp4");
    running.keysUntilWindow("ctrl+s", panel);
    running.keys("ctrl+a");
    running.text(output());
    running.keys("Return");
    ASSERT_TRUE(waitUntil([this] { return exists(folder() + "working"); }));
    expectEnd(running, SIGTERM);
    EXPECT_FALSE(exists(stillFolder()));
    EXPECT_FALSE(processesWithArgument(output()).empty());
    writeFile(folder() + "go", "");
    EXPECT_TRUE(waitUntil([this] { return processesWithArgument(output()).empty(); }));
    EXPECT_EQ(contentsOf(output()), contentsOf(still()));
}

} // namespace tarnwell::test
