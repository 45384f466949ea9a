// SPDX-License-Identifier: MIT
#include "tests/support/Keyboard.h"

#include "tests/support/XWindows.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <xcb/xcb.h>

namespace tarnwell::test
{

namespace
{

bool hasKeyboard(const QWindow* window)
{
    return window != nullptr && window->handle() != nullptr && QGuiApplication::focusWindow() == window
        && keyboardOwner() == window->winId() && activeWindow() == window->winId();
}

bool hasProgramKeyboard()
{
    const auto windows = QGuiApplication::topLevelWindows();
    return std::any_of(windows.begin(), windows.end(), [owner = keyboardOwner()](const QWindow* window) {
        return window->handle() != nullptr && window->winId() == owner;
    });
}

/// A popup grabs the keyboard; the X server's focus remains with the window behind it.
bool isKeyboardReady()
{
    return QApplication::activePopupWidget() != nullptr ? hasProgramKeyboard()
                                                        : hasKeyboard(QGuiApplication::focusWindow());
}

/// Qt 6.4 can permanently lose its focus window about 100 ms after the end of a sheet that was shown for 10
/// ms, although the keyboard focus of the X server does not move. Moving the keyboard focus away and back
/// makes the X server send the focus events again.
void restoreForgottenKeyboard()
{
    if (QGuiApplication::focusWindow() != nullptr || !hasProgramKeyboard())
        return;
    const xcb_window_t owner = keyboardOwner();
    for (const xcb_window_t window : {xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}, owner})
        xcb_set_input_focus(xConnection(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    xcb_flush(xConnection());
}

/// Requests the keyboard focus at once and then every second, because a busy window manager can drop a
/// request.
void waitWithRequests(const std::string& awaited, const std::function<void()>& request,
    const std::function<bool()>& condition, CallSite site)
{
    constexpr std::chrono::seconds interval(1);
    QDeadlineTimer nextRequest(0);
    bool isFirst = true;
    const auto isThere = [&] {
        if (condition())
            return true;
        if (nextRequest.hasExpired()) {
            request();
            if (!isFirst)
                restoreForgottenKeyboard();
            isFirst = false;
            nextRequest.setRemainingTime(interval);
        }
        return false;
    };
    waitFor(awaited, isThere, site);
}

} // namespace

bool hasKeyboard(const QWidget& widget)
{
    return hasKeyboard(widget.window()->windowHandle());
}

void waitForKeyboard(QWidget& widget, CallSite site)
{
    const auto activate = [&] { widget.activateWindow(); };
    waitWithRequests(
        "the keyboard of “" + widget.window()->windowTitle().toStdString() + "”", activate,
        [&] { return hasKeyboard(widget); }, site);
}

void waitForAnyKeyboard(CallSite site)
{
    waitWithRequests(
        "the keyboard of any window", [] {}, isKeyboardReady, site);
}

} // namespace tarnwell::test
