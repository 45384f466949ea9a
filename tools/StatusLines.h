// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// The beginning of each status line.
inline const std::string statusMark = "time=";

/// Converts ffmpeg's progress report, lines of keys and values in chunks of any size, into status lines.
class ProgressReader
{
public:
    /// The status lines that the chunk completes, each with its end of line; empty if there is none.
    std::string read(const std::string& piece);

private:
    std::string takeLine(const std::string& line);

    std::string m_rest;
    std::optional<std::int64_t>
        m_microseconds; // duration of the written media; empty if no value has arrived since the last line
};

/// "time=HH:MM:SS.hh", rounded down.
std::string statusLine(std::int64_t microseconds);

/// The text as one line that is not recognised as a status line: "time=" and time stamps are changed, and
/// bytes that are not printable ASCII become "?". All external text, such as a path, is printed in this form.
std::string withoutStatusMarks(std::string text);

/// Whether a message of ffmpeg or ffprobe names an error of a device or a file server. They treat such an
/// error as the end of the file. They print the same text for some damaged files.
bool namesReadError(const std::string& messages);

/// Splits ffmpeg's messages into whole lines and applies withoutStatusMarks.
class ErrorMessageReader
{
public:
    /// The lines that the chunk completes, each with its end of line; empty if there is none.
    std::string read(const std::string& piece);

    /// Called at the end of the messages: the last line with an added end of line if it has none; else empty.
    std::string rest();

private:
    std::string m_rest;
};
