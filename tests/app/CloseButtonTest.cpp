// SPDX-License-Identifier: MIT
// The close button of the main window, in the window manager's frame or in a task bar.
#include "tests/desktop/OtherClient.h"
#include "tests/support/ExternalProgram.h"
#include "tests/support/FakeToolsTest.h"
#include "tests/support/Files.h"

#include <QApplication>
#include <QDialog>
#include <QKeySequence>
#include <QMainWindow>
#include <QProcess>
#include <QPushButton>
#include <QTimer>

#include <gtest/gtest.h>

namespace tarnwell::test
{

namespace
{

/// Runs the program's event loop until the program ends itself. Returns another status than that of the
/// program after the longest wait.
int runUntilEnd()
{
    constexpr int endless = 99;
    QTimer::singleShot(longestWait, qApp, [] { QCoreApplication::exit(endless); });
    return QApplication::exec();
}

} // namespace

class CloseButtonTest : public FakeToolsTest
{
protected:
    /// The middle of openbox's close button, the last one in the title bar.
    QPoint closeButton()
    {
        constexpr QPoint fromCorner(-11, 9);
        return window().frameGeometry().topRight() + fromCorner;
    }

    /// Clicks the button during the program's event loop and waits until the loop ends.
    void clickAndWaitForEnd()
    {
        const QPoint place = closeButton();
        QProcess user;
        user.start(QStringLiteral("xdotool"),
            {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y()),
                QStringLiteral("click"), QStringLiteral("1")});
        EXPECT_EQ(runUntilEnd(), 0);
        EXPECT_TRUE(waitForEnd(user));
    }
};

TEST_F(CloseButtonTest, endsTheProgram)
{
    start();
    clickAndWaitForEnd();
}

TEST_F(CloseButtonTest, endsTheProgramWhileASheetBlocksTheWindow)
{
    start();
    type(QKeySequence(Qt::Key_F1));
    waitForKeyboard(find<QDialog>("helpWindow"));
    clickAndWaitForEnd();
    EXPECT_TRUE(find<QDialog>("helpWindow").isVisible());
}

class CloseDuringSaveTest : public CloseButtonTest
{
protected:
    void SetUp() override
    {
        start();
        openVideo();
        tools().setCreator(
            "on-termination " + folder() + "terminated\nwait-for " + folder() + "go\n" + stillScript());
        saveByPanel(output());
        m_modeQuestion = shownAlert();
    }

    std::string output() const { return folder() + "out.mp4"; }
    QDialog& progress() { return find<QDialog>("progressWindow"); }

    void beginExport()
    {
        answer(m_modeQuestion, "Transcode");
        ASSERT_TRUE(waitUntil(
            [this] { return isProgressShown() && find<QPushButton>("progressCancel").isEnabled(); }));
    }

    /// After the end of the program's event loop.
    void expectThatTheEncoderFinishes()
    {
        EXPECT_FALSE(processesWithArgument(output()).empty());
        EXPECT_FALSE(exists(folder() + "terminated"));
        writeFile(folder() + "go", "");
        answer(shownAlert(), "OK"); // the test goes on where the program ends
        EXPECT_EQ(contentsOf(output()), contentsOf(folder() + "still.jpg"));
    }

private:
    AlertDialog* m_modeQuestion = nullptr;
};

TEST_F(CloseDuringSaveTest, endsTheProgramAndNotTheEncoder)
{
    beginExport();
    waitForKeyboard(progress());
    EXPECT_TRUE(progress().isModal());
    clickAndWaitForEnd();
    expectThatTheEncoderFinishes();
}

TEST_F(CloseDuringSaveTest, endsTheProgramAndNotTheEncoderIfTheSaveHasBegunInTheBackground)
{
    const OtherClient other;
    waitFor("the end of the program's activity",
        [] { return QGuiApplication::applicationState() != Qt::ApplicationActive; });
    beginExport();
    EXPECT_TRUE(other.hasKeyboard());
    other.requestClose(static_cast<xcb_window_t>(window().winId()));
    EXPECT_EQ(runUntilEnd(), 0);
    expectThatTheEncoderFinishes();
}

} // namespace tarnwell::test
