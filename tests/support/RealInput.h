// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>

#include <string>

class QWidget;

namespace tarnwell::test
{

// Input that comes from the X server, as a user's does: it reaches the window that is there on the screen, or
// does not reach it. Each call returns when the program has received and handled the input, and fails the
// test where no window of the program receives it. The main thread processes events meanwhile.

/// Clicks at the point of the widget, which no other window may cover.
void realClick(QWidget& widget, QPoint point);

/// Clicks in the middle of the widget.
void realClick(QWidget& widget);

/// Two clicks in one place that count as a double click; those of realClick never do.
void realDoubleClick(QWidget& widget, QPoint point);

/// Types printable ASCII into the window that has the keyboard.
void realText(const std::string& text);

// The following may also be called from another thread, such as that of a blocking call, while the main
// thread processes events.

/// Presses the keys into the window that has the keyboard, as in "ctrl+l", "Return", "Escape".
void realKeys(const std::string& keys);

void realClickAt(QPoint screenPosition);

/// Presses the button in one place and moves to another, be they windows of other programs. The button stays
/// pressed until realRelease.
void realDrag(QPoint from, QPoint to);
void realMove(QPoint screenPosition);
void realRelease();

/// The place on the screen. Main thread.
QPoint screenPosition(QWidget& widget, QPoint point);
QPoint screenPosition(QWidget& widget);

} // namespace tarnwell::test
