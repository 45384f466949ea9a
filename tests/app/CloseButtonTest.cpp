// SPDX-License-Identifier: MIT
// The close button of the main window, clicked in the window manager's frame.
#include "tests/support/WindowTest.h"

#include <QApplication>
#include <QDialog>
#include <QKeySequence>
#include <QMainWindow>
#include <QProcess>

#include <gtest/gtest.h>

namespace tarnwell::test
{

class CloseButtonTest : public WindowTest
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
        EXPECT_EQ(QApplication::exec(), 0);
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

} // namespace tarnwell::test
