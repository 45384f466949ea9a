// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileURL.h"

#include <QString>

namespace tarnwell
{

// Requests to the desktop. They do not wait for the application, and their outcome is not reported.

/// Shows the file, selected, in the file manager. Opens its folder if no file manager supports the selection.
void activateFileViewerSelecting(const FileURL& file);

/// Opens the file with the installed application of that name. If there is none or it cannot be started, uses
/// the default application for files of its type.
void openFileWithApplication(const FileURL& file, const QString& applicationName);

} // namespace tarnwell
