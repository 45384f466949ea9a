// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Cancel.h"

#include <string>
#include <vector>

class InputFile;

/// The outcome of a run of ffmpeg. InputFailed: the input could not be read to its end or has changed, so
/// that no other run can succeed.
enum class RunEnd { Succeeded, Failed, Cancelled, InputFailed };

/// Runs ffmpeg to its end. ffmpeg can read the input, by the path in its arguments, and write to the
/// descriptor `output`. Its progress, as status lines, and its error messages are written to this process's
/// standard error. A cancel is forwarded as SIGTERM; an ffmpeg that has not exited 0.4 seconds later is
/// killed.
///
/// The run fails if the input changes or has a read error. ffmpeg treats a read error as the end of the file,
/// prints a message and succeeds; therefore the whole input is read again after a run with any message. If
/// that succeeds but the message named a read error, which can be temporary, ffmpeg runs a second time.
/// Damaged content is not a read error.
RunEnd runFfmpeg(const std::vector<std::string>& arguments, const InputFile& input, int output);
