// SPDX-License-Identifier: MIT
// The built program ends by SIGTERM, SIGINT or SIGHUP, or by a fatal rule, and leaves no temporary folder
// behind.
#include "tests/support/ExternalProgram.h"
#include "tests/support/FakeTools.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Reports.h"
#include "tests/support/WindowTest.h"

#include <QImage>

#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>

namespace tarnwell::test
{

class QuitSignalTest : public testing::Test
{
protected:
    QuitSignalTest()
    {
        std::filesystem::copy_file(TARNWELL_BUILD_FOLDER "/bin/tarnwell", program());
        QImage still(48, 32, QImage::Format_RGB32);
        still.fill(Qt::red);
        still.save(QString::fromStdString(folder() + "still.jpg"));
        writeFile(folder() + "clip.mp4", "bytes");
        m_tools.setSniffer("print " + reportOf({.codec = "mpeg4"}));
        m_tools.setCreator(stillScript());
    }

    std::string folder() const { return m_tools.folder(); }
    std::string program() const { return folder() + "tarnwell"; }
    std::string output() const { return folder() + "out.mp4"; }
    std::string stillScript() const
    {
        return "record-output " + folder() + "stills\ncopy " + folder() + "still.jpg\n";
    }

    FakeTools& tools() { return m_tools; }

    void open(ExternalProgram& running)
    {
        running.waitForWindow("Tarnwell");
        running.keysUntilWindow("ctrl+o", "Open Video");
        running.text(folder() + "clip.mp4");
        running.keys("Return");
        ASSERT_TRUE(waitUntil([this] { return exists(folder() + "stills"); }));
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
    OwnTemporaryFolder m_temporary;
    FakeTools m_tools;
};

TEST_F(QuitSignalTest, theStillsFolderIsRemoved)
{
    for (const int signal : {SIGTERM, SIGINT, SIGHUP}) {
        SCOPED_TRACE(signal);
        std::filesystem::remove(folder() + "stills");
        ExternalProgram running(program());
        open(running);
        running.keysUntilWindow("ctrl+s", "Save Video"); // the analysis is over
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
    running.keysUntilWindow("ctrl+s", "Save Video");
    running.keys("ctrl+a");
    running.text(output());
    running.keys("Return");
    ASSERT_TRUE(waitUntil([this] { return exists(folder() + "working"); }));
    expectEnd(running, SIGTERM);
    EXPECT_FALSE(exists(stillFolder()));
    EXPECT_FALSE(processesWithArgument(output()).empty());
    writeFile(folder() + "go", "");
    EXPECT_TRUE(waitUntil([this] { return processesWithArgument(output()).empty(); }));
    EXPECT_EQ(contentsOf(output()), contentsOf(folder() + "still.jpg"));
}

} // namespace tarnwell::test
