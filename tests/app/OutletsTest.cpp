// SPDX-License-Identifier: MIT
// Every use of an element of the interface that is not connected, or is gone, stops the program.
#include "app/AppDelegate.h"
#include "app/DragAndDropFileInNSImageView.h"
#include "platform/DispatchQueue.h"
#include "probe/FileProbe.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"
#include "tests/support/SilentStop.h"

#include <QDialog>
#include <QProgressBar>
#include <QPushButton>

#include <cstdio>
#include <functional>
#include <memory>
#include <vector>

namespace tarnwell::test
{

namespace
{

/// Prints a line on standard error when a sheet is shown.
class SheetReporter : public QObject
{
public:
    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == QEvent::Show)
            std::fputs("a sheet is shown\n", stderr);
        return QObject::eventFilter(watched, event);
    }
};

} // namespace

class OutletsDeathTest : public FakeToolsTest
{
protected:
    using Disconnect = std::function<void(Outlets&)>;
    using Destroy = std::function<void()>;

    /// Starts the program and adds a second controller to its interface, one that lacks something.
    AppDelegate& startWithout(const Disconnect& disconnect, const BlockingWait& wait = waitBlocking)
    {
        start();
        Outlets outlets = application().interface().outlets();
        disconnect(outlets);
        m_delegate = std::make_shared<AppDelegate>(outlets, ToolContext{tools().bundle(), wait}, m_queue);
        return *m_delegate;
    }

    /// The same for a fatal rule that applies before a sheet is shown. Prints a message for each shown sheet.
    AppDelegate& startWithoutSheet(const Disconnect& disconnect)
    {
        AppDelegate& lacking = startWithout(disconnect);
        for (const char* sheet : {"progressWindow", "helpWindow"})
            find<QDialog>(sheet).installEventFilter(&m_reporter);
        return lacking;
    }

    /// Runs the work that the controller submits to the main thread until the condition holds.
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
        lacking.showResultAlert(std::make_shared<const FileProbe>(folder() + "still.jpg", tools().context()));
    }

    /// Replaces an element by one that a call of the result destroys.
    using Replace = std::function<Destroy(Outlets&)>;

    static Destroy theWindow(Outlets& outlets) { return owned(outlets.window, std::make_shared<QWidget>()); }

    static Destroy thePictureView(Outlets& outlets)
    {
        return owned(outlets.posterFrameIMGV, std::make_shared<DragAndDropFileInNSImageView>());
    }

    /// A controller that has accepted a file and has lost an element since.
    AppDelegate& analysedWithout(const Replace& replace)
    {
        Destroy destroy;
        AppDelegate& lacking = startWithout([&](Outlets& outlets) { destroy = replace(outlets); });
        writeFile(folder() + "clip.mp4", "bytes");
        lacking.analyzeFile(FileURL(folder() + "clip.mp4"));
        destroy();
        return lacking;
    }

    /// The elements that the end of the progress sheet uses.
    std::vector<Replace> partsForTheEndOfTheProgressSheet()
    {
        return {
            theWindow,
            [this](
                Outlets& outlets) { return owned(outlets.sheets, std::make_shared<SheetQueue>(window())); },
            [](Outlets& outlets) { return owned(outlets.progressWindow, std::make_shared<QDialog>()); },
            [](Outlets& outlets) { return owned(outlets.progressBar, std::make_shared<QProgressBar>()); },
            [](Outlets& outlets) { return owned(outlets.progressCancel, std::make_shared<QPushButton>()); },
        };
    }

    /// Analyses a file and loses an element after that many runs of a tool.
    void analyseAndLose(const Replace& replace, int toolRuns)
    {
        Destroy destroy;
        int waits = 0;
        const auto wait = [&](const std::function<void()>& blockingCall) {
            blockingCall();
            if (++waits == toolRuns)
                destroy();
        };
        writeFile(folder() + "clip.mp4", "bytes");
        startWithout([&](Outlets& outlets) { destroy = replace(outlets); }, wait)
            .analyzeFile(FileURL(folder() + "clip.mp4"));
    }

    /// Loses an element after the cancel of an export, which shows no alert, and before the end of its sheet.
    void cancelAndLose(const Replace& replace)
    {
        Destroy destroy;
        Outlets shown;
        AppDelegate& lacking = startWithout([&](Outlets& outlets) {
            destroy = replace(outlets);
            shown = outlets;
        });
        lacking.startCreatorRun(folder() + "out.mp4", {folder() + "out.mp4"});
        drainUntil("the Cancel button",
            [&] { return shown.progressWindow->isVisible() && shown.progressCancel->isEnabled(); });
        lacking.closeBTNInsideProgressWindowClicked();
        destroy();
        drainUntilStop();
    }

    static void withoutWindow(Outlets& outlets) { outlets.window = nullptr; }
    static void withoutSheets(Outlets& outlets) { outlets.sheets = nullptr; }
    static void withoutHelpWindow(Outlets& outlets) { outlets.helpWindow = nullptr; }

    std::vector<Disconnect> partsOfTheProgressSheet() const
    {
        return {
            withoutWindow,
            withoutSheets,
            [](Outlets& outlets) { outlets.progressWindow = nullptr; },
            [](Outlets& outlets) { outlets.progressTitle = nullptr; },
            [](Outlets& outlets) { outlets.progressBar = nullptr; },
            [](Outlets& outlets) { outlets.progressCancel = nullptr; },
        };
    }

