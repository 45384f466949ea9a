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

/// Asks for one existing file of any type in a sheet on `window`.
void beginOpenPanel(QWidget& window, SheetQueue& sheets, PathHandler handler);

/// Asks for the path of an MP4 file to write in a sheet on `window`. Proposes `name`, given without
/// extension. Adds the extension to a name without it, and asks before an existing file is replaced. In the
/// sandbox the proposed name has the extension, and the panel appears again if the chosen name lacks it.
void beginSavePanel(QWidget& window, SheetQueue& sheets, const QString& name, PathHandler handler);

} // namespace tarnwell
