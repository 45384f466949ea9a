// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Rotation.h"

/// Whether the file behind the descriptor is an MP4 or QuickTime file that is all there: whole boxes up to
/// its end, and among them a description of the tracks, one of which holds video. (ffmpeg succeeds with an
/// empty movie too, where no frame could be decoded.)
bool isCompleteMovie(int descriptor);

/// Whether the file is a movie in which every video track is shown as it is coded or turned by quarters, and
/// nothing else. False where that cannot be told.
bool isOnlyTurned(int descriptor);

/// Writes the matrix into the header of every video track of such a file, in place. False where there is
/// none.
bool writeTrackMatrix(int descriptor, const DisplayMatrix& matrix);
