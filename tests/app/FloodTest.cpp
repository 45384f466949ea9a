// SPDX-License-Identifier: MIT
// Tools with unlimited output. The program discards the output of an encoder at once, so that its memory does
// not grow. It keeps a report until it is parsed, in a few times its size. Prints the peaks of memory and the
// longest time for which the window was blocked.
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QAction>
#include <QElapsedTimer>

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace tarnwell::test
{

namespace
{

constexpr long megabyte = 1024; // kB, in which the system counts

#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr long mostGrowth = 450 * megabyte; // sanitizers keep freed memory and add their own
constexpr long mostGrowthOfAReport = 2048 * megabyte;
constexpr long statusBytes = 1000000000; // well above mostGrowth
#else
constexpr long mostGrowth = 15 * megabyte;
constexpr long statusBytes = 100000000; // a regular expression matches all of them
constexpr long mostGrowthOfAReport = 1024 * megabyte;
#endif

/// kB: the most memory that was in use since the last call of forgetPeak.
long peakMemory()
{
    const std::string status = contentsOf("/proc/self/status");
    return std::atol(status.c_str() + status.find("VmHWM:") + 6);
}

void forgetPeak()
{
    writeFile("/proc/self/clear_refs", "5");
}

} // namespace

class FloodTest : public FakeToolsTest
{
protected:
    void SetUp() override
    {
        start();
        openVideo();
        action("rotateRightBTN").trigger();
    }

    /// Exports with that encoder to the alert at the end; the longest time for which the window did nothing.
    qint64 longestSilence(const std::string& creator)
    {
        tools().setCreator(creator + "copy " + folder() + "still.jpg\n");
        QTimer pulse;
        QElapsedTimer since;
        qint64 longest = 0;
        QObject::connect(&pulse, &QTimer::timeout, [&] { longest = std::max(longest, since.restart()); });
        saveByPanel(folder() + "out.mp4");
        answer(shownAlert(), "Transcode");
        EXPECT_TRUE(waitUntil([this] { return isProgressShown(); }));
        since.start();
        pulse.start(5);
        EXPECT_TRUE(QTest::qWaitFor([this] { return isAlertShown() && !isProgressShown(); }, 300000));
        pulse.stop();
        answer(shownAlert(), "OK");
        return longest;
    }

    void expectFlat(const char* what, const std::string& creator)
    {
        forgetPeak();
        const long before = peakMemory();
        const auto silence = longestSilence(creator);
        const long growth = peakMemory() - before;
        std::cout << what << ": memory grew by " << growth << " kB at its peak; the longest silence was "
                  << silence << " ms\n";
        EXPECT_LT(growth, mostGrowth);
    }
};

TEST_F(FloodTest, aLineWithoutEndIsForgotten)
{
    expectFlat("a line of 1 GB", "flood-error 1000000000\n");
}

TEST_F(FloodTest, aFloodOfStatusLinesIsShownAndForgotten)
{
    testing::internal::CaptureStdout(); // a line for each piece
    forgetPeak();
    const long before = peakMemory();
    const auto silence = longestSilence("flood-status " + std::to_string(statusBytes) + "\n");
    const long growth = peakMemory() - before;
    testing::internal::GetCapturedStdout();
    std::cout << statusBytes / 1000000 << " MB of status lines: memory grew by " << growth
              << " kB at its peak; the longest silence was " << silence << " ms\n";
    EXPECT_LT(growth, mostGrowth);
}

TEST_F(FloodTest, aReportOf100MegabytesEndsInADescription)
{
    const std::string report = reportOf({});
    const auto end = report.rfind('}');
    ASSERT_NE(end, std::string::npos);
    writeFile(folder() + "beginning", report.substr(0, end) + ", \"much\": \"");
    tools().setSniffer("print-file " + folder() + "beginning\nflood 100000000\nprint \"}\n");
    tools().setCreator(stillScript());
    action("resetBTN").trigger();
    forgetPeak();
    const long before = peakMemory();
    EXPECT_TRUE(drop(folder() + "clip.mp4"));
    const long growth = peakMemory() - before;
    std::cout << "a report of 100 MB: memory grew by " << growth << " kB at its peak\n";
    EXPECT_LT(growth, mostGrowthOfAReport);
    EXPECT_FALSE(isAlertShown());
    EXPECT_EQ(shownPicture().size(), stillSize);
}

TEST_F(FloodTest, aFloodThatIsNoReportEndsInTheAlert)
{
    tools().setSniffer("flood 100000000\n");
    EXPECT_TRUE(drop(folder() + "clip.mp4"));
    AlertDialog* alert = shownAlert();
    ASSERT_NE(alert, nullptr);
    EXPECT_TRUE(alert->text().startsWith(QStringLiteral("Seems to be an unsupported file.")));
    answer(alert, "OK");
}

} // namespace tarnwell::test
