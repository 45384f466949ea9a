// SPDX-License-Identifier: MIT
#pragma once

#include "orientation/OrientationState.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tarnwell
{

/// The arguments of one encoder run, in their order; paths are raw bytes. A list names its own input and
/// output.
using ArgumentList = std::vector<std::string>;

/// Whether rewriting the rotation flag can do the job: the file has an H.264 or HEVC track, and the mirrors
/// are both off or both on. A flag can say a half turn, and so both mirrors, but never a single one.
bool isFixFlagPossible(const std::vector<std::string>& trackCodecs, const OrientationState& state);

/// The degrees counterclockwise that the flag has to say for a file that already carries the flag
/// `tagRotateValue`; not reduced to a full turn. Nothing for a position outside 1 to 4. Overflow stops the
/// program.
std::optional<std::int64_t> fixFlagRotation(const OrientationState& state, std::int64_t tagRotateValue);

/// Copies the streams and rewrites the rotation flag. Without a `rotation` its element is left out.
ArgumentList fixFlagArgumentList(
    const std::string& inputPath, const std::string& outputPath, std::optional<std::int64_t> rotation);

/// Encodes every frame anew, turned and mirrored, and clears the rotation flag. For a position outside 1 to 4
/// the filter option is left without its value.
ArgumentList transcodeArgumentList(
    const std::string& inputPath, const std::string& outputPath, const OrientationState& state);

/// The line that says which orientation an export starts from.
std::string orientationLine(const OrientationState& state);

/// The line that shows a list: ["first", "second"]. The elements' bytes stand there as they are.
std::string argumentListLine(const ArgumentList& arguments);

/// The lines that tell of a fix-flag list, in their order; where it lacks its `rotation`, the first one says
/// so.
std::vector<std::string> fixFlagLines(
    const ArgumentList& arguments, const std::optional<std::int64_t>& rotation);

} // namespace tarnwell
