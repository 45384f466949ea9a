// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Encoder.h"
#include "tools/Job.h"
#include "tools/Report.h"

class InputFile;
class OutputFile;

/// Makes the new video of a fix flag or a transcode with ffmpeg, except for the flag itself: makes the
/// attempts for the input one after the other until one gives a complete movie, and completes its metadata.
/// Prints to standard error what the result lacks. `input` is open.
RunEnd convert(const Job& job, const MediaFacts& facts, const InputFile& input, const OutputFile& output);
