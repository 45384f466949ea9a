// SPDX-License-Identifier: MIT
#include "tests/support/Screen.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/Folders.h"
#include "tests/support/Samples.h"
#include "tests/support/Waiting.h"

#include <QApplication>
#include <QImage>
#include <QWidget>
#include <QWindow>

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <filesystem>
#include <string>
#include <unistd.h>

namespace tarnwell::test
{

namespace
{

/// Returns the exit status of ffmpeg.
int grab(const std::string& input, const std::vector<std::string>& options, const std::string& picture)
{
    std::vector<std::string> arguments = {"-v", "error", "-nostdin", "-f", "x11grab", "-draw_mouse", "0"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    arguments.insert(arguments.end(), {"-i", input, "-frames:v", "1", picture});
    return run("ffmpeg", arguments);
}

std::string display()
{
    return qgetenv("DISPLAY").toStdString();
}

std::string runningTest()
{
    const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
    if (test == nullptr)
        return "set-up";
    std::string name = std::string(test->test_suite_name()) + "." + test->name();
    std::replace(name.begin(), name.end(), '/', '-'); // from the names of parameterised tests
    return name;
}

} // namespace

QColor colourOnScreen(QPoint place)
{
    const TemporaryDirectory folder;
    const std::string picture = folder.path() + "screen.png";
    const std::string input = display() + "+" + std::to_string(place.x()) + "," + std::to_string(place.y());
    EXPECT_EQ(grab(input, {"-video_size", "16x16"}, picture), 0);
    return QImage(QString::fromStdString(picture)).pixelColor(0, 0);
}

std::string savePictureOfScreen()
{
    static std::atomic<int> pictures = 0;
    const std::filesystem::path folder = TARNWELL_BUILD_FOLDER "/tests/screens";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::string picture = folder
        / (runningTest() + "-" + std::to_string(::getpid()) + "-" + std::to_string(++pictures) + ".png");
    const int status = grab(display(), {}, picture);
    return status == 0 ? picture : "no picture, ffmpeg exited with " + std::to_string(status);
}

void paintEveryWindow()
{
    QCoreApplication::processEvents(); // applies pending layouts
    for (QWidget* widget : QApplication::topLevelWidgets()) {
        if (!widget->isVisible())
            continue;
        waitFor("“" + widget->windowTitle().toStdString() + "” on the screen",
            [widget] { return !widget->isVisible() || widget->windowHandle()->isExposed(); });
        widget->repaint();
    }
    QApplication::sync();
}

} // namespace tarnwell::test
