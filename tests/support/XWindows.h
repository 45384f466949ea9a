// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <xcb/xcb.h>

namespace tarnwell::test
{

// The state of the X server and of the window manager, for windows of any program. Main thread.

/// The connection of the QApplication. Ends the test if Qt does not use an X server.
xcb_connection_t* xConnection();

/// The window with the X server's keyboard focus. It can be a window inside of that with the title, as in
/// GTK.
xcb_window_t keyboardOwner();

/// The active window of the window manager. It differs from the keyboard owner until the window manager has
/// handled a window that was shown or closed; it may then move the keyboard focus again.
xcb_window_t activeWindow();

/// The title of the window; of the innermost window around it if it has none. Empty if there is none.
std::string titleAround(xcb_window_t window);

/// The role that the program has set for the window; empty if there is none.
std::string roleOf(xcb_window_t window);

/// The number of visible windows with exactly this title.
int shownWindows(const std::string& title);

} // namespace tarnwell::test
