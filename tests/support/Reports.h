// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell::test
{

/// The facts of a made-up probe report on one video track.
struct VideoReport {
    std::string codec = "h264";
    int width = 320;
    int height = 240;
    std::string duration = "8.000000"; // seconds
    std::string rotate = ""; // the tag's text; empty: no tag
};

/// The report as the probe tool would print it.
std::string reportOf(const VideoReport& facts);

/// A report on a file that the probe tool cannot read.
std::string errorReport();

/// A report on a sound file.
std::string soundReport();

} // namespace tarnwell::test
