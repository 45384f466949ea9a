// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>

#include <string>

class QWidget;

namespace tarnwell::test
{

// Input events of the X server, like those of a user: the window on the screen at that position receives
// them, or no window does. Each function returns when the program has received and handled the input, and
// fails the test if no window of the program receives it. The main thread processes events during the wait.

/// Whether no other window covers the centre of this one.
bool isOnTop(const QWidget& window);

/// Clicks at the point of the widget. No other window may cover it.
void realClick(QWidget& widget, QPoint point);

/// Clicks in the middle of the widget.
void realClick(QWidget& widget);

/// Two clicks at one position that count as a double click. Clicks of realClick never do.
void realDoubleClick(QWidget& widget, QPoint point);

/// Types printable ASCII into the window with the keyboard focus.
void realText(const std::string& text);

// The following functions may also be called on another thread, such as that of a blocking call, while the
// main thread processes events.

/// Sends key presses such as "ctrl+l", "Return", "Escape" to the window with the keyboard focus.
void realKeys(const std::string& keys);

void realClickAt(QPoint screenPosition);

/// Presses the button at one position and moves to another, also over windows of other programs. The button
/// remains pressed until realRelease.
void realDrag(QPoint from, QPoint to);
void realMove(QPoint screenPosition);
void realRelease();

/// The position on the screen. Main thread.
QPoint screenPosition(QWidget& widget, QPoint point);
QPoint screenPosition(QWidget& widget);

} // namespace tarnwell::test
