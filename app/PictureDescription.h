// SPDX-License-Identifier: MIT
#pragma once

#include "orientation/OrientationState.h"

#include <QString>

namespace tarnwell
{

class FileProbe;

/// The state in words, such as "turned right, mirrored horizontally".
QString orientationInWords(const OrientationState& state);

/// The display size, the duration and the size of the file, such as "1920 × 1080 · 00:01:15.50 · 12.3 MB". An
/// unknown size of the picture and an unknown duration are left out.
QString factsInWords(const FileProbe& probe);

} // namespace tarnwell
