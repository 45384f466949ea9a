// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPoint>

namespace tarnwell::test
{

/// The colour on the screen there, as another client of the X server sees it. Any thread; runs no events.
QColor colourOnScreen(QPoint place);

} // namespace tarnwell::test
