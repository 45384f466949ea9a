// SPDX-License-Identifier: MIT
#pragma once

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

private:
    void requestKeyboard();

    xcb_connection_t* m_connection;
    xcb_window_t m_root = XCB_WINDOW_NONE;
    xcb_window_t m_window = XCB_WINDOW_NONE;
};

} // namespace tarnwell::test
