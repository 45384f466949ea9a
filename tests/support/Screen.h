// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPoint>

#include <string>

namespace tarnwell::test
{

/// The colour of the pixel on the screen, read by another client of the X server. Any thread; does not
/// process events.
QColor colourOnScreen(QPoint place);

/// Saves a screenshot in the build folder under tests/screens, named after the running test. Returns the path
/// of the picture, or the reason why there is none. Any thread; does not process events.
std::string savePictureOfScreen();

/// Waits until every visible window of the program is exposed on the screen, and paints it. Main thread.
void paintEveryWindow();

} // namespace tarnwell::test
