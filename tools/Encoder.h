// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// How a run of ffmpeg ended.
enum class RunEnd { Succeeded, Failed, Cancelled };

/// Takes SIGTERM, SIGINT and SIGHUP as wishes to cancel, from now on and for the whole process. Call it
/// first.
void watchForCancelling();

/// Whether such a signal has come.
bool isCancelled();

/// Has something to read while such a signal has come that isCancelled has not seen yet.
int cancelDescriptor();

/// Runs ffmpeg with these arguments, which may read the file `input` and write to the descriptor `output`, to
/// its end. Status lines and complaints go to this process's standard error, whether anybody reads them or
/// not. A wish to cancel is passed on as SIGTERM; an ffmpeg that takes its time over that is killed, since
/// what it writes is not wanted any more.
RunEnd runFfmpeg(const std::vector<std::string>& arguments, const std::string& input, int output);
