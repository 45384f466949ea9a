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

/// The sheets of one window. One is shown at a time; a sheet begun while another is up waits, and appears
/// when the ones before it have ended. While there is one, nothing can be dropped on the window. Main thread.
class SheetQueue : public QObject
{
    Q_OBJECT

public:
    /// What a sheet's end calls: QDialog's own result.
    using Completion = std::function<void(int result)>;

    /// `window` must outlive the queue.
    explicit SheetQueue(QWidget& window);

    /// Adds an action whose shortcut works in every sheet too.
    void addActionOfEverySheet(QAction* action);

    /// Whether a sheet is shown or waits.
    bool isBusy() const { return !m_entries.empty(); }

    /// Shows the sheet, now or in its turn. Not owned; a sheet that is destroyed leaves the queue. A sheet
    /// that is in the queue already stays where it is.
    void begin(QDialog* sheet, Completion completion = {});

    /// Ends the sheet, shown or waiting.
    void end(QDialog* sheet);

    /// Returns once the sheet is on the screen, painted; at once where another one is up. Takes no input
    /// meanwhile, and gives up after a second where no screen shows anything.
    void waitUntilPainted(QDialog* sheet);

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    struct Entry {
        QDialog* sheet;
        Completion completion;
    };

    void showFirst();
    void remove(QDialog* sheet, int result);
    void forget(const QDialog* sheet);
    std::deque<Entry>::iterator find(const QDialog* sheet);

    QWidget& m_window;
    QList<QAction*> m_actions;
    std::deque<Entry> m_entries;
};

} // namespace tarnwell
