// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Movie.h"

#include <optional>
#include <string>
#include <vector>

/// Bytes that replace the same number of bytes at an offset in a file.
struct Patch {
    FileOffset offset = 0;
    std::string bytes;
};

/// The reason why changing display matrices is not sufficient for a flag, such as "it is a QuickTime file";
/// empty if it is sufficient.
std::string obstacleToPatches(const Movie& movie);

/// The patches that set a rotation flag: those of the display matrices of all video tracks. `rotation` is in
/// degrees counterclockwise relative to the coded picture of the main video track. Its mirror is kept. Other
/// video tracks are turned by the same angle relative to their own matrices; covers do not change. Empty if
/// there is an obstacle (obstacleToPatches).
std::optional<std::vector<Patch>> patchesOfFlag(const Movie& movie, double rotation);

/// The display matrix for the main video track of a new file with this flag.
DisplayMatrix matrixOfFlag(const Orientation& orientation, double rotation);

/// Writes the patches. False if one could not be written completely.
bool applyPatches(int file, const std::vector<Patch>& patches);

/// Writes the matrix into the header of every video track of a movie, in place. False on an error and if the
/// movie has no video track.
bool writeTrackMatrix(int file, const DisplayMatrix& matrix);
