// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QObject>

#include <deque>
#include <functional>

class QAction;
class QDialog;
class QWidget;

namespace tarnwell
{

/// The sheets of one window. One is shown at a time; a sheet begun while another is shown appears when the
/// sheets before it have ended. While the queue is not empty, the window refuses drops. A sheet that begins
/// while the user works in another program is shown without the keyboard focus and requests attention; one of
/// a minimised window is shown when the window is restored. Main thread.
class SheetQueue : public QObject
{
    Q_OBJECT

public:
    /// Called at the end of a sheet with the result of the QDialog.
    using Completion = std::function<void(int result)>;

    /// `window` must outlive the queue.
    explicit SheetQueue(QWidget& window);

    /// Makes the shortcut of the action work in every sheet as well.
    void addActionOfEverySheet(QAction* action);

    /// Whether a sheet is shown or waits.
    bool isBusy() const { return !m_entries.empty(); }

    /// Appends the sheet, which stays the caller's. A sheet that is destroyed leaves the queue without
    /// completion. Does nothing for a sheet that is in the queue.
    void begin(QDialog* sheet, Completion completion = {});

    /// Ends the sheet, shown or waiting.
    void end(QDialog* sheet);

    /// Blocks until the sheet is painted, at most one second. Drops input meanwhile. Returns immediately if
    /// the sheet is not shown yet.
    void waitUntilPainted(QDialog* sheet);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry {
        QDialog* sheet;
        Completion completion;
    };

    void showFirst();
    bool isFirstShownWithoutModality() const;
    /// Whether an event of the window or one of its children is dropped for a sheet that is not modal.
    bool blocksEvent(const QEvent& event);
    void remove(QDialog* sheet, int result);
    void forget(const QDialog* sheet);
    std::deque<Entry>::iterator find(const QDialog* sheet);

    QWidget& m_window;
    QList<QAction*> m_actions;
    std::deque<Entry> m_entries;
};

} // namespace tarnwell
