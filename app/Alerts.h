// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Alert.h"
#include "orientation/OrientationState.h"

#include <string>

namespace tarnwell
{

// The controller's alerts. Their texts are fixed.

/// For a file that cannot be opened. The texts are UTF-8.
Alert refusalAlert(const std::string& messageText, const std::string& informativeText);

/// Asks for the mode of an export: the first button selects fix-flag, the second transcode.
Alert modeAlert();

/// For an output path that equals the input path.
Alert sameFileAlert();

/// For a save of a file that is not the one that was opened any more: the preview shows another content, and
/// a file that a save has turned would be turned twice.
Alert changedInputAlert();

/// For a drop whose files the desktop did not pass on.
Alert failedDropAlert();

/// For a request of the desktop to open a file that has no path on this machine, or that the program cannot
/// see.
Alert failedOpenAlert();

/// For an export that left no valid video.
Alert failureAlert();

/// For a finished export: the second button reveals the file, the third plays it.
Alert successAlert(const OrientationState& state);

} // namespace tarnwell
