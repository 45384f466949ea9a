// SPDX-License-Identifier: MIT
#pragma once

#include "orientation/OrientationState.h"

#include <QString>

#include <string>

namespace tarnwell
{

class ImageView;

/// The state in plain words, such as "turned right, mirrored horizontally".
QString orientationInWords(const OrientationState& state);

// What assistive tools say of the picture: the file's name and the orientation, as in "clip.mp4, turned
// right".

/// The picture is of another file, given by its path in raw bytes, and as it was opened.
void describeFile(ImageView& view, const std::string& path);

/// The picture is of the same file in another orientation.
void describeOrientation(ImageView& view, const OrientationState& state);

} // namespace tarnwell
