// SPDX-License-Identifier: MIT
// The end of an export: the probe of its output, the alert and the alert's buttons.
#include "app/AppDelegate.h"
#include "desktop/Workspace.h"
#include "probe/FileProbe.h"
#include "tests/app/ExportTest.h"
#include "tests/desktop/BusService.h"
#include "tests/desktop/DataFolders.h"
#include "tests/support/EventCounter.h"

#include <cstdlib>
#include <filesystem>

namespace tarnwell::test
{

class ResultTest : public ExportTest
{
};

/// With a file manager on the bus and no application.
class ResultActionTest : public ResultTest
{
protected:
    /// The file URLs of each call to the file manager.
    QList<QStringList> shownItems()
    {
        // Calls arrive in order: after this one no earlier call is pending.
        const FileURL last(folder() + "last");
        activateFileViewerSelecting(last);
        const QStringList lastItem(QString::fromStdString(last.absoluteString()));
        QList<QStringList> items;
        EXPECT_TRUE(waitUntil([&] {
            items.clear();
            for (const auto& call : m_fileManager.calls()) {
                EXPECT_EQ(call.member(), QStringLiteral("ShowItems"));
                items.append(call.arguments().at(0).toStringList());
            }
            return !items.isEmpty() && items.last() == lastItem;
        }));
        if (!items.isEmpty())
            items.removeLast();
        return items;
    }

    /// The URLs that were passed to the default application.
    const QList<QUrl>& opened() const { return m_caught.urls(); }

private:
    UrlCatcher m_caught;
    BusService m_fileManager{QStringLiteral("org.freedesktop.FileManager1"),
        QStringLiteral("/org/freedesktop/FileManager1"), BusService::emptyReply};
};

TEST_F(ResultTest, theSheetGoesThenTheOutputIsProbedThenTheAlertComes)
{
    const std::string probing = folder() + "probing";
    const std::string go = folder() + "go";
    tools().setSniffer(
        "touch " + probing + "\nwait-for " + go + "\n" + sniffing(reportOf({.codec = "mpeg4"})));
    bool isSeen = false;
    QTimer watch;
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (isSeen || !exists(probing))
            return;
        isSeen = true;
        EXPECT_FALSE(isProgressShown());
        EXPECT_FALSE(isAlertShown());
        EXPECT_TRUE(exists(output()));
        writeFile(go, "");
    });
    watch.start(0);
    save(leaveOutput());
    finish();
    EXPECT_TRUE(isSeen);
    EXPECT_EQ(recordedArguments(folder() + "probed").back(), output());
}

TEST_F(ResultTest, aToolThatFailsButLeavesAVideoStillSucceeds)
{
    save(leaveOutput() + "exit 1\n");
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Video Processed Successfully!"));
    finish();
}

TEST_F(ResultTest, anOutputThatIsNoMediaFailsAndTheInputKeepsItsBytes)
{
    tools().setSniffer(sniffing(errorReport()));
    for (const char* script :
        {"exit 1\n", "die 9\n", "error Conversion failed!\n", "write-output rubbish\n", "unstartable"}) {
        SCOPED_TRACE(script);
        std::filesystem::remove(output());
        tools().setCreator(script);
        if (std::string(script) == "unstartable")
            tools().makeCreatorUnstartable();
        saveByPanel(output());
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text(), QStringLiteral("Seems like something went wrong!"));
        EXPECT_EQ(alert->informativeText(), QStringLiteral("Contact : " TARNWELL_SUPPORT_ADDRESS));
        EXPECT_EQ(alert->alertStyle(), Alert::Style::Warning);
        ASSERT_EQ(alert->buttons().size(), 1);
        EXPECT_EQ(alert->buttons().first()->text(), QStringLiteral("OK"));
        finish();
        EXPECT_EQ(contentsOf(folder() + "clip.mp4"), "bytes");
        waitForKeyboard(window());
    }
}

