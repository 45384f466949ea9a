// SPDX-License-Identifier: MIT
#pragma once

#include "tools/Rotation.h"

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// Returns ffprobe's JSON report. The tag "rotate" of each video stream is set to the clockwise turn of its
/// display matrix, and removed if there is no such matrix. Durations of streams that do not fit 64 bits of
/// seconds and what limitedReport removes are missing. Other text is returned unchanged.
std::string withTrueRotation(const std::string& report);

/// The main video stream of a JSON report: the first one that has a frame rate and is no attached picture,
/// such as those of chapters; else the first one with a frame rate; else the first one.
struct VideoFacts {
    /// The tag "rotate" that withTrueRotation sets, 0 for none. Taken from the first stream with a frame
    /// rate, even an attached picture: the application computes the flag relative to this tag.
    int rotation = 0;
    std::optional<DisplayMatrix> decoded; // the matrix that decoders apply
    int width = 0; // coded pixels; 0 if unknown
    int height = 0;
    double pixelAspect = 1; // width of a pixel divided by its height
};

VideoFacts videoFactsOf(const std::string& report);

/// One stream of a JSON report.
struct MediaStream {
    enum class Kind { Video, Sound, Subtitle, Other };

    int index = 0; // for ffmpeg's option "-map 0:INDEX"
    Kind kind = Kind::Other;
    std::string codec; // ffmpeg's name; empty for a codec that is unknown to ffmpeg
    std::string tag; // four bytes for the codec in the container; empty for none
    std::uint32_t trackId = 0; // in MP4 and QuickTime files; 0 if unknown
    int channels = 0;
    std::string channelLayout; // empty if unknown
    bool isDefault = false;
    bool isAttachedPicture = false; // a cover or the pictures of chapters
};

/// The streams and tags of an input. Members are empty if the report lacks them.
struct MediaFacts {
    VideoFacts video; // of the main video stream
    std::optional<MediaStream> mainVideo;
    std::vector<MediaStream> streams; // in the order of the report
    std::vector<std::pair<std::string, std::string>> tags; // of the file, without those of streams
    bool hasOrientationMessage
        = false; // the main video stream can contain one; set by readOrientationMessage
};

MediaFacts mediaFactsOf(const std::string& report);

/// The display matrix of the first frame that has one, in a JSON report of frames and library versions,
/// without its scale. It is that of an orientation message in the stream.
struct FrameOrientation {
    std::optional<DisplayMatrix> matrix; // empty if no frame has one
    bool isObeyed = true; // ffmpeg decodes with it; versions before 5.0 use the matrix of the container
    bool mayBeOfContainer = false; // from FFmpeg 6.1 on frames without a message have its matrix
};
FrameOrientation frameOrientationOf(const std::string& report);
