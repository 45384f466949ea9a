// SPDX-License-Identifier: MIT
#include "tests/support/RealInput.h"

#include "tests/support/Keyboard.h"
#include "tests/support/Waiting.h"

#include <QAbstractNativeEventFilter>
#include <QApplication>
#include <QProcess>
#include <QStyleHints>
#include <QThread>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <cctype>
#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <cstring>
#include <limits>
#include <mutex>

namespace tarnwell::test
{

namespace
{

/// The input that the program's windows have received so far. Keys count when pressed and buttons when
/// released: a key's window can be closed before the key is released.
struct Arrivals {
    int keys = 0;
    int buttons = 0;
};

/// Counts the X server's events before Qt processes them, so that events that Qt drops count, too.
class ArrivalCounter : public QAbstractNativeEventFilter
{
public:
    static ArrivalCounter& instance()
    {
        static ArrivalCounter counter;
        return counter;
    }

    Arrivals arrivals()
    {
        const std::lock_guard lock(m_mutex);
        return m_arrivals;
    }

    /// Not for the main thread. False after the longest wait.
    bool waitFor(const Arrivals& expected)
    {
        std::unique_lock lock(m_mutex);
        return m_changed.wait_for(lock, longestWait, [&] { return hasReached(m_arrivals, expected); });
    }

    static bool hasReached(const Arrivals& actual, const Arrivals& expected)
    {
        return actual.keys >= expected.keys && actual.buttons >= expected.buttons;
    }

    bool nativeEventFilter(const QByteArray& /*eventType*/, void* message, qintptr* /*result*/) override
    {
        const auto* event = static_cast<const std::uint8_t*>(message);
        const int type = event[0] & 0x7f;
        std::uint16_t extensionType = 0;
        std::memcpy(&extensionType, event + extensionTypeOffset, sizeof extensionType);
        const std::lock_guard lock(m_mutex);
        if (type == keyPress)
            ++m_arrivals.keys;
        else if (type == buttonRelease || (type == extensionEvent && extensionType == extensionButtonRelease))
            ++m_arrivals.buttons;
        m_changed.notify_all();
        return false;
    }

private:
    // Event codes of the X protocol.
    static constexpr int keyPress = 2;
    static constexpr int buttonRelease = 5;
    static constexpr int extensionEvent = 35;
    static constexpr int extensionTypeOffset = 8;
    static constexpr int extensionButtonRelease = 5;

    ArrivalCounter() { QCoreApplication::instance()->installNativeEventFilter(this); }

    std::mutex m_mutex;
    std::condition_variable m_changed;
    Arrivals m_arrivals;
};

Arrivals soFarAnd(const Arrivals& more)
{
    const Arrivals soFar = ArrivalCounter::instance().arrivals();
    return {soFar.keys + more.keys, soFar.buttons + more.buttons};
}

void startCounting()
{
    ArrivalCounter::instance();
}

Q_COREAPP_STARTUP_FUNCTION(startCounting)

bool isMainThread()
{
    return QThread::currentThread() == QCoreApplication::instance()->thread();
}

/// Other threads cannot read Qt's state; their input is sent without a check.
void waitUntilKeysArrive()
{
    if (isMainThread())
        waitForAnyKeyboard();
}

void sendOnMainThread(QProcess& process, const Arrivals& expected)
{
    const std::string command = process.arguments().join(u' ').toStdString();
    waitFor("the end of xdotool " + command, [&] { return process.state() == QProcess::NotRunning; });
    waitFor("the input of xdotool " + command,
        [&] { return ArrivalCounter::hasReached(ArrivalCounter::instance().arrivals(), expected); });
    QCoreApplication::processEvents();
}

void send(const QStringList& commands, const Arrivals& awaited)
{
    const Arrivals expected = soFarAnd(awaited);
    QProcess process;
    process.start(QStringLiteral("xdotool"), commands);
    if (isMainThread()) {
        sendOnMainThread(process, expected);
    } else {
        EXPECT_TRUE(waitForEnd(process));
        EXPECT_TRUE(ArrivalCounter::instance().waitFor(expected)) << commands.join(u' ').toStdString();
    }
    EXPECT_EQ(process.exitCode(), 0) << commands.join(u' ').toStdString();
}

QStringList moveCommand(QPoint position)
{
    return {QStringLiteral("mousemove"), QString::number(position.x()), QString::number(position.y())};
}

void clickThere(QPoint position)
{
    send(moveCommand(position) + QStringList{QStringLiteral("click"), QStringLiteral("1")}, {.buttons = 1});
}

/// Decides whether a click is the second one of a double click, at any speed of the machine.
class DoubleClickInterval
{
public:
    static constexpr int none = 0;
    static constexpr int endless = std::numeric_limits<int>::max();