TEST_F(ResultTest, theSuccessAlertNamesWhatWasDoneAndOffersThreeButtons)
{
    const std::pair<std::vector<const char*>, const char*> cases[] = {
        {{}, "Video Processed Successfully!"},
        {{"flipVerticallyBTN"}, "Video Flipped Successfully!"},
        {{"rotateLeftBTN", "rotateLeftBTN"}, "Video Rotated Successfully!"},
        {{"rotateLeftBTN", "rotateLeftBTN", "flipHorizontallyBTN"},
            "Video Rotated and Flipped Successfully!"},
    };
    const char* const buttons[] = {"OK", "Show in Finder", "Launch Video in QuickTime"};
    for (const auto& [actions, message] : cases) {
        SCOPED_TRACE(message);
        action("resetBTN").trigger();
        for (const char* name : actions)
            action(name).trigger();
        std::filesystem::remove(output());
        save(leaveOutput());
        AlertDialog* alert = shownAlert();
        EXPECT_EQ(alert->text().toStdString(), message);
        EXPECT_EQ(alert->informativeText(), QStringLiteral("Questions? : " TARNWELL_SUPPORT_ADDRESS));
        EXPECT_EQ(alert->alertStyle(), Alert::Style::Informational);
        ASSERT_EQ(alert->buttons().size(), 3);
        for (int place = 0; place < 3; ++place) {
            EXPECT_EQ(alert->buttons().at(place)->text().toStdString(), buttons[place]);
            EXPECT_TRUE(place == 0 || alert->buttons().at(place - 1)->x() < alert->buttons().at(place)->x());
        }
        finish();
        EXPECT_FALSE(isAlertShown());
        EXPECT_TRUE(exists(output()));
        waitForKeyboard(window());
    }
}

TEST_F(ResultTest, theResultWordIsThatOfTheOrientationAtTheAlert)
{
    save("wait-for " + folder() + "go\n" + leaveOutput());
    ASSERT_TRUE(waitUntil([this] { return isProgressShown(); }));
    delegate().vFlip();
    writeFile(folder() + "go", "");
    EXPECT_EQ(shownAlert()->text(), QStringLiteral("Video Flipped Successfully!"));
    finish();
}

TEST_F(ResultActionTest, theFileManagerIsAskedOnceForExactlyTheOutput)
{
    save(leaveOutput());
    answer(shownAlert(), "Show in Finder");
    EXPECT_EQ(shownItems(), QList<QStringList>{{QString::fromStdString("file://" + output())}});
    EXPECT_TRUE(opened().isEmpty());
}

TEST_F(ResultActionTest, launchingOpensTheOutputAndNothingElse)
{
    save(leaveOutput());
    answer(shownAlert(), "Launch Video in QuickTime");
    ASSERT_TRUE(waitUntil([this] { return !opened().isEmpty(); }));
    EXPECT_EQ(opened(), QList<QUrl>{QUrl::fromLocalFile(QString::fromStdString(output()))});
    EXPECT_TRUE(shownItems().isEmpty());
}

TEST_F(ResultTest, launchingStartsThePlayerOfThatNameWithTheOutput)
{
    const auto launch = [this] {
        const UrlCatcher defaultApplication;
        const DataFolders folders;
        folders.setEnvironment();
        const std::string player = folder() + "player";
        const std::string record = folder() + "played";
        writeFile(player,
            "#!/bin/sh\nprintf '%s\\n' \"$@\" >'" + record + ".part'\nmv '" + record + ".part' '" + record
                + "'\n");
        std::filesystem::permissions(player, std::filesystem::perms::owner_all);
        folders.addUserEntry("player.desktop", "Name=QuickTime Player\nExec=" + player + " %f\n");
        save(leaveOutput());
        answer(shownAlert(), "Launch Video in QuickTime");
        EXPECT_TRUE(waitUntil([&] { return exists(record); }));
        EXPECT_EQ(contentsOf(record), output() + "\n");
        EXPECT_TRUE(defaultApplication.urls().isEmpty());
        std::quick_exit(HasFailure() ? EXIT_FAILURE : EXIT_SUCCESS);
    };
    // In a separate process, because GIO reads the folders of applications once per process.
    EXPECT_EXIT(launch(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

TEST_F(ResultActionTest, everyOtherAnswerDoesNothing)
{
    save(leaveOutput());
    AlertDialog* alert = shownAlert();
    alert->done(0); // as when a desktop closes it: no button was clicked
    expectIdle();
    std::filesystem::remove(output());
    save(leaveOutput());
    alert = shownAlert();
    QTest::keyClick(alert, Qt::Key_Escape);
    expectIdle();
    const FileProbe probe(output(), tools().context());
    for (const int response : {-1, 0, 1, 999, 1000, 1003})
        delegate().resultAlertButtonClicked(response, probe);
    EXPECT_TRUE(shownItems().isEmpty());
    EXPECT_TRUE(opened().isEmpty());
    EXPECT_TRUE(exists(output()));
}

} // namespace tarnwell::test
