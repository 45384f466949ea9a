// SPDX-License-Identifier: MIT
#include "tests/support/Keyboard.h"

#include <QApplication>
#include <QDeadlineTimer>
#include <QGuiApplication>
#include <QWidget>
#include <QWindow>

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace tarnwell::test
{

namespace
{

template <typename Reply>
std::unique_ptr<Reply, void (*)(void*)> owned(Reply* reply)
{
    return {reply, std::free};
}

xcb_connection_t* connection()
{
    const auto* server = qGuiApp->nativeInterface<QNativeInterface::QX11Application>();
    if (server == nullptr)
        failTest("this test needs an X server; scripts/virtual-desktop starts one");
    return server->connection();
}

/// The window with the X server's keyboard focus.
WId keyboardOwner()
{
    const auto reply
        = owned(xcb_get_input_focus_reply(connection(), xcb_get_input_focus(connection()), nullptr));
    return reply ? reply->focus : 0;
}

/// The active window of the window manager. It differs from the keyboard owner until the window manager has
/// handled a window that was shown or closed; it may then move the keyboard focus again.
WId activeWindow()
{
    const std::string_view name = "_NET_ACTIVE_WINDOW";
    const auto atom = owned(xcb_intern_atom_reply(connection(),
        xcb_intern_atom(connection(), 0, static_cast<std::uint16_t>(name.size()), name.data()), nullptr));
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection())).data->root;
    const auto property = owned(xcb_get_property_reply(connection(),
        xcb_get_property(
            connection(), 0, root, atom ? atom->atom : xcb_atom_t{XCB_ATOM_NONE}, XCB_ATOM_WINDOW, 0, 1),
        nullptr));
    if (!property || xcb_get_property_value_length(property.get()) != sizeof(xcb_window_t))
        return 0;
    xcb_window_t window = XCB_WINDOW_NONE;
    std::memcpy(&window, xcb_get_property_value(property.get()), sizeof window);
    return window;
}

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
    const auto owner = static_cast<xcb_window_t>(keyboardOwner());
    for (const xcb_window_t window : {xcb_window_t{XCB_INPUT_FOCUS_POINTER_ROOT}, owner})
        xcb_set_input_focus(connection(), XCB_INPUT_FOCUS_POINTER_ROOT, window, XCB_CURRENT_TIME);
    xcb_flush(connection());
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
