// SPDX-License-Identifier: MIT
// Sheets that begin while the user works in another program.
#include "desktop/Alert.h"
#include "desktop/AlertDialog.h"
#include "desktop/Sheet.h"
#include "desktop/SheetQueue.h"
#include "tests/desktop/Attention.h"
#include "tests/desktop/OtherClient.h"
#include "tests/desktop/ParentWindow.h"
#include "tests/support/Keyboard.h"
#include "tests/support/Screen.h"

#include <QApplication>
#include <QWindow>

#include <gtest/gtest.h>

namespace tarnwell::test
{

class SheetActivationTest : public testing::Test
{
protected:
    AlertDialog* beginAlert()
    {
        Alert alert;
        alert.addButton(QStringLiteral("OK"));
        alert.beginSheetModal(m_window, m_sheets, [this](int) { ++m_answers; });
        return m_window.findChild<AlertDialog*>();
    }

    void waitUntilExposed(const QDialog& sheet)
    {
        waitFor("the sheet on the screen",
            [&sheet] { return sheet.isVisible() && sheet.windowHandle()->isExposed(); });
        paintEveryWindow();
    }

    static void waitForAttentionRequest(const QWidget& window)
    {
        waitFor("the request for attention", [&window] { return demandsAttention(window); });
    }

    static void waitUntilInactive()
    {
        waitFor("the end of the program's activity",
            [] { return QGuiApplication::applicationState() != Qt::ApplicationActive; });
    }

    ParentWindow m_window;
    SheetQueue m_sheets{m_window};
    int m_answers = 0;
};

TEST_F(SheetActivationTest, aSheetOfAnActiveWindowGetsTheKeyboard)
{
    AlertDialog* alert = beginAlert();
    waitForKeyboard(*alert);
    EXPECT_FALSE(alert->testAttribute(Qt::WA_ShowWithoutActivating));
    EXPECT_FALSE(demandsAttention(*alert));
}

TEST_F(SheetActivationTest, aSheetThatBeginsWhileAnotherProgramHasTheKeyboardLeavesItThere)
{
    const OtherClient other;
    waitUntilInactive();
    AlertDialog* alert = beginAlert();
    waitUntilExposed(*alert);
    waitForAttentionRequest(*alert);
    EXPECT_TRUE(other.hasKeyboard());
    EXPECT_FALSE(alert->isActiveWindow());
    EXPECT_EQ(m_answers, 0);
    realClick(m_window.button());
    waitForKeyboard(*alert);
    EXPECT_EQ(m_window.clicks(), 0) << "the sheet does not block its window";
    realClick(*alert->buttons().first());
    waitFor("the answer", [this] { return m_answers == 1; });
}

TEST_F(SheetActivationTest, theSheetAfterOneThatEndsInTheBackgroundLeavesTheKeyboardToo)
{
    Sheet progress(&m_window);
    progress.resize(300, 200);
    m_sheets.begin(&progress);
    waitForKeyboard(progress);
    const OtherClient other;
    waitUntilInactive();
    m_sheets.end(&progress);
    AlertDialog* alert = beginAlert();
    waitUntilExposed(*alert);
    EXPECT_TRUE(other.hasKeyboard());
}

TEST_F(SheetActivationTest, aMinimisedWindowStaysSoAndShowsTheSheetWhenItIsRestored)
{
    m_window.showMinimized();
    waitFor("the minimised window", [this] { return m_window.isMinimized(); });
    waitUntilInactive();
    EXPECT_FALSE(demandsAttention(m_window));
    const AlertDialog* alert = beginAlert();
    waitForAttentionRequest(m_window);
    EXPECT_FALSE(alert->isVisible());
    EXPECT_TRUE(m_window.isMinimized());
    EXPECT_TRUE(m_sheets.isBusy());
    m_window.showNormal();
    waitUntilExposed(*alert);
    EXPECT_EQ(m_answers, 0);
}

// Window managers minimise a sheet with its window. If the sheet ends then, xfwm4 leaves it minimised. The
// test sets this state itself, and reads it at once, because openbox restores a minimised sheet that is
// activated.
TEST_F(SheetActivationTest, aSheetThatWasLeftMinimisedIsOnTheScreenWhenItIsShownAgain)
{
    Sheet progress(&m_window);
    progress.resize(300, 200);
    m_sheets.begin(&progress);
    waitForKeyboard(progress);
    m_sheets.end(&progress);
    waitForKeyboard(m_window);
    progress.setWindowState(Qt::WindowMinimized);
    ASSERT_TRUE(progress.isMinimized());
    m_sheets.begin(&progress);
    EXPECT_FALSE(progress.isMinimized());
    waitForKeyboard(progress);
}

} // namespace tarnwell::test
