// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Waiting.h"

class QWidget;

namespace tarnwell::test
{

/// Whether the X server sends keys to the window, the window is active for the window manager, and Qt has
/// processed both. Qt alone regards a sheet as active as soon as its parent is. Main thread.
bool hasKeyboard(const QWidget& widget);

/// Activates the widget's window and waits until it has the keyboard focus; ends the test after the longest
/// wait.
void waitForKeyboard(QWidget& widget, CallSite site = {});

/// Waits until a window or popup of the program receives keys; ends the test after the longest wait.
void waitForAnyKeyboard(CallSite site = {});

} // namespace tarnwell::test
