// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QPoint>

#include <string>

namespace tarnwell::test
{

/// The colour on the screen there, as another client of the X server sees it. Any thread; runs no events.
QColor colourOnScreen(QPoint place);

/// Saves a picture of the whole screen in the build folder under tests/screens, named after the running test.
/// The path of the picture, or the reason why there is none. Any thread; runs no events.
std::string savePictureOfScreen();

/// Waits until every visible window of the program is on the screen, and paints it. Main thread.
void paintEveryWindow();

} // namespace tarnwell::test
