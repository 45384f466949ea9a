// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace tarnwell::test
{

// Builds the boxes of an MP4 file byte by byte. The movie contains no real picture.

constexpr std::int64_t matrixOne = 65536; // 16.16 fixed point
constexpr std::int64_t lastOne = 1073741824; // 2.30 fixed point, the ninth number of a matrix

std::string bigEndian(std::uint64_t number, int bytes);

/// Signed big-endian numbers of four bytes each.
std::string numbers(const std::vector<std::int64_t>& values);

/// The nine numbers of a display matrix.
std::vector<std::int64_t> matrixNine(double a, double b, double c, double d, int right = 0, int down = 0);

std::string box(const std::string& type, const std::string& content);

/// A box with a 64-bit size after its type.
std::string longBox(const std::string& type, const std::string& content);

std::string fileType(const std::string& brand = "isom");

/// The header of a movie of 4 seconds; `version` is 0 or 1.
std::string movieHeader(int version = 0, const std::vector<std::int64_t>& matrix = matrixNine(1, 0, 0, 1));

/// The movie box: its header and then `tracks`.
std::string movieBox(const std::string& tracks);

/// The variable parts of a track besides its handler.
struct TrackBytes {
    int version = 0; // of the track header
    int width = 320;
    int height = 240;
    std::vector<std::int64_t> matrix = matrixNine(1, 0, 0, 1);
    std::uint32_t id = 1;
    std::string format = "avc1";
    int samples = 100;
    int sampleDuration = 40;
    std::vector<std::uint32_t> chapters = {}; // ids of the tracks that contain them
};

/// A box of media data.
inline const std::string mediaData = box("mdat", std::string(1000, 'd'));

/// The track header without its last fields, width and height.
std::string trackHeader(const TrackBytes& bytes);

/// A track with a header and a handler of that type, such as "vide".
std::string track(const std::string& handler, const TrackBytes& bytes = {});

/// A file of three boxes: its type, the data, and the movie with one video and one audio track.
std::string smallMovie();

/// A file with one video track and `dataSize` bytes of media data without a repeating pattern.
std::string movieOf(std::size_t dataSize);

/// The nine numbers in a track header that begins at `header`.
std::string matrixIn(const std::string& file, std::size_t header);

} // namespace tarnwell::test
