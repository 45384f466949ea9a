// SPDX-License-Identifier: MIT
// Quits the built program at random moments of the analysis, of the export and of the result, with tools of
// random duration. TARNWELL_ROUNDS sets the number of program starts for each of the three; two cover both
// ways to quit.
#include "tests/support/ExternalProgram.h"
#include "tests/support/Files.h"
#include "tests/support/ProgramCopy.h"
#include "tests/support/Reports.h"
#include "tests/support/Rounds.h"

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

constexpr int longestPause = 200; // milliseconds
const std::string videoBytes = "the only copy";
const std::string quitByMenu = "ctrl+q"; // the shortcut of the menu item
const std::string quitByClosing = "alt+F4"; // closes the window that has the keyboard

} // namespace

class QuitRaceTest : public testing::Test
{
protected:
    std::string folder() const { return m_copy.folder(); }
    std::string program() const { return m_copy.program(); }
    std::string video() const { return m_copy.video(); }
    std::string output() const { return m_copy.output(); }

    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(m_random); }
    std::string pause() { return "sleep " + std::to_string(upTo(longestPause)) + "\n"; }

    /// The file that sniffer creates when it starts to probe the output. The progress sheet is closed then.
    std::string probing() const { return folder() + "probing"; }

    /// Tools that sleep for random times. The codec of the input leaves no choice of the mode.
    void setTools()
    {
        m_copy.tools().setSniffer("with " + output() + " touch " + probing() + "\n" + pause() + "print "
            + reportOf({.codec = "mpeg4"}));
        std::string script = "with -frames:v " + pause() + "with -frames:v copy " + m_copy.still()
            + "\nwith -frames:v exit 0\n";
        // Mostly longer than the wait in quit(): the test is about an encoder that still runs then.
        for (int line = 0; line < 8; ++line)
            script += pause() + "error time=00:00:0" + std::to_string(line) + ".00 \\n\n";
        m_copy.tools().setCreator(script + "copy " + m_copy.still() + "\n");
    }

    void open(ExternalProgram& running)
    {
        running.waitForWindow("Tarnwell");
        running.keysUntilWindow("ctrl+o", "Open Video");
        running.chooseInPanel("Open Video", video());
    }

    /// The window ignores the shortcut until the analysis has ended.
    void save(ExternalProgram& running)
    {
        running.waitForWindow("clip.mp4");
        running.keysUntilWindow("ctrl+s", "Save Video");
        running.chooseInPanel("Save Video", output());
    }

    /// Waits a random time and presses the keys until the program has ended: a busy window ignores keys.
    void quit(ExternalProgram& running, const std::string& keys)
    {
        QThread::msleep(static_cast<unsigned long>(upTo(2 * longestPause)));
        ASSERT_TRUE(waitUntil([&] {
            if (running.isRunning())
                running.keys(keys);
            return !running.isRunning();
        }));
        EXPECT_EQ(running.waitForExit(), 0);
    }

    /// The input is unchanged and, once a running encoder has finished, no process and no temporary file is
    /// left.
    void expectNothingLost()
    {
        EXPECT_EQ(contentsOf(video()), videoBytes);
        EXPECT_TRUE(waitUntil([this] { return processesWithArgument(video()).empty(); }));
        for (const auto& name : namesIn(m_copy.temporary()))
            EXPECT_EQ(folder(), m_copy.temporary() + "/" + name + "/") << "a temporary file is left";
        for (const auto& name : namesIn(folder()))
            EXPECT_FALSE(name.ends_with(".part")) << name;
    }

    /// In each round starts the program, opens the video, calls `job` and quits; then compares the contents
    /// of the output file. Each of `ways` is used once before any is used again. The seed determines all
    /// random values.
    template <typename Job>
    void quitAfter(
        unsigned seed, std::vector<std::string> ways, const std::string& expectedOutput, const Job& job)
    {
        m_random.seed(seed);
        for (int round = 0; round < rounds(2) && !HasFailure(); ++round) {
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
            quit(running, ways[turn]);
            expectNothingLost();
            EXPECT_EQ(contentsOf(output()), expectedOutput);
        }
    }

    std::string still() const { return contentsOf(m_copy.still()); }

    static std::vector<std::string> bothWays() { return {quitByMenu, quitByClosing}; }

private:
    ProgramCopy m_copy{videoBytes};
    std::mt19937 m_random;
};

TEST_F(QuitRaceTest, quittingDuringTheAnalysisLosesNothing)
{
    quitAfter(11, bothWays(), "", [](ExternalProgram&) {});
}

TEST_F(QuitRaceTest, quittingDuringTheExportLetsTheEncoderFinish)
{
    // Not by closing: a request to close the progress sheet cancels the export.
    quitAfter(12, {quitByMenu}, still(), [this](ExternalProgram& running) {
        save(running);
        running.waitForOutput("Percent : ");
    });
}

TEST_F(QuitRaceTest, quittingAtTheResultLosesNothing)
{
    quitAfter(13, bothWays(), still(), [this](ExternalProgram& running) {
        save(running);
        ASSERT_TRUE(waitUntil([this] { return exists(probing()); }));
    });
}

} // namespace tarnwell::test
