// SPDX-License-Identifier: MIT
// Cancels, second cancels, drops and reopen requests at random moments of successive exports by a tool of
// random duration in one window. TARNWELL_ROUNDS sets the number of exports.
#include "app/AppDelegate.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/Rounds.h"

#include <QAction>
#include <QElapsedTimer>
#include <QPushButton>

#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <random>

namespace tarnwell::test
{

namespace
{

constexpr int longestTool = 60; // milliseconds

} // namespace

class RaceTest : public FakeToolsTest
{
protected:
    int upTo(int most) { return std::uniform_int_distribution<int>(0, most)(m_random); }

    /// An encoder that sleeps for random times, prints status lines, and handles or ignores SIGTERM.
    std::string encoder()
    {
        // A drop after the end of the export extracts stills.
        std::string script = "with -frames:v copy " + folder() + "still.jpg\nwith -frames:v exit 0\n";
        script += upTo(2) == 0 ? "ignore-termination\n" : "";
        for (int piece = upTo(4); piece >= 0; --piece)
            script += "sleep " + std::to_string(upTo(longestTool / 5)) + "\nerror time=00:00:0"
                + std::to_string(upTo(7)) + ".00 \\n\n";
        return script + (upTo(3) == 0 ? "exit 1\n" : "copy " + folder() + "still.jpg\n");
    }

    void begin()
    {
        tools().setCreator(encoder());
        waitForKeyboard(window());
        saveByPanel(folder() + "out.mp4");
        answer(shownAlert(), "Transcode");
    }

    /// Cancels, drops and reopens at random moments until the export has ended. Whether it was cancelled.
    bool disturb()
    {
        auto& cancel = find<QPushButton>("progressCancel");
        QElapsedTimer time;
        time.start();
        const int moment = upTo(longestTool) / 3;
        bool isCancelled = false;
        const bool ended = waitUntil([&] {
            if (time.elapsed() >= moment && isProgressShown() && cancel.isEnabled() && !isCancelled) {
                cancel.click();
                isCancelled = true;
                if (upTo(1) == 0)
                    cancel.click();
            }
            if (upTo(20) == 0)
                drop(folder() + "clip.mp4"); // ignored while a sheet is shown
            if (upTo(20) == 0)
                application().reopen();
            return isAlertShown() || (isCancelled && !isProgressShown());
        });
        EXPECT_TRUE(ended);
        return isCancelled;
    }

private:
    std::mt19937 m_random{5};
};

TEST_F(RaceTest, exportsAndCancelsOneAfterTheOther)
{
    start();
    openVideo();
    const std::string original = contentsOf(folder() + "clip.mp4");
    int cancels = 0;
    testing::internal::CaptureStdout();
    const int exports = rounds(25);
    for (int round = 0; round < exports && !HasFailure(); ++round) {
        SCOPED_TRACE(round);
        begin();
        const bool isCancelled = disturb();
        cancels += isCancelled ? 1 : 0;
        if (isAlertShown())
            answer(shownAlert(), "OK");
        EXPECT_TRUE(waitUntil([this] { return !isProgressShown() && !isAlertShown(); }));
        EXPECT_TRUE(!isCancelled || !exists(folder() + "out.mp4"));
        std::filesystem::remove(folder() + "out.mp4");
        EXPECT_EQ(contentsOf(folder() + "clip.mp4"), original);
        EXPECT_TRUE(action("rotateLeftBTN").isEnabled());
    }
    testing::internal::GetCapturedStdout();
    std::cout << cancels << " of " << exports << " exports were cancelled\n";
    EXPECT_GT(cancels, 0);
}

} // namespace tarnwell::test
