// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Movie.h"

#include <cstddef>
#include <string_view>

/// How the samples of a video track hold NAL units, as its "avcC" or "hvcC" says.
struct NalFormat {
    bool isHevc = false; // else H.264
    std::size_t lengthSize = 4; // bytes of the length in front of each unit, 1 to 4
};

/// Whether an SEI message before the first slice of the sample turns or mirrors the picture (display
/// orientation, payload type 47). FFmpeg 5.0 and later ignores the display matrix of the track then. The
/// sample may be cut.
bool holdsOrientationMessage(std::string_view sample, const NalFormat& format);

/// Whether the first 64 KiB of the first sample of the main video track hold such a message. False for a
/// video that is neither H.264 nor HEVC, and where the sample cannot be found or read.
bool hasOrientationMessage(int file, const Movie& movie);
