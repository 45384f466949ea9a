// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Job.h"
#include "tools/Report.h"

#include <cstdint>
#include <string>
#include <vector>

/// A run of ffmpeg for a copy or an encoding.
struct Attempt {
    std::vector<std::string> arguments;
    std::vector<std::uint32_t> trackIds; // for each track of the output the track number in the input, 0 if
                                         // unknown; empty if ffmpeg selects the streams
    std::string notice; // lines for standard error about streams that are left out or encoded; may be empty
};

/// The attempts in their order; the first one that succeeds is the result. The first one keeps most. A copy
/// keeps the main video stream, all sound streams and the text subtitles that MP4 supports. An encoding keeps
/// the main video stream and one sound stream: one that is marked as default, else the one with the most
/// channels. Both keep tags and chapters. Never empty.
std::vector<Attempt> attemptsFor(const Job& job, const MediaFacts& facts, const Target& target);
