// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Boxes.h"
#include "tools/Rotation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A track with the handler "vide".
struct VideoTrack {
    std::uint32_t id = 0;
    FileOffset matrixOffset = 0; // of the display matrix, 36 bytes in the track header
    DisplayMatrix matrix; // of the track header, with its scale
    double width = 0; // of the shown picture before the matrix is applied
    double height = 0;
    bool hasFrameRate = false; // a sample has a duration, or the file is fragmented
    bool isCover = false; // a single picture in a picture format, or pictures of chapters
    std::optional<Box> formats; // "stsd"; empty if missing
    FileOffset firstSample = 0; // in the file; 0 if the description lists no samples, as in fragmented files
};

/// The description (box "moov") of an MP4 or QuickTime file.
struct Movie {
    std::string majorBrand; // four bytes; empty for a file without a file type
    bool hasMediaData = false; // there is a box "mdat"
    DisplayMatrix matrix; // of the movie header; applied after that of a track
    std::int64_t microseconds = 0; // the duration; 0 if unknown
    std::vector<VideoTrack> videos; // in the order of the file
};

/// Reads the description. Empty unless the structure of the file is intact: boxes fill it, there is one
/// "moov", and every track has a handler and a header of a known version. Does not read samples.
std::optional<Movie> readMovie(int file);

/// The same. Sets `problem` to the reason for an empty result, such as "it is no MP4 file", else to "".
std::optional<Movie> readMovie(int file, std::string& problem);

/// The number of a track, from its header "tkhd"; 0 for a header of an unknown version.
std::uint32_t trackNumber(const BoxReader& reader, const Box& header);

/// Whether the file is such a movie with a video track. If ffmpeg decodes no frame, it succeeds and writes a
/// movie without one.
bool isCompleteMovie(int file);

/// The video track that players show: the first one that has a frame rate and is no cover, else the first one
/// with a frame rate, else the first one. videoFactsOf uses the same rule, but a track of a single picture is
/// no cover there. The movie must have a video track.
const VideoTrack& mainVideo(const Movie& movie);

/// The orientation of a movie, with the same meaning as in VideoFacts.
struct Orientation {
    int rotation = 0; // clockwise degrees as sniffer reports them, of the first track with a frame rate
    std::optional<DisplayMatrix> decoded; // of the main video track; empty if decoders ignore its matrix
};
Orientation orientationOf(const Movie& movie);
