// SPDX-License-Identifier: MIT
#include "desktop/InputBlocker.h"

#include "tests/desktop/ParentWindow.h"
#include "tests/support/RealInput.h"

#include <QContextMenuEvent>
#include <QCoreApplication>
#include <QDragEnterEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QShortcut>
#include <QTimer>
#include <QWheelEvent>
#include <QWindow>

#include <gtest/gtest.h>

#include <optional>

namespace tarnwell::test
{

class InputBlockerTest : public testing::Test
{
protected:
    InputBlockerTest()
    {
        m_field.setGeometry(10, 60, 200, 30);
        m_field.show();
        m_field.setFocus();
    }

    void clickAndType()
    {
        realClick(m_window.button());
        m_field.setFocus();
        realText("ab");
        realKeys("BackSpace");
    }

    ParentWindow m_window;
    QLineEdit m_field{&m_window};
};

TEST_F(InputBlockerTest, inputArrivesWithoutABlocker)
{
    clickAndType();
    EXPECT_EQ(m_window.clicks(), 1);
    EXPECT_EQ(m_field.text(), QStringLiteral("a"));
}

TEST_F(InputBlockerTest, clicksAndKeysAreDroppedAndNotKeptForLater)
{
    {
        const InputBlocker blocker;
        clickAndType();
        EXPECT_EQ(m_window.clicks(), 0);
        EXPECT_EQ(m_field.text(), QString());
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(m_window.clicks(), 0);
    EXPECT_EQ(m_field.text(), QString());
    clickAndType();
    EXPECT_EQ(m_window.clicks(), 1);
    EXPECT_EQ(m_field.text(), QStringLiteral("a"));
}

TEST_F(InputBlockerTest, shortcutsAreDropped)
{
    int activations = 0;
    const QShortcut shortcut(
        QKeySequence(QStringLiteral("Ctrl+L")), &m_window, [&] { ++activations; }, Qt::WindowShortcut);
    {
        const InputBlocker blocker;
        realKeys("ctrl+l");
    }
    QCoreApplication::processEvents();
    EXPECT_EQ(activations, 0);
    realKeys("ctrl+l");
    EXPECT_EQ(activations, 1);
}

TEST_F(InputBlockerTest, aRequestToCloseTheWindowIsDropped)
{
    {
        const InputBlocker blocker;
        m_window.windowHandle()->close();
    }
    QCoreApplication::processEvents();
    EXPECT_TRUE(m_window.isVisible());
    m_window.windowHandle()->close();
    EXPECT_TRUE(waitUntil([this] { return !m_window.isVisible(); }));
}

TEST_F(InputBlockerTest, anInnerBlockerLeavesTheOuterOneInForce)
{
    EXPECT_FALSE(InputBlocker::isActive());
    const InputBlocker outer;
    {
        const InputBlocker inner;
    }
    EXPECT_TRUE(InputBlocker::isActive());
    clickAndType();
    EXPECT_EQ(m_window.clicks(), 0);
    EXPECT_EQ(m_field.text(), QString());
}

/// Whether it received the last event that was sent to it.
class Receiver : public QWidget
{
public:
    Receiver() { setAcceptDrops(true); }

    bool receives(QEvent& sent)
    {
        m_received.reset();
        QCoreApplication::sendEvent(this, &sent);
        return m_received == sent.type();
    }

protected:
    bool event(QEvent* received) override
    {
        m_received = received->type();
        received->accept();
        return true;
    }

private:
    std::optional<QEvent::Type> m_received;
};

TEST_F(InputBlockerTest, otherKindsOfInputAreDroppedAndNotAccepted)
{
    const QMimeData data;
    const QPoint place(5, 5);
    QDragEnterEvent enter(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDragMoveEvent move(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QDropEvent drop(place, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QContextMenuEvent menu(QContextMenuEvent::Mouse, place, place);
    QWheelEvent wheel(
        place, place, QPoint(), QPoint(0, 120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    Receiver receiver;
    for (QEvent* input : std::initializer_list<QEvent*>{&enter, &move, &drop, &menu, &wheel}) {
        SCOPED_TRACE(input->type());
        EXPECT_TRUE(
            receiver.receives(enter)); // only a widget that a drag has entered receives moves and drops
        EXPECT_TRUE(receiver.receives(*input));
        EXPECT_TRUE(receiver.receives(enter));
        const InputBlocker blocker;
        EXPECT_FALSE(receiver.receives(*input));
        EXPECT_FALSE(input->isAccepted());
    }
}

TEST_F(InputBlockerTest, timersAndPaintingGoOn)
{
    const InputBlocker blocker;
    Receiver receiver;
    for (const auto type : {QEvent::Paint, QEvent::Timer, QEvent::UpdateRequest, QEvent::Expose,
             QEvent::Resize, QEvent::Enter, QEvent::Leave, QEvent::WindowActivate, QEvent::User}) {
        SCOPED_TRACE(type);
        QEvent event(type);
        EXPECT_TRUE(receiver.receives(event));
    }
    bool hasFired = false;
    QTimer::singleShot(0, [&] { hasFired = true; });
    EXPECT_TRUE(waitUntil([&] { return hasFired; }));
}

} // namespace tarnwell::test
