// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

/// The job of creator: a still, a copy with another rotation flag, or a transcode.
struct Job {
    enum class Kind { Still, FixFlag, Transcode };

    Kind kind = Kind::Still;
    std::string input;
    std::string output;
    std::string position; // still: seconds, in ffmpeg's notation; empty for the first frame
    std::optional<int> stream; // still: index of the video stream; else the first one that is no cover
    bool mayBeCover = false; // still: ffmpeg chooses among all video streams, including covers
    double rotation = 0; // flag: degrees counterclockwise relative to the coded picture
    std::string filters; // transcode; empty for none
};

/// Parses one of the application's three argument lists. Empty for any other list.
std::optional<Job> readJob(const std::vector<std::string>& arguments);

/// The output of ffmpeg: a path, and the container format if the path does not imply it.
struct Target {
    std::string path;
    std::string container;
};

/// ffmpeg's arguments for the job without stream options: ffmpeg chooses the streams. ffmpeg writes its
/// progress to standard output.
std::vector<std::string> ffmpegArguments(const Job& job, const Target& target);

/// The same with options that select the streams and specify how each is copied or encoded. Not for stills.
std::vector<std::string> ffmpegArguments(
    const Job& job, const Target& target, const std::vector<std::string>& streamOptions);
