// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace tarnwell
{

/// The first time stamp, in seconds, of a chunk of creator's standard error. Empty if the chunk is invalid
/// UTF-8 or has no "time=". A chunk with "time=" and no time stamp stops the program. Keeps no state between
/// chunks. Thread-safe.
std::optional<double> elapsedSecondsFromChunk(std::string_view chunk);

/// Not rounded, and not limited to 0 to 100. Infinity or not-a-number for a `duration` of 0.
double percentOf(double elapsedSeconds, double duration);

/// The diagnostic line for the progress of an export.
std::string percentLine(double percent);

} // namespace tarnwell
