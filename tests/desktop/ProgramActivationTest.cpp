// SPDX-License-Identifier: MIT
// The built program, started a second time by a desktop that knows when the user asked for it.
#include "tests/desktop/RootWindow.h"
#include "tests/support/ExternalProgram.h"
#include "tests/support/RealInput.h"
#include "tests/support/Samples.h"
#include "tests/support/WindowTest.h"

#include <QWidget>

#include <gtest/gtest.h>

#include <algorithm>

namespace tarnwell::test
{

class ProgramActivationTest : public testing::Test
{
protected:
    ProgramActivationTest() { m_first.waitForWindow("Tarnwell"); }

    /// The user turns to another window, which covers nothing.
    void workElsewhere()
    {
        m_other.setGeometry(0, 0, 100, 100);
        m_other.show();
        waitForKeyboard(m_other);
    }

    /// Starts the program again, and returns when that has left.
    static void startAgain(const std::string& startupId)
    {
        qputenv("DESKTOP_STARTUP_ID", startupId.c_str());
        ExternalProgram second;
        qunsetenv("DESKTOP_STARTUP_ID");
        EXPECT_TRUE(waitUntil([&second] { return !second.isRunning(); }));
        EXPECT_EQ(second.waitForExit(), 0);
    }

    bool wasAskedForAt(std::uint32_t time)
    {
        const auto all = m_desktop.activations();
        return std::any_of(all.begin(), all.end(), [time](const auto& each) { return each.time == time; });
    }

    void startAgainAndExpectTheFirst()
    {
        const std::uint32_t time = m_desktop.time();
        const std::string id = "launcher/7_TIME" + std::to_string(time);
        startAgain(id);
        m_first.waitForWindow("Tarnwell");
        EXPECT_TRUE(m_first.isRunning());
        EXPECT_TRUE(wasAskedForAt(time));
        EXPECT_TRUE(waitUntil([&] { return m_desktop.startupMessages().size() == 1; }));
        EXPECT_EQ(m_desktop.startupMessages().front(), "remove: ID=\"" + id + "\"");
    }

    RootWindow m_desktop;
    ExternalProgram m_first;
    QWidget m_other;
};

TEST_F(ProgramActivationTest, aWindowThatIsThereGetsTheKeyboard)
{
    workElsewhere();
    startAgainAndExpectTheFirst();
}

TEST_F(ProgramActivationTest, aMinimisedWindowComesBackWithTheKeyboard)
{
    ASSERT_EQ(run("/usr/bin/xdotool", {"getactivewindow", "windowminimize"}), 0);
    workElsewhere();
    startAgainAndExpectTheFirst();
}

TEST_F(ProgramActivationTest, aWindowWithASheetComesBackWithTheSheetInUse)
{
    m_first.keysUntilWindow("F1", "Help");
    workElsewhere();
    const std::uint32_t time = m_desktop.time();
    startAgain("launcher/7_TIME" + std::to_string(time));
    m_first.waitForWindow("Help");
    EXPECT_TRUE(wasAskedForAt(time));
    m_first.keys("Escape");
    m_first.waitForWindow("Tarnwell");
}

} // namespace tarnwell::test
