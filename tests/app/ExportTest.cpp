// SPDX-License-Identifier: MIT
// The encoder's run as the user sees it: progress and cancel, with fake tools.
#include "tests/app/ExportTest.h"

#include "app/AppDelegate.h"
#include "tests/support/EventCounter.h"

#include <QLabel>

#include <sstream>

namespace tarnwell::test
{

namespace
{

/// The printed lines about the progress of an export.
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

TEST_F(ExportTest, theSheetNamesTheWorkAndOffersToCancel)
{
    save("wait-for " + folder() + "go\n" + leaveOutput());
    ASSERT_TRUE(waitUntil([this] { return isCancelPossible(); }));
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

struct StatusRow {
    const char* name;
    std::string creatorScript; // before the file "go" exists
    int bar; // its value then
    std::vector<std::string> printed;
    const char* duration = "8.000000";
};

void PrintTo(const StatusRow& row, std::ostream* stream)
{
    *stream << row.name;
}

class StatusTest : public ExportTest, public testing::WithParamInterface<StatusRow>
{
};

TEST_P(StatusTest, setsTheBarAndIsPrinted)
{
    const StatusRow& row = GetParam();
    tools().setSniffer(sniffing(reportOf({.codec = "mpeg4", .duration = row.duration})));
    tools().setCreator(stillScript());
    openVideo();
    testing::internal::CaptureStdout();
    save(inFolder(row.creatorScript + "touch @written\nwait-for @go\n") + leaveOutput());
    EXPECT_TRUE(waitUntil([&] { return exists(folder() + "written") && bar().value() == row.bar; }));
    writeFile(folder() + "go", "");
    finish();
    EXPECT_EQ(percentLines(testing::internal::GetCapturedStdout()), row.printed);
}

INSTANTIATE_TEST_SUITE_P(statusLines, StatusTest,
    testing::Values(
        StatusRow{"withATime", "error frame=1 time=00:00:04.00 bitrate=1\\r\n", 50, {"Percent : 50.0"}},
        StatusRow{"ofWhichTheFirstInAChunkCounts",
            "error frame=1 time=00:00:02.00 \\rframe=2 time=00:00:06.00 \\r\n", 25, {"Percent : 25.0"}},
        StatusRow{"betweenChunksWithoutATime",
            "error time=00:00:04.00\nwait-until-read\nerror \\xFFtime=00:00:06.00\nwait-until-read\n"
            "error Stream mapping: 00:00:07.00\nwait-until-read\nerror time=00:00:02.00\n",
            25, {"Percent : 50.0", "Percent : 25.0"}},
        StatusRow{"beyondTheDuration", "error time=00:00:16.00\n", 100, {"Percent : 200.0"}},
        StatusRow{"ofAVideoWithoutADuration", "error time=00:00:01.00\n", 100, {"Percent : inf"}, "0"},
        StatusRow{"onStandardOutput", "print time=00:00:04.00\n", 0, {}}),
    [](const auto& row) { return std::string(row.param.name); });

TEST_F(ExportTest, everyChunkIsPrintedAtAnyRate)
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

TEST_F(ExportTest, cancelAndEscapeSendSigtermAndDeleteTheOutputWithoutAnAlert)
{
    for (const bool byEscape : {false, true}) {
        SCOPED_TRACE(byEscape);
        std::remove((folder() + "terminated").c_str());
        save("on-termination " + folder() + "terminated\n" + leaveOutput() + "hang\n");
        ASSERT_TRUE(waitUntil([this] { return exists(output()) && isCancelPossible(); }));
        if (byEscape)
            QTest::keyClick(&find<QDialog>("progressWindow"), Qt::Key_Escape);
        else
            QTest::mouseClick(&cancelButton(), Qt::LeftButton);
        expectIdle();
        EXPECT_EQ(contentsOf(folder() + "terminated"), "SIGTERM");
        EXPECT_FALSE(exists(output()));
        EXPECT_EQ(contentsOf(folder() + "clip.mp4"), "bytes");
        waitForKeyboard(window());
    }
}

TEST_F(ExportTest, theSheetStaysAfterOneOrTwoCancelsUntilTheToolHasExited)
{
    save("ignore-termination\n" + leaveOutput() + "wait-for " + folder() + "go\n");
    cancelWhenPossible();
    for (int turn = 0; turn < 50; ++turn) {
        QTest::qWait(1);
        ASSERT_TRUE(isProgressShown());
    }
    QTest::mouseClick(&cancelButton(), Qt::LeftButton);
    ASSERT_TRUE(waitUntil([this] { return exists(output()); }));
    EXPECT_TRUE(isProgressShown());
    writeFile(folder() + "go", "");
    expectIdle();
    EXPECT_FALSE(exists(output()));
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

TEST_F(ExportTest, aCancelAfterTheRunChangesNeitherItsOutputNorTheNextRun)
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

} // namespace tarnwell::test