    explicit DoubleClickInterval(int milliseconds)
    {
        QGuiApplication::styleHints()->setMouseDoubleClickInterval(milliseconds);
    }
    ~DoubleClickInterval() { QGuiApplication::styleHints()->setMouseDoubleClickInterval(m_usual); }
    DoubleClickInterval(const DoubleClickInterval&) = delete;
    DoubleClickInterval& operator=(const DoubleClickInterval&) = delete;

private:
    int m_usual = QGuiApplication::styleHints()->mouseDoubleClickInterval();
};

void clickOpenly(QWidget& widget, QPoint point, int doubleClickInterval)
{
    const DoubleClickInterval interval(doubleClickInterval);
    const auto isOpen
        = [&] { return QApplication::topLevelAt(screenPosition(widget, point)) == widget.window(); };
    waitFor("an uncovered “" + widget.window()->windowTitle().toStdString() + "”", isOpen);
    clickThere(screenPosition(widget, point));
}

bool needsShift(char character)
{
    return std::isupper(static_cast<unsigned char>(character)) != 0
        || std::strchr("~!@#$%^&*()_+{}|:\"<>?", character) != nullptr;
}

QStringList keyCommand(const std::string& keys)
{
    return {
        QStringLiteral("key"), QStringLiteral("--delay"), QStringLiteral("0"), QString::fromStdString(keys)};
}

Arrivals arrivalsOf(const std::string& keys)
{
    return {.keys = 1 + static_cast<int>(std::count(keys.begin(), keys.end(), '+'))};
}

} // namespace

QPoint screenPosition(QWidget& widget, QPoint point)
{
    return widget.mapToGlobal(point);
}

QPoint screenPosition(QWidget& widget)
{
    return screenPosition(widget, widget.rect().center());
}

bool isOnTop(const QWidget& window)
{
    return QApplication::topLevelAt(window.geometry().center()) == &window;
}

void realClick(QWidget& widget, QPoint point)
{
    clickOpenly(widget, point, DoubleClickInterval::none);
}

void realClick(QWidget& widget)
{
    realClick(widget, widget.rect().center());
}

void realDoubleClick(QWidget& widget, QPoint point)
{
    realClick(widget, point);
    clickOpenly(widget, point, DoubleClickInterval::endless);
}

void realKeys(const std::string& keys)
{
    waitUntilKeysArrive();
    send(keyCommand(keys), arrivalsOf(keys));
}

void realText(const std::string& text)
{
    waitUntilKeysArrive();
    const auto keys
        = text.size() + static_cast<std::size_t>(std::count_if(text.begin(), text.end(), needsShift));
    send({QStringLiteral("type"), QStringLiteral("--delay"), QStringLiteral("0"), QStringLiteral("--"),
             QString::fromStdString(text)},
        {.keys = static_cast<int>(keys)});
}

void realDrag(QPoint from, QPoint to)
{
    // Small moves start the drag.
    const QPoint step = (to - from) / 4;
    send(moveCommand(from) + QStringList{QStringLiteral("mousedown"), QStringLiteral("1")}
            + moveCommand(from + step) + moveCommand(from + 2 * step) + moveCommand(to),
        {});
}

void realMove(QPoint screenPosition)
{
    send(moveCommand(screenPosition), {});
}

void realRelease()
{
    send({QStringLiteral("mouseup"), QStringLiteral("1")}, {});
}

void realClickAt(QPoint screenPosition)
{
    clickThere(screenPosition);
}

} // namespace tarnwell::test
