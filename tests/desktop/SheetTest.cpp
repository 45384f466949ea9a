// SPDX-License-Identifier: MIT
#include "desktop/Sheet.h"

#include "tests/desktop/ParentWindow.h"
#include "tests/support/RealInput.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QLabel>
#include <QWindow>

#include <gtest/gtest.h>

#include <memory>

namespace tarnwell::test
{

class SheetTest : public testing::Test
{
protected:
    SheetTest()
        : m_button(QStringLiteral("Stop"), &m_sheet)
    {
        m_sheet.resize(300, 200);
        QObject::connect(&m_button, &QPushButton::clicked, [this] { ++m_clicks; });
    }

    void open()
    {
        m_sheet.open();
        waitForKeyboard(m_sheet);
    }

    /// What the window manager's request to close it leads to.
    void requestClose()
    {
        m_sheet.windowHandle()->close();
        QCoreApplication::processEvents();
    }

    ParentWindow m_window;
    Sheet m_sheet{&m_window};
    QPushButton m_button;
    int m_clicks = 0;
};

TEST_F(SheetTest, blocksItsWindowAndNothingElse)
{
    ParentWindow other;
    open();
    EXPECT_EQ(m_sheet.windowModality(), Qt::WindowModal);
    EXPECT_EQ(m_sheet.parentWidget(), &m_window);
    realClick(other.button());
    EXPECT_EQ(other.clicks(), 1);
    other.hide();
    realClick(m_window.button());
    EXPECT_EQ(m_window.clicks(), 0);
}

TEST_F(SheetTest, escapePressesTheEscapeButton)
{
    m_sheet.setEscapeButton(&m_button);
    open();
    realKeys("Escape");
    EXPECT_EQ(m_clicks, 1);
    EXPECT_TRUE(m_sheet.isVisible()) << "only its owner ends it";
}

TEST_F(SheetTest, aRequestToClosePressesTheEscapeButton)
{
    m_sheet.setEscapeButton(&m_button);
    open();
    requestClose();
    EXPECT_EQ(m_clicks, 1);
    EXPECT_TRUE(m_sheet.isVisible());
}

TEST_F(SheetTest, saysWhatItsDescribingLabelSays)
{
    QLabel label(&m_sheet);
    label.setAccessibleName(QStringLiteral("Title"));
    m_sheet.setDescribingLabel(&label);
    for (const QString& text : {QStringLiteral("Analyzing"), QStringLiteral("Creating")}) {
        label.setText(text);
        open();
        const QAccessibleInterface* access = QAccessible::queryAccessibleInterface(&m_sheet);
        EXPECT_EQ(access->role(), QAccessible::Dialog);
        EXPECT_EQ(access->text(QAccessible::Description), text);
        access = QAccessible::queryAccessibleInterface(&label);
        EXPECT_EQ(access->text(QAccessible::Name), QStringLiteral("Title"));
        EXPECT_EQ(access->text(QAccessible::Description), text);
        m_sheet.done(0);
    }
}

TEST_F(SheetTest, staysWithoutAnEscapeButton)
{
    open();
    realKeys("Escape");
    requestClose();
    EXPECT_EQ(m_clicks, 0);
    EXPECT_TRUE(m_sheet.isVisible());
}

TEST_F(SheetTest, doesNotPressAHiddenEscapeButton)
{
    m_button.hide();
    m_sheet.setEscapeButton(&m_button);
    open();
    realKeys("Escape");
    requestClose();
    EXPECT_EQ(m_clicks, 0);
    EXPECT_TRUE(m_sheet.isVisible());
}

TEST_F(SheetTest, doesNotPressADisabledEscapeButton)
{
    m_button.setEnabled(false);
    m_sheet.setEscapeButton(&m_button);
    open();
    realKeys("Escape");
    requestClose();
    EXPECT_EQ(m_clicks, 0);
    EXPECT_TRUE(m_sheet.isVisible());
}

TEST_F(SheetTest, staysWhenItsEscapeButtonHasBeenDestroyed)
{
    auto button = std::make_unique<QPushButton>(&m_sheet);
    m_sheet.setEscapeButton(button.get());
    button.reset();
    open();
    realKeys("Escape");
    EXPECT_TRUE(m_sheet.isVisible());
}

TEST_F(SheetTest, itsOwnerEndsIt)
{
    open();
    m_sheet.done(QDialog::Accepted);
    EXPECT_FALSE(m_sheet.isVisible());
    realClick(m_window.button());
    EXPECT_EQ(m_window.clicks(), 1);
}

} // namespace tarnwell::test
