// SPDX-License-Identifier: MIT
// The built program with tools that take random time, left at random moments: while it analyses, while it
// exports, and when it shows the result. TARNWELL_ROUNDS sets how many programs are started for each; two are
// enough for each way to leave.
#include "tests/support/ExternalProgram.h"
#include "tests/support/FakeTools.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Reports.h"
#include "tests/support/WindowTest.h"

#include <QImage>
#include <QThread>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <vector>

namespace tarnwell::test
{

namespace
{

constexpr int longestTool = 200; // milliseconds
const std::string videoBytes = "the only copy";
const std::string leaveByMenu = "ctrl+q"; // by the shortcut of the menu's item
const std::string leaveByClosing = "alt+F4"; // of the window that has the keyboard

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

    /// Made when the probe tool begins with the output: the progress sheet has gone by then.
    std::string probing() const { return folder() + "probing"; }

    /// Tools that answer after a while, of an input that leaves no choice of how to save.
    void setTools()
    {
        m_tools.setSniffer("with " + output() + " touch " + probing() + "\n" + pause() + "print "
            + reportOf({.codec = "mpeg4"}));
        std::string script = "with -frames:v " + pause() + "with -frames:v copy " + folder()
            + "still.png\nwith -frames:v exit 0\n";
        // Longer than the user waits, most times: an export that is over cannot be left at work.
        for (int line = 0; line < 8; ++line)
            script += pause() + "error time=00:00:0" + std::to_string(line) + ".00 \\n\n";
        m_tools.setCreator(script + "copy " + folder() + "still.png\n");
    }

    void open(ExternalProgram& running)
    {
        running.waitForWindow("Tarnwell");
        running.keys("ctrl+o");
        running.waitForWindow("Open Video");
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

    /// Waits a random time and leaves by those keys. A window that is at work takes no input: the user tries
    /// again.
    void leave(ExternalProgram& running, const std::string& keys)
    {
        QThread::msleep(static_cast<unsigned long>(upTo(2 * longestTool)));
        ASSERT_TRUE(waitUntil([&] {
            if (running.isRunning())
                running.keys(keys);
            return !running.isRunning();
        }));
        EXPECT_EQ(running.waitForExit(), 0);
    }

    /// Nothing of the program is left behind, but for an encoder, which finishes its work.
    void expectNothingLost()
    {
        EXPECT_EQ(contentsOf(video()), videoBytes);
        EXPECT_TRUE(waitUntil([this] { return processesWithArgument(video()).empty(); }));
        for (const auto& name : namesIn(m_temporary.path()))
            EXPECT_EQ(folder(), m_temporary.path() + "/" + name + "/") << "left over";
        for (const auto& name : namesIn(folder()))
            EXPECT_FALSE(name.ends_with(".part")) << name;
    }

    /// One program a round, opened with the video, left in the one way or the other once `job` has returned.
    /// What is drawn follows from the seed; every way has its turn before one comes again. `expectedOutput`
    /// is what must then lie there.
    template <typename Job>
    void leaveAfter(
        unsigned seed, std::vector<std::string> ways, const std::string& expectedOutput, const Job& job)
    {
        m_random.seed(seed);
        for (int round = 0; round < rounds() && !HasFailure(); ++round) {
            const auto turn = static_cast<std::size_t>(round) % ways.size();
            if (turn == 0)
                std::shuffle(ways.begin(), ways.end(), m_random);
            SCOPED_TRACE(std::to_string(round) + " by " + ways[turn]);
            std::filesystem::remove(output());
            std::filesystem::remove(probing());
            setTools();
            ExternalProgram running(program());
            open(running);
            job(running);
            leave(running, ways[turn]);
            expectNothingLost();
            EXPECT_EQ(contentsOf(output()), expectedOutput);
        }
    }

    std::string still() const { return contentsOf(folder() + "still.png"); }

    static std::vector<std::string> bothWays() { return {leaveByMenu, leaveByClosing}; }

private:
    OwnTemporaryFolder m_temporary;
    FakeTools m_tools;
    std::mt19937 m_random;
};

TEST_F(QuitRaceTest, leavingDuringTheAnalysis)
{
    leaveAfter(11, bothWays(), "", [](ExternalProgram&) {});
}

TEST_F(QuitRaceTest, leavingDuringTheExportLeavesTheEncoderAtWork)
{
    // Whoever closes the progress sheet cancels the export.
    leaveAfter(12, {leaveByMenu}, still(), [this](ExternalProgram& running) {
        save(running);
        running.waitForOutput("Percent : ");
    });
}

TEST_F(QuitRaceTest, leavingAtTheResult)
{
    leaveAfter(13, bothWays(), still(), [this](ExternalProgram& running) {
        save(running);
        ASSERT_TRUE(waitUntil([this] { return exists(probing()); }));
    });
}

} // namespace tarnwell::test
