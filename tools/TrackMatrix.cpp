// SPDX-License-Identifier: MIT
#include "tools/TrackMatrix.h"

#include "tools/FileCopy.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>

namespace
{

const std::string quickTimeBrand = "qt  ";

std::string fixedPointBytes(double value, int fractionBits)
{
    // Larger numbers wrap around, for example with pictures that are wider than 32767 pixels.
    return bigEndianBytes(static_cast<std::uint64_t>(std::llround(std::ldexp(value, fractionBits))), 4);
}

/// The nine numbers in the format of a track header, with the translation that moves the turned picture to
/// the origin.
std::string matrixBytes(const DisplayMatrix& m, double width, double height)
{
    constexpr int fixed = 16;
    constexpr int perspective = 30;
    const double left = std::min({0.0, m.a * width, m.c * height, m.a * width + m.c * height});
    const double top = std::min({0.0, m.b * width, m.d * height, m.b * width + m.d * height});
    std::string bytes;
    const std::array<double, 6> rows = {m.a, m.b, m.c, m.d, -left, -top};
    for (std::size_t row = 0; row < 3; ++row) {
        bytes += fixedPointBytes(rows[2 * row], fixed);
        bytes += fixedPointBytes(rows[2 * row + 1], fixed);
        bytes += fixedPointBytes(row == 2 ? 1 : 0, perspective);
    }
    return bytes;
}

Patch patchOf(const VideoTrack& video, const DisplayMatrix& matrix)
{
    return {video.matrixOffset, matrixBytes(matrix, video.width, video.height)};
}

bool isEmpty(const DisplayMatrix& m)
{
    return m.a == 0 && m.b == 0 && m.c == 0 && m.d == 0;
}

/// Decoders derive a pixel aspect ratio from any other matrix. A quarter turn would have to invert it.
bool isTurnMirrorOrZoom(const DisplayMatrix& m)
{
    constexpr double tolerance = 0.01; // the same as that of decoders
    const bool isZoom = std::abs(std::hypot(m.a, m.b) / std::hypot(m.c, m.d) - 1) <= tolerance;
    return isEmpty(m) || (isZoom && withoutScale(m));
}

/// Whether the matrix has no rounding errors, so that its inverse has none either.
bool isQuarterTurnOrMirror(const DisplayMatrix& m)
{
    const auto isWhole = [](double number) { return number == std::trunc(number); };
    return keepsShapeAndSize(m) && isWhole(m.a) && isWhole(m.b) && isWhole(m.c) && isWhole(m.d);
}

/// For quarter turns and mirrors only.
DisplayMatrix inverse(const DisplayMatrix& m)
{
    return {m.a, m.c, m.b, m.d};
}

} // namespace

std::string obstacleToPatches(const Movie& movie)
{
    const auto isCover = [](const VideoTrack& video) { return video.isCover; };
    if (movie.majorBrand.empty())
        return "it has no file type";
    if (movie.majorBrand == quickTimeBrand)
        return "it is a QuickTime file";
    if (!movie.hasMediaData)
        return "it has no media data";
    if (std::all_of(movie.videos.begin(), movie.videos.end(), isCover))
        return "it has no video track";
    if (!isQuarterTurnOrMirror(movie.matrix))
        return "the matrix of the movie is neither a quarter turn nor a mirror";
    if (!isTurnMirrorOrZoom(mainVideo(movie).matrix))
        return "its display matrix stretches or skews the picture";
    return {};
}

std::optional<std::vector<Patch>> patchesOfFlag(const Movie& movie, double rotation)
{
    if (!obstacleToPatches(movie).empty())
        return std::nullopt;
    const DisplayMatrix turn = turnedLeft(rotation + orientationOf(movie).rotation);
    // The matrix of the movie is applied after that of the track, and the turn after both.
    const DisplayMatrix turnOfTrack = combined(combined(movie.matrix, turn), inverse(movie.matrix));
    std::vector<Patch> patches;
    for (const VideoTrack& video : movie.videos) {
        const DisplayMatrix own = isEmpty(video.matrix) ? DisplayMatrix() : video.matrix;
        if (!video.isCover)
            patches.push_back(patchOf(video, combined(own, turnOfTrack)));
    }
    return patches;
}

DisplayMatrix matrixOfFlag(const Orientation& orientation, double rotation)
{
    return combined(
        orientation.decoded.value_or(DisplayMatrix()), turnedLeft(rotation + orientation.rotation));
}

bool applyPatches(int file, const std::vector<Patch>& patches)
{
    return std::all_of(patches.begin(), patches.end(),
        [file](const Patch& patch) { return writeBytes(file, patch.bytes, patch.offset); });
}

bool writeTrackMatrix(int file, const DisplayMatrix& matrix)
{
    const auto movie = readMovie(file);
    if (!movie || movie->videos.empty())
        return false;
    std::vector<Patch> patches;
    for (const VideoTrack& video : movie->videos)
        patches.push_back(patchOf(video, matrix));
    return applyPatches(file, patches);
}
