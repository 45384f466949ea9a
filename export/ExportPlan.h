// SPDX-License-Identifier: MIT
#pragma once

#include "orientation/OrientationState.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarnwell
{

/// The arguments of one run of creator, including the input and the output path. Paths are raw bytes.
using ArgumentList = std::vector<std::string>;

/// Whether the rotation flag can express the state: the file has an H.264 or HEVC track, and the mirrors are
/// both off or both on. Both mirrors equal a half turn; a single mirror is no rotation.
bool isFixFlagPossible(const std::vector<std::string>& trackCodecs, const OrientationState& state);

/// The value of the new rotation flag in degrees, for a file with the flag `tagRotateValue`. Not reduced
/// modulo 360. Empty for a position outside 1 to 4. Overflow stops the program.
std::optional<std::int64_t> fixFlagRotation(const OrientationState& state, std::int64_t tagRotateValue);

/// Arguments that copy the streams and set the rotation flag. An empty `rotation` omits the "rotate="
/// element.
ArgumentList fixFlagArgumentList(
    const std::string& inputPath, const std::string& outputPath, std::optional<std::int64_t> rotation);

/// Arguments that encode every frame again, rotated and mirrored, and clear the rotation flag. For a position
/// outside 1 to 4, "-vf" has no value.
ArgumentList transcodeArgumentList(
    const std::string& inputPath, const std::string& outputPath, const OrientationState& state);

/// The diagnostic line for the orientation at the start of an export.
std::string orientationLine(const OrientationState& state);

/// The diagnostic line for an argument list: ["first", "second"]. Elements are not escaped.
std::string argumentListLine(const ArgumentList& arguments);

/// The diagnostic lines for a fix-flag list. An empty `rotation` adds "Something Wrong!" before the list.
std::vector<std::string> fixFlagLines(
    const ArgumentList& arguments, const std::optional<std::int64_t>& rotation);

} // namespace tarnwell
