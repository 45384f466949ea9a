// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>

namespace tarnwell
{

/// The rotation and the mirrors that the user has chosen. The rotation comes first; the mirrors apply to the
/// rotated picture. Different states that show the same picture stay different.
struct OrientationState {
    /// 1: no rotation, 2: a quarter turn counterclockwise, 3: a half turn, 4: a quarter turn clockwise.
    std::int64_t positionState = 1;
    /// Exchanges top and bottom.
    bool vFlipState = false;
    /// Exchanges left and right.
    bool hFlipState = false;

    bool operator==(const OrientationState&) const = default;
};

/// Adds 1 and maps 5 to 1; other values outside 1 to 4 stay. Overflow stops the program.
std::int64_t positionAfterRotatingLeft(std::int64_t positionState);

/// Subtracts 1 and maps 0 to 4; other values outside 1 to 4 stay. Overflow stops the program.
std::int64_t positionAfterRotatingRight(std::int64_t positionState);

/// Degrees counterclockwise: (`positionState` - 1) * 90. Overflow stops the program.
std::int64_t angleOfPosition(std::int64_t positionState);

/// Whether the position is 2, 3 or 4.
bool isRotated(const OrientationState& state);

/// Whether a mirror is on.
bool isFlipped(const OrientationState& state);

/// "Rotated", "Flipped", "Rotated and Flipped", or "Processed" for neither.
std::string orientationLabel(const OrientationState& state);

} // namespace tarnwell
