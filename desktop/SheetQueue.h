// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>

#include <deque>
#include <functional>

class QDialog;

namespace tarnwell
{

/// The sheets of one window. One is shown at a time; a sheet begun while another is up waits, and appears when
/// the ones before it have ended. Main thread.
class SheetQueue : public QObject
{
    Q_OBJECT

public:
    /// What a sheet's end calls: QDialog's own result.
    using Completion = std::function<void(int result)>;

    /// Shows the sheet, now or in its turn. Not owned; a sheet that is destroyed leaves the queue. A sheet that
    /// is in the queue already stays where it is.
    void begin(QDialog* sheet, Completion completion = {});

    /// Ends the sheet, shown or waiting.
    void end(QDialog* sheet);

    /// Returns once the sheet is on the screen, painted; at once where another one is up. Takes no input
    /// meanwhile, and gives up after a second where no screen shows anything.
    void waitUntilPainted(QDialog* sheet);

private:
    struct Entry {
        QDialog* sheet;
        Completion completion;
    };

    void showFirst();
    void remove(QDialog* sheet, int result);
    void forget(const QDialog* sheet);
    std::deque<Entry>::iterator find(const QDialog* sheet);

    std::deque<Entry> m_entries;
};

} // namespace tarnwell
