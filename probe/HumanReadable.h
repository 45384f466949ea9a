// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace tarnwell
{

/// Bytes of the file at `path`; 0 where that cannot be told, and a line says why.
std::uint64_t fileSize(const std::string& path);

/// The size of the file at `path` as people read it; "Unknown File Size" where that cannot be told, and a
/// line says why.
std::string humanFileSize(const std::string& path);

/// A byte count in decimal units (1 kB = 1000 bytes): bytes and KB whole, MB with at most one digit behind
/// the point, larger units with at most two, rounded half up, zeros at the end left out.
std::string humanByteCount(std::uint64_t bytes);

/// Seconds as hours:minutes:seconds.hundredths, at least two digits each. The seconds are cut off and the
/// hundredths rounded, each on its own. Seconds beyond 64 bits, or not finite, stop the program.
std::string humanDuration(double seconds);

} // namespace tarnwell
