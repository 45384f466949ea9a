// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QProcess>
#include <QRect>
#include <QStringList>

#include <string>

namespace tarnwell::test
{

/// Another program whose window things can be dragged from, in the upper left corner of the screen and above
/// all other windows. To be used on the thread that made it; on the main thread, the events go on.
class DragSource
{
public:
    /// Where the window is on the screen.
    static constexpr QRect place{0, 0, 120, 100};

    /// The window is shown when this returns. A drag from it carries `uriList`.
    explicit DragSource(const std::string& uriList);
    ~DragSource();
    DragSource(const DragSource&) = delete;
    DragSource& operator=(const DragSource&) = delete;

    /// Begins a drag and moves it to that place of the screen; the button stays pressed.
    void dragTo(QPoint screenPosition);
    /// Moves the drag on.
    void moveTo(QPoint screenPosition);
    /// Waits until the target has said that it would take a copy.
    void waitUntilAccepted();
    /// Releases the button; whether the target had agreed to a copy. If so, the drop arrives at the target
    /// later.
    bool drop();
    /// Kills the other program in the middle of its drag.
    void die();

private:
    void waitForLine(const QString& beginning);
    QString lineThatBegins(const QString& beginning);

    QProcess m_process;
    QStringList m_lines;
};

} // namespace tarnwell::test
