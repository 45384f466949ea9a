// SPDX-License-Identifier: MIT
#include "desktop/EventLoopWait.h"

#include "tests/desktop/ParentWindow.h"
#include "tests/support/DragSource.h"
#include "tests/support/EventCounter.h"
#include "tests/support/RealInput.h"
#include "tests/support/Screen.h"

#include <QCoreApplication>
#include <QDropEvent>
#include <QLineEdit>
#include <QMimeData>
#include <QWindow>

#include <gtest/gtest.h>

#include <chrono>
#include <condition_variable>
#include <functional>
#include <mutex>
#include <optional>
#include <thread>

namespace tarnwell::test
{

namespace
{

/// A number that one thread counts up and another one waits for.
class Count
{
public:
    void add()
    {
        const std::lock_guard lock(m_mutex);
        ++m_value;
        m_changed.notify_all();
    }

    int value()
    {
        const std::lock_guard lock(m_mutex);
        return m_value;
    }

    bool waitForMoreThan(int earlier)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, longestWait, [&] { return m_value > earlier; });
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_value = 0;
};

/// A window that counts its paint events, accepts drops and has a text field.
class BusyWindow : public ParentWindow
{
public:
    BusyWindow()
    {
        setAcceptDrops(true);
        setPalette(QPalette(Qt::green));
        m_field.setGeometry(400, 400, 200, 30);
        m_field.show();
        m_field.setFocus();
    }

    Count& paintings() { return m_paintings; }
    int drops() const { return m_drops; }
    QString typed() const { return m_field.text(); }
    void takeKeyboard() { m_field.setFocus(); }

protected:
    void paintEvent(QPaintEvent* event) override
    {
        ParentWindow::paintEvent(event);
        m_paintings.add();
    }

    void dragEnterEvent(QDragEnterEvent* event) override { event->acceptProposedAction(); }

    void dropEvent(QDropEvent* event) override
    {
        ++m_drops;
        event->acceptProposedAction();
    }

private:
    QLineEdit m_field{this};
    Count m_paintings;
    int m_drops = 0;
};

} // namespace

TEST(EventLoopWaitTest, returnsWhenTheCallHasReturned)
{
    bool hasReturned = false;
    std::thread::id thread;
    waitInEventLoop([&] {
        thread = std::this_thread::get_id();
        std::this_thread::yield();
        hasReturned = true;
    });
    EXPECT_TRUE(hasReturned);
    EXPECT_NE(thread, std::this_thread::get_id());
}

TEST(EventLoopWaitTest, callsOneAfterTheOtherAreAllMade)
{
    int calls = 0;
    for (int i = 0; i < 200; ++i)
        waitInEventLoop([&] { ++calls; });
    EXPECT_EQ(calls, 200);
}

TEST(EventLoopWaitTest, theWindowIsPaintedMeanwhile)
{
    BusyWindow window;
    waitInEventLoop([&] {
        for (int i = 0; i < 3; ++i) {
            const int earlier = window.paintings().value();
            QMetaObject::invokeMethod(
                &window, [&] { window.update(); }, Qt::QueuedConnection);
            EXPECT_TRUE(window.paintings().waitForMoreThan(earlier));
        }
    });
}

TEST(EventLoopWaitTest, aWindowThatWasCoveredIsShownAgainMeanwhile)
{
    BusyWindow window;
    window.move(0, 0);
    // In the other program's window, but not where this one's button is.
    const QPoint place = DragSource::place.bottomRight() - QPoint(20, 20);
    ASSERT_TRUE(
        waitUntil([&] { return window.geometry().contains(place) && colourOnScreen(place) == Qt::green; }));
    waitInEventLoop([&] {
        {
            const DragSource cover("");
            EXPECT_EQ(colourOnScreen(place), QColor(Qt::magenta));
        }
        const auto end = std::chrono::steady_clock::now() + longestWait;
        QColor colour;
        do {
            colour = colourOnScreen(place);
        } while (colour != Qt::green && std::chrono::steady_clock::now() < end);
        EXPECT_EQ(colour, QColor(Qt::green));
    });
}

TEST(EventLoopWaitTest, clicksAndKeysAreDroppedAndNotKeptForLater)
{
    BusyWindow window;
    const QPoint button = screenPosition(window.button());
    waitInEventLoop([&] {
        realClickAt(button);
        realKeys("a");
        realKeys("Return");
    });
    QCoreApplication::processEvents();
    EXPECT_EQ(window.clicks(), 0);
    EXPECT_EQ(window.typed(), QString());
    realClick(window.button());
    EXPECT_EQ(window.clicks(), 1);
    window.takeKeyboard();
    realKeys("b");
    EXPECT_EQ(window.typed(), QStringLiteral("b"));
}

TEST(EventLoopWaitTest, aRequestToCloseTheWindowIsDropped)
{
    BusyWindow window;
    Count requests;
    waitInEventLoop([&] {
        QMetaObject::invokeMethod(
            &window,
            [&] {
                window.windowHandle()->close();
                QMetaObject::invokeMethod(
                    &window, [&] { requests.add(); }, Qt::QueuedConnection);
            },
            Qt::QueuedConnection);
        EXPECT_TRUE(requests.waitForMoreThan(0));
    });
    QCoreApplication::processEvents();
    EXPECT_TRUE(window.isVisible());
}

TEST(EventLoopWaitTest, aDropIsRefusedAndNotKeptForLater)
{
    BusyWindow window;
    const QPoint place = screenPosition(window);
    bool isTaken = true;
    waitInEventLoop([&] {
        DragSource source("file:///dropped");
        source.dragTo(place);
        isTaken = source.drop();
    });
    QCoreApplication::processEvents();
    EXPECT_FALSE(isTaken);
    EXPECT_EQ(window.drops(), 0);
    DragSource source("file:///dropped");
    source.dragTo(place);
    source.waitUntilAccepted();
    EXPECT_TRUE(source.drop());
    EXPECT_TRUE(waitUntil([&] { return window.drops() == 1; }));
}

TEST(EventLoopWaitTest, aDragThatHoversAlreadyCannotBeDropped)
{
    BusyWindow window;
    DragSource source("file:///dropped");
    source.dragTo(screenPosition(window));
    source.waitUntilAccepted();
    waitInEventLoop([&] {
        std::optional<EventCounter> arrivals;
        const auto onMainThread = [&](const std::function<void()>& work) {
            QMetaObject::invokeMethod(&window, work, Qt::BlockingQueuedConnection);
        };
        onMainThread([&] { arrivals.emplace(*QCoreApplication::instance(), QEvent::Drop); });
        realRelease();
        int count = 0;
        const auto end = std::chrono::steady_clock::now() + longestWait;
        while (count == 0 && std::chrono::steady_clock::now() < end)
            onMainThread([&] { count = arrivals->count(); });
        EXPECT_GT(count, 0);
        onMainThread([&] { arrivals.reset(); });
    });
    QCoreApplication::processEvents();
    EXPECT_EQ(window.drops(), 0);
}

TEST(EventLoopWaitTest, mayBeCalledInsideAClick)
{
    BusyWindow window;
    const QPoint button = screenPosition(window.button());
    int calls = 0;
    QObject::connect(&window.button(), &QPushButton::clicked, &window, [&] {
        waitInEventLoop([&] {
            ++calls;
            realClickAt(button);
        });
    });
    realClick(window.button());
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(window.clicks(), 1);
    realClick(window.button());
    EXPECT_EQ(calls, 2);
    EXPECT_EQ(window.clicks(), 2);
}

} // namespace tarnwell::test
