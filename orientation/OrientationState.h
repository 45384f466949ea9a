// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace tarnwell
{

/// The one change that the user composes for the open video: first the rotation, then the mirrors, which act
/// on the picture as it stands after the rotation. States that show the same picture are not folded into one.
struct OrientationState {
    /// 1 none, 2 a quarter turn counterclockwise, 3 a half turn, 4 a quarter turn clockwise.
    std::int64_t positionState = 1;
    /// Top and bottom exchanged.
    bool vFlipState = false;
    /// Left and right exchanged.
    bool hFlipState = false;

    bool operator==(const OrientationState&) const = default;
};

/// One more, and 5 becomes 1; no other value is folded. Overflow stops the program.
std::int64_t positionAfterRotatingLeft(std::int64_t positionState);

/// One less, and 0 becomes 4; no other value is folded. Overflow stops the program.
std::int64_t positionAfterRotatingRight(std::int64_t positionState);

/// Degrees counterclockwise: 0, 90, 180 or 270 for the positions 1 to 4. Overflow stops the program.
std::int64_t angleOfPosition(std::int64_t positionState);

/// Whether the position turns the picture at all; values outside 1 to 4 count as not rotated.
bool isRotated(const OrientationState& state);

/// Whether a mirror is on.
bool isFlipped(const OrientationState& state);

/// The word for the change: "Rotated", "Flipped", "Rotated and Flipped" or "Processed".
std::string orientationLabel(const OrientationState& state);

} // namespace tarnwell
