// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwell
{

/// Seconds of media that a chunk of the encoder's standard error says are done: the first time stamp in it.
/// Nothing for a chunk that is not valid UTF-8 or does not hold "time="; one that holds "time=" and no time
/// stamp stops the program. Chunks are judged alone. Any thread.
std::optional<double> elapsedSecondsFromChunk(std::string_view chunk);

/// Neither rounded nor kept between 0 and 100; a `duration` of 0 seconds gives infinity, or not a number.
double percentOf(double elapsedSeconds, double duration);

/// The line that says how far an export has come.
std::string percentLine(double percent);

} // namespace tarnwell
