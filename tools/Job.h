// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <vector>

/// What creator is asked for: a still, a copy with another rotation flag, or a new encoding.
struct Job {
    enum class Kind { Still, FixFlag, Transcode };

    Kind kind = Kind::Still;
    std::string input;
    std::string output;
    std::string position; // of a still, in seconds as ffmpeg reads them; empty for the first frame
    bool mayBeCover = false; // of a still: ffmpeg chooses among all video streams, covers included
    double rotation = 0; // of a flag: degrees counterclockwise against the coded picture
    std::string filters; // of an encoding; empty for none
};

/// Reads one of the application's three argument lists. Empty for any other list.
std::optional<Job> readJob(const std::vector<std::string>& arguments);

/// Where ffmpeg writes to: a path, and the name of the container where the path does not imply it.
struct Target {
    std::string path;
    std::string container;
};

/// ffmpeg's plain arguments for the job: ffmpeg chooses the streams. Progress goes to its standard output.
std::vector<std::string> ffmpegArguments(const Job& job, const Target& target);

/// The same with options of the caller's, which select the streams and say how each is copied or encoded.
/// Not for stills.
std::vector<std::string> ffmpegArguments(
    const Job& job, const Target& target, const std::vector<std::string>& streamOptions);
