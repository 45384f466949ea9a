// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

#include <cstdint>
#include <optional>

class QWindow;

namespace tarnwell
{

/// The X server's time, in milliseconds, at which the user acted: the number after the last "_TIME" of a
/// startup id. Absent where the id does not say, or says 0, which would mean "now" and so any time.
std::optional<std::uint32_t> userTimeOf(const QString& startupId);

/// Asks the window manager to give the window the keyboard, on the grounds of the user's action that the
/// startup id stands for, and ends the desktop's notice that the program is starting. False, and nothing
/// done, where the program's windows are not on an X server.
bool activateOnX11(const QWindow& window, const QString& startupId);

} // namespace tarnwell
