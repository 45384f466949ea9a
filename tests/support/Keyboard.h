// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Waiting.h"

class QWidget;
class QWindow;

namespace tarnwell::test
{

/// Whether the X server sends keys to the window, the window manager calls it active, and Qt knows that. Qt
/// alone calls a sheet active as soon as its parent is. Main thread.
bool hasKeyboard(const QWindow* window);
bool hasKeyboard(const QWidget& widget);

/// Whether the X server sends keys to any window of the program.
bool hasProgramKeyboard();

/// Activates the widget's window and waits until it has the keyboard; ends the test where it does not get it.
void waitForKeyboard(QWidget& widget, CallSite site = {});

} // namespace tarnwell::test
