// SPDX-License-Identifier: MIT
// Cancels at the end of a save by the real encoder, which waits in a system call
// (tests/faults/failingCalls.cpp).
#include "app/AppDelegate.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/Folders.h"
#include "tests/support/Reports.h"
#include "tests/support/Rounds.h"
#include "tests/support/Samples.h"

#include <QPushButton>
#include <QTest>
#include <QThread>

#include <chrono>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <iostream>
#include <random>
#include <string>
#include <vector>

namespace tarnwell::test
{

namespace
{

using Clock = std::chrono::steady_clock;
using Names = std::vector<std::string>;

bool hasChildren()
{
    for (const auto& thread : namesIn("/proc/self/task")) {
        if (!contentsOf("/proc/self/task/" + thread + "/children").empty())
            return true;
    }
    return false;
}

/// Does not return to the event loop, in which the window handles the end of the encoder.
bool waitWithoutEvents(const std::function<bool()>& condition)
{
    const auto limit = Clock::now() + std::chrono::seconds(60);
    while (!condition() && Clock::now() < limit)
        QThread::msleep(1);
    return condition();
}

} // namespace

class LateCancelTest : public FakeToolsTest
{
protected:
    /// The fake tools open the video, the real ones save it.
    void SetUp() override
    {
        std::filesystem::create_directory(videos());
        makeSampleVideo(videos() + "clip.mp4", {.codec = "mpeg4"}); // no choice of a mode
        tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"})));
        start();
        ASSERT_TRUE(drop(videos() + "clip.mp4"));
        waitForKeyboard(window());
        tools().useRealSniffer();
        tools().useRealCreator();
    }

    void TearDown() override
    {
        for (const char* variable : {"LD_PRELOAD", "TARNWELL_FAILS", "TARNWELL_WAITS_FOR"})
            ::unsetenv(variable);
    }

    /// Saves over an older file. The encoder waits in this call ("FUNCTION N") until `goOn`.
    void saveWithPause(const char* call)
    {
        ::setenv("LD_PRELOAD", TARNWELL_BUILD_FOLDER "/tests/libfailingCalls.so", 1);
        ::setenv("TARNWELL_FAILS", call, 1);
        ::setenv("TARNWELL_WAITS_FOR", m_end.c_str(), 1);
        std::filesystem::remove(m_end);
        std::filesystem::remove(m_end + ".waiting");
        saveOverOlder();
        ASSERT_TRUE(waitUntil([this] { return exists(m_end + ".waiting"); })) << call;
    }

    void saveOverOlder()
    {
        writeFile(output(), older);
        saveByPanel(output());
        answerReplaceQuestion("&Yes");
    }

    void goOn() { writeFile(m_end, ""); }

    QPushButton& cancelButton() { return find<QPushButton>("progressCancel"); }

    bool isCancelPossible() { return isProgressShown() && cancelButton().isEnabled(); }

    void cancel() { QTest::mouseClick(&cancelButton(), Qt::LeftButton); }

    /// Cancels after the encoder has ended, before the window handles its end.
    void cancelAfterTheEnd()
    {
        ASSERT_TRUE(waitUntil([this] { return isCancelPossible(); }));
        ASSERT_TRUE(waitWithoutEvents([] { return !hasChildren(); }));
        delegate().closeBTNInsideProgressWindowClicked();
    }

    void expectSuccess()
    {
        ASSERT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text(), QStringLiteral("Video Processed Successfully!"));
        answer(alert, "OK");
        EXPECT_FALSE(decodedFrame(output(), 0).isNull());
        EXPECT_EQ(namesIn(videos()), Names({"clip.mp4", "out.mp4"}));
    }

    void expectNoAlert()
    {
        ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
        waitForKeyboard(window()); // after the probe of the output, an alert would have it
        EXPECT_FALSE(isAlertShown());
    }

    void expectOlder()
    {
        EXPECT_EQ(contentsOf(output()), older);
        EXPECT_EQ(namesIn(videos()), Names({"clip.mp4", "out.mp4"}));
    }

    std::string videos() const { return folder() + "videos/"; }
    std::string output() const { return videos() + "out.mp4"; }

    const std::string older = "an older video";

private:
    TemporaryDirectory m_data;
    std::string m_end = m_data.path() + "go on";
};

TEST_F(LateCancelTest, duringTheDeletionOfTheOlderFileHasNoEffect)
{
    saveWithPause("unlinkat 1");
    cancel();
    EXPECT_FALSE(cancelButton().isEnabled());
    cancel();
    goOn();
    expectSuccess();
}

TEST_F(LateCancelTest, beforeTheOlderFileIsDeletedKeepsIt)
{
    for (const char* call : {"fsync 1", "renameat2 1", "linkat 1", "fsync 2"}) {
        SCOPED_TRACE(call);
        saveWithPause(call);
        cancel();
        goOn();
        expectNoAlert();
        expectOlder();
    }
}

TEST_F(LateCancelTest, afterTheEndOfTheEncoderDoesNotDeleteAFileThatHasReplacedAnother)
{
    saveOverOlder();
    cancelAfterTheEnd();
    expectSuccess();
}

TEST_F(LateCancelTest, afterTheEndOfTheEncoderDeletesAFileThatReplacesNone)
{
    saveByPanel(output());
    cancelAfterTheEnd();
    expectNoAlert();
    EXPECT_EQ(namesIn(videos()), Names({"clip.mp4"}));
}

// The environment variable TARNWELL_ROUNDS sets the number of moments.
TEST_F(LateCancelTest, atAnyMomentKeepsTheOlderFileOrAnnouncesTheNewOne)
{
    const int moments = rounds(3);
    saveOverOlder();
    ASSERT_TRUE(waitUntil([this] { return isCancelPossible(); }));
    const auto begin = Clock::now();
    ASSERT_TRUE(waitWithoutEvents([] { return !hasChildren(); }));
    const auto usual = std::chrono::duration_cast<std::chrono::microseconds>(Clock::now() - begin);
    expectSuccess();
    waitForKeyboard(window());
    std::mt19937 random(13);
    int cancels = 0;
    for (int round = 0; round < moments && !HasFailure(); ++round) {
        const std::chrono::microseconds wait(
            std::uniform_int_distribution<std::int64_t>(0, usual.count())(random));
        SCOPED_TRACE(testing::Message() << "round " << round << ", after " << wait.count() << " µs");
        saveOverOlder();
        ASSERT_TRUE(waitUntil([this] { return isCancelPossible(); }));
        waitWithoutEvents([end = Clock::now() + wait] { return Clock::now() > end; });
        delegate().closeBTNInsideProgressWindowClicked();
        ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
        ASSERT_TRUE(waitUntil([this] { return isAlertShown() || window().isActiveWindow(); }));
        if (isAlertShown()) {
            expectSuccess();
            waitForKeyboard(window());
        } else {
            expectOlder();
            ++cancels;
        }
    }
    std::cout << cancels << " of " << moments << " cancels took effect\n";
}

} // namespace tarnwell::test
