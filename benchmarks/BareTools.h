// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Commands.h"
#include "orientation/OrientationState.h"

#include <string>

namespace tarnwell::bench
{

// The ffprobe and ffmpeg commands that sniffer and creator run, with the same argument lists, for direct
// runs.

/// The ffprobe report on a file.
Command bareReport(const std::string& path);

/// The extraction of the still from the middle of a file of `duration` seconds.
Command bareStill(const std::string& path, double duration, const std::string& stillPath);

/// The stream copy of a fix flag. It leaves the flag as it is: creator writes the flag itself after ffmpeg.
Command bareFixFlag(const std::string& path, const std::string& outputPath);

/// The transcode with a quarter turn clockwise.
Command bareTranscode(const std::string& path, const std::string& outputPath);

/// The orientation of both exports above.
inline constexpr OrientationState quarterTurnRight{.positionState = 4};

} // namespace tarnwell::bench
