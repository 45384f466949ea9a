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

/// Receives the chosen file's absolute path (raw bytes), or nothing when the panel was cancelled. The panel
/// is closed by then.
using PathHandler = std::function<void(std::optional<std::string> path)>;

/// Asks for one existing file of any type, as a sheet on `window`.
void beginOpenPanel(QWidget& window, SheetQueue& sheets, PathHandler handler);

/// Asks where to write an MP4 file, as a sheet on `window`, proposing `name` (without extension). The
/// extension is added to a name typed without it, and replacing an existing file is the user's decision.
void beginSavePanel(QWidget& window, SheetQueue& sheets, const QString& name, PathHandler handler);

} // namespace tarnwell
