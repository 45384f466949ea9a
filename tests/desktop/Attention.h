// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace tarnwell::test
{

/// Whether the window manager marks the widget's window as one that demands attention. Main thread.
bool demandsAttention(const QWidget& widget);

} // namespace tarnwell::test
