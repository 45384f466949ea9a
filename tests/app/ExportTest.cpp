// SPDX-License-Identifier: MIT
// The encoder's run as the user sees it: progress and cancel, with fakes for the tools.
#include "tests/app/ExportTest.h"

#include "app/AppDelegate.h"
#include "tests/support/EventCounter.h"

#include <QLabel>

#include <sstream>

namespace tarnwell::test
{

namespace
{

/// The lines that tell how far an export has come.
std::vector<std::string> percentLines(const std::string& printed)
{
    std::vector<std::string> found;
    std::istringstream lines(printed);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with("Percent"))
            found.push_back(line);
    }
    return found;
}

} // namespace

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
    testing::internal::CaptureStdout();
    save("error time=00:00:04.00\nwait-until-read\nerror \\xFFtime=00:00:06.00\nwait-until-read\n"
         "error Stream mapping: 00:00:07.00\nwait-until-read\nerror time=00:00:02.00\nwait-for "
        + folder() + "go\n" + leaveOutput());
    EXPECT_TRUE(waitUntil([this] { return bar().value() == 25; }));
    writeFile(folder() + "go", "");
    finish();
    EXPECT_EQ(percentLines(testing::internal::GetCapturedStdout()),
        (std::vector<std::string>{"Percent : 50.0", "Percent : 25.0"}));
}

TEST_F(ExportTest, everyChunkIsPrintedHoweverFastTheyCome)
{
    std::string script;
    std::vector<std::string> expected;
    for (int round = 0; round < 40; ++round) {
        for (const char* second : {"2", "6", "6"})
            script += "error time=00:00:0" + std::string(second) + ".00\nwait-until-read\n";
        expected.insert(expected.end(), {"Percent : 25.0", "Percent : 75.0", "Percent : 75.0"});
    }
    testing::internal::CaptureStdout();
    save(script + leaveOutput());
    finish();
    EXPECT_EQ(percentLines(testing::internal::GetCapturedStdout()), expected);
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

TEST_F(ExportTest, aCancelAfterTheRunFindsItsEncoderStillAndDoesNoHarm)
{
    save(leaveOutput());
    finish();
    delegate().closeBTNInsideProgressWindowClicked();
    expectIdle();
    EXPECT_TRUE(exists(output()));
    save(leaveOutput());
    answerReplaceQuestion("&Yes");
    ASSERT_TRUE(waitUntil([this] { return isAlertShown() && !isProgressShown(); }));
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Video Processed Successfully!"));
    finish();
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
