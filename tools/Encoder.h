// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

/// How a run of ffmpeg ended.
enum class RunEnd { Succeeded, Failed, Cancelled };

/// From now on SIGTERM, SIGINT and SIGHUP cancel the work instead of ending the process. A SIGINT or SIGHUP
/// that the caller has set to be ignored stays ignored. Call it first.
void handleCancelSignals();

/// Whether such a signal has arrived.
bool isCancelled();

/// Is readable when such a signal has arrived and isCancelled has not been called since.
int cancelDescriptor();

/// Runs ffmpeg to its end. It may read the file at the path `input` and write to the descriptor `output`. Its
/// progress, as status lines, and its error messages go to this process's standard error. A cancel is
/// forwarded as SIGTERM; an ffmpeg that has not ended 0.4 seconds later is killed.
RunEnd runFfmpeg(const std::vector<std::string>& arguments, const std::string& input, int output);
