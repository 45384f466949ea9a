// SPDX-License-Identifier: MIT
#include "tests/support/Screen.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Samples.h"

#include <QImage>

#include <gtest/gtest.h>

#include <string>

namespace tarnwell::test
{

QColor colourOnScreen(QPoint place)
{
    const TemporaryDirectory folder;
    const std::string picture = folder.path() + "screen.png";
    const std::string input = qgetenv("DISPLAY").toStdString() + "+" + std::to_string(place.x()) + ","
        + std::to_string(place.y());
    EXPECT_EQ(run("ffmpeg",
                  {"-v", "error", "-f", "x11grab", "-draw_mouse", "0", "-video_size", "16x16", "-i", input,
                      "-frames:v", "1", picture}),
        0);
    return QImage(QString::fromStdString(picture)).pixelColor(0, 0);
}

} // namespace tarnwell::test
