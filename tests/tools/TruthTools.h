// SPDX-License-Identifier: MIT
#pragma once

#include "tests/tools/TruthPictures.h"

#include <array>
#include <cstdint>
#include <set>
#include <string>
#include <vector>

namespace tarnwell::test
{

using Command = std::vector<std::string>;

/// The end of a program: its exit status, or 128 and the signal's number, and all that it printed.
struct Outcome {
    int status = 0;
    std::string output;
    std::string complaints;
};

/// Runs a program, given with its path, to its end; it reads nothing.
Outcome run(const Command& command);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);

/// The names of everything in the folder, hidden or not.
std::set<std::string> namesIn(const std::string& folder);

/// The first line in which the installed ffmpeg says what it is.
std::string ffmpegVersion();

bool hasEncoder(const std::string& name);

enum class Rotation { Applied, Ignored };

/// The frame of a video at so many seconds, or the first one of a video or picture where these are empty, as
/// ffmpeg shows it.
Picture decodedFrame(
    const std::string& path, const std::string& seconds, Rotation rotation = Rotation::Applied);

struct Recipe {
    int width = 0;
    int height = 0;
    std::string encoder;
};

/// Two seconds of four different corners on a gradient that grows brighter, with sound.
void makeMovie(const std::string& path, const Recipe& recipe);

/// Nine numbers as a track header holds them: two columns in 16.16 fixed point and one in 2.30.
using MatrixNumbers = std::array<std::int32_t, 9>;

/// The matrix with the shift that brings a picture of the coded size back to the origin.
MatrixNumbers numbersOf(const Matrix& matrix, int width, int height);

/// The movie's bytes with the nine numbers in the header of its video track; empty where there is no such
/// track.
std::string withMatrix(std::string movie, const MatrixNumbers& numbers);

/// The nine numbers that ffprobe gives for the video; those of the unchanged picture where it gives none,
/// since it does not mention these. All 0 where it gives anything else.
MatrixNumbers reportedMatrix(const std::string& path);

/// What stands behind `"member": "` in a report, up to the closing quotation mark; empty where there is none.
std::string textMember(const std::string& report, const std::string& member);

} // namespace tarnwell::test
