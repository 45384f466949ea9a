// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>
#include <xcb/xcb.h>

namespace tarnwell::test
{

/// The window of another client of the X server, in the upper left corner of the screen.
class OtherClient
{
public:
    /// Returns when the window has the keyboard focus.
    OtherClient();
    ~OtherClient();
    OtherClient(const OtherClient&) = delete;
    OtherClient& operator=(const OtherClient&) = delete;

    bool hasKeyboard() const;

    /// Asks the window manager to close a window of any client, as a task bar does.
    void requestClose(xcb_window_t window) const;

private:
    void requestKeyboard();
    void askWindowManager(
        std::string_view request, xcb_window_t window, std::uint32_t first, std::uint32_t second) const;

    xcb_connection_t* m_connection;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

} // namespace tarnwell::test
