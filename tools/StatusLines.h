// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// Turns what ffmpeg says of its progress, keys and values line by line in pieces of any size, into status
/// lines.
class ProgressReader
{
public:
    /// The status lines that the piece completes, each with its end of line; empty where it completes none.
    std::string read(const std::string& piece);

private:
    std::string takeLine(const std::string& line);

    std::string m_rest;
    std::optional<std::int64_t> m_microseconds; // of media written, since the last line
};

/// "time=HH:MM:SS.hh", rounded down.
std::string statusLine(std::int64_t microseconds);

/// The text as one line that no reader can take for a status line: "time=" and time stamps are changed, and
/// bytes that are not printable ASCII become "?". Any text that comes from outside, such as a path, is
/// printed in this form.
std::string withoutStatusMarks(std::string text);

/// Passes on the messages of ffmpeg as whole lines, see withoutStatusMarks.
class ComplaintReader
{
public:
    /// The lines that the piece completes, each with its end of line; empty where it completes none.
    std::string read(const std::string& piece);

    /// At the end of the messages: the last line where it has no end of its own, with one; else empty.
    std::string rest();

private:
    std::string m_rest;
};
