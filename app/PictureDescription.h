// SPDX-License-Identifier: MIT
#pragma once

#include "orientation/OrientationState.h"

#include <QString>

#include <string>

namespace tarnwell
{

class ImageView;

/// The state in words, such as "turned right, mirrored horizontally".
QString orientationInWords(const OrientationState& state);

// The picture's accessible description: the file's name and the orientation, as in "clip.mp4, turned right".

/// Sets the name of a newly opened file, given by its path (raw bytes), and the initial orientation.
void describeFile(ImageView& view, const std::string& path);

/// Sets another orientation and keeps the name.
void describeOrientation(ImageView& view, const OrientationState& state);

} // namespace tarnwell
