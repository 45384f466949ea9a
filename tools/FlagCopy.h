// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Encoder.h"

#include <optional>

/// Copies a file of the MP4 family into the empty file `output` with another rotation flag (see
/// patchesOfFlag), byte for byte but for the display matrices. Status lines go to standard error; a failure
/// is described there. Empty where the flag needs a new file, made by ffmpeg, for a reason that is described
/// there too; `output` is still empty then. A file that changes while it is copied is a failure.
std::optional<RunEnd> copyWithFlag(int input, int output, double rotation);
