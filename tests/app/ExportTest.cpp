// SPDX-License-Identifier: MIT
// The encoder's run as the user sees it: progress, cancel and result, with stand-ins for the tools.
#include "tests/support/EventCounter.h"
#include "tests/support/Files.h"
#include "tests/support/StandInTest.h"

#include <QAction>
#include <QDesktopServices>
#include <QDialog>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>

namespace tarnwell::test
{

class ExportTest : public StandInTest
{
protected:
    void SetUp() override
    {
        tools().setSniffer(sniffing(reportOf({.codec = "mpeg4"}))); // no choice of a mode
        start();
        openVideo();
    }

    std::string output() const { return folder() + "out.mp4"; }
    std::string leaveOutput() const { return "copy " + folder() + "still.png\n"; }
    QProgressBar& bar() { return find<QProgressBar>("progressBar"); }
    QPushButton& cancelButton() { return find<QPushButton>("progressCancel"); }

    void save(const std::string& creatorScript)
    {
        tools().setCreator(creatorScript);
        saveByPanel(output());
    }

    void finish() { answer(shownAlert(), "OK"); }

    void cancelWhenPossible()
    {
        ASSERT_TRUE(waitUntil([this] { return isProgressShown() && cancelButton().isEnabled(); }));
        QTest::mouseClick(&cancelButton(), Qt::LeftButton);
    }

