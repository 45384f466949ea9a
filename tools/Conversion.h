// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Encoder.h"
#include "tools/Job.h"
#include "tools/Report.h"

class InputFile;
class OutputFile;

/// Makes the new video of a fix flag or transcode with ffmpeg. Runs the attempts for the input one after the
/// other until one produces a complete movie, then completes the metadata. Does not write the flag itself.
/// Prints to standard error which streams the result lacks. `input` must be open.
RunEnd convert(const Job& job, const MediaFacts& facts, const InputFile& input, const OutputFile& output);
