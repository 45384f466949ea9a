// SPDX-License-Identifier: MIT
// The built program with tools that take random time, left at random moments: while it analyses, while it
// exports, and when it shows the result. TARNWELL_ROUNDS sets how many programs are started for each.
#include "tests/support/ExternalProgram.h"
#include "tests/support/Files.h"
#include "tests/support/Reports.h"
#include "tests/support/StandInTools.h"
#include "tests/support/WindowTest.h"

#include <QImage>
#include <QThread>

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <random>

namespace tarnwell::test
{

namespace
{

constexpr int longestTool = 200; // milliseconds
const std::string videoBytes = "the only copy";

int rounds()
{
    const char* wanted = std::getenv("TARNWELL_ROUNDS");
    return wanted != nullptr ? std::atoi(wanted) : 4;
}

} // namespace

class QuitRaceTest : public testing::Test
{
protected:
    QuitRaceTest()
    {
        std::filesystem::copy_file(TARNWELL_BUILD_FOLDER "/bin/tarnwell", program());
        QImage still(48, 32, QImage::Format_RGB32);
        still.fill(Qt::red);
        still.save(QString::fromStdString(folder() + "still.png"));
        writeFile(video(), videoBytes);
    }

    std::string folder() const { return m_tools.folder(); }
    std::string program() const { return folder() + "tarnwell"; }
    std::string video() const { return folder() + "clip.mp4"; }
    std::string output() const { return folder() + "out.mp4"; }

    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(m_random); }
    std::string pause() { return "sleep " + std::to_string(upTo(longestTool)) + "\n"; }

    /// Tools that answer after a while, of an input that leaves no choice of how to save.
    void setTools()
    {
        m_tools.setSniffer(pause() + "print " + reportOf({.codec = "mpeg4"}));
        std::string script = "with -frames:v " + pause() + "with -frames:v copy " + folder()
            + "still.png\nwith -frames:v exit 0\n";
        for (int line = 0; line < 8; ++line)
            script += "sleep " + std::to_string(upTo(longestTool / 4)) + "\nerror time=00:00:0"
                + std::to_string(line) + ".00 \\n\n";
        m_tools.setCreator(script + "copy " + folder() + "still.png\n");
    }

    void open(ExternalProgram& running)
    {
        running.waitForWindow("Tarnwell");
        running.keysUntilWindow("ctrl+o", "Open Video");
        running.text(video());
        running.keys("Return");
    }

    void save(ExternalProgram& running)
    {
        running.keysUntilWindow("ctrl+s", "Save Video");
        running.keys("ctrl+a");
        running.text(output());
        running.keys("Return");
    }

    /// Waits a random time and leaves by the menu's shortcut or by closing the window. A window that is at
    /// work takes no input: the user tries again.
    void leave(ExternalProgram& running)
    {
        const char* keys = upTo(1) == 0 ? "ctrl+q" : "alt+F4";
        QThread::msleep(static_cast<unsigned long>(upTo(2 * longestTool)));
        ASSERT_TRUE(waitUntil([&] {
            if (running.isRunning())
                running.keys(keys);
            return !running.isRunning();
        }));
        EXPECT_EQ(running.waitForExit(), 0);
    }

    void expectNothingLost()
    {
        EXPECT_EQ(contentsOf(video()), videoBytes);
        EXPECT_TRUE(waitUntil([this] { return processesWithArgument(video()).empty(); }));
    }

    template <typename Job>
    void leaveAfter(const Job& job)
    {
        for (int round = 0; round < rounds() && !HasFailure(); ++round) {
            SCOPED_TRACE(round);
            std::filesystem::remove(output());
            setTools();
            ExternalProgram running(program());
            open(running);
            job(running);
            leave(running);
            expectNothingLost();
        }
    }

private:
    OwnTemporaryFolder m_temporary;
    StandInTools m_tools;
    std::mt19937 m_random{11};
};

TEST_F(QuitRaceTest, leavingDuringTheAnalysis)
{
    leaveAfter([](ExternalProgram&) {});
}

TEST_F(QuitRaceTest, leavingDuringTheExportLeavesTheEncoderAtWork)
{
    leaveAfter([this](ExternalProgram& running) {
        save(running);
        running.waitForOutput("Percent : ");
    });
    EXPECT_EQ(contentsOf(output()), contentsOf(folder() + "still.png"));
}

TEST_F(QuitRaceTest, leavingAtTheResult)
{
    leaveAfter([this](ExternalProgram& running) {
        save(running);
        ASSERT_TRUE(waitUntil([this] { return exists(output()); }));
    });
    EXPECT_EQ(contentsOf(output()), contentsOf(folder() + "still.png"));
}

} // namespace tarnwell::test
