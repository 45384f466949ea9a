// SPDX-License-Identifier: MIT
#pragma once

#include "platform/FileURL.h"

#include <QString>

namespace tarnwell
{

// Requests to the desktop. They return at once, and what becomes of them is not examined.

/// Shows the file, selected, in the desktop's file viewer; where there is none that can select, its folder.
void activateFileViewerSelecting(const FileURL& file);

/// Opens the file with the application that the desktop knows by that name; where there is none, with the
/// application that the user has set for files of its kind.
void openFileWithApplication(const FileURL& file, const QString& applicationName);

} // namespace tarnwell