private:
    template <typename Element, typename Outlet>
    static Destroy owned(Outlet& outlet, std::shared_ptr<Element> element)
    {
        outlet = element.get();
        return [element]() mutable { element.reset(); };
    }

    SheetReporter m_reporter;
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
    writeFile(folder() + "clip.mp4", "bytes");
    for (const Disconnect& disconnect : partsOfTheProgressSheet())
        EXPECT_SILENT_STOP(startWithoutSheet(disconnect).analyzeFile(FileURL(folder() + "clip.mp4")));
}

TEST_F(OutletsDeathTest, anAcceptedFileNeedsThePictureItsDetailsAndEveryEditingControl)
{
    const std::vector<Disconnect> cases = {
        [](Outlets& outlets) { outlets.posterFrameIMGV = nullptr; },
        [](Outlets& outlets) { outlets.videoDetails = nullptr; },
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

TEST_F(OutletsDeathTest, panelsNeedTheWindow)
{
    for (const auto entry : {&AppDelegate::openMenuBTNClicked, &AppDelegate::saveMenuBTNClicked})
        EXPECT_SILENT_STOP((startWithout([](Outlets& outlets) { outlets.window = nullptr; }).*entry)());
}

TEST_F(OutletsDeathTest, aResetAndARefreshNeedThePictureView)
{
    for (const auto action : {&AppDelegate::resetBTNClicked, &AppDelegate::updatePreview})
        EXPECT_SILENT_STOP((analysedWithout(thePictureView).*action)());
}

TEST_F(OutletsDeathTest, theAlertOfARefusedFileNeedsTheWindow)
{
    tools().setSniffer(sniffing(errorReport()));
    EXPECT_SILENT_STOP(analyseAndLose(theWindow, 1));
}

TEST_F(OutletsDeathTest, theModeAlertNeedsTheWindow)
{
    EXPECT_STOP_AFTER(
        analysedWithout(theWindow).chooseExportMode(folder() + "clip.mp4", folder() + "out.mp4"),
        "^positionState : 1, vFlipSte : false, hFlipState : false\n$");
}

TEST_F(OutletsDeathTest, anExportNeedsEveryPartOfTheProgressSheet)
{
    for (const Disconnect& disconnect : partsOfTheProgressSheet()) {
        EXPECT_SILENT_STOP([&] {
            startWithoutSheet(disconnect).startCreatorRun(folder() + "out.mp4", {folder() + "out.mp4"});
            drainUntilStop();
        }());
    }
}

TEST_F(OutletsDeathTest, progressNeedsTheBarThoughTheSheetIsUp)
{
    const std::string go = folder() + "go";
    // More than a pipe holds: the encoder cannot end, which needs the bar too, before its time has been dealt
    // with.
    tools().setCreator("with -frames:v copy " + folder() + "still.jpg\nwith -frames:v exit 0\nwait-for " + go
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

TEST_F(OutletsDeathTest, theEndOfAnAnalysisNeedsEveryPartOfTheProgressSheet)
{
    for (const Replace& replace : partsForTheEndOfTheProgressSheet())
        EXPECT_SILENT_STOP(analyseAndLose(replace, 3)); // one probe, two stills
}

TEST_F(OutletsDeathTest, theEndOfAnExportNeedsEveryPartOfTheProgressSheet)
{
    tools().setCreator("hang\n");
    for (const Replace& replace : partsForTheEndOfTheProgressSheet())
        EXPECT_SILENT_STOP(cancelAndLose(replace));
}

TEST_F(OutletsDeathTest, theHelpSheetNeedsItselfTheWindowAndItsQueue)
{
    for (const Disconnect& disconnect :
        std::vector<Disconnect>{withoutHelpWindow, withoutWindow, withoutSheets}) {
        EXPECT_SILENT_STOP(startWithoutSheet(disconnect).helpBTNClicked());
        EXPECT_SILENT_STOP(startWithout(disconnect).okBTNInsideHelpWindowClicked());
    }
}

} // namespace tarnwell::test
