// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Rotation.h"

#include <optional>
#include <string>

/// ffprobe's JSON report with each video stream's "rotate" tag set to what a decoder will really apply: taken
/// from the stream's display matrix, and taken out where there is none. A stream's duration of more seconds
/// than 64 bits hold is taken out too. A text that is no report comes back as it is.
std::string withTrueRotation(const std::string& report);

/// What a JSON report says of its first video stream that has a frame rate, or else of its first one.
struct VideoFacts {
    int rotation = 0; // the "rotate" tag that the report is given; 0 where it is given none
    std::optional<DisplayMatrix> decoded; // what decoders apply
    int width = 0; // coded pixels; 0 where unknown
    int height = 0;
};

VideoFacts videoFactsOf(const std::string& report);
