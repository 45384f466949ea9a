// SPDX-License-Identifier: MIT
#pragma once

#include "benchmarks/Commands.h"
#include "orientation/OrientationState.h"

#include <string>

namespace tarnwell::bench
{

// The programs that the application's tools run, without the application and without its tools: the very same
// argument lists.

/// The report on a file.
Command bareReport(const std::string& path);

/// The still from the middle of a file of `duration` seconds.
Command bareStill(const std::string& path, double duration, const std::string& stillPath);

/// The copy with another flag; only the tool itself then writes the flag.
Command bareFixFlag(const std::string& path, const std::string& outputPath);

/// The new encoding, a quarter turn clockwise.
Command bareTranscode(const std::string& path, const std::string& outputPath);

/// The change that the two exports above make.
inline constexpr OrientationState quarterTurnRight{.positionState = 4};

} // namespace tarnwell::bench
