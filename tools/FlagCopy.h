// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Encoder.h"

#include <optional>

class InputFile;

/// Copies a file of the MP4 family byte by byte into the empty file `output` and changes the display matrices
/// for the rotation flag (see patchesOfFlag). Writes status lines, and the reason for a failure, to standard
/// error. Empty, with a reason on standard error, if ffmpeg must make a new file; `output` is still empty. A
/// file that has changed since it was opened is a failure.
std::optional<RunEnd> copyWithFlag(const InputFile& input, int output, double rotation);
