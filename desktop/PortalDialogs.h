// SPDX-License-Identifier: MIT
#pragma once

namespace tarnwell
{

// Qt shows its own file dialog on desktops for which no Qt 6 theme is installed, and on GNOME that of GTK 3,
// without the desktop's dark style. There the desktop portal shows the dialog of the desktop.

/// Selects the portal's dialogs on such a desktop if the portal offers them. Call it before QApplication is
/// constructed. Waits at most two seconds for the portal. Does nothing if the user has selected a theme.
void selectPortalDialogs();

/// Removes the selection from the environment, which programs that this one starts inherit. Call it after
/// QApplication is constructed.
void removePortalSelection();

/// Whether native file dialogs are those of the portal. They always ask before they replace a file.
bool arePortalDialogsUsed();

} // namespace tarnwell
