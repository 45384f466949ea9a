// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Job.h"
#include "tools/Report.h"

#include <cstdint>
#include <string>
#include <vector>

/// One way to run ffmpeg for a copy or an encoding.
struct Attempt {
    std::vector<std::string> arguments;
    std::vector<std::uint32_t> trackIds; // of the input's track for each track of the output, 0 for unknown;
                                         // empty where ffmpeg chooses the streams
    std::string notice; // whole lines on what the output lacks or has in another coding; may be empty
};

/// The ways to try one after the other until one succeeds. The first one keeps the most. A copy keeps the
/// main video stream, all sound streams and the text subtitles that MP4 holds; an encoding keeps the main
/// video stream and one sound stream: the one that is marked as default, else the one with the most channels.
/// Both keep tags and chapters. Every attempt has the main video stream, if there is one. Never empty.
std::vector<Attempt> attemptsFor(const Job& job, const MediaFacts& facts, const Target& target);
