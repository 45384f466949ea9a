// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Movie.h"

#include <cstddef>
#include <string_view>

/// The format of the NAL units in the samples of a video track, from its "avcC" or "hvcC".
struct NalFormat {
    bool isHevc = false; // else H.264
    std::size_t lengthSize = 4; // size of the length in front of each unit, 1 to 4 bytes
};

/// Whether an SEI message before the first slice of the sample turns or mirrors the picture (display
/// orientation, payload type 47). FFmpeg from 5.0 on applies it instead of the display matrix of the track.
/// The end of the sample can be missing.
bool holdsOrientationMessage(std::string_view sample, const NalFormat& format);

/// Whether the first 64 KiB of the first sample of the main video track contain such a message. False for a
/// video that is neither H.264 nor HEVC, and if the sample cannot be found or read.
bool hasOrientationMessage(int file, const Movie& movie);
