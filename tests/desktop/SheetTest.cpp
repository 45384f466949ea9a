// SPDX-License-Identifier: MIT
#include "desktop/Sheet.h"

#include "tests/desktop/ParentWindow.h"
#include "tests/support/RealInput.h"

#include <QAccessible>
#include <QCoreApplication>
#include <QLabel>
#include <QWindow>

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <utility>

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

    /// Closes the sheet like a request of the window manager.
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

TEST_F(SheetTest, escapeAndARequestToClosePressTheEscapeButtonAndDoNotEndTheSheet)
{
    m_sheet.setEscapeButton(&m_button);
    open();
    realKeys("Escape");
    EXPECT_EQ(m_clicks, 1);
    EXPECT_TRUE(m_sheet.isVisible());
    requestClose();
    EXPECT_EQ(m_clicks, 2);
    EXPECT_TRUE(m_sheet.isVisible());
}

TEST_F(SheetTest, staysUnlessItsEscapeButtonCanBePressed)
{
    auto destroyed = std::make_unique<QPushButton>(&m_sheet);
    const std::pair<const char*, std::function<void()>> buttons[] = {
        {"none", [] {}},
        {"destroyed", [&] { m_sheet.setEscapeButton(destroyed.get()), destroyed.reset(); }},
        {"hidden", [&] { m_sheet.setEscapeButton(&m_button), m_button.hide(); }},
        {"disabled", [&] { m_button.show(), m_button.setEnabled(false); }},
    };
    open();
    for (const auto& [name, setUp] : buttons) {
        SCOPED_TRACE(name);
        setUp();
        realKeys("Escape");
        requestClose();
        EXPECT_EQ(m_clicks, 0);
        EXPECT_TRUE(m_sheet.isVisible());
    }
}

TEST_F(SheetTest, hasTheDescriptionOfItsLabel)
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

TEST_F(SheetTest, doneClosesItAndUnblocksItsWindow)
{
    open();
    m_sheet.done(QDialog::Accepted);
    EXPECT_FALSE(m_sheet.isVisible());
    realClick(m_window.button());
    EXPECT_EQ(m_window.clicks(), 1);
}

} // namespace tarnwell::test
