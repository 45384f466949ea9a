// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Movie.h"

#include <optional>
#include <string>
#include <vector>

/// Bytes that replace those of the same number at an offset in a file.
struct Patch {
    FileOffset offset = 0;
    std::string bytes;
};

/// Why a rotation flag of this movie needs a new file, such as "it is a QuickTime file"; empty where it is
/// enough to change display matrices.
std::string obstacleToPatches(const Movie& movie);

/// What a rotation flag changes in a file of the MP4 family: the display matrices of its video tracks, and
/// nothing else. `rotation` is counterclockwise in degrees against the coded picture of the main video track,
/// whose own turn is the one that sniffer reports; a mirror is kept. Other video tracks are turned by the
/// same angle against their own matrix; covers stay as they are. Empty where obstacleToPatches is not.
std::optional<std::vector<Patch>> patchesOfFlag(const Movie& movie, double rotation);

/// The matrix that the main video track of a new file has to have for that flag.
DisplayMatrix matrixOfFlag(const Orientation& orientation, double rotation);

/// Writes the patches. False where one could not be written whole.
bool applyPatches(int file, const std::vector<Patch>& patches);

/// Writes the matrix into the header of every video track of a movie, in place. False where there is none.
bool writeTrackMatrix(int file, const DisplayMatrix& matrix);
