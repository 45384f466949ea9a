// SPDX-License-Identifier: MIT
#include "desktop/SheetQueue.h"

#include "desktop/InputBlocker.h"
#include "desktop/X11Activation.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QDialog>
#include <QEvent>
#include <QEventLoop>
#include <QTimer>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <chrono>

namespace tarnwell
{

namespace
{

constexpr std::chrono::seconds longestWaitForScreen(1);
constexpr std::chrono::milliseconds exposureCheckInterval(5);

bool isOnScreen(const QDialog& sheet)
{
    return sheet.windowHandle() != nullptr && sheet.windowHandle()->isExposed();
}

/// Whether the user works in this program. Right after a sheet has ended, no window may have the focus.
bool isProgramActive()
{
    return QGuiApplication::applicationState() == Qt::ApplicationActive || hasX11Keyboard();
}

/// Qt keeps the value for a window that is shown again.
void setShownWithoutActivating(QDialog& sheet, bool isWithout)
{
    sheet.setAttribute(Qt::WA_ShowWithoutActivating, isWithout);
    if (sheet.windowHandle() != nullptr)
        sheet.windowHandle()->setProperty("_q_showWithoutActivating", isWithout);
}

/// Window managers minimise a sheet with its window. If the sheet ends then, Qt keeps the state and would
/// show it minimised again: an invisible sheet that blocks its window.
void clearMinimisedState(QDialog& sheet)
{
    sheet.setWindowState(sheet.windowState() & ~Qt::WindowMinimized);
}

} // namespace

SheetQueue::SheetQueue(QWidget& window)
    : m_window(window)
{
    QCoreApplication::instance()->installEventFilter(this);
}

void SheetQueue::addActionOfEverySheet(QAction* action)
{
    m_actions.append(action);
}

// Qt refuses a drag that enters a blocked window, but accepts the drop of one that entered before the sheet
// was shown.
bool SheetQueue::eventFilter(QObject* watched, QEvent* event)
{
    if (watched == &m_window && event->type() == QEvent::WindowStateChange)
        QMetaObject::invokeMethod(this, &SheetQueue::showFirst, Qt::QueuedConnection);
    if (m_entries.empty())
        return false;
    const auto* target = qobject_cast<QWidget*>(watched);
    if (target == nullptr || target->window() != &m_window)
        return false;
    if (event->type() != QEvent::DragEnter && event->type() != QEvent::Drop && !blocksEvent(*event))
        return false;
    event->ignore();
    return true;
}

void SheetQueue::begin(QDialog* sheet, Completion completion)
{
    if (find(sheet) != m_entries.end())
        return;
    m_entries.push_back({sheet, std::move(completion)});
    sheet->addActions(m_actions);
    connect(sheet, &QDialog::finished, this, [this, sheet](int result) { remove(sheet, result); });
    connect(sheet, &QObject::destroyed, this, [this, sheet] { forget(sheet); });
    if (m_entries.size() == 1)
        showFirst();
}

void SheetQueue::end(QDialog* sheet)
{
    if (sheet->isVisible())
        sheet->done(QDialog::Accepted); // the signal finished calls remove
    else
        remove(sheet, QDialog::Accepted);
}

void SheetQueue::waitUntilPainted(QDialog* sheet)
{
    if (!sheet->isVisible())
        return;
    const InputBlocker blocker;
    const QDeadlineTimer deadline(longestWaitForScreen);
    QTimer wakeUp; // ends WaitForMoreEvents if no event arrives
    wakeUp.start(exposureCheckInterval);
    while (!isOnScreen(*sheet) && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    sheet->repaint();
}

void SheetQueue::showFirst()
{
    if (m_entries.empty() || m_entries.front().sheet->isVisible())
        return;
    if (m_window.isMinimized()) { // shown when the window is restored
        QApplication::alert(&m_window);
        return;
    }
    QDialog* sheet = m_entries.front().sheet;
    const bool isActive = isProgramActive();
    setShownWithoutActivating(*sheet, !isActive);
    clearMinimisedState(*sheet);
    if (isActive) {
        sheet->open();
        return;
    }
    // Keys that the user types into another program must not press a button of the sheet, but Qt activates
    // every modal window that it shows on X11. The event filter does what the modality would do.
    sheet->setWindowModality(Qt::NonModal);
    sheet->show();
    QApplication::alert(sheet);
}

bool SheetQueue::isFirstShownWithoutModality() const
{
    return !m_entries.empty() && m_entries.front().sheet->isVisible() && !m_entries.front().sheet->isModal();
}

bool SheetQueue::blocksEvent(const QEvent& event)
{
    if (!isFirstShownWithoutModality())
        return false;
    if (event.type() == QEvent::WindowActivate)
        m_entries.front().sheet->activateWindow();
    return event.type() != QEvent::Close && InputBlocker::isInput(event.type());
}

void SheetQueue::remove(QDialog* sheet, int result)
{
    const auto entry = find(sheet);
    if (entry == m_entries.end())
        return;
    const Completion completion = std::move(entry->completion);
    m_entries.erase(entry);
    sheet->disconnect(this);
    showFirst();
    if (completion)
        completion(result);
}

// The sheet is destroyed, so its completion, which may use it, is not called.
void SheetQueue::forget(const QDialog* sheet)
{
    const auto entry = find(sheet);
    if (entry == m_entries.end())
        return;
    m_entries.erase(entry);
    showFirst();
}

std::deque<SheetQueue::Entry>::iterator SheetQueue::find(const QDialog* sheet)
{
    return std::find_if(
        m_entries.begin(), m_entries.end(), [sheet](const Entry& each) { return each.sheet == sheet; });
}

} // namespace tarnwell
