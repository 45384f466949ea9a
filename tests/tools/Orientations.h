// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Rotation.h"

#include <array>

namespace tarnwell::test
{

struct OrientationRow {
    const char* name;
    DisplayMatrix matrix;
    int tag; // degrees, as sniffer reports it
    bool isMirrored;
};

/// All turns by right angles, with and without a mirror.
inline constexpr std::array<OrientationRow, 8> orientations = {{
    {"as coded", {1, 0, 0, 1}, 0, false},
    {"a quarter turn to the left", {0, -1, 1, 0}, 270, false},
    {"a half turn", {-1, 0, 0, -1}, 180, false},
    {"a quarter turn to the right", {0, 1, -1, 0}, 90, false},
    {"left and right exchanged", {-1, 0, 0, 1}, 180, true},
    {"top and bottom exchanged", {1, 0, 0, -1}, 0, true},
    {"mirrored at the falling diagonal", {0, 1, 1, 0}, 90, true},
    {"mirrored at the rising diagonal", {0, -1, -1, 0}, 270, true},
}};

} // namespace tarnwell::test
