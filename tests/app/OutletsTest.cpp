// SPDX-License-Identifier: MIT
// Every use of an element of the interface that is not connected, or is gone, stops the program.
#include "app/AppDelegate.h"
#include "platform/DispatchQueue.h"
#include "probe/FileProbe.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/SilentStop.h"

#include <functional>
#include <memory>

namespace tarnwell::test
{

class OutletsDeathTest : public FakeToolsTest
{
protected:
    using Disconnect = std::function<void(Outlets&)>;

    /// Starts the program and adds a second controller to its interface, one that lacks something.
    AppDelegate& startWithout(const Disconnect& disconnect)
    {
        start();
        Outlets outlets = application().interface().outlets();
        disconnect(outlets);
        m_delegate = std::make_shared<AppDelegate>(outlets, tools().context(), m_queue);
        return *m_delegate;
    }

    /// Runs what the controller submits to the main thread, until the condition holds.
    void drainUntil(const std::string& awaited, const std::function<bool()>& condition)
    {
        waitFor(awaited, [&] {
            m_queue->drain();
            return condition();
        });
    }

    /// The same until the program stops.
    void drainUntilStop()
    {
        drainUntil("the end of the program", [] { return false; });
    }

    void analyse(const Disconnect& disconnect)
    {
        writeFile(folder() + "clip.mp4", "bytes");
        startWithout(disconnect).analyzeFile(FileURL(folder() + "clip.mp4"));
    }

    void showResult(const Disconnect& disconnect)
    {
        AppDelegate& lacking = startWithout(disconnect);
        lacking.startCreatorRun(folder() + "out.mp4", {folder() + "out.mp4"});
        lacking.showResultAlert(std::make_shared<const FileProbe>(folder() + "still.png", tools().context()));
    }

    static void withoutWindow(Outlets& outlets) { outlets.window = nullptr; }

    std::vector<Disconnect> partsOfTheProgressSheet() const
    {
        return {
            [](Outlets& outlets) { outlets.sheets = nullptr; },
            [](Outlets& outlets) { outlets.progressWindow = nullptr; },
            [](Outlets& outlets) { outlets.progressTitle = nullptr; },
            [](Outlets& outlets) { outlets.progressBar = nullptr; },
            [](Outlets& outlets) { outlets.progressCancel = nullptr; },
        };
    }

private:
    std::shared_ptr<DispatchQueue> m_queue = std::make_shared<DispatchQueue>([] {});
    std::shared_ptr<AppDelegate> m_delegate;
};

TEST_F(OutletsDeathTest, everyActionStopsTheProgramWhereNothingIsConnected)
{
    using Entry = void (AppDelegate::*)();
    const Entry entries[] = {&AppDelegate::applicationDidFinishLaunching, &AppDelegate::helpBTNClicked,
        &AppDelegate::okBTNInsideHelpWindowClicked, &AppDelegate::openMenuBTNClicked,
        &AppDelegate::openToolBarBTNClicked, &AppDelegate::leftRotateBTNClicked,
        &AppDelegate::rightRotateBTNClicked, &AppDelegate::vFlip, &AppDelegate::hFlip,
        &AppDelegate::resetBTNClicked, &AppDelegate::updatePreview, &AppDelegate::saveMenuBTNClicked,
        &AppDelegate::saveToolBarBTNClicked};
    for (const Entry entry : entries) {
        EXPECT_SILENT_STOP([&] {
            AppDelegate lonely({}, tools().context(), std::make_shared<DispatchQueue>([] {}));
            (lonely.*entry)();
        }());
    }
}

TEST_F(OutletsDeathTest, aReturnToTheWindowNeedsTheWindow)
{
    for (const bool isVisible : {false, true})
        EXPECT_SILENT_STOP(startWithout(withoutWindow).applicationShouldHandleReopen(isVisible));
}

TEST_F(OutletsDeathTest, anAnalysisNeedsEveryPartOfTheProgressSheet)
{
    for (const Disconnect& disconnect : partsOfTheProgressSheet())
        EXPECT_SILENT_STOP(analyse(disconnect));
}

TEST_F(OutletsDeathTest, anAcceptedFileNeedsThePictureAndEveryEditingControl)
{
    const std::vector<Disconnect> cases = {
        [](Outlets& outlets) { outlets.posterFrameIMGV = nullptr; },
        [](Outlets& outlets) { outlets.saveToolBarBTN = nullptr; },
        [](Outlets& outlets) { outlets.rotateLeftBTN = nullptr; },
        [](Outlets& outlets) { outlets.rotateRightBTN = nullptr; },
        [](Outlets& outlets) { outlets.resetBTN = nullptr; },
        [](Outlets& outlets) { outlets.flipVerticallyBTN = nullptr; },
        [](Outlets& outlets) { outlets.flipHorizontallyBTN = nullptr; },
    };
    for (const Disconnect& disconnect : cases)
        EXPECT_SILENT_STOP(analyse(disconnect));
}

TEST_F(OutletsDeathTest, theAlertOfARefusedFileNeedsTheWindow)
{
    tools().setSniffer(sniffing(errorReport()));
    EXPECT_SILENT_STOP(analyse(withoutWindow));
}

TEST_F(OutletsDeathTest, theModeAlertNeedsTheWindow)
{
    EXPECT_STOP_AFTER(
        [&] {
            writeFile(folder() + "clip.mp4", "bytes");
            AppDelegate& lacking = startWithout(withoutWindow);
            lacking.analyzeFile(FileURL(folder() + "clip.mp4"));
            lacking.chooseExportMode(folder() + "clip.mp4", folder() + "out.mp4");
        }(),
        "^positionState : 1, vFlipSte : false, hFlipState : false\n$");
}

TEST_F(OutletsDeathTest, anExportNeedsEveryPartOfTheProgressSheet)
{
    for (const Disconnect& disconnect : partsOfTheProgressSheet()) {
        EXPECT_SILENT_STOP([&] {
            startWithout(disconnect).startCreatorRun(folder() + "out.mp4", {folder() + "out.mp4"});
            drainUntilStop();
        }());
    }
}

TEST_F(OutletsDeathTest, progressNeedsTheBarThoughTheSheetIsUp)
{
    const std::string go = folder() + "go";
    // More than a pipe holds: the encoder cannot end, which needs the bar too, before its time has been dealt
    // with.
    tools().setCreator("with -frames:v copy " + folder() + "still.png\nwith -frames:v exit 0\nwait-for " + go
        + "\nerror time=00:00:04.00\nwait-until-read\nflood-error 1000000\n");
    EXPECT_STOP_AFTER(
        [&] {
            auto bar = std::make_unique<QProgressBar>();
            writeFile(folder() + "clip.mp4", "bytes");
            AppDelegate& lacking = startWithout([&](Outlets& outlets) { outlets.progressBar = bar.get(); });
            lacking.analyzeFile(FileURL(folder() + "clip.mp4"));
            lacking.startCreatorRun(folder() + "out.mp4", {folder() + "out.mp4"});
            drainUntil("the progress sheet", [this] { return isProgressShown(); });
            bar.reset();
            writeFile(go, "");
            drainUntilStop();
        }(),
        "^Percent : 50.0\n$");
}

TEST_F(OutletsDeathTest, theAlertAtTheEndNeedsTheWindow)
{
    EXPECT_SILENT_STOP(showResult(withoutWindow));
    tools().setSniffer(sniffing(errorReport()));
    EXPECT_SILENT_STOP(showResult(withoutWindow));
}

} // namespace tarnwell::test
