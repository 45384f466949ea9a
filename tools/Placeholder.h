// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Report.h"

#include <string>

/// A JPEG picture in one grey. Sizes beyond the limits of the format, 1 to 65500, are set to the limit.
std::string placeholderPicture(int width, int height);

/// The one for a video that cannot be decoded: in the size in which the video would be shown.
std::string placeholderOf(const VideoFacts& video);
