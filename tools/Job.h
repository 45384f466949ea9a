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
    std::string position; // of a still, in seconds as ffmpeg reads them
    double rotation = 0; // of a flag: degrees counterclockwise against the coded picture
    std::string filters; // of an encoding; empty for none
};

/// Reads one of the three argument lists. Nothing for any other list.
std::optional<Job> readJob(const std::vector<std::string>& arguments);

/// What ffmpeg is given to write to: a path, and the container's name where the path does not imply it.
struct Target {
    std::string path;
    std::string container;
};

/// ffmpeg's arguments for the job. Progress goes to its standard output.
std::vector<std::string> ffmpegArguments(const Job& job, const Target& target);
