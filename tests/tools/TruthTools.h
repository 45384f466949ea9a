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

/// The exit status of a program, or 128 plus the number of the signal, and its whole output.
struct Outcome {
    int status = 0;
    std::string output;
    std::string errorMessages;
};

/// Runs a program, named by its path, to its end. Its standard input is empty.
Outcome run(const Command& command);

std::string readFile(const std::string& path);
void writeFile(const std::string& path, const std::string& bytes);

/// All names in the folder, including hidden ones.
std::set<std::string> namesIn(const std::string& folder);

/// The first line of the installed ffmpeg's version text.
std::string ffmpegVersion();

bool hasEncoder(const std::string& name);

enum class Rotation { Applied, Ignored };

/// The frame of a video at `seconds`, or the first frame of a video or picture if `seconds` is empty, as
/// ffmpeg shows it.
Picture decodedFrame(
    const std::string& path, const std::string& seconds, Rotation rotation = Rotation::Applied);

struct Recipe {
    int width = 0;
    int height = 0;
    std::string encoder;
};

/// A movie of two seconds with sound: four different corners on a gradient that becomes brighter.
void makeMovie(const std::string& path, const Recipe& recipe);

/// The nine numbers of a matrix in a track header: two columns in 16.16 fixed point and one in 2.30.
using MatrixNumbers = std::array<std::int32_t, 9>;

/// The matrix with the shift that moves a picture of the coded size back to the origin.
MatrixNumbers numbersOf(const Matrix& matrix, int width, int height);

/// The movie with the nine numbers in the header of its video track; empty if there is no such track.
std::string withMatrix(std::string movie, const MatrixNumbers& numbers);

/// The nine numbers that ffprobe reports for the video. ffprobe omits the identity, which is returned if
/// there are no numbers. All 0 for an invalid report.
MatrixNumbers reportedMatrix(const std::string& path);

/// The text between `"member": "` and the closing quotation mark in a report; empty if there is none.
std::string textMember(const std::string& report, const std::string& member);

} // namespace tarnwell::test
