// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <QProcess>
#include <QRect>
#include <QStringList>

#include <string>

namespace tarnwell::test
{

/// A separate process with a window that drags start from, in the upper left corner of the screen and above
/// all other windows. May be used only on the thread that constructed it. On the main thread its functions
/// process events.
class DragSource
{
public:
    /// The position of the window on the screen.
    static constexpr QRect place{0, 0, 120, 100};

    /// Returns when the window is shown. A drag from it carries `uriList`.
    explicit DragSource(const std::string& uriList);
    ~DragSource();
    DragSource(const DragSource&) = delete;
    DragSource& operator=(const DragSource&) = delete;

    /// Starts a drag and moves it to the screen position; the button remains pressed.
    void dragTo(QPoint screenPosition);
    /// Continues the drag.
    void moveTo(QPoint screenPosition);
    /// Waits until the target accepts a copy.
    void waitUntilAccepted();
    /// Releases the button. Returns whether the target had accepted a copy; if so, the drop reaches it later.
    bool drop();
    /// Kills the process during its drag.
    void die();

private:
    void waitForLine(const QString& beginning);
    QString lineThatBegins(const QString& beginning);

    QProcess m_process;
    QStringList m_lines;
};

} // namespace tarnwell::test
