// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Report.h"

#include <string>

class InputFile;

/// Runs ffprobe for the streams and tags of the input at the path. After a read error ffprobe runs again.
/// Empty members, and a line on standard error, if ffprobe reports no streams.
MediaFacts readMediaFacts(const std::string& path, const InputFile& input);

/// Sets the orientation to the one that ffmpeg shows if the stream contains an orientation message. MP4 and
/// QuickTime files are searched for one; only if there is one, and for other files, ffprobe decodes frames.
void readOrientationMessage(MediaFacts& facts, const std::string& path, const InputFile& input);
