// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <optional>
#include <string_view>

class QWindow;

namespace tarnwell
{

// Qt does not use a startup id that arrives over D-Bus. Without this code a second start of the program
// leaves the first one's window behind other windows on X11 desktops that prevent focus stealing.

/// The X server time of the user's action in milliseconds: the number after the last "_TIME" of a startup id.
/// Absent if the id has none, or 0, which means the current time.
std::optional<std::uint32_t> userTimeOf(const QString& startupId);

/// Asks the window manager to activate the window (_NET_ACTIVE_WINDOW) with the time of the startup id, and
/// ends the desktop's startup notification. Does nothing and returns false where Qt does not run on X11.
bool activateOnX11(const QWindow& window, const QString& startupId);

/// Whether the X server's keyboard focus is on a window of this program. False where Qt does not run on X11.
bool hasX11Keyboard();

/// The X server's number for the name; 0 where Qt does not run on X11.
std::uint32_t x11Atom(std::string_view name);

} // namespace tarnwell
