// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>

class QString;
class QWidget;

namespace tarnwell
{

class SheetQueue;

/// Keeps Qt's file dialog from reading and writing its settings (QtProject.conf), which hold the folder that
/// was shown last. Call it before the first panel.
void disablePanelSettings();

/// Receives the absolute path of the chosen file (raw bytes), or nothing if the panel was cancelled. Called
/// after the panel has closed.
using PathHandler = std::function<void(std::optional<std::string> path)>;

/// Asks for one existing file of any type in a sheet on `window`. The panel starts in `folder`;
/// if that is empty, a portal chooses the folder.
void beginOpenPanel(QWidget& window, SheetQueue& sheets, const QString& folder, PathHandler handler);

/// Asks for the path of an MP4 file to write in a sheet on `window`. Proposes `name`, given without
/// extension, in `folder`. Adds the extension to a name without it, refuses a folder that cannot be written,
/// and asks before an existing file is replaced. The panel is shown again after a refusal and after a "No".
/// In the sandbox the proposed name has the extension, and the panel is shown again if the chosen name lacks
/// it: the portal grants the chosen name only.
void beginSavePanel(
    QWidget& window, SheetQueue& sheets, const QString& folder, const QString& name, PathHandler handler);

} // namespace tarnwell
