// SPDX-License-Identifier: MIT
// The progress sheet's bar, the threads of an export, the order of sheets and alerts, and actions under a
// sheet.
#include "app/AppDelegate.h"
#include "desktop/InputBlocker.h"
#include "platform/DispatchQueue.h"
#include "tests/app/ExportTest.h"

#include <QAccessible>
#include <QFileDialog>
#include <QTimer>
#include <QToolBar>

#include <functional>
#include <memory>

namespace tarnwell::test
{

namespace
{

/// Calls a function whenever the object receives an event of that type, before the object handles it.
class CallOnEvent : public QObject
{
public:
    CallOnEvent(QObject& object, QEvent::Type type, std::function<void()> call)
        : m_type(type)
        , m_call(std::move(call))
    {
        object.installEventFilter(this);
    }

    bool eventFilter(QObject* watched, QEvent* event) override
    {
        if (event->type() == m_type)
            m_call();
        return QObject::eventFilter(watched, event);
    }

private:
    QEvent::Type m_type;
    std::function<void()> m_call;
};

} // namespace

class ExportStateTest : public ExportTest
{
protected:
    std::string waitForGo() const { return "wait-for " + folder() + "go\n"; }

    void go()
    {
        writeFile(folder() + "go", "");
        finish();
    }

    /// Presses the toolbar's button as assistive programs do, without any input event.
    void pressByAccessibility(const char* actionName)
    {
        QWidget* button = find<QToolBar>("toolBar").widgetForAction(&action(actionName));
        QAccessibleInterface* access = QAccessible::queryAccessibleInterface(button);
        ASSERT_NE(access, nullptr) << actionName;
        access->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    }
};

TEST_F(ExportStateTest, theExportSheetStartsWithADeterminateBarAtZero)
{
    bar().setRange(0, 100);
    bar().setValue(60);
    save(waitForGo() + leaveOutput());
    ASSERT_TRUE(waitUntil([this] { return isProgressShown(); }));
    EXPECT_EQ(bar().value(), 0);
    go();
}

TEST_F(ExportStateTest, theExportSheetStartsDeterminateAfterAnIndeterminateBar)
{
    bar().setRange(0, 0);
    save(waitForGo() + leaveOutput());
    ASSERT_TRUE(waitUntil([this] { return isProgressShown(); }));
    EXPECT_EQ(bar().maximum(), 100);
    go();
}

TEST_F(ExportStateTest, theEndOfAnExportSetsTheBarBackToZero)
{
    save("error time=00:00:04.00\n" + waitForGo() + leaveOutput());
    ASSERT_TRUE(waitUntil([this] { return bar().value() == 50; }));
    go();
    EXPECT_EQ(bar().value(), 0);
    EXPECT_EQ(bar().maximum(), 100);
}

TEST_F(ExportStateTest, theAnalysisSheetStartsWithAnIndeterminateBarAtZero)
{
    bar().setRange(0, 100);
    bar().setValue(60);
    int shown = 0;
    CallOnEvent watch(find<QDialog>("progressWindow"), QEvent::Show, [&] {
        ++shown;
        EXPECT_EQ(bar().value(), 0);
        EXPECT_EQ(bar().maximum(), 0);
    });
    openVideo();
    EXPECT_EQ(shown, 1);
    EXPECT_EQ(bar().value(), 0);
    EXPECT_EQ(bar().maximum(), 100);
}

TEST_F(ExportStateTest, percentagesArePrintedOnTheMainThreadOnly)
{
    const auto queue = std::make_shared<DispatchQueue>([] {}); // which only this test drains
    const auto controller = std::make_shared<AppDelegate>(
        application().interface().outlets(), ToolContext{tools().bundle(), waitBlocking}, queue);
    controller->analyzeFile(FileURL(folder() + "clip.mp4"));
    // When the second chunk has been read, the pipe's thread is done with the first.
    tools().setCreator(
        "error time=00:00:04.00\nwait-until-read\nerror time=00:00:06.00\nwait-until-read\ntouch " + folder()
        + "read\n" + leaveOutput());
    testing::internal::CaptureStdout();
    controller->startCreatorRun(output(), {output()});
    EXPECT_TRUE(waitUntil([this] { return exists(folder() + "read"); }));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
    testing::internal::CaptureStdout();
    EXPECT_TRUE(waitUntil([&] {
        queue->drain();
        return isAlertShown() && !isProgressShown();
    }));
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Percent : 50.0\nPercent : 75.0\n");
    finish();
}

TEST_F(ExportStateTest, anyOtherAnswerToTheModeAlertPrintsALineAndNothingElse)
{
    for (const int response : {-1, 0, 1, 999, 1002, 1003}) {
        SCOPED_TRACE(response);
        testing::internal::CaptureStdout();
        delegate().exportModeChosen(response, folder() + "clip.mp4", output());
        EXPECT_EQ(testing::internal::GetCapturedStdout(), "Something is Wrong!\n");
        EXPECT_FALSE(InputBlocker::isActive()); // an export blocks the input at once
    }
}

TEST_F(ExportStateTest, theAlertOfARefusedFileIsBegunBeforeTheSheetIsHidden)
{
    int hidden = 0;
    CallOnEvent watch(find<QDialog>("progressWindow"), QEvent::Hide, [&] {
        ++hidden;
        EXPECT_EQ(window().findChildren<AlertDialog*>().size(), 1);
        EXPECT_FALSE(isAlertShown());
    });
    tools().setSniffer(sniffing(errorReport()));
    ASSERT_TRUE(drop(folder() + "clip.mp4"));
    finish();
    EXPECT_EQ(hidden, 1);
}

TEST_F(ExportStateTest, actionsPressedThroughAccessibilityUnderASheetAreNotTaken)
{
    const auto before = shownPicture().cacheKey();
    action("helpBTN").trigger();
    auto& help = find<QDialog>("helpWindow");
    ASSERT_TRUE(waitUntil([&help] { return help.isVisible(); }));
    for (const char* name : {"openToolBarBTN", "saveToolBarBTN", "rotateLeftBTN", "rotateRightBTN",
             "resetBTN", "flipVerticallyBTN", "flipHorizontallyBTN"}) {
        pressByAccessibility(name);
        EXPECT_EQ(shownPicture().cacheKey(), before) << name;
        EXPECT_TRUE(window().findChildren<QFileDialog*>().isEmpty()) << name;
    }
    for (const char* name : {"openMenuBTN", "saveMenuBTN"}) {
        action(name).trigger(); // as a global menu does
        EXPECT_TRUE(window().findChildren<QFileDialog*>().isEmpty()) << name;
    }
    delegate().okBTNInsideHelpWindowClicked();
    EXPECT_FALSE(help.isVisible());
    pressByAccessibility("rotateLeftBTN");
    EXPECT_NE(shownPicture().cacheKey(), before);
}

} // namespace tarnwell::test
