// SPDX-License-Identifier: MIT
#include "tests/support/Keyboard.h"

#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

namespace tarnwell::test
{

namespace
{

/// The window that the X server sends keys to.
WId keyboardOwner()
{
    const auto* server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (server == nullptr)
        return 0;
    const auto request = xcb_get_input_focus(server->connection());
    const std::unique_ptr<xcb_get_input_focus_reply_t, void (*)(void*)> reply(
        xcb_get_input_focus_reply(server->connection(), request, nullptr), std::free);
    return reply ? reply->focus : 0;
}

} // namespace

bool hasKeyboard(const QWindow* window)
{
    return window != nullptr && window->handle() != nullptr && QGuiApplication::focusWindow() == window
        && keyboardOwner() == window->winId();
}

bool hasKeyboard(const QWidget& widget)
{
    return hasKeyboard(widget.window()->windowHandle());
}

bool hasProgramKeyboard()
{
    const auto windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), [owner = keyboardOwner()](const QWindow* window) {
        return window->handle() != nullptr && window->winId() == owner;
    });
}

void waitForKeyboard(QWidget& widget, CallSite site)
{
    // A window manager that is busy with another window may lose the request.
    constexpr std::chrono::seconds requestInterval(1);
    QDeadlineTimer nextRequest(0);
    const auto isActive = [&] {
        if (hasKeyboard(widget))
            return true;
        if (nextRequest.hasExpired()) {
            widget.activateWindow();
            nextRequest.setRemainingTime(requestInterval);
        }
        return false;
    };
    waitFor("the keyboard of “" + widget.window()->windowTitle().toStdString() + "”", isActive, site);
}

} // namespace tarnwell::test
