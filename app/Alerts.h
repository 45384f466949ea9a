// SPDX-License-Identifier: MIT
#pragma once

#include "desktop/Alert.h"
#include "orientation/OrientationState.h"

#include <string>

namespace tarnwell
{

// The controller's alerts, ready to be shown.

/// Refuses a file, in UTF-8 words.
Alert refusalAlert(const std::string& messageText, const std::string& informativeText);

/// Asks for the mode of an export: the first button rewrites the flag, the second encodes anew.
Alert modeAlert();

/// The chosen output is the input.
Alert sameFileAlert();

/// An export left no video.
Alert failureAlert();

/// An export is done; the second button shows the file, the third plays it.
Alert successAlert(const OrientationState& state);

} // namespace tarnwell
