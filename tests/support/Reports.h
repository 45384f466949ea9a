// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace tarnwell::test
{

/// The values of a generated report on one video track.
struct VideoReport {
    std::string codec = "h264";
    int width = 320;
    int height = 240;
    std::string duration = "8.000000"; // seconds
    std::string rotate = ""; // the value of the tag; empty for no tag
};

/// The report in the format of sniffer.
std::string reportOf(const VideoReport& facts);

/// A report on a file that sniffer cannot read.
std::string errorReport();

/// A report on a sound file.
std::string soundReport();

} // namespace tarnwell::test
