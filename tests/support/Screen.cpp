// SPDX-License-Identifier: MIT
#include "tests/support/Screen.h"

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
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>
#include <unistd.h>
#include <xcb/xcb.h>

namespace tarnwell::test
{

namespace
{

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
    const std::unique_ptr<xcb_connection_t, void (*)(xcb_connection_t*)> server(
        xcb_connect(nullptr, nullptr), xcb_disconnect);
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(server.get())).data->root;
    constexpr std::uint32_t allPlanes = ~0U;
    const std::unique_ptr<xcb_get_image_reply_t, void (*)(void*)> pixel(
        xcb_get_image_reply(server.get(),
            xcb_get_image(server.get(), XCB_IMAGE_FORMAT_Z_PIXMAP, root, static_cast<std::int16_t>(place.x()),
                static_cast<std::int16_t>(place.y()), 1, 1, allPlanes),
            nullptr),
        std::free);
    if (!pixel) {
        ADD_FAILURE() << "(" << place.x() << ", " << place.y() << ") is not on the screen";
        return {};
    }
    return QImage(xcb_get_image_data(pixel.get()), 1, 1, QImage::Format_RGB32).pixelColor(0, 0);
}

std::string savePictureOfScreen()
{
    static std::atomic<int> pictures = 0;
    const std::filesystem::path folder = TARNWELL_BUILD_FOLDER "/tests/screens";
    std::error_code error;
    std::filesystem::create_directories(folder, error);
    const std::string picture = folder
        / (runningTest() + "-" + std::to_string(::getpid()) + "-" + std::to_string(++pictures) + ".png");
    const int status = run("ffmpeg",
        {"-v", "error", "-nostdin", "-f", "x11grab", "-draw_mouse", "0", "-i",
            qgetenv("DISPLAY").toStdString(), "-frames:v", "1", picture});
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
