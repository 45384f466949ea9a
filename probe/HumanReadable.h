// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace tarnwell
{

/// The size in bytes of the file at `path`. Prints the reason and returns 0 if it cannot be read.
std::uint64_t fileSize(const std::string& path);

/// The size of the file at `path` as humanByteCount formats it. Prints the reason and returns "Unknown File
/// Size" if it cannot be read.
std::string humanFileSize(const std::string& path);

/// Formats a byte count in decimal units (1 KB = 1000 bytes), rounded half up: bytes and KB without fraction,
/// MB with up to one digit after the point, larger units with up to two. 0 is "Zero KB".
std::string humanByteCount(std::uint64_t bytes);

/// Formats seconds as hours:minutes:seconds.hundredths, with at least two digits each. Truncates the seconds
/// and rounds the hundredths independently: 59.999 is "00:00:59.00". Seconds beyond 64 bits or not finite
/// stop the program.
std::string humanDuration(double seconds);

} // namespace tarnwell
