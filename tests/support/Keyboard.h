// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Waiting.h"

class QWidget;

namespace tarnwell::test
{

/// Whether the X server sends keys to the window, the window manager calls it active, and Qt knows that. Qt
/// alone calls a sheet active as soon as its parent is. Main thread.
bool hasKeyboard(const QWidget& widget);

/// Activates the widget's window and waits until it has the keyboard; ends the test where it does not get it.
void waitForKeyboard(QWidget& widget, CallSite site = {});

/// Waits until any window or popup of the program receives keys; ends the test where none does.
void waitForAnyKeyboard(CallSite site = {});

} // namespace tarnwell::test
