// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Boxes.h"
#include "tools/Rotation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// A track with the handler "vide" and where its header keeps the display matrix.
struct VideoTrack {
    std::uint32_t id = 0;
    FileOffset matrixOffset = 0; // of the nine numbers, 36 bytes, in the file
    DisplayMatrix matrix; // as stored: with its scale, without that of the movie's header
    double width = 0; // of the presentation, before the matrix
    double height = 0;
    bool hasFrameRate = false; // its samples last longer than nothing
    bool isCover = false; // a single picture in a picture format, or pictures of chapters
    std::optional<Box> formats; // "stsd"; empty where there is none
    FileOffset firstSample = 0; // in the file; 0 where the description has no samples, as in fragmented files
};

/// What the description of an MP4 or QuickTime file (its box "moov") says of the presentation.
struct Movie {
    std::string majorBrand; // four bytes; empty for a file without a type
    bool hasMediaData = false; // a box "mdat"
    DisplayMatrix matrix; // of the movie's header: applied after a track's own
    std::int64_t microseconds = 0; // the duration; 0 where the description does not say
    std::vector<VideoTrack> videos; // in the file's order
};

/// Reads the description. Empty unless the file is whole by its own structure: boxes fill it, one "moov"
/// describes it, every track has a header of a known version and a handler. Samples are not looked at.
std::optional<Movie> readMovie(int file);

/// As above. Sets `problem` to the reason for an empty result, such as "it is no MP4 file", else to "".
std::optional<Movie> readMovie(int file, std::string& problem);

/// Whether the file is such a movie with a video track. An ffmpeg that decodes no frame succeeds with a movie
/// that has none.
bool isCompleteMovie(int file);

/// The track whose orientation the user sees and sets: the first one with a frame rate, else the first one.
/// Reports of ffprobe are read by the same rule (videoFactsOf). The movie must have a video track.
const VideoTrack& mainVideo(const Movie& movie);

/// What the movie says of its main video track's orientation, as videoFactsOf reads it from a report of
/// ffprobe; without the size in pixels.
struct Orientation {
    int rotation = 0; // the clockwise turn as sniffer reports it; 0 where it reports none
    std::optional<DisplayMatrix> decoded; // what decoders apply; empty for a matrix that they ignore
};
Orientation orientationOf(const Movie& movie);
