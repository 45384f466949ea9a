// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Report.h"

#include <string>

/// A JPEG picture in grey of a struck-out film, so that it is not mistaken for a frame. A side
/// outside 1 to 65500, the limits of decoders, is set to the limit. A picture of more than mostStillPixels is
/// scaled down.
std::string placeholderPicture(int width, int height);

/// The picture for a video that cannot be decoded, in the size in which players would show the video.
std::string placeholderOf(const VideoFacts& video);