    void expectIdle()
    {
        ASSERT_TRUE(waitUntil([this] { return !isProgressShown(); }));
        QTest::qWait(0);
        EXPECT_FALSE(isAlertShown());
    }
};

TEST_F(ExportTest, aToolThatExitsAtOnceStillShowsTheSheetAndHasItsOutputProbed)
{
    EventCounter shown(find<QDialog>("progressWindow"), QEvent::Show);
    EventCounter hidden(find<QDialog>("progressWindow"), QEvent::Hide);
    save(leaveOutput());
    finish();
    EXPECT_EQ(shown.count(), 1);
    EXPECT_EQ(hidden.count(), 1);
    EXPECT_EQ(recordedArguments(folder() + "probed").back(), output());
}

TEST_F(ExportTest, theSheetSaysWhatGoesOnAndOffersToCancel)
{
    save("wait-for " + folder() + "go\n" + leaveOutput());
    ASSERT_TRUE(waitUntil([this] { return isProgressShown() && cancelButton().isEnabled(); }));
    EXPECT_EQ(find<QLabel>("progressTitle").text(), QStringLiteral("Creating Video..."));
    EXPECT_TRUE(cancelButton().isVisible());
    EXPECT_EQ(bar().minimum(), 0);
    EXPECT_EQ(bar().maximum(), 100);
    EXPECT_EQ(bar().value(), 0);
    EXPECT_EQ(find<QDialog>("progressWindow").windowModality(), Qt::WindowModal);
    writeFile(folder() + "go", "");
    finish();
    EXPECT_TRUE(cancelButton().isHidden());
    EXPECT_EQ(bar().value(), 0);
}

TEST_F(ExportTest, statusLinesMoveTheBarAndArePrinted)
{
    testing::internal::CaptureStdout();
    save("error frame=1 time=00:00:04.00 bitrate=1\\r\nwait-for " + folder() + "go\n" + leaveOutput());
    EXPECT_TRUE(waitUntil([this] { return bar().value() == 50; }));
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_TRUE(printed.ends_with("Percent : 50.0\n")) << printed;
    writeFile(folder() + "go", "");
    finish();
}

TEST_F(ExportTest, ofSeveralStampsInAChunkTheFirstCounts)
{
    save("error frame=1 time=00:00:02.00 \\rframe=2 time=00:00:06.00 \\r\nwait-for " + folder() + "go\n"
        + leaveOutput());
    EXPECT_TRUE(waitUntil([this] { return bar().value() == 25; }));
    writeFile(folder() + "go", "");
    finish();
}

TEST_F(ExportTest, chunksThatSayNothingChangeNothing)
{
    const std::string go = folder() + "go";
    testing::internal::CaptureStdout();
    save("error time=00:00:04.00\nwait-for " + go + "1\nerror \\xFFtime=00:00:06.00\nwait-for " + go
        + "2\nerror Stream mapping: 00:00:07.00\nwait-for " + go + "3\nerror time=00:00:02.00\n"
        + leaveOutput());
    EXPECT_TRUE(waitUntil([this] { return bar().value() == 50; }));
    for (const char* step : {"1", "2", "3"})
        writeFile(go + step, "");
    finish();
    const std::string printed = testing::internal::GetCapturedStdout();
    EXPECT_NE(printed.find("Percent : 50.0\n"), std::string::npos);
    EXPECT_EQ(printed.find("Percent : 75.0\n"), std::string::npos);
    EXPECT_EQ(printed.find("Percent : 87.5\n"), std::string::npos);
}

TEST_F(ExportTest, morethanAllOfItFillsTheBarAndIsPrintedAsItIs)
{
    testing::internal::CaptureStdout();
    save("error time=00:00:16.00\nwait-for " + folder() + "go\n" + leaveOutput());
    EXPECT_TRUE(waitUntil([this] { return bar().value() == 100; }));
    EXPECT_TRUE(testing::internal::GetCapturedStdout().ends_with("Percent : 200.0\n"));
    writeFile(folder() + "go", "");
    finish();
}

TEST_F(ExportTest, aVideoWithoutADurationPrintsWhatTheDivisionGives)
{
    tools().setSniffer(sniffing(reportOf({.codec = "mpeg4", .duration = "0"})));
    tools().setCreator(stillScript());
    openVideo();
    testing::internal::CaptureStdout();
    save("error time=00:00:01.00\nwait-for " + folder() + "go\n" + leaveOutput());
    EXPECT_TRUE(waitUntil([this] { return bar().value() == 100; }));
    writeFile(folder() + "go", "");
    finish();
    EXPECT_NE(testing::internal::GetCapturedStdout().find("Percent : inf\n"), std::string::npos);
}

TEST_F(ExportTest, onlyStandardErrorCountsAsProgress)
{
    testing::internal::CaptureStdout();
    save("print time=00:00:04.00\n" + leaveOutput());
    finish();
    EXPECT_EQ(testing::internal::GetCapturedStdout().find("Percent"), std::string::npos);
}

TEST_F(ExportTest, cancelSendsSigtermAndDeletesTheOutputWithoutAWord)
{
    save("on-termination " + folder() + "terminated\n" + leaveOutput() + "touch " + folder()
        + "running\nhang\n");
    ASSERT_TRUE(waitUntil([this] { return exists(folder() + "running"); }));
    EXPECT_TRUE(exists(output()));
    cancelWhenPossible();
    expectIdle();
    EXPECT_EQ(contentsOf(folder() + "terminated"), "SIGTERM");
    EXPECT_FALSE(exists(output()));
}

TEST_F(ExportTest, theSheetStaysAfterCancelUntilTheToolHasExited)
{
    save("ignore-termination\n" + leaveOutput() + "wait-for " + folder() + "go\n");
    cancelWhenPossible();
    for (int turn = 0; turn < 50; ++turn) {
        QTest::qWait(1);
        ASSERT_TRUE(isProgressShown());
    }
    ASSERT_TRUE(waitUntil([this] { return exists(output()); }));
    writeFile(folder() + "go", "");
    expectIdle();
    EXPECT_FALSE(exists(output()));
}

TEST_F(ExportTest, escapeOnTheSheetCancels)
{
    save("on-termination " + folder() + "terminated\ntouch " + folder() + "running\nhang\n");
    ASSERT_TRUE(waitUntil(
        [this] { return exists(folder() + "running") && isProgressShown() && cancelButton().isEnabled(); }));
    QTest::keyClick(&find<QDialog>("progressWindow"), Qt::Key_Escape);
    expectIdle();
    EXPECT_TRUE(exists(folder() + "terminated"));
}

TEST_F(ExportTest, aCancelledRunWithoutAnOutputEndsSilentlyToo)
{
    save("hang\n");
    cancelWhenPossible();
    expectIdle();
}

TEST_F(ExportTest, aSecondCancelDoesNoHarm)
{
    save("ignore-termination\nwait-for " + folder() + "go\n");
    cancelWhenPossible();
    QTest::mouseClick(&cancelButton(), Qt::LeftButton);
    writeFile(folder() + "go", "");
    expectIdle();
}

TEST_F(ExportTest, theRunAfterACancelledOneReportsItsResult)
{
    save("hang\n");
    cancelWhenPossible();
    expectIdle();
    save(leaveOutput());
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Video Processed Successfully!"));
    finish();
    EXPECT_TRUE(exists(output()));
}

TEST_F(ExportTest, aToolThatFailsButLeavesAVideoStillSucceeds)
{
    save(leaveOutput() + "exit 1\n");
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Video Processed Successfully!"));
    finish();
}

TEST_F(ExportTest, anOutputThatIsNoMediaFails)
{
    for (const char* script : {"exit 1\n", "die 11\n", "error Conversion failed!\n"}) {
        SCOPED_TRACE(script);
        tools().setSniffer(sniffing(errorReport()));
        save(script);
        QMessageBox* alert = shownAlert();
        EXPECT_EQ(alert->text(), QStringLiteral("Seems like something went wrong!"));
        EXPECT_EQ(alert->informativeText(), QStringLiteral("Contact : " TARNWELL_SUPPORT_ADDRESS));
        EXPECT_EQ(alert->icon(), QMessageBox::Warning);
        ASSERT_EQ(alert->buttons().size(), 1);
        EXPECT_EQ(alert->buttons().first()->text(), QStringLiteral("OK"));
        finish();
    }
}

TEST_F(ExportTest, anEncoderThatCannotBeStartedFails)
{
    tools().makeCreatorUnstartable();
    tools().setSniffer(sniffing(errorReport()));
    saveByPanel(output());
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Seems like something went wrong!"));
    finish();
    EXPECT_FALSE(exists(output()));
}

TEST_F(ExportTest, theSuccessAlertOffersThreeButtons)
{
    action("rotateLeftBTN").trigger();
    save(leaveOutput());
    QMessageBox* alert = shownAlert();
    EXPECT_EQ(alert->text(), QStringLiteral("Video Rotated Successfully!"));
    EXPECT_EQ(alert->informativeText(), QStringLiteral("Questions? : " TARNWELL_SUPPORT_ADDRESS));
    EXPECT_EQ(alert->icon(), QMessageBox::Information);
    ASSERT_EQ(alert->buttons().size(), 3);
    const char* const texts[] = {"OK", "Show in Finder", "Launch Video in QuickTime"};
    for (int place = 0; place < 3; ++place) {
        EXPECT_EQ(alert->buttons().at(place)->text().toStdString(), texts[place]);
        if (place > 0) {
            EXPECT_LT(alert->buttons().at(place - 1)->x(), alert->buttons().at(place)->x());
        }
    }
    finish();
    EXPECT_FALSE(isAlertShown());
    EXPECT_TRUE(exists(output()));
}

TEST_F(ExportTest, theResultWordFollowsTheOrientation)
{
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{}, "Video Processed Successfully!"},
        {{"flipVerticallyBTN"}, "Video Flipped Successfully!"},
        {{"rotateLeftBTN", "rotateLeftBTN"}, "Video Rotated Successfully!"},
        {{"rotateLeftBTN", "rotateLeftBTN", "flipHorizontallyBTN"},
            "Video Rotated and Flipped Successfully!"},
    };
    for (const auto& [actions, message] : cases) {
        action("resetBTN").trigger();
        for (const char* name : actions)
            action(name).trigger();
        std::remove(output().c_str());
        save(leaveOutput());
        EXPECT_EQ(shownAlert()->text().toStdString(), message);
        finish();
        waitForKeyboard(window());
    }
}

TEST_F(ExportTest, launchingOpensTheOutputAndNothingElse)
{
    UrlCatcher caught;
    save(leaveOutput());
    answer(shownAlert(), "Launch Video in QuickTime");
    ASSERT_TRUE(waitUntil([&caught] { return !caught.urls().isEmpty(); }));
    EXPECT_EQ(caught.urls(), QList<QUrl>{QUrl::fromLocalFile(QString::fromStdString(output()))});
}

TEST_F(ExportTest, theOriginalKeepsItsBytesThroughEveryEnding)
{
    for (const char* script : {"exit 1\n", "die 9\n"}) {
        save(script + std::string());
        finish();
        waitForKeyboard(window());
        EXPECT_EQ(contentsOf(folder() + "clip.mp4"), "bytes");
    }
    save("hang\n");
    cancelWhenPossible();
    expectIdle();
    EXPECT_EQ(contentsOf(folder() + "clip.mp4"), "bytes");
}

} // namespace tarnwell::test
